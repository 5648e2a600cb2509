// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's commands on tasks and tasklists.
#include "desktop/MainWindow.h"
#include "desktop/actions/DueDateDialogBox.h"
#include "desktop/actions/TaskActions.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/document/InfoPanel.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/outline/OutlinePane.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "organising/dates/DueDateCalendar.h"
#include "organising/tasks/TaskRepeats.h"
#include "organising/tasks/TaskRows.h"
#include "organising/tasks/Tasks.h"

#include <QActionGroup>
#include <QInputDialog>
#include <QMenuBar>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace tomelet::desktop {

void MainWindow::makeTaskMenu()
{
    QMenu *menu = menuBar()->addMenu(localized(TOMELET_TEXT("T&asks")));
    makeTaskCommands(menu);
    menu->addSeparator();
    makeTasklistCommands(menu);
    menu->addSeparator();
    makeTaskListViewCommands(menu);
    followDays();
    connect(m_info, &InfoPanel::dueDateWanted, this,
            [this](const QString &path) { chooseDueDates(m_actions, {path}, dueDateDialogOver(this)); });
    connect(m_info, &InfoPanel::noAlertWanted, this, [this](const QString &path) { clearAlertsOf(m_actions, {path}); });
    connect(m_info, &InfoPanel::noDueDateWanted, this,
            [this](const QString &path) { clearDueDates(m_actions, {path}); });
}

// The documents selected in the list, or else the one on display.
QStringList MainWindow::taskTargets() const
{
    const QStringList selected = selectedDocuments();
    return itemsInTasklists(selected.isEmpty() ? QStringList{document()->path()} : selected);
}

// The book selected in the outline, or else the one that the list shows.
QString MainWindow::tasklistTarget() const
{
    const QStringList books = m_outline->hasFocus() ? m_outline->selectedPaths() : QStringList();
    return books.size() == 1 ? books.first() : m_listModel->controller().source().book;
}

// -- tasks --------------------------------------------------------------------------------------------------

void MainWindow::makeTaskCommands(QMenu *menu)
{
    QAction *toggle = add(menu, TOMELET_TEXT("&Next State"), QKeySequence(QStringLiteral("Ctrl+T")),
                          [this] { toggleTasks(m_actions, taskTargets()); });
    QAction *notTask =
        add(menu, TOMELET_TEXT("Not a &Task"), {}, [this] { toggleItemsAreTasks(m_actions, taskTargets()); });
    notTask->setCheckable(true);
    menu->addSeparator();
    QAction *due = add(menu, TOMELET_TEXT("&Due Date..."), QKeySequence(QStringLiteral("Ctrl+Alt+D")),
                       [this] { chooseDueDates(m_actions, taskTargets(), dueDateDialogOver(this)); });
    QAction *clear =
        add(menu, TOMELET_TEXT("&Clear Due Date"), {}, [this] { clearDueDates(m_actions, taskTargets()); });
    QAction *clearAlert =
        add(menu, TOMELET_TEXT("Clear &Alert"), {}, [this] { clearAlertsOf(m_actions, taskTargets()); });
    QAction *repeat = add(menu, TOMELET_TEXT("Don't Re&peat"), {}, [this] { stopRepeating(m_actions, taskTargets()); });
    connect(menu, &QMenu::aboutToShow, this, [=, this] {
        const QStringList items = taskTargets();
        const auto any = [&items](const auto &holds) { return std::ranges::any_of(items, holds); };
        toggle->setEnabled(any(tm_itemIsTask));
        notTask->setEnabled(!items.isEmpty());
        notTask->setChecked(!items.isEmpty() && !any(tm_itemIsTask));
        due->setEnabled(!items.isEmpty());
        clear->setEnabled(any([](const QString &path) { return hasDueDate(path); }));
        clearAlert->setEnabled(
            any([](const QString &path) { return tm_dueDateHasAlertTime(tm_dueDateForTask(path)); }));
        repeat->setEnabled(any([](const QString &path) { return tm_repeatDetails(path).has_value(); }));
    });
    // Keys work while the menu is closed, whatever was disabled in it last.
    connect(menu, &QMenu::aboutToHide, this, [=] {
        for (QAction *action : {toggle, notTask, due, clear, clearAlert, repeat}) action->setEnabled(true);
    });
}

// -- tasklists ----------------------------------------------------------------------------------------------

void MainWindow::makeTasklistCommands(QMenu *menu)
{
    add(menu, TOMELET_TEXT("Ne&w Tasklist"), {}, [this] {
        const QStringList books = m_outline->selectedPaths();
        const QString book = newTasklist(m_actions, books.isEmpty() ? tomeletRoot() : books.first());
        if (book.isEmpty()) return;
        m_outline->setFocus();
        m_outline->editName(book);
    });
    QAction *show = add(menu, TOMELET_TEXT("Show as Task&list"), {}, [this] {
        if (const QString book = tasklistTarget(); !book.isEmpty()) toggleTasklist(m_actions, book);
    });
    show->setCheckable(true);
    QAction *reset = add(menu, TOMELET_TEXT("&Reset Tasks..."), {}, [this] { resetTasks(tasklistTarget()); });
    connect(menu, &QMenu::aboutToShow, this, [=, this] {
        const QString book = tasklistTarget();
        show->setEnabled(!book.isEmpty());
        show->setChecked(!book.isEmpty() && tm_bookIsTasklist(book));
        reset->setEnabled(show->isChecked());
    });
    menu->addSeparator();
    add(menu, TOMELET_TEXT("E&xtract Tasks..."), {}, [this] { extractTasks(); });
    add(menu, TOMELET_TEXT("Mar&k of Task Lines..."), {}, [this] { chooseTaskMark(); });
}

