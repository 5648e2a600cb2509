// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/TextCodec.h"

#include <QStringConverter>

#include <unicode/ucnv.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace tomelet {

namespace {

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter openConverter(const char *name)
{
    UErrorCode status = U_ZERO_ERROR;
    return {ucnv_open(name, &status), &ucnv_close};
}

const char *icuName(TextEncoding encoding)
{
    return encoding == TextEncoding::MacRoman ? "macintosh" : "windows-1252";
}

// ICU gives control characters for the bytes that Windows-1252 leaves undefined; a detector needs them refused.
bool isUndefinedInWindows1252(char byte)
{
    return QByteArrayView("\x81\x8d\x8f\x90\x9d").contains(byte);
}

std::optional<QString> decodeByIcu(QByteArrayView bytes, TextEncoding encoding)
{
    if (encoding == TextEncoding::Windows1252 && std::any_of(bytes.begin(), bytes.end(), isUndefinedInWindows1252))
        return std::nullopt;
    const Converter converter = openConverter(icuName(encoding));
    QString text(bytes.size(), Qt::Uninitialized); // one unit a byte in both
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = ucnv_toUChars(converter.get(), reinterpret_cast<UChar *>(text.data()), int32_t(text.size()),
                                         bytes.data(), int32_t(bytes.size()), &status);
    if (U_FAILURE(status)) return std::nullopt;
    text.truncate(length);
    return text;
}

std::optional<QByteArray> encodeBy(const Converter &converter, const QString &text)
{
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    const auto room = UCNV_GET_MAX_BYTES_FOR_STRING(text.size(), ucnv_getMaxCharSize(converter.get()));
    QByteArray bytes(qsizetype(room), Qt::Uninitialized);
    const int32_t length =
        ucnv_fromUChars(converter.get(), bytes.data(), int32_t(bytes.size()),
                        reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size()), &status);
    if (U_FAILURE(status)) return std::nullopt;
    bytes.truncate(length);
    return bytes;
}

std::optional<QByteArray> encodeByIcu(const QString &text, TextEncoding encoding)
{
    return encodeBy(openConverter(icuName(encoding)), text);
}

std::optional<QString> decodeByQt(QByteArrayView bytes, QStringConverter::Encoding encoding)
{
    // Stateless: a sequence that is cut off at the end is an error, not the beginning of what comes next.
    QStringDecoder decoder(encoding, QStringConverter::Flag::ConvertInitialBom | QStringConverter::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError()) return std::nullopt;
    return text;
}

struct Mark
{
    QByteArrayView bytes;
    TextEncoding encoding;
    QStringConverter::Encoding decoder;
};

// The longer marks first: that of UTF-32 in little-endian order begins with that of UTF-16.
constexpr Mark marks[] = {
    {QByteArrayView("\xff\xfe\0\0", 4), TextEncoding::Utf32, QStringConverter::Utf32LE},
    {QByteArrayView("\0\0\xfe\xff", 4), TextEncoding::Utf32, QStringConverter::Utf32BE},
    {QByteArrayView("\xef\xbb\xbf", 3), TextEncoding::Utf8, QStringConverter::Utf8},
    {QByteArrayView("\xff\xfe", 2), TextEncoding::Utf16, QStringConverter::Utf16LE},
    {QByteArrayView("\xfe\xff", 2), TextEncoding::Utf16, QStringConverter::Utf16BE},
};

std::optional<DecodedText> decodeMarked(QByteArrayView bytes)
{
    for (const Mark &mark : marks) {
        if (!bytes.startsWith(mark.bytes)) continue;
        if (auto text = decodeByQt(bytes.sliced(mark.bytes.size()), mark.decoder))
            return DecodedText{std::move(*text), mark.encoding, mark.bytes.toByteArray()};
    }
    return std::nullopt;
}

} // namespace

DecodedText decodeText(QByteArrayView bytes)
{
    if (auto marked = decodeMarked(bytes)) return *marked;
    if (auto text = decodeTextAs(bytes, TextEncoding::Utf8)) return {std::move(*text), TextEncoding::Utf8, {}};
    const bool windowsFirst = bytes.contains("\r\n");
    if (windowsFirst)
        if (auto text = decodeTextAs(bytes, TextEncoding::Windows1252))
            return {std::move(*text), TextEncoding::Windows1252, {}};
    return {decodeTextAs(bytes, TextEncoding::MacRoman).value_or(QString()), TextEncoding::MacRoman, {}};
}

std::optional<QString> decodeTextAs(QByteArrayView bytes, TextEncoding encoding)
{
    switch (encoding) {
    case TextEncoding::Ascii:
        if (std::any_of(bytes.begin(), bytes.end(), [](char byte) { return byte < 0; })) return std::nullopt;
        return QString::fromLatin1(bytes);
    case TextEncoding::Utf8: return decodeByQt(bytes, QStringConverter::Utf8);
    case TextEncoding::Utf16: return decodeByQt(bytes, QStringConverter::Utf16LE);
    case TextEncoding::Utf32: return decodeByQt(bytes, QStringConverter::Utf32LE);
    case TextEncoding::Windows1252:
    case TextEncoding::MacRoman: return decodeByIcu(bytes, encoding);
    }
    return std::nullopt;
}

std::optional<QByteArray> encodeText(const QString &text, TextEncoding encoding, const QByteArray &byteOrderMark)
{
    if (encoding == TextEncoding::Windows1252 || encoding == TextEncoding::MacRoman) return encodeByIcu(text, encoding);
    if (encoding == TextEncoding::Ascii) {
        if (std::any_of(text.begin(), text.end(), [](QChar unit) { return unit.unicode() > 127; })) return std::nullopt;
        return text.toLatin1();
    }
    auto target = QStringConverter::Utf8;
    for (const Mark &mark : marks)
        if (mark.encoding == encoding && (byteOrderMark.isEmpty() || byteOrderMark == mark.bytes)) {
            target = mark.decoder;
            break;
        }
    QStringEncoder encoder(target);
    const QByteArray bytes = encoder(text);
    if (encoder.hasError()) return std::nullopt;
    return byteOrderMark + bytes;
}

// -- charsets of the web ----------------------------------------------------------------------------------------------

// ICU counts in 32 bits, and a unit may become eight bytes in the worst of its charsets.
static constexpr qsizetype longestForIcu = std::numeric_limits<int32_t>::max() / 16;

std::optional<QString> decodeTextInCharset(QByteArrayView bytes, const QString &charset)
{
    if (charset.compare(u"utf-8", Qt::CaseInsensitive) == 0) return decodeTextAs(bytes, TextEncoding::Utf8);
    const Converter converter = openConverter(charset.toLatin1().constData());
    if (charset.isEmpty() || !converter || bytes.size() > longestForIcu) return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    QString text(2 * bytes.size(), Qt::Uninitialized); // as many units as a byte can make
    const int32_t length = ucnv_toUChars(converter.get(), reinterpret_cast<UChar *>(text.data()), int32_t(text.size()),
                                         bytes.data(), int32_t(bytes.size()), &status);
    if (U_FAILURE(status)) return std::nullopt;
    text.truncate(length);
    return text;
}

std::optional<QByteArray> encodeTextInCharset(const QString &text, const QString &charset)
{
    const Converter converter = openConverter(charset.toLatin1().constData());
    if (charset.isEmpty() || !converter || text.size() > longestForIcu) return std::nullopt;
    return encodeBy(converter, text);
}

} // namespace tomelet
