// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Range.h"

namespace tomelet {

QString substring(const QString &text, Range range)
{
    const bool isInside = range.location <= text.size() && range.length <= text.size() - range.location;
    return isInside ? text.sliced(range.location, range.length) : QString();
}

void replaceRange(QString &text, Range range, QStringView replacement)
{
    text.replace(range.location, range.length, replacement.data(), replacement.size());
}

QString textOfRange(Range range)
{
    return QStringLiteral("{%1, %2}").arg(range.location).arg(range.length);
}

std::optional<Range> rangeFromText(QStringView text)
{
    text = text.trimmed();
    const qsizetype comma = text.indexOf(u',');
    if (!text.startsWith(u'{') || !text.endsWith(u'}') || comma < 0) return {};
    bool hasLocation = false, hasLength = false;
    const Range range{text.sliced(1, comma - 1).toLongLong(&hasLocation),
                      text.sliced(comma + 1).chopped(1).toLongLong(&hasLength)};
    if (!hasLocation || !hasLength || range.location < 0 || range.length < 0) return {};
    return range;
}

} // namespace tomelet
