// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/MailText.h"

#include "conversion/Edits.h"
#include "conversion/Patterns.h"
#include "foundation/TextCodec.h"

#include <algorithm>

namespace tomelet {

namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    const char lower = char(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Percent escapes as UTF-8; nothing when one is broken or the bytes are none.
std::optional<QString> strictlyUnescaped(const QString &text)
{
    const QByteArray source = text.toUtf8();
    QByteArray bytes;
    bytes.reserve(source.size());
    for (qsizetype i = 0; i < source.size(); ++i) {
        if (source[i] != '%') {
            bytes.append(source[i]);
            continue;
        }
        if (i + 2 >= source.size()) return std::nullopt;
        const int high = hexDigit(source[i + 1]);
        const int low = hexDigit(source[i + 2]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes.append(char(high * 16 + low));
        i += 2;
    }
    return decodeTextAs(bytes, TextEncoding::Utf8);
}

QString withoutSoftBreaks(QString text)
{
    return text.remove(QStringLiteral("=\r\n")).remove(QStringLiteral("=\n"));
}

QString withLatinEscapes(const QString &text)
{
    const PatternMatches matches = matchesOfPattern(text, QStringLiteral("=([0-9a-fA-F]{2})"));
    Edits edits;
    for (size_t i = matches.size(); i-- > 0;)
        edits.replace(matches[i].range(), QChar(substring(text, matches[i].group(1)).toUShort(nullptr, 16)));
    return edits.appliedTo(text);
}

} // namespace

QString stringWithQuotedPrintableString(const QString &text)
{
    QString escaped = withoutSoftBreaks(text);
    escaped.replace(u'%', QStringLiteral("=25")).replace(u'=', u'%');
    if (escaped.endsWith(u'%')) escaped.chop(1);
    if (const auto decoded = strictlyUnescaped(escaped)) return *decoded;
    return withoutSoftBreaks(withLatinEscapes(text));
}

QByteArray bytesOfBase64(const QString &text)
{
    return QByteArray::fromBase64(text.toLatin1());
}

std::optional<QString> stringWithBase64Encoding(const QString &text)
{
    QByteArray encoded;
    for (const QChar c : text)
        if (!c.isSpace()) encoded.append(c.toLatin1());
    const auto bytes = QByteArray::fromBase64Encoding(encoded, QByteArray::AbortOnBase64DecodingErrors);
    return bytes ? decodeTextAs(*bytes, TextEncoding::Utf8) : std::nullopt;
}

QString stringWithEncodedWordsString(const QString &text)
{
    QString result = text;
    result.remove(QStringLiteral("\r\n "));
    const PatternMatches words = matchesOfPattern(result, QStringLiteral(R"(=\?(.+?)\?(.)\?(.+?)\?=)"));
    Edits edits;
    for (size_t i = words.size(); i-- > 0;) {
        const QString payload = substring(result, words[i].group(3));
        const bool quoted = substring(result, words[i].group(2)).toUpper() == u"Q";
        auto decoded =
            quoted ? std::optional(stringWithQuotedPrintableString(payload)) : stringWithBase64Encoding(payload);
        if (decoded) edits.replace(words[i].range(), decoded->replace(u'_', u' '));
    }
    return edits.appliedTo(result);
}

} // namespace tomelet
