// SPDX-License-Identifier: GPL-3.0-or-later
// Which of its views a document is shown in.
#pragma once

#include "editor/DocumentView.h"

namespace tomelet {

struct ViewChoice
{
    DocumentViewKind kind = DocumentViewKind::Preview;
    bool canToggle = false; ///< the person can switch between plain text and page
    friend bool operator==(const ViewChoice &, const ViewChoice &) = default;
};

/// By extension and settings. `presentingToggledView`: the person has switched to the other of the two views.
[[nodiscard]] ViewChoice viewForDocument(const QString &path, bool presentingToggledView);
/// A new document, which has no path yet.
[[nodiscard]] ViewChoice viewForNewDocument(const QString &extension);

} // namespace tomelet
