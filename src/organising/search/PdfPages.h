// SPDX-License-Identifier: GPL-3.0-or-later
// Where in a PDF document something stands.
#pragma once

#include <QString>

#include <optional>

namespace tomelet {

/// The first page, counted from 0, with the term in upper or lower case; nothing when there is none, when the document
/// cannot be read, or when a third of a second was not enough to find it.
[[nodiscard]] std::optional<int> pageOfPdfWith(const QString &path, const QString &term);

} // namespace tomelet
