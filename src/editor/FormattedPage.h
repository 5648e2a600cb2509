// SPDX-License-Identifier: GPL-3.0-or-later
// A document as the formatted view shows it.
#pragma once

#include <QString>

namespace tomelet {

struct FormattedPage
{
    QString html; ///< "" when the address itself is to be loaded
    QString base; ///< what relative references are resolved against, or the address
    bool isEditable = false;
    bool isForeign = false; ///< a page that this program did not write
    bool isXml = false;     ///< it lies in the file `base` as well, to be loaded from there
};

/// The page of a document of any kind. Markdown inside of a page is converted anew and written back where the outcome
/// differs from what is stored; what has to be loaded as a file is written into the working folder.
[[nodiscard]] FormattedPage formattedPageFor(const QString &path);

} // namespace tomelet
