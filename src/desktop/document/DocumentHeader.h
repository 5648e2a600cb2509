// SPDX-License-Identifier: GPL-3.0-or-later
// What stands above a document: its name and place, its task with state and due date, its contexts, and the documents
// that link to it.
#pragma once

#include "foundation/NotificationCenter.h"

#include <QWidget>

#include <vector>

class QLabel;
class QToolButton;

namespace tomelet::desktop {

class ContextsField;
class ItemActions;

class DocumentHeader final : public QWidget
{
    Q_OBJECT

public:
    explicit DocumentHeader(ItemActions &actions, QWidget *parent = nullptr);

    /// `edited`: there is typing that is not in the file yet.
    void setDocument(const QString &path, bool edited);
    /// The button for the other of the document's two views tells what it shows; "" hides it.
    void setToggle(const QString &toolTip, bool showsText);
    [[nodiscard]] ContextsField *contextsField() { return m_contexts; }
    /// Goes to the first of its buttons and fields; false when it shows none.
    bool focusFirst();

Q_SIGNALS:
    void toggleWanted();
    /// The person is done up here.
    void left();

private:
    void showProperties();
    void showTask();
    void fillBacklinksMenu();

    ItemActions &m_actions;
    QLabel *m_title;
    QToolButton *m_toggle;
    QLabel *m_place;
    ContextsField *m_contexts;
    QToolButton *m_backlinks;
    QWidget *m_task;
    QToolButton *m_taskState;
    QToolButton *m_dueDate;
    QString m_path;
    std::vector<NotificationCenter::Subscription> m_subscriptions;
};

} // namespace tomelet::desktop
