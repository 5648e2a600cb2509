// SPDX-License-Identifier: GPL-3.0-or-later
// Text widgets know one kind of line end; documents keep those they have.
#pragma once

#include <QString>

namespace tomelet {

/// The edited text, which a widget gives with LF alone, with the line ends that its lines had in the text before the
/// edits. A line that was changed keeps its end while no lines came or went; otherwise changed and added lines end as
/// most of the text before does. A text that has other line ends in it comes from no such widget and is given back as
/// it is.
[[nodiscard]] QString withLineEndsOf(const QString &before, const QString &edited);

} // namespace tomelet
