// SPDX-License-Identifier: GPL-3.0-or-later
// The words of an HTML page, as search wants them: in one walk over the page, whatever it holds, since nothing may hold
// up the index.
#pragma once

#include <QString>

namespace tomelet {

/// What stands outside tags, comments, styles and scripts in the body, or behind the head where there is no body.
/// Elements other than those within a line end a word. Characters by number or name (HTML 4) are resolved.
[[nodiscard]] QString textOfPage(const QString &html);

} // namespace tomelet
