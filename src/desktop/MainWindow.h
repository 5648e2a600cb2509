// SPDX-License-Identifier: GPL-3.0-or-later
// The notebook's window: outline, list, document.
#pragma once

#include "desktop/actions/ItemActions.h"
#include "foundation/NotificationCenter.h"
#include "library/AppDelegate.h"
#include "library/OutlineController.h"
#include "organising/lists/DocumentList.h"
#include "organising/lists/ListSearch.h"
#include "organising/search/FileIndex.h"

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <optional>
#include <vector>

class QActionGroup;
class QLineEdit;
class QLabel;
class QProgressBar;
class QSplitter;
class QStackedWidget;
class QToolButton;

namespace tomelet::desktop {

class DocumentListModel;
class DocumentListView;
class DocumentDesk;
class DocumentPane;
class InfoPanel;
class OutlinePane;

class MainWindow final : public QMainWindow, private SearchFieldView
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    /// Connects the window with the application; before the first show.
    void setApplication(AppDelegate &application);
    void showWelcome(const WelcomeChoices &choices);
    void hideWelcome();
    void showAllPanes();
    void showMessage(const QString &title, const QString &text);
    [[nodiscard]] bool showsNotebook() const;
    [[nodiscard]] QString documentOnDisplay() const;
    [[nodiscard]] DocumentDesk &desk() { return *m_desk; }
    /// Where the window and its panes stood the last time.
    void restoreLayout();
    void saveLayout() const;
    [[nodiscard]] ItemActions &itemActions() { return m_actions; }
    [[nodiscard]] TMLTOutlineController &outlineController() { return m_outlineController; }

    /// Brings the search index of the root in force up to date, on a thread of its own.
    void presentIndex();
    /// Selects the item's book and, for a document, shows it.
    void showItem(const QString &path);

Q_SIGNALS:
    void extraWindowWanted(const QString &path);
    void preferencesWanted();
    void quitWanted();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void makePanes();
    void makeActions();
    void makeBookMenu();
    void makeEditMenu();
    void createDocument(const QString &extension);
    void toggleFullScreen();
    void makeViewMenu();
    void makeOrganiseMenu();
    void makeContextCommands(QMenu *menu);
    void makeLinkCommands(QMenu *menu);
    void makeTaskMenu();
    void makeTaskCommands(QMenu *menu);
    void makeTasklistCommands(QMenu *menu);
    void makeTaskListViewCommands(QMenu *menu);
    void makeSmartBookCommands(QMenu *menu);
    void followDays();
    [[nodiscard]] QStringList taskTargets() const;
    [[nodiscard]] QString tasklistTarget() const;
    void extractTasks();
    bool chooseTaskMark();
    void dueTasksChanged();
    void deleteSelection();
    void refreshContexts();
    void extractContexts();
    void manageExcludedContexts();
    void findBrokenBacklinks();
    void refreshBacklinks();
    void removeBacklinks();
    void makeStorageMenu();
    void makeHelpMenu();
    void fillStorageMenu(QMenu *menu);
    void makeLabelMenu(QMenu *menu);
    void makeArchiveCommand(QMenu *menu);
    void makeImportCommand(QMenu *menu);
    [[nodiscard]] QStringList archivesInFront() const;
    void saveArchives();
    void importFiles(const QStringList &files);
    void importDocument(const QString &file, const QString &book);
    void importNotes(const QString &file, const QString &book);
    void offerImport(const QString &file);
    void showNew(const QString &path);
    void observe();
    QAction *add(QMenu *menu, const char *text, const QKeySequence &keys, std::function<void()> action);

    QWidget *makeSearchField();
    void fillSearchOptions(QMenu *menu);
    void leaveSearch();
    // What the search asks of its field.
    void reloadList() override;
    void showStatus(const QString &text) override;
    void showTerm(const QString &term) override;
    void showSearchOptions() override;
    void hideSearchOptions() override;

    void showSource(const ListSource &source);
    bool openRow(const QModelIndex &index);
    void showEnclosing();
    void showOutline(bool shown);
    void updateListTexts();
    [[nodiscard]] DocumentPane *document() const;
    [[nodiscard]] QString searchKey() const;
    void reloadRows();
    void rowsReloaded();
    void readRowsAnew();
    void documentSelected();
    void documentChanged();
    void openSelectionInTabs();
    void reloadListFor(const QString &path);
    void reloadListSoon();
    void leaveVanishedBook();
    void waitForRoot();
    void newRoot();
    void newBook();
    void renameSelection();
    void forSelection(const std::function<void(const QStringList &)> &action);
    [[nodiscard]] QStringList selectedDocuments() const;
    void focusList();
    void focusNextPane(int step);
    bool focusNextPrevChild(bool next) override;
    void showListMenu(const QPoint &position);
    void showOutlineMenu(const QPoint &position);

    ItemActions m_actions;
    OutlinePane *m_outline;
    TMLTOutlineController m_outlineController;
    DocumentListModel *m_listModel;
    DocumentListView *m_list;
    QLabel *m_listTitle;
    QLabel *m_listEmpty;
    QLineEdit *m_filter;
    QToolButton *m_searchOptions = nullptr;
    QProgressBar *m_indexProgress;
    QStackedWidget *m_listStack;
    DocumentDesk *m_desk;
    DocumentPane *m_lastDocument = nullptr; ///< only to be compared
    bool m_showsSelection = false;          ///< the document selected in the list is being shown
    InfoPanel *m_info;
    QSplitter *m_splitter;
    QStackedWidget *m_pages;
    QWidget *m_listSide;
    QPointer<QTimer> m_rootTimer; // runs while the root is away
    QActionGroup *m_sortActions = nullptr;
    QAction *m_descending = nullptr;
    AppDelegate *m_application = nullptr;
    std::vector<NotificationCenter::Subscription> m_subscriptions;
    FileIndex m_index;
    std::optional<ListSearch> m_search;
};

} // namespace tomelet::desktop
