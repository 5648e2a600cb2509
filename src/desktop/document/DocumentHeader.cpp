// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/document/DocumentHeader.h"

#include "desktop/Icons.h"
#include "desktop/actions/DueDateDialogBox.h"
#include "desktop/actions/ItemActions.h"
#include "desktop/actions/TaskActions.h"
#include "desktop/document/ContextsField.h"
#include "desktop/list/DocumentListModel.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "organising/contexts/Contexts.h"
#include "organising/dates/DueDateTexts.h"
#include "organising/dates/RepeatRule.h"
#include "organising/tasks/TaskRepeats.h"
#include "organising/tasks/Tasks.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

namespace tomelet::desktop {

static QString displayPlace(const QString &path)
{
    const QString folder = tm_normalizedPath(parentPath(path));
    return folder.isEmpty() ? lastPathComponent(tomeletRoot()) : tm_pathFormattedForDisplay(folder);
}

DocumentHeader::DocumentHeader(ItemActions &actions, QWidget *parent)
    : QWidget(parent)
    , m_actions(actions)
    , m_title(new QLabel)
    , m_toggle(new QToolButton)
    , m_place(new QLabel)
    , m_contexts(new ContextsField)
    , m_backlinks(new QToolButton)
    , m_task(new QWidget)
    , m_taskState(new QToolButton)
    , m_dueDate(new QToolButton)
{
    QFont font = m_title->font();
    font.setWeight(QFont::DemiBold);
    m_title->setFont(font);
    m_title->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_place->setForegroundRole(QPalette::PlaceholderText);
    m_backlinks->setPopupMode(QToolButton::InstantPopup);
    m_backlinks->setAutoRaise(true);
    m_backlinks->setMenu(new QMenu(m_backlinks));
    connect(m_backlinks->menu(), &QMenu::aboutToShow, this, &DocumentHeader::fillBacklinksMenu);
    connect(m_contexts, &ContextsField::contextsEdited, this,
            [this](const QStringList &words) { m_actions.setContexts(m_path, words); });
    // The field's own undo would stand before that of the items.
    connect(m_contexts, &QLineEdit::returnPressed, this, &DocumentHeader::left);

    m_toggle->setAutoRaise(true);
    m_toggle->setFocusPolicy(Qt::TabFocus);
    m_toggle->hide();
    connect(m_toggle, &QToolButton::clicked, this, &DocumentHeader::toggleWanted);

    auto *task = new QHBoxLayout(m_task);
    task->setContentsMargins(0, 0, 0, 0);
    for (QToolButton *button : {m_taskState, m_dueDate}) {
        button->setAutoRaise(true);
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        // The text keeps the keys until somebody comes here with Tab.
        button->setFocusPolicy(Qt::TabFocus);
        task->addWidget(button);
    }
    task->addStretch(1);
    m_taskState->setToolTip(localized(TOMELET_TEXT("Next State")));
    connect(m_taskState, &QToolButton::clicked, this, [this] { toggleTasks(m_actions, {m_path}); });
    connect(m_dueDate, &QToolButton::clicked, this,
            [this] { chooseDueDates(m_actions, {m_path}, dueDateDialogOver(this)); });

    auto *below = new QHBoxLayout;
    below->addWidget(m_contexts, 1);
    below->addWidget(m_backlinks);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 10, 20, 6);
    layout->setSpacing(0);
    auto *top = new QHBoxLayout;
    top->addWidget(m_title, 1);
    top->addWidget(m_toggle);
    layout->addLayout(top);
    layout->addWidget(m_place);
    layout->addWidget(m_task);
    layout->addLayout(below);

    m_subscriptions.push_back(notifications().observe(
        QStringLiteral("TMLTFileModifiedOnDiskNotification"), [this](const QVariantMap &payload) {
            const QString changed = payload.value(QStringLiteral("path")).toString();
            if (m_path.isEmpty()) return;
            if (changed == m_path || changed == propertyFileOf(m_path)) showProperties();
            // A recount ends with nothing but a change of the store, so an icon may turn red by that alone.
            if (tm_pathIsTaskPlist(changed) && parentPath(changed) == parentPath(m_path)) showTask();
        }));
}

