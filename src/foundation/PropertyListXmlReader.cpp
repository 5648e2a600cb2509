// SPDX-License-Identifier: GPL-3.0-or-later
// Reads the XML form of property lists. Documents with a DTD of their own are refused before the XML reader
// sees them: entities and attribute defaults could make a small file cost any amount of time and memory.
#include "foundation/PropertyList_p.h"

#include <QDateTime>
#include <QStringDecoder>
#include <QTimeZone>
#include <QXmlStreamReader>

#include <cmath>
#include <limits>

namespace tomelet {

namespace propertylist {

namespace {

/// The tags of property lists have one short attribute at most. Looking for attributes that stand twice takes
/// the XML reader time in the square of their number.
constexpr qsizetype longestTag = 1000;

// The position behind the next `close`, or the end of the text.
qsizetype behind(QStringView text, QStringView close, qsizetype from)
{
    const qsizetype at = text.indexOf(close, from);
    return at < 0 ? text.size() : at + close.size();
}

// The position behind the ">" that ends the tag, quoted attribute values skipped.
qsizetype behindTag(QStringView text, qsizetype from)
{
    for (qsizetype i = from; i < text.size(); ++i) {
        if (text[i] == u'>') return i + 1;
        if (text[i] == u'"' || text[i] == u'\'') i = behind(text, text.sliced(i, 1), i + 1) - 1;
    }
    return text.size();
}

// Whether a document has no DTD of its own, in brackets, and no endless tags.
bool isHarmless(QStringView text)
{
    qsizetype at = 0;
    while ((at = text.indexOf(u'<', at)) >= 0) {
        const QStringView rest = text.sliced(at);
        if (rest.startsWith(u"<?")) at = behind(text, u"?>", at);
        else if (rest.startsWith(u"<!--")) at = behind(text, u"-->", at + 4);
        else if (rest.startsWith(u"<![CDATA[")) at = behind(text, u"]]>", at);
        else {
            const QStringView tag = rest.first(behindTag(text, at) - at);
            if (tag.size() > longestTag || (tag.startsWith(u"<!DOCTYPE") && tag.contains(u'['))) return false;
            at += tag.size();
        }
    }
    return true;
}

// The encoding by byte order mark or by how "<" is stored; then by the XML declaration; otherwise UTF-8.
QString decoded(QByteArrayView bytes, QString &error)
{
    QStringDecoder decoder(QStringConverter::encodingForData(bytes, u'<').value_or(QStringConverter::Utf8));
    const QByteArrayView head = bytes.first(qMin<qsizetype>(bytes.size(), 100));
    const qsizetype endOfDeclaration = head.indexOf("?>");
    if (endOfDeclaration > 0 && head.first(endOfDeclaration).toByteArray().toLower().contains("iso-8859-1"))
        decoder = QStringDecoder(QStringConverter::Latin1);
    QString text = decoder(bytes);
    if (decoder.hasError()) error = QStringLiteral("the text is not valid %1").arg(QLatin1StringView(decoder.name()));
    return text;
}

class Reader
{
public:
    explicit Reader(const QString &text)
        : m_xml(text)
    {
        m_xml.setNamespaceProcessing(false);
    }

    QVariant read()
    {
        if (!nextElement() || m_xml.name() != u"plist") return failed(QStringLiteral("not a property list"));
        if (!nextElement()) return failed(QStringLiteral("no value"));
        QVariant tree = value(1);
        if (nextElement()) return failed(QStringLiteral("more than one value"));
        return m_xml.hasError() ? QVariant() : tree;
    }

    QString error() const
    {
        return QStringLiteral("line %1, column %2: %3")
            .arg(m_xml.lineNumber())
            .arg(m_xml.columnNumber())
            .arg(m_xml.errorString());
    }

private:
    QVariant failed(const QString &what)
    {
        if (!m_xml.hasError()) m_xml.raiseError(what);
        return {};
    }

    // The next child; false at the end of the element and on a fault, such as text between the elements.
    bool nextElement()
    {
        while (!m_xml.hasError()) {
            switch (m_xml.readNext()) {
            case QXmlStreamReader::StartElement: return true;
            case QXmlStreamReader::EndElement:
            case QXmlStreamReader::EndDocument: return false;
            case QXmlStreamReader::EntityReference: failed(QStringLiteral("unknown entity")); break;
            case QXmlStreamReader::Characters:
                if (!m_xml.isWhitespace()) failed(QStringLiteral("text between elements"));
                break;
            default: break;
            }
        }
        return false;
    }

