// SPDX-License-Identifier: GPL-3.0-or-later
// Files of other programs as documents of a book. They stay where they are.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

struct Imported
{
    QStringList documents; ///< their paths
    QString fault;         ///< why there are none, for a person; ""
};

/// The extensions of files that can be imported.
[[nodiscard]] const QStringList &importableExtensions();

/// Makes documents of a web archive (one, with its pictures) or an outline (one).
[[nodiscard]] Imported importFile(const QString &path, const QString &book);

} // namespace tomelet
