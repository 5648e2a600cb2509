// SPDX-License-Identifier: GPL-3.0-or-later
// Lays the highlighting over a text document, without touching text or undo: paragraphs at each edit, the whole in the
// background after loading, a slice of lines at a time.
#pragma once

#include "editor/Highlighting.h"

#include <QObject>
#include <QPalette>
#include <QTextLayout>
#include <QTimer>

#include <memory>
#include <vector>

class QTextBlock;
class QTextDocument;

namespace tomelet::desktop {

class TextHighlighter final : public QObject
{
    Q_OBJECT

public:
    /// Works on the document from now on; the palette gives the colours.
    explicit TextHighlighter(QTextDocument *document);

    /// Styles the whole document anew, with these rules and colours.
    void restyle(const HighlightOptions &options, const QPalette &palette);
    /// The same at once, for a copy that is to be printed.
    void restyleAtOnce(const HighlightOptions &options, const QPalette &palette);
    /// The text is about to be replaced as a whole: the paragraphs need no styling one by one.
    void pause(bool paused) { m_paused = paused; }

Q_SIGNALS:
    /// The whole document has its styles.
    void finished();

private:
    /// The styles of each line, with ranges from the start of the line.
    using Lines = std::vector<std::vector<StyledRange>>;

    void contentsChanged(int position, int removed, int added);
    void styleAll();
    void take(std::shared_ptr<const Lines> lines, int revision);
    void applySlice();
    void applyTo(const QTextBlock &block, const std::vector<StyledRange> &styles);
    [[nodiscard]] QTextCharFormat formatOf(const HighlightStyle &style) const;
    [[nodiscard]] static Lines linesOf(const QString &text, const HighlightOptions &options);

    QTextDocument *m_document;
    HighlightOptions m_options;
    QPalette m_palette;
    bool m_paused = false;
    std::shared_ptr<const Lines> m_lines; // what is being applied, from m_nextLine on
    int m_nextLine = 0;
    QTimer m_slices;
    QTimer m_again; // runs when typing has outrun the background
};

} // namespace tomelet::desktop
