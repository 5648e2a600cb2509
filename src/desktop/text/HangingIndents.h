// SPDX-License-Identifier: GPL-3.0-or-later
// The layout of the plain text editor: further lines of a list item stand below its text, not below its mark, and
// paragraphs that are read from the right begin there.
#pragma once

#include <QPlainTextDocumentLayout>

namespace tomelet::desktop {

class HangingIndents final : public QPlainTextDocumentLayout
{
    Q_OBJECT

public:
    using QPlainTextDocumentLayout::QPlainTextDocumentLayout;

    /// So many characters at its start are what the further lines of the paragraph are indented by; 0 for none. True
    /// when that is new, and the block has to be laid out again.
    static bool setPrefix(QTextBlock block, int length);

    [[nodiscard]] QRectF blockBoundingRect(const QTextBlock &block) const override;
};

} // namespace tomelet::desktop
