// SPDX-License-Identifier: GPL-3.0-or-later
// The text of an RTF document (Rich Text Format 1.9.1).
#pragma once

#include <QByteArrayView>
#include <QString>

namespace tomelet {

/// The text, a line for each paragraph, without fields, notes on fonts and pictures; of a damaged document as much as
/// can be read. Bytes are read in the document's code page, Windows-1252 where it names none that is known.
[[nodiscard]] QString textOfRichText(QByteArrayView rtf);

} // namespace tomelet
