// SPDX-License-Identifier: GPL-3.0-or-later
// Files of other programs as documents of a book. They stay where they are.
#pragma once

#include "foundation/Progress.h"

#include <QString>
#include <QStringList>

namespace tomelet {

struct Imported
{
    QStringList documents; ///< their paths
    QString fault;         ///< why there are none, or no more, for a person; ""
};

/// The extensions of files that can be imported.
[[nodiscard]] const QStringList &importableExtensions();

/// Makes documents of a web archive (one, with its pictures), an outline (one) or exported notes (each one, with its
/// files). Notes so far stay where they cannot be read further, or the import is stopped.
[[nodiscard]] Imported importFile(const QString &path, const QString &book, const Progress &progress = {});

} // namespace tomelet
