// SPDX-License-Identifier: GPL-3.0-or-later
// A task that was taken from a line of a document marks its state there.
#pragma once

#include "organising/tasks/TaskStore.h"

#include <QString>

namespace tomelet {

/// Rewrites the marker of the line that the task came from: its property `URL` names the document, the
/// setting `markTaskWithCharacter` the marker. Nothing happens without both, for a document that is no plain
/// text, and where no line fits. To be called for done, canceled and open.
void mirrorTaskState(const QString &path, TaskState state);

} // namespace tomelet
