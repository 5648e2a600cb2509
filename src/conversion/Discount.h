// SPDX-License-Identifier: GPL-3.0-or-later
// The discount library as a Markdown engine.
#pragma once

#include <QString>

namespace tomelet {

/// The HTML fragment of a prepared text. With `titleBlock`, a title block of "%" lines at the top becomes a header;
/// with `andTOC`, a table of contents leads the page unless the text says where it is to stand. "" when the library
/// gives nothing.
[[nodiscard]] QString tm_markdownWithPandoc(const QString &text, bool titleBlock, bool andTOC);
/// The library with the few options that plain texts of mails want: notes and links, nothing of the notebook's own.
[[nodiscard]] QString discountFragment(const QString &text);

} // namespace tomelet
