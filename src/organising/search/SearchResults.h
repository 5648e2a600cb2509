// SPDX-License-Identifier: GPL-3.0-or-later
// What the last search found, as the smart book of search results shows it.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

/// A property list with an array of full paths; it survives a restart.
[[nodiscard]] QString searchResultsFile();
/// The paths as they were stored; some may be gone meanwhile.
[[nodiscard]] QStringList lastSearchResults();
/// Stores the hits without those that lists never show; gives what was stored. May be called from any thread.
QStringList storeSearchResults(const QStringList &paths);

/// The line above the results. `scope` is the folder searched; it is named where only one book was.
[[nodiscard]] QString searchResultsHeader(const QString &text, const QString &scope, qsizetype hits);
/// The folder to search: the book where the setting `searchAllBooks` is off and the book exists, else the root.
[[nodiscard]] QString searchScope(const QString &book);

} // namespace tomelet
