// SPDX-License-Identifier: GPL-3.0-or-later
// The XML form of property lists. Documents with a DTD of their own are refused before the XML reader sees
// them: entities and attribute defaults could make a small file cost any amount of time and memory.
#include "foundation/PropertyList.h"

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

// The end of the first construct that `from` begins: behind `close`, or the end of the text.
qsizetype behind(QStringView text, QStringView close, qsizetype from)
{
    const qsizetype at = text.indexOf(close, from);
    return at < 0 ? text.size() : at + close.size();
}

// Whether the document type declaration that begins at `from` has declarations of its own, in brackets.
bool declaresInBrackets(QStringView text, qsizetype from)
{
    for (qsizetype i = from; i < text.size(); ++i) {
        if (text[i] == u'>') return false;
        if (text[i] == u'[') return true;
        if (text[i] == u'"' || text[i] == u'\'') i = behind(text, text.sliced(i, 1), i + 1) - 1;
    }
    return false;
}

bool hasInternalDtd(QStringView text)
{
    qsizetype at = 0;
    while (at < text.size()) {
        const QStringView rest = text.sliced(at);
        if (rest[0].isSpace() || rest[0] == QChar::ByteOrderMark)
            ++at;
        else if (rest.startsWith(u"<?"))
            at = behind(text, u"?>", at);
        else if (rest.startsWith(u"<!--"))
            at = behind(text, u"-->", at);
        else
            return rest.startsWith(u"<!DOCTYPE") && declaresInBrackets(text, at);
    }
    return false;
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
    if (decoder.hasError())
        error = QStringLiteral("the text is not valid %1").arg(QLatin1StringView(decoder.name()));
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
            case QXmlStreamReader::StartElement:
                return true;
            case QXmlStreamReader::EndElement:
            case QXmlStreamReader::EndDocument:
                return false;
            case QXmlStreamReader::EntityReference:
                failed(QStringLiteral("unknown entity"));
                break;
            case QXmlStreamReader::Characters:
                if (!m_xml.isWhitespace()) failed(QStringLiteral("text between elements"));
                break;
            default:
                break;
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
            case QXmlStreamReader::Characters:
                result += m_xml.text();
                break;
            case QXmlStreamReader::EndElement:
                return result;
            case QXmlStreamReader::Comment:
            case QXmlStreamReader::ProcessingInstruction:
                break;
            default:
                failed(QStringLiteral("text expected"));
                break;
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
        while (nextElement())
            list.append(value(depth + 1));
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
        const auto result =
            QByteArray::fromBase64Encoding(std::move(encoded), QByteArray::AbortOnBase64DecodingErrors);
        return result ? QVariant(result.decoded) : failed(QStringLiteral("not Base64"));
    }

    QXmlStreamReader m_xml;
};

// Lays values out as the platform's dictionary writer does, so that a line-wise comparison shows what
// changed.
class Writer
{
public:
    QByteArray document(const QVariant &tree)
    {
        m_out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                "<plist version=\"1.0\">\n";
        value(tree, 0);
        return m_out + "</plist>\n";
    }

private:
    void line(int depth, const QByteArray &markup) { m_out.append(depth, '\t').append(markup).append('\n'); }

    void value(const QVariant &value, int depth)
    {
        switch (kindOf(value)) {
        case Kind::None:
            break;
        case Kind::Boolean:
            line(depth, value.toBool() ? "<true/>" : "<false/>");
            break;
        case Kind::Integer:
            line(depth, "<integer>" + QByteArray::number(value.toLongLong()) + "</integer>");
            break;
        case Kind::Real:
            line(depth, "<real>" + real(value.toDouble()) + "</real>");
            break;
        case Kind::Date:
            line(depth, "<date>" + textOfDate(value.toDateTime().toMSecsSinceEpoch()) + "</date>");
            break;
        case Kind::Text:
            line(depth, "<string>" + escaped(value.toString()) + "</string>");
            break;
        case Kind::Data:
            data(value.toByteArray(), depth);
            break;
        case Kind::Array:
            array(value.toList(), depth);
            break;
        case Kind::Dictionary:
            dictionary(value.toMap(), depth);
            break;
        }
    }

    void array(const QVariantList &list, int depth)
    {
        if (list.isEmpty()) return line(depth, "<array/>");
        line(depth, "<array>");
        for (const QVariant &entry : list)
            value(entry, depth + 1);
        line(depth, "</array>");
    }

    void dictionary(const QVariantMap &map, int depth)
    {
        if (map.isEmpty()) return line(depth, "<dict/>");
        line(depth, "<dict>");
        for (auto it = map.begin(); it != map.end(); ++it) {
            if (kindOf(it.value()) == Kind::None) continue;
            line(depth + 1, "<key>" + escaped(it.key()) + "</key>");
            value(it.value(), depth + 1);
        }
        line(depth, "</dict>");
    }

    // Lines end at column 76, a tab counted as eight; beyond eight tabs the lines move no further to the
    // right.
    void data(const QByteArray &bytes, int depth)
    {
        const int tabs = qMin(depth, 8);
        const qsizetype width = 76 - 8 * tabs;
        const QByteArray encoded = bytes.toBase64();
        line(depth, "<data>");
        for (qsizetype at = 0; at < encoded.size(); at += width)
            line(tabs, encoded.mid(at, width));
        line(depth, "</data>");
    }

    static QByteArray real(double number)
    {
        if (std::isnan(number)) return "nan";
        if (std::isinf(number)) return number > 0 ? "+infinity" : "-infinity";
        return QByteArray::number(number, 'g', 17);
    }

    static bool isXmlCharacter(QStringView text, qsizetype i)
    {
        const QChar c = text[i];
        if (c.isHighSurrogate()) return i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (c.isLowSurrogate()) return i > 0 && text[i - 1].isHighSurrogate();
        return c >= u' ' ? c < QChar(0xFFFE) : c == u'\t' || c == u'\n' || c == u'\r';
    }

    // A bare carriage return would be read back as a line feed, so it is written as a reference.
    static QByteArray escaped(QStringView text)
    {
        QString result;
        result.reserve(text.size());
        for (qsizetype i = 0; i < text.size(); ++i) {
            switch (text[i].unicode()) {
            case u'&':
                result += u"&amp;";
                break;
            case u'<':
                result += u"&lt;";
                break;
            case u'>':
                result += u"&gt;";
                break;
            case u'\r':
                result += u"&#13;";
                break;
            default:
                if (isXmlCharacter(text, i)) result += text[i];
            }
        }
        return result.toUtf8();
    }

    QByteArray m_out;
};

} // namespace

QVariant parseXml(QByteArrayView bytes, QString &error)
{
    const QString text = decoded(bytes, error);
    if (error.isEmpty() && hasInternalDtd(text)) error = QStringLiteral("the document has a DTD of its own");
    if (!error.isEmpty()) return {};
    Reader reader(text);
    QVariant tree = reader.read();
    if (!tree.isValid()) error = reader.error();
    return tree;
}

} // namespace propertylist

QByteArray xmlPropertyList(const QVariant &tree)
{
    return propertylist::Writer().document(tree);
}

} // namespace tomelet
