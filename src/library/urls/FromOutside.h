// SPDX-License-Identifier: GPL-3.0-or-later
// Names, books and bytes that other programs hand over: what they ask for is no reason to leave the notebook, to hide a
// file or to write over one.
#pragma once

#include <QByteArrayView>
#include <QString>

namespace tomelet {

/// The book of that path below the root; "" while there is none. The root for "", and for whatever is no visible book
/// in it once "..", "." and symbolic links are resolved.
[[nodiscard]] QString bookFromOutside(const QString &path);
/// The item's full path with its anchor, "." and ".." resolved; "" for one outside the root. It need not exist.
[[nodiscard]] QString itemFromOutside(const QString &path);
/// A name for a file: the first line that is not blank, without control characters and points in front, "/" and other
/// signs that no name may hold as "-". "" when nothing is left.
[[nodiscard]] QString nameFromOutside(const QString &text);

/// Writes a new file of that name, or with a number behind it, and stamps its creation date. Nothing is ever written
/// over, also where another program takes the name meanwhile. Gives the path; "" when nothing could be written.
/// May be called from any thread.
[[nodiscard]] QString writeFromOutside(const QString &name, const QString &book, QByteArrayView bytes);

} // namespace tomelet
