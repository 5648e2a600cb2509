// SPDX-License-Identifier: GPL-3.0-or-later
// The few lines that lists show of a document.
#pragma once

#include <QString>

namespace tomelet {

/// The stored description, or the beginning of the document's text without the line that is its title: up to 449
/// units, one line end between lines. "" where there is no text. The text of a PDF is kept in the cache.
[[nodiscard]] QString tm_previewOfNoteWithTitle(const QString &path, const QString &title);
/// The text of the first page of a PDF, and of the second when the first has little; "" for what is no PDF.
[[nodiscard]] QString beginningOfPdf(const QString &path);

} // namespace tomelet