bool MainWindow::chooseTaskMark()
{
    const QString key = QStringLiteral("markTaskWithCharacter");
    bool accepted = false;
    const QString mark =
        QInputDialog::getText(this, localized(TOMELET_TEXT("Mark of Task Lines")),
                              localized(TOMELET_TEXT("A line that begins with this mark and a blank is a task:")),
                              QLineEdit::Normal, settings().string(key), &accepted)
            .trimmed();
    if (accepted) settings().setObject(key, mark.isEmpty() ? QVariant() : QVariant(mark));
    return accepted && !mark.isEmpty();
}

void MainWindow::extractTasks()
{
    if (settings().string(QStringLiteral("markTaskWithCharacter")).isEmpty() && !chooseTaskMark()) return;
    const QStringList selected = selectedDocuments();
    notifications().post(QStringLiteral("TMLTSaveCurrentDocument"));
    const QStringList made = extractTasksOf(m_actions, selected.isEmpty() ? QStringList{document()->path()} : selected);
    showMessage(made.size() == 1 ? localized(TOMELET_TEXT("One task was made."))
                                 : localized(TOMELET_TEXT("%1 tasks were made.")).arg(made.size()),
                made.isEmpty() ? localized(TOMELET_TEXT("There is no marked line that is not a task already."))
                               : QString());
}

// -- what lists show ----------------------------------------------------------------------------------------

// A setting of which only presence counts, as an entry with a tick.
static QAction *addSwitch(QMenu *menu, const char *text, const QString &key, const std::function<void()> &changed)
{
    QAction *action = menu->addAction(localized(text));
    action->setCheckable(true);
    action->setChecked(settings().boolean(key));
    QObject::connect(menu, &QMenu::aboutToShow, action, [=] { action->setChecked(settings().boolean(key)); });
    QObject::connect(action, &QAction::triggered, action, [=](bool on) {
        settings().setObject(key, on ? QVariant(true) : QVariant());
        changed();
    });
    return action;
}

// A setting that holds the index of one of the titles.
static void addChoices(QMenu *menu, const QStringList &titles, const QString &key,
                       const std::function<void(int index)> &choose)
{
    auto *choices = new QActionGroup(menu);
    for (int index = 0; index < titles.size(); ++index) {
        QAction *choice = menu->addAction(titles[index], menu, [choose, index] { choose(index); });
        choice->setCheckable(true);
        choices->addAction(choice);
    }
    QObject::connect(menu, &QMenu::aboutToShow, choices, [choices, key] {
        const qlonglong chosen = settings().integer(key);
        for (int index = 0; index < choices->actions().size(); ++index)
            choices->actions()[index]->setChecked(index == chosen);
    });
}

void MainWindow::makeTaskListViewCommands(QMenu *menu)
{
    const auto reload = [] { notifications().post(QStringLiteral("TMLTReloadCurrentBook")); };
    QAction *hide = addSwitch(menu, TOMELET_TEXT("&Hide Done Tasks"), QStringLiteral("hideDoneTasks"), reload);
    hide->setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+H")));
    // An empty list sends people to the menu beside the search field.
    m_searchOptions->menu()->addSeparator();
    m_searchOptions->menu()->addAction(hide);
    addSwitch(menu, TOMELET_TEXT("Show &Open Checklist Count per Document"), QStringLiteral("showOpenChecklistItems"),
              reload);
    addSwitch(menu, TOMELET_TEXT("Show All Task Lists in the &Outline"), QStringLiteral("smartBookAllTaskLists"),
              [] { notifications().post(QStringLiteral("TMLTUpdateAllTaskLists")); });
    addChoices(menu->addMenu(localized(TOMELET_TEXT("Look Ahead &for Due Tasks"))), dueLookAheadTitles(),
               QStringLiteral("dueTasksLookAhead"), [this](int index) {
                   chooseDueLookAhead(index);
                   dueTasksChanged();
               });
}

void MainWindow::makeSmartBookCommands(QMenu *menu)
{
    const QString weeks = localized(TOMELET_TEXT("weeks"));
    const QString key = QStringLiteral("recentlyModifiedSince");
    const QStringList titles{localized(TOMELET_TEXT("past week")), QString(u"2 " + weeks), QString(u"3 " + weeks),
                             QString(u"4 " + weeks)};
    addChoices(menu->addMenu(localized(TOMELET_TEXT("Show Modified &within..."))), titles, key, [key](int index) {
        settings().setObject(key, index == 0 ? QVariant() : QVariant(qlonglong(index)));
        notifications().post(QStringLiteral("TMLTReloadCurrentBook"));
    });
}

// "Tomorrow" is "Today" from midnight on, and what one looks ahead to moves along.
void MainWindow::followDays()
{
    auto *timer = new QTimer(this);
    const auto today = [] { return platform().clock.now().toLocalTime().date(); };
    connect(timer, &QTimer::timeout, this, [this, today, day = today()]() mutable {
        if (day == today()) return;
        day = today();
        dueTasksChanged();
        notifications().post(QStringLiteral("TMLTReloadCurrentBook"));
    });
    timer->start(std::chrono::seconds(30));
}

} // namespace tomelet::desktop
