// SPDX-License-Identifier: GPL-3.0-or-later
// What files, pictures and links become that are dropped on a plain text or pasted into it: Markdown, or HTML in the
// source of a page.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace tomelet {

/// The document that takes it.
struct DropTarget
{
    QString book; ///< in whose `TMImages` pictures go and from which paths begin
    bool isHtmlSource = false;
};

/// The book is that of a document without a path yet.
[[nodiscard]] DropTarget dropTargetFor(const QString &document, const QString &book);

/// One text for all, a line each. Pictures are copied into `TMImages`; items of the library are linked by the path from
/// the book, all others by their address. A picture that cannot be read or stored is left out and named in `failed`.
///   "/home/me/A b.png" → "![A b](TMImages/A%20b.png)"
[[nodiscard]] QString textForDroppedFiles(const DropTarget &target, const QStringList &files, QStringList &failed);
/// A picture that has no file, as PNG; "" when it cannot be stored.
[[nodiscard]] QString textForPastedImage(const DropTarget &target, const QByteArray &png);
/// An address with the title that came with it; without one the address stands for itself.
[[nodiscard]] QString textForLink(const DropTarget &target, const QString &address, const QString &title);

} // namespace tomelet
