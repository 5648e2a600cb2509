// SPDX-License-Identifier: GPL-3.0-or-later
// The text of a document that search looks at.
#pragma once

#include <QString>

namespace tomelet {

/// The text of plain text and Markdown as it stands, of pages without their tags, of mails with sender, date and
/// subject, of all pages of a PDF, of office documents, electronic books, web archives and RTF. "" for pictures and
/// other files without text, for packages, for files that cannot be read and for files of text above 32 MB. Of a long
/// text the first sixteen million characters, a quarter of that where signs alone stand, so that no document holds up
/// the others for long. May be called from any thread.
[[nodiscard]] QString documentText(const QString &path);

} // namespace tomelet
