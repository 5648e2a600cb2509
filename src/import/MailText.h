// SPDX-License-Identifier: GPL-3.0-or-later
// The encodings in which mails carry text (RFC 2045, RFC 2047). Character sets are not looked at: bytes are UTF-8, or
// one character each where they are not.
#pragma once

#include <QString>

#include <optional>

namespace tomelet {

/// Decodes the encoded words of a header ("=?UTF-8?Q?J=C3=BCrgen?="), in which "_" is a blank. A base64 word that is
/// none stays as it is written.
[[nodiscard]] QString stringWithEncodedWordsString(const QString &text);
/// Decodes quoted-printable. Where the bytes are no UTF-8, or a "=" stands alone, each escape is a Latin-1 character.
[[nodiscard]] QString stringWithQuotedPrintableString(const QString &text);
/// Decodes base64, white space aside, as UTF-8; nothing where either fails.
[[nodiscard]] std::optional<QString> stringWithBase64Encoding(const QString &text);
/// The bytes of base64 text with line ends in it; what is no base64 is left out.
[[nodiscard]] QByteArray bytesOfBase64(const QString &text);

} // namespace tomelet
