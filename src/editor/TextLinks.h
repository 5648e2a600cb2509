// SPDX-License-Identifier: GPL-3.0-or-later
// The links of a plain text, to be followed where they stand.
#pragma once

#include <QString>

namespace tomelet {

/// The address of the link that holds the position, a UTF-16 unit of the line, as it stands in the text: of a Markdown
/// link, of an address between "<" and ">", of one by itself with the setting `HighlightLinks` ("www." gets its
/// scheme), and of a wiki link with the setting `WikiActivateLinksInPlaintext`. "" for none.
[[nodiscard]] QString addressOfLinkAt(const QString &line, qsizetype position);

} // namespace tomelet
