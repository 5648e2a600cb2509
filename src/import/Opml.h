// SPDX-License-Identifier: GPL-3.0-or-later
// Outlines in OPML 2.0 (opml.org/spec2.opml) as nested HTML lists.
#pragma once

#include <QString>

class QXmlStreamReader;

namespace tomelet {

/// Reads an outline event by event, element names in any case. A text that is no XML gives what came before
/// the fault.
class TMLTOPMLConverter
{
public:
    explicit TMLTOPMLConverter(const QString &opmlText)
        : m_opmlText(opmlText)
    {}

    void convert();
    [[nodiscard]] QString html() const { return m_html; }

private:
    void open(const QString &name, const QXmlStreamReader &reader);
    void close(const QString &name);
    void openOutline(const QXmlStreamReader &reader);
    void closeOutline();

    QString m_opmlText;
    QString m_html;
    QString m_title;
    int m_elementLevel = 0; // outlines that are open
    int m_overallLevel = 0; // lists that are open
    bool m_handlingTitle = false;
};

/// The outline's title as a heading, and its entries as lists; links, texts and descriptions as they stand in
/// it.
[[nodiscard]] QString tm_OPMLToHTML(const QString &opml);

} // namespace tomelet
