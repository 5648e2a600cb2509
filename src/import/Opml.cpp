// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/Opml.h"

#include <QXmlStreamReader>

namespace tomelet {

void TMLTOPMLConverter::convert()
{
    QXmlStreamReader reader(m_opmlText);
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) open(reader.name().toString().toLower(), reader);
        else if (reader.isEndElement()) close(reader.name().toString().toLower());
        else if (reader.isCharacters() && m_handlingTitle) m_title += reader.text();
    }
}

void TMLTOPMLConverter::open(const QString &name, const QXmlStreamReader &reader)
{
    if (name == u"title") {
        m_handlingTitle = true;
        m_title.clear();
    } else if (name == u"body") {
        m_html += QStringLiteral("\n<ul>\n");
        m_overallLevel = 1;
    } else if (name == u"outline") {
        openOutline(reader);
    }
}

void TMLTOPMLConverter::close(const QString &name)
{
    if (name == u"title") {
        m_handlingTitle = false;
        if (!m_title.isEmpty()) m_html += QStringLiteral("<h1>") + m_title + QStringLiteral("</h1>\n");
    } else if (name == u"body") {
        m_html += QStringLiteral("\n</ul>\n");
    } else if (name == u"outline") {
        closeOutline();
    }
}

void TMLTOPMLConverter::openOutline(const QXmlStreamReader &reader)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    const auto has = [&attributes](const QString &name) { return attributes.hasAttribute(name); };
    const auto value = [&attributes](const QString &name) { return attributes.value(name).toString(); };
    QString entry = value(QStringLiteral("text"));
    for (const QString &address : {QStringLiteral("url"), QStringLiteral("htmlUrl")}) {
        if (!has(address)) continue;
        entry = QStringLiteral("<a href=\"") + value(address) + QStringLiteral("\">") + entry + QStringLiteral("</a>");
        break;
    }
    const QString description = QStringLiteral("description");
    if (has(description)) entry += QStringLiteral("<br>") + value(description);
    if (++m_elementLevel > m_overallLevel) {
        m_html += QStringLiteral("\n<ul>");
        ++m_overallLevel;
    }
    m_html += QStringLiteral("\n<li>") + entry + QStringLiteral("</li>");
}

// One list at each closing tag: they arrive one by one.
void TMLTOPMLConverter::closeOutline()
{
    if (--m_elementLevel >= m_overallLevel - 1) return;
    m_html += QStringLiteral("\n</ul>\n");
    --m_overallLevel;
}

QString tm_OPMLToHTML(const QString &opml)
{
    TMLTOPMLConverter converter(opml);
    converter.convert();
    return converter.html();
}

} // namespace tomelet