void DocumentHeader::setDocument(const QString &path, bool edited)
{
    const QString name = path.isEmpty() ? QString() : lastPathComponent(path);
    m_title->setText(edited ? QString(name + QStringLiteral(" •")) : name);
    m_place->setText(path.isEmpty() ? QString() : displayPlace(path));
    if (std::exchange(m_path, path) != path || path.isEmpty()) showProperties();
}

void DocumentHeader::setToggle(const QString &toolTip, bool showsText)
{
    m_toggle->setHidden(toolTip.isEmpty());
    m_toggle->setIcon(bundledIcon(showsText ? QStringLiteral("formatted") : QStringLiteral("text")));
    m_toggle->setToolTip(toolTip);
    m_toggle->setAccessibleName(toolTip);
}

bool DocumentHeader::focusFirst()
{
    for (QWidget *field : std::initializer_list<QWidget *>{m_taskState, m_contexts, m_backlinks, m_toggle}) {
        if (!field->isVisible()) continue;
        field->setFocus(Qt::TabFocusReason);
        return true;
    }
    return false;
}

void DocumentHeader::showProperties()
{
    const bool own = !m_path.isEmpty() && tm_itemIsChildOfTomelet(m_path);
    m_contexts->setVisible(own && settings().boolean(QStringLiteral("contextsEnabled")));
    m_contexts->setContexts(own ? contextsOf(m_path) : QStringList());
    const qsizetype links = own ? tm_propertyForKey(m_path, QStringLiteral("Backlinks")).toStringList().size() : 0;
    showTask();
    m_backlinks->setVisible(links > 0);
    m_backlinks->setText(links == 1 ? localized(TOMELET_TEXT("Linked from one document"))
                                    : localized(TOMELET_TEXT("Linked from %1 documents")).arg(links));
}

void DocumentHeader::showTask()
{
    const bool own = !m_path.isEmpty() && tm_itemIsChildOfTomelet(m_path);
    const QString icon = own ? tm_iconForTask(m_path) : QString();
    m_task->setVisible(!icon.isEmpty());
    if (icon.isEmpty()) return;
    const QString state = taskStateText(icon);
    m_taskState->setIcon(taskStateIcon(icon));
    m_taskState->setText(state);
    m_taskState->setAccessibleName(localized(TOMELET_TEXT("Task state: %1")).arg(state));
    const QString due = hasDueDate(m_path) ? tm_weekdayStringWithOffset(tm_dueDateForTask(m_path)) : QString();
    QString text =
        due.isEmpty() ? localized(TOMELET_TEXT("Set due date...")) : localized(TOMELET_TEXT("Due: %1")).arg(due);
    if (const auto details = tm_repeatDetails(m_path))
        text += QStringLiteral(" · ") + tm_readableRepeatDetailsForDetails(*details).trimmed();
    m_dueDate->setIcon(icon.endsWith(u"-due") ? overdueIcon(QStringLiteral("due"))
                                              : bundledIcon(QStringLiteral("due")));
    m_dueDate->setText(text);
    m_dueDate->setAccessibleName(text);
}

void DocumentHeader::fillBacklinksMenu()
{
    QMenu *menu = m_backlinks->menu();
    menu->clear();
    const QString root = tomeletRoot();
    for (const QString &path : tm_propertyForKey(m_path, QStringLiteral("Backlinks")).toStringList()) {
        const QString title = tm_pathFormattedForDisplay(path);
        QAction *action = menu->addAction(QString(title).replace(u'&', QStringLiteral("&&")));
        connect(action, &QAction::triggered, this, [full = fullPathOf(path, root)] {
            notifications().postPath(QStringLiteral("TMLTShowItemAtPathNotification"), full);
        });
    }
}

} // namespace tomelet::desktop
