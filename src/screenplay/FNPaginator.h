// SPDX-License-Identifier: GPL-3.0-or-later
// Lays a screenplay out on pages as a typewriter does: Courier of 12 points, 12 points a line.
//
// A heading stays with what follows it, a speaker with the words, two who speak at once with each other. Action and
// speeches that do not fit go on over the page after a sentence; a speech then ends in "(MORE)" and its speaker stands
// again on the next page, with "(CONT'D)". Nothing else is added, and nothing is left out.
//
// Where the last sentence is longer than a whole page, it is divided after a line; what cannot be divided and is longer
// than a page stands on one by itself. Two who speak at once for longer than a page speak after each other. A speech
// whose speaker's name takes more than four lines is not divided. A page break on a page that shows nothing yet ends
// nothing.
#pragma once

#include "screenplay/FNScript.h"
#include "screenplay/FNTextLayout.h"

#include <QList>
#include <QSizeF>

namespace tomelet {

class FNPaginator
{
public:
    using Page = QList<FNElement>;

    [[nodiscard]] static FNPaginator initWithScript(const FNScript &script);

    /// For US letter. The time that this takes grows with the length of the script alone.
    void paginate();
    /// A size in points. A page holds at least one line.
    void paginateForSize(QSizeF size);

    [[nodiscard]] qsizetype numberOfPages() const { return m_pages.size(); }
    /// Counted from 0; empty for a page that there is not.
    [[nodiscard]] Page pageAtIndex(qsizetype index) const { return m_pages.value(index); }

    /// In lines.
    [[nodiscard]] static int spaceBeforeForElement(const FNElement &element);
    /// In points, as the following ones; 0 for what has no place of its own on the page.
    [[nodiscard]] static int leftMarginForElement(const FNElement &element);
    [[nodiscard]] static int widthForElement(const FNElement &element);
    [[nodiscard]] static int heightForString(const QString &string, const FNFont &font, int maxWidth, int lineHeight);

private:
    FNScript m_script;
    QList<Page> m_pages;
};

} // namespace tomelet
