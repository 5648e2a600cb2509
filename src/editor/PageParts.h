// SPDX-License-Identifier: GPL-3.0-or-later
// What an editable page holds, in parts: the nodes right below its body. A page tells the parts that changed, so that
// a key in a long page costs no more than in a short one.
#pragma once

#include <QList>
#include <QString>

namespace tomelet {

struct PagePart
{
    QString html;
    QString text;   ///< as it is seen
    int breaks = 0; ///< line ends that set it apart from its neighbours in the text: 2 for a paragraph, 0 within a line
};

[[nodiscard]] QString htmlOfParts(const QList<PagePart> &parts);
/// As the engine gives the text of a whole page: an empty line between paragraphs, one line end between other blocks.
[[nodiscard]] QString textOfParts(const QList<PagePart> &parts);

} // namespace tomelet
