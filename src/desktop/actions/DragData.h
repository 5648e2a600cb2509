// SPDX-License-Identifier: GPL-3.0-or-later
// Items on their way by drag and drop or the clipboard: file URLs, as every program understands them.
#pragma once

#include <QStringList>

class QMimeData;

namespace tomelet::desktop {

/// The caller owns the result.
[[nodiscard]] QMimeData *dragDataFor(const QStringList &paths);
/// The local paths in the data, in their order.
[[nodiscard]] QStringList pathsIn(const QMimeData *data);

} // namespace tomelet::desktop
