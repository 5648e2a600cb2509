// SPDX-License-Identifier: GPL-3.0-or-later
// What a link may have meant whose target does not exist.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

/// The full path of the item that a link to the missing target (a full path, with or without anchor) most likely
/// meant, with the target's anchor; "" when nothing fits. Looked for in this order: other spellings of the path; the
/// same name with another extension in the folder; and as far as the settings `WikiSmartResolveTitles`,
/// `WikiSmartResolveGlobally` and `WikiSmartResolveContents` allow, part of a name there, part of a name anywhere,
/// and the text of the documents there. `excluding` holds full paths of documents whose text does not count.
/// Nothing is asked and nothing created.
[[nodiscard]] QString tm_findAlternativePathExcluding(const QString &target, const QStringList &excluding);

/// The same for a person who follows a link in a document: where nothing fits, the person is asked whether the target
/// is to be made, and it is if so. Gives its path then, "" when nothing fits and nothing is made.
[[nodiscard]] QString tm_findAlternativePathExcludingOrPrompt(const QString &target, const QStringList &excluding,
                                                              const QString &linkingDocument);

/// A document with this extension ("" included) can be made for a link that leads nowhere.
[[nodiscard]] bool canBeCreatedForLink(const QString &target);

} // namespace tomelet
