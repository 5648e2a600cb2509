// SPDX-License-Identifier: GPL-3.0-or-later
// A plain text editor with the settings of somebody who uses all of it.
#pragma once

#include "desktop/text/TMLTTextView.h"
#include "foundation/Platform.h"
#include "tests/support/Notebook.h"

#include <QTextBlock>
#include <QTextLayout>

namespace tomelet::test {

class TextView : public Notebook
{
protected:
    TextView()
    {
        for (const char *key : {"AutoIndentLists", "IndentWithTabs", "insertClosingCharacters"})
            settings().setObject(QString::fromLatin1(key), true);
    }
    void load(const QString &text, bool editable = true)
    {
        view.setDocumentText(text, editable, highlightOptions(QStringLiteral("md")));
        view.moveCursor(QTextCursor::End);
    }
    [[nodiscard]] QList<QTextLayout::FormatRange> formatsOfLine(int line) const
    {
        return view.document()->findBlockByNumber(line).layout()->formats();
    }
    desktop::TMLTTextView view;
};

} // namespace tomelet::test