    // What the element holds, which must be text alone. Entities that only a DTD could explain are a fault.
    QString text()
    {
        QString result;
        while (!m_xml.hasError()) {
            switch (m_xml.readNext()) {
            case QXmlStreamReader::Characters: result += m_xml.text(); break;
            case QXmlStreamReader::EndElement: return result;
            case QXmlStreamReader::Comment:
            case QXmlStreamReader::ProcessingInstruction: break;
            default: failed(QStringLiteral("text expected")); break;
            }
        }
        return {};
    }

    QVariant value(int depth)
    {
        const QStringView name = m_xml.name();
        if (name == u"dict") return dictionary(depth);
        if (name == u"array") return array(depth);
        if (name == u"string") return text();
        if (name == u"integer") return integer();
        if (name == u"real") return real();
        if (name == u"date") return date();
        if (name == u"data") return data();
        if (name == u"true" || name == u"false") return boolean(name == u"true");
        return failed(QStringLiteral("unknown element <%1>").arg(name));
    }

    QVariant dictionary(int depth)
    {
        QVariantMap map;
        if (depth > deepestNesting) return failed(QStringLiteral("nested too deep"));
        while (nextElement()) {
            if (m_xml.name() != u"key") return failed(QStringLiteral("<key> expected"));
            const QString key = text();
            if (!nextElement()) return failed(QStringLiteral("key without a value"));
            map.insert(key, value(depth + 1));
        }
        return map;
    }

    QVariant array(int depth)
    {
        QVariantList list;
        if (depth > deepestNesting) return failed(QStringLiteral("nested too deep"));
        while (nextElement()) list.append(value(depth + 1));
        return list;
    }

    QVariant boolean(bool value)
    {
        return text().trimmed().isEmpty() ? QVariant(value) : failed(QStringLiteral("text in a boolean"));
    }

    // Numbers that only an unsigned reader could hold keep their size as a real.
    QVariant integer()
    {
        const QString written = text().trimmed();
        const bool isNegative = written.startsWith(u'-');
        QStringView digits(written);
        if (isNegative || digits.startsWith(u'+')) digits = digits.sliced(1);
        const bool isHexadecimal = digits.startsWith(u"0x", Qt::CaseInsensitive);
        if (isHexadecimal) digits = digits.sliced(2);
        bool isNumber = !digits.isEmpty() && digits[0].isLetterOrNumber();
        const quint64 number = isNumber ? digits.toULongLong(&isNumber, isHexadecimal ? 16 : 10) : 0;
        if (!isNumber) return failed(QStringLiteral("not an integer"));
        constexpr auto largest = quint64(std::numeric_limits<qint64>::max());
        if (number > largest + isNegative) return isNegative ? -double(number) : double(number);
        return isNegative ? qlonglong(-number) : qlonglong(number);
    }

    QVariant real()
    {
        const QString written = text().trimmed().toLower();
        if (written == u"nan") return std::nan("");
        if (written == u"infinity" || written == u"+infinity" || written == u"inf" || written == u"+inf")
            return std::numeric_limits<double>::infinity();
        if (written == u"-infinity" || written == u"-inf") return -std::numeric_limits<double>::infinity();
        bool isNumber = false;
        const double number = written.toDouble(&isNumber);
        // Qt reports a number beyond the range of double as a fault, but still tells which infinity it is.
        return isNumber || std::isinf(number) ? QVariant(number) : failed(QStringLiteral("not a number"));
    }

    QVariant date()
    {
        const std::optional<qint64> milliseconds = dateOfText(text().trimmed());
        if (!milliseconds) return failed(QStringLiteral("not a date"));
        return QDateTime::fromMSecsSinceEpoch(*milliseconds, QTimeZone::utc());
    }

    QVariant data()
    {
        QByteArray encoded = text().toLatin1();
        encoded.removeIf([](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; });
        const auto result = QByteArray::fromBase64Encoding(std::move(encoded), QByteArray::AbortOnBase64DecodingErrors);
        return result ? QVariant(result.decoded) : failed(QStringLiteral("not Base64"));
    }

    QXmlStreamReader m_xml;
};

} // namespace

QVariant parseXml(QByteArrayView bytes, QString &error)
{
    const QString text = decoded(bytes, error);
    if (error.isEmpty() && !isHarmless(text)) error = QStringLiteral("a DTD of its own, or an endless tag");
    if (!error.isEmpty()) return {};
    Reader reader(text);
    QVariant tree = reader.read();
    if (!tree.isValid()) error = reader.error();
    return tree;
}

} // namespace propertylist

} // namespace tomelet
