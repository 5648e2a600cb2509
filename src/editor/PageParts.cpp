// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/PageParts.h"

#include <algorithm>

namespace tomelet {

QString htmlOfParts(const QList<PagePart> &parts)
{
    QString html;
    for (const PagePart &part : parts) html += part.html;
    return html;
}

QString textOfParts(const QList<PagePart> &parts)
{
    QString text;
    int wanted = 0;
    for (const PagePart &part : parts) {
        const bool isBlank = QStringView(part.text).trimmed().isEmpty();
        if (isBlank && (text.isEmpty() || wanted > 0 || part.breaks > 0)) continue;
        if (!text.isEmpty()) text += QString(std::max(wanted, part.breaks), u'\n');
        text += part.text;
        wanted = part.breaks;
    }
    return text;
}

} // namespace tomelet
