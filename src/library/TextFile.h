// SPDX-License-Identifier: GPL-3.0-or-later
// Text documents on disk.
#pragma once

#include "foundation/TextCodec.h"

#include <QString>

#include <optional>

namespace tomelet {

/// The number of the file's encoding; a file that cannot be read counts as ASCII and leaves a log line.
[[nodiscard]] qlonglong tm_textEncodingOfFile(const QString &path);
/// The file's text in its own encoding; nothing when it cannot be read.
[[nodiscard]] std::optional<DecodedText> readTextFile(const QString &path);

} // namespace tomelet
