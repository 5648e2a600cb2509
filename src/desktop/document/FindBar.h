// SPDX-License-Identifier: GPL-3.0-or-later
// The bar below a document with which its words are found and replaced. It only asks; the pane finds.
#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;

namespace tomelet::desktop {

class FindBar final : public QWidget
{
    Q_OBJECT

public:
    explicit FindBar(QWidget *parent = nullptr);
    /// Shows the bar, with the words that are selected, and takes the keys.
    void open(const QString &selected, bool replaces);
    void close();
    /// What is found next, without showing the bar.
    void setWanted(const QString &words);
    [[nodiscard]] QString wanted() const;
    [[nodiscard]] QString replacement() const;
    /// How often the words are in the document; -1 says nothing.
    void showCount(qsizetype count);

Q_SIGNALS:
    void findWanted(bool backward);
    /// The words changed: the first place from the present one on.
    void wordsChanged();
    void replaceWanted();
    void replaceAllWanted();
    void closed();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QLineEdit *m_words;
    QLineEdit *m_replacement;
    QWidget *m_replacing;
    QLabel *m_count;
};

} // namespace tomelet::desktop
