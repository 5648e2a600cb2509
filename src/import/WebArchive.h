// SPDX-License-Identifier: GPL-3.0-or-later
// Web archives: pages saved with all that belongs to them, as one property list (WebMainResource, WebSubresources).
#pragma once

#include <QString>

#include <optional>

namespace tomelet {

/// A web archive, where the setting `openWebarchivesWithTMLTMethods` has the program show them itself.
[[nodiscard]] bool opensAsWebArchive(const QString &path);

/// The page of an archive. Its pictures and style sheets are written to the folder "webarchiveExtract" below the
/// working folder, and the page refers to them there. Other resources are left out. "" where the file is no web
/// archive.
[[nodiscard]] QString tm_webarchiveToHTML(const QString &path);

/// Writes the page as a formatted document beside the archive, its pictures and style sheets into the folder of
/// embedded images, and stamps the creation date. The document's path, "" where nothing was written.
QString tm_saveWebarchiveAsHTML(const QString &path);

/// The same into another book.
QString saveWebArchive(const QString &path, const QString &book);

/// The page as it was saved, and nothing else. May be called from any thread.
[[nodiscard]] std::optional<QString> sourceOfWebArchive(const QString &path);

} // namespace tomelet
