// SPDX-License-Identifier: GPL-3.0-or-later
// Mails as pages: a block with sender, date and subject, the text, its pictures in place, and links to attached files.
#pragma once

#include <QString>

namespace tomelet {

/// The page of a message, whole or not. "**TomeletFont**" and "**TomeletFontSize**" in it are left for the style of
/// the document. Files of parts are written to the working folder.
[[nodiscard]] QString tm_emlToHTML(const QString &message);
/// The fragment of a plain text of a mail.
[[nodiscard]] QString convertToHTML(const QString &text);
/// A fragment in the frame of a page for mails.
[[nodiscard]] QString wrapTextInHTML(const QString &fragment);

} // namespace tomelet
