// SPDX-License-Identifier: GPL-3.0-or-later
// Bytes of a text file in the encodings that documents come in, and which of them a file is written in.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace tomelet {

/// Numbers under which encodings are known in stores and operations.
enum class TextEncoding : qint64 {
    Ascii = 1,
    Utf8 = 4,
    Utf16 = 10, ///< with a byte-order mark
    Windows1252 = 12,
    MacRoman = 30,
    Utf32 = 0x8c000100, ///< with a byte-order mark
};

struct DecodedText
{
    QString text; ///< without the byte-order mark; line ends as they are
    TextEncoding encoding = TextEncoding::Utf8;
    QByteArray byteOrderMark;
};

/// Detects and decodes: a byte-order mark, else valid UTF-8 (plain ASCII is that), else Windows-1252 first when the
/// bytes hold CR LF and Mac Roman first when not. Mac Roman takes every byte, so there is always an answer.
[[nodiscard]] DecodedText decodeText(QByteArrayView bytes);
/// Nothing when the bytes are not valid in the encoding.
[[nodiscard]] std::optional<QString> decodeTextAs(QByteArrayView bytes, TextEncoding encoding);
/// Nothing when the encoding has no place for a character of the text. The mark goes in front; UTF-16 and UTF-32
/// take their byte order from it (little-endian without one).
[[nodiscard]] std::optional<QByteArray> encodeText(const QString &text, TextEncoding encoding,
                                                   const QByteArray &byteOrderMark = {});

/// The same for a charset by the name that the web has for it ("windows-1251"); nothing for an unknown one too.
[[nodiscard]] std::optional<QString> decodeTextInCharset(QByteArrayView bytes, const QString &charset);
[[nodiscard]] std::optional<QByteArray> encodeTextInCharset(const QString &text, const QString &charset);

} // namespace tomelet
