// SPDX-License-Identifier: GPL-3.0-or-later
// The title page of a screenplay: keys with values in front of the text, up to its first empty line.
//
//     Title: The Ferry
//     Author:
//         A. Writer
//         B. Writer
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tomelet {

struct FNTitleEntry
{
    QString key; ///< in lower case; "authors" also stands for "author"
    QStringList values;

    friend bool operator==(const FNTitleEntry &, const FNTitleEntry &) = default;
};
using FNTitlePage = QList<FNTitleEntry>;

/// Takes the title page out of a text whose line ends are newlines; a text without one stays as it is.
///
/// A key with its values on the lines below it goes on with the values of the key before, when that one was written in
/// the same way; a key with its value on the same line begins anew.
[[nodiscard]] FNTitlePage takeTitlePage(QString &contents);

/// The text that takeTitlePage() reads back, each entry with its line end; "" without entries.
[[nodiscard]] QString textOfTitlePage(const FNTitlePage &page);

} // namespace tomelet
