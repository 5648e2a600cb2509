// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/TextFile.h"

#include "foundation/Log.h"
#include "foundation/SafeWriter.h"

namespace tomelet {

qlonglong tm_textEncodingOfFile(const QString &path)
{
    if (const auto decoded = readTextFile(path)) return qlonglong(decoded->encoding);
    logLine(QStringLiteral("** textEncodingOfFile error: %1").arg(path));
    return qlonglong(TextEncoding::Ascii);
}

std::optional<DecodedText> readTextFile(const QString &path)
{
    const auto bytes = readFile(path);
    if (!bytes) return std::nullopt;
    return decodeText(*bytes);
}

} // namespace tomelet
