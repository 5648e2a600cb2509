// SPDX-License-Identifier: GPL-3.0-or-later
// The text of office documents and electronic books: ZIP archives with XML in them (OpenDocument, ISO/IEC 26300; Office
// Open XML, ISO/IEC 29500; EPUB).
#pragma once

#include <QString>

namespace tomelet {

/// By the lower-case extension.
[[nodiscard]] bool isOfficeDocument(const QString &extension);

/// Characters at most: bytes unpacked, and a line end for each of the archive's entries.
inline constexpr qsizetype largestOfficeText = (32 << 20) + 20000;
/// The text, a line for each paragraph; of a damaged document as much as can be read. Reads no more than 32 MB of what
/// is unpacked. May be called from any thread.
[[nodiscard]] QString textOfOfficeDocument(const QString &path);

} // namespace tomelet
