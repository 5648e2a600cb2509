// SPDX-License-Identifier: GPL-3.0-or-later
// The check boxes of a page that was made from Markdown: which mark of the source each of them is.
#pragma once

#include <QString>

namespace tomelet {

/// A box as the page shows it.
struct PageBox
{
    qsizetype number = 0; ///< from 0, in the order of the page
    qsizetype count = 0;  ///< of all boxes on the page
    bool isDone = false;
};

/// Where the sign between the brackets of the box stands in the source of the document, in UTF-16 units. -1 where no
/// mark of the source makes it: it came with a file that the text includes, or the page is older than the source.
[[nodiscard]] qsizetype placeOfBox(const QString &path, const QString &source, const PageBox &box);

enum class BoxResult {
    Toggled,
    NotFound,  ///< by placeOfBox, or the document cannot be read
    NotWritten ///< the disk, or bytes that would not come back as they are
};

/// Ticks or opens the box in the file of the document and tells that the file changed. Everything else in it stays.
BoxResult toggleBox(const QString &path, const PageBox &box);

} // namespace tomelet
