// SPDX-License-Identifier: GPL-3.0-or-later
// Notes in the export format of Evernote (enex): the pieces of which the importer makes documents.
#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>

namespace tomelet {

/// A date of an export, "20260102T030405Z" or ISO 8601 with "Z", in UTC. Now for what is none.
[[nodiscard]] QDateTime dateFromEvernoteDate(const QString &text);

/// The page of a note's content (ENML): boxes become check boxes, and each `en-media` the picture, sound or film with
/// its hash, by the name that its file was given, else by the hash and the extension of its type.
[[nodiscard]] QString pageOfNote(QString content, const QHash<QString, QString> &hashFilenameDictionary);

} // namespace tomelet
