// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/text/HangingIndents.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

namespace tomelet::desktop {

// The number is the block's user state, which nothing else has a use for; -1 is a block's own for none.
bool HangingIndents::setPrefix(QTextBlock block, int length)
{
    const int state = length > 0 ? length : -1;
    if (block.userState() == state) return false;
    block.setUserState(state);
    return true;
}

// Half of the width is left for the text.
static double indentOf(const QTextBlock &block)
{
    const QTextLine first = block.layout()->lineAt(0);
    if (block.userState() <= 0 || block.layout()->lineCount() < 2 || block.textDirection() == Qt::RightToLeft) return 0;
    const double indent = first.cursorToX(qMin(block.userState(), first.textLength())) - first.x();
    return indent < first.width() / 2 ? indent : 0;
}

static void layOut(QTextBlock block, double indent)
{
    QTextLayout &layout = *block.layout();
    const double left = layout.lineAt(0).x();
    const double width = layout.lineAt(0).width();
    double height = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        const double own = line.textStart() > 0 ? indent : 0;
        line.setLeadingIncluded(true);
        line.setLineWidth(width - own);
        line.setPosition({left + own, height});
        height += line.height();
    }
    layout.endLayout();
    block.setLineCount(layout.lineCount());
}

// True where that is new. The base puts every paragraph on the left, whichever way it is read.
static bool beginsAtTheRight(const QTextBlock &block)
{
    QTextOption option = block.layout()->textOption();
    if (block.textDirection() != Qt::RightToLeft || (option.alignment() & Qt::AlignRight)) return false;
    option.setAlignment(Qt::AlignRight);
    block.layout()->setTextOption(option);
    return true;
}

QRectF HangingIndents::blockBoundingRect(const QTextBlock &block) const
{
    const QRectF rect = QPlainTextDocumentLayout::blockBoundingRect(block);
    if (!block.isValid() || !block.isVisible()) return rect;
    if (beginsAtTheRight(block)) {
        layOut(block, 0);
        return QPlainTextDocumentLayout::blockBoundingRect(block);
    }
    if (block.userState() <= 0) return rect;
    const double indent = indentOf(block);
    // The base lays out without an indent whenever something changed.
    if (indent <= 0 || block.layout()->lineAt(1).x() > block.layout()->lineAt(0).x()) return rect;
    layOut(block, indent);
    return QPlainTextDocumentLayout::blockBoundingRect(block);
}

} // namespace tomelet::desktop
