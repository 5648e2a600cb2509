// SPDX-License-Identifier: GPL-3.0-or-later
// What is around the letters of the plain text editor: line numbers and marks under words that are
// misspelled. Both are drawn for the lines on the screen alone, whatever the length of the text.
#pragma once

#include <QWidget>

namespace tomelet::desktop {

class TMLTTextView;

class LineNumbers final : public QWidget
{
public:
    explicit LineNumbers(TMLTTextView *view);
    /// For as many digits as the text has lines.
    [[nodiscard]] int wantedWidth() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    TMLTTextView *m_view;
};

} // namespace tomelet::desktop
