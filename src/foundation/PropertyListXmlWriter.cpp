// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the XML form of property lists.
#include "foundation/PropertyList.h"

#include "foundation/PropertyList_p.h"

#include <QDateTime>

#include <cmath>

namespace tomelet {

namespace {

using namespace propertylist;

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
        case Kind::None: break;
        case Kind::Boolean: line(depth, value.toBool() ? "<true/>" : "<false/>"); break;
        case Kind::Integer: line(depth, "<integer>" + QByteArray::number(value.toLongLong()) + "</integer>"); break;
        case Kind::Real: line(depth, "<real>" + real(value.toDouble()) + "</real>"); break;
        case Kind::Date: line(depth, "<date>" + textOfDate(value.toDateTime().toMSecsSinceEpoch()) + "</date>"); break;
        case Kind::Text: line(depth, "<string>" + escaped(value.toString()) + "</string>"); break;
        case Kind::Data: data(value.toByteArray(), depth); break;
        case Kind::Array: array(value.toList(), depth); break;
        case Kind::Dictionary: dictionary(value.toMap(), depth); break;
        }
    }

    void array(const QVariantList &list, int depth)
    {
        if (list.isEmpty()) return line(depth, "<array/>");
        line(depth, "<array>");
        for (const QVariant &entry : list) value(entry, depth + 1);
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
        for (qsizetype at = 0; at < encoded.size(); at += width) line(tabs, encoded.mid(at, width));
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
            case u'&': result += u"&amp;"; break;
            case u'<': result += u"&lt;"; break;
            case u'>': result += u"&gt;"; break;
            case u'\r': result += u"&#13;"; break;
            default:
                if (isXmlCharacter(text, i)) result += text[i];
            }
        }
        return result.toUtf8();
    }

    QByteArray m_out;
};

} // namespace

QByteArray xmlPropertyList(const QVariant &tree)
{
    return Writer().document(tree);
}

} // namespace tomelet
