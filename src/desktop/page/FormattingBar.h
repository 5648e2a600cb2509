// SPDX-License-Identifier: GPL-3.0-or-later
// The bar above a page that is being edited: commands, and what holds at the caret.
#pragma once

#include <QHash>
#include <QToolBar>

class QComboBox;
class QMenu;

namespace tomelet::desktop {

struct FormattingState;

class FormattingBar final : public QToolBar
{
    Q_OBJECT

public:
    explicit FormattingBar(QWidget *parent = nullptr);
    void show(const FormattingState &state);
    using QWidget::show;

Q_SIGNALS:
    /// By the name of the command, with its argument if it takes one.
    void wanted(const QString &command, const QString &argument);
    void contentsWanted();

private:
    QAction *addCommand(QWidget *owner, const QString &name, const QString &argument = {});
    void addStyles();
    void addMarks();
    QMenu *addMenu(const QString &title, const QStringList &names);
    void askForLink();
    void askForImage();

    QComboBox *m_styles;
    QHash<QString, QAction *> m_actions;
};

} // namespace tomelet::desktop
