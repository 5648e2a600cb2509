// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/MainWindow.h"

#include "desktop/WelcomePane.h"
#include "desktop/actions/TaskActions.h"
#include "desktop/document/DocumentDesk.h"
#include "desktop/document/DocumentHeader.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/document/InfoPanel.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/list/DocumentListView.h"
#include "desktop/outline/OutlineBadges.h"
#include "desktop/outline/OutlinePane.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/OutlineItem.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/RecentItems.h"
#include "organising/contexts/Contexts.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QScopedValueRollback>
#include <QScreen>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace tomelet::desktop {

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_outline(new OutlinePane(m_actions))
    , m_outlineController(*m_outline)
    , m_listModel(new DocumentListModel(m_actions, this))
    , m_list(new DocumentListView)
    , m_listTitle(new QLabel)
    , m_listEmpty(new QLabel)
    , m_filter(new QLineEdit)
    , m_indexProgress(new QProgressBar)
    , m_listStack(new QStackedWidget)
    , m_desk(new DocumentDesk(m_actions, true))
    , m_info(new InfoPanel)
    , m_splitter(new QSplitter)
    , m_pages(new QStackedWidget)
    , m_listSide(new QWidget)
{
    setWindowTitle(QStringLiteral("Tomelet"));
    resize(QSize(1360, 700).boundedTo(screen()->availableSize()));
    makePanes();
    makeActions();
    observe();
    connect(&m_actions, &ItemActions::failed, this, &MainWindow::showMessage);
}

MainWindow::~MainWindow() = default;

void MainWindow::setApplication(AppDelegate &application)
{
    m_application = &application;
}

// -- panes ------------------------------------------------------------------------------------------------------------

void MainWindow::makePanes()
{
    m_list->setModel(m_listModel);
    m_listModel->setBadges(m_outline->badges());
    connect(m_listModel, &DocumentListModel::reloaded, this, &MainWindow::rowsReloaded);
    connect(m_outline->badges(), &OutlineBadges::changed, m_list->viewport(), qOverload<>(&QWidget::update));
    QFont font = m_listTitle->font();
    font.setWeight(QFont::DemiBold);
    m_listTitle->setFont(font);
    m_listEmpty->setAlignment(Qt::AlignCenter);
    m_listEmpty->setWordWrap(true);
    m_listEmpty->setMargin(24);
    m_listEmpty->setForegroundRole(QPalette::PlaceholderText);

    m_listSide->setAutoFillBackground(true);
    m_listSide->setBackgroundRole(QPalette::Base);
    auto *listLayout = new QVBoxLayout(m_listSide);
    listLayout->setContentsMargins(0, 8, 0, 0);
    auto *header = new QVBoxLayout;
    header->setContentsMargins(12, 0, 12, 4);
    header->addWidget(m_listTitle);
    header->addWidget(makeSearchField());
    listLayout->addLayout(header);
    m_listStack->addWidget(m_list);
    m_listStack->addWidget(m_listEmpty);
    listLayout->addWidget(m_listStack, 1);

    m_splitter->addWidget(m_outline);
    m_splitter->addWidget(m_listSide);
    m_splitter->addWidget(m_desk);
    m_splitter->setHandleWidth(1);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setStretchFactor(2, 1);
    m_splitter->setSizes({240, 300, 820});
    m_pages->addWidget(m_splitter);
    setCentralWidget(m_pages);
    addDockWidget(Qt::RightDockWidgetArea, m_info);
    m_info->hide();
    m_outline->setVisible(!settings().boolean(QStringLiteral("outlineIsCollapsed")));

    connect(m_outline, &OutlinePane::sourceSelected, this, &MainWindow::showSource);
    connect(m_outline, &QWidget::customContextMenuRequested, this, &MainWindow::showOutlineMenu);
    connect(m_outline, &OutlinePane::rootVanished, this, &MainWindow::waitForRoot);
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, &MainWindow::documentSelected);
    connect(m_list, &QListView::doubleClicked, this, [this](const QModelIndex &index) {
        if (!openRow(index)) Q_EMIT extraWindowWanted(m_listModel->pathAt(index));
    });
    connect(m_list, &DocumentListView::openWanted, this, [this](const QModelIndex &index) {
        if (!openRow(index)) document()->shownWidget()->setFocus(Qt::TabFocusReason);
    });
    connect(m_list, &DocumentListView::enclosingWanted, this, &MainWindow::showEnclosing);
    connect(m_list, &DocumentListView::toggleWanted, this,
            [this](const QStringList &paths) { toggleTasks(m_actions, paths); });
    connect(m_list, &QWidget::customContextMenuRequested, this, &MainWindow::showListMenu);
    connect(m_list, &DocumentListView::newTabWanted, this,
            [this](const QModelIndex &index) { m_desk->openInNewTab(m_listModel->pathAt(index), false); });
    connect(m_desk, &DocumentDesk::currentChanged, this, &MainWindow::documentChanged);
}

void MainWindow::showWelcome(const WelcomeChoices &choices)
{
    auto *welcome = new WelcomePane(choices);
    connect(welcome, &WelcomePane::folderWanted, this, [this] { m_application->tm_selectTomeletRoot(true); });
    connect(welcome, &WelcomePane::cloudWanted, this, [this] { m_application->tm_selectiCloudAsRoot(); });
    connect(welcome, &WelcomePane::dropboxWanted, this, [this] { m_application->tm_selectDropboxAsRoot(); });
    m_pages->setCurrentIndex(m_pages->addWidget(welcome));
    menuBar()->hide();
}

void MainWindow::hideWelcome()
{
    menuBar()->show();
    m_pages->setCurrentWidget(m_splitter);
    while (m_pages->count() > 1) delete m_pages->widget(1);
}

void MainWindow::showAllPanes()
{
    m_outline->show();
    m_listSide->show();
    m_desk->show();
}

bool MainWindow::showsNotebook() const
{
    return m_pages->currentWidget() == m_splitter;
}

QString MainWindow::documentOnDisplay() const
{
    return document()->path();
}

void MainWindow::showMessage(const QString &title, const QString &text)
{
    auto *box = new QMessageBox(QMessageBox::NoIcon, title, QStringLiteral("<b>%1</b>").arg(title.toHtmlEscaped()),
                                QMessageBox::Ok, this);
    box->setInformativeText(text);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

// -- what is on display -----------------------------------------------------------------------------------------------

void MainWindow::showSource(const ListSource &source)
{
    m_outline->setBookOnDisplay(source.book);
    // There may be thousands of results; their rows come when they are made.
    const bool results = source.smartType == SearchResultsBook;
    if (results) m_listModel->controller().setRowsOfSearchResults({});
    else leaveSearch();
    m_listModel->show(source);
    m_list->scrollToTop();
    if (settings().boolean(QStringLiteral("hideDocumentWhenChangingBook"))) document()->showDocument({});
    updateListTexts();
    if (results) m_search->reloadResults();
}

// Whether the row led to another list: a book, a smart book or a context.
bool MainWindow::openRow(const QModelIndex &index)
{
    const auto source = m_listModel->sourceAt(index);
    if (!source) return false;
    if (source->smartType == OrdinaryBook) {
        showItem(source->book);
        return true;
    }
    showSource(*source);
    focusList();
    return true;
}

void MainWindow::reloadRows()
{
    m_listModel->reload();
    rowsReloaded();
}

// The document on display stays selected, also where the rows are taken over as a whole.
void MainWindow::rowsReloaded()
{
    updateListTexts();
    if (m_list->selectionModel()->hasSelection()) return;
    if (const QModelIndex index = m_listModel->indexOfPath(document()->path()); index.isValid())
        m_list->selectOnly(index);
}

// Away from the main thread: search results on the thread of the search.
void MainWindow::readRowsAnew()
{
    if (m_listModel->controller().source().smartType == SearchResultsBook) m_search->reloadResults();
    else m_listModel->reloadInBackground();
}

// The row that one comes from is the one selected.
void MainWindow::showEnclosing()
{
    const ListSource from = m_listModel->controller().source();
    const ListSource source = m_listModel->controller().enclosingSource();
    if (source.smartType == OrdinaryBook) showItem(source.book);
    else showSource(source);
    const QString row = from.smartType == OrdinaryBook  ? from.book
                        : from.smartType == ContextBook ? from.contexts.value(0)
                                                        : TMLTOutlineItem::titleForSmartBookOfType(from.smartType);
    if (const QModelIndex index = m_listModel->indexOfPath(row); index.isValid()) m_list->selectOnly(index);
}

// The list takes the place of the hidden outline: it shows books and smart books above the documents.
void MainWindow::showOutline(bool shown)
{
    m_outline->setVisible(shown);
    settings().setObject(QStringLiteral("outlineIsCollapsed"), shown ? QVariant() : QVariant(true));
    readRowsAnew();
}

void MainWindow::updateListTexts()
{
    const TMLTDocumentListViewController &list = m_listModel->controller();
    const bool results = list.source().smartType == SearchResultsBook && m_search && !m_search->header().isEmpty();
    m_listTitle->setText(results ? m_search->header() : list.title());
    m_listEmpty->setText(m_listModel->isReading() ? localized(TOMELET_TEXT("Reading...")) : list.emptyText());
    m_listStack->setCurrentIndex(m_listModel->rowCount() == 0 ? 1 : 0);
    static const QStringList orders{QStringLiteral("title"), QStringLiteral("creationDate"), QStringLiteral("modDate"),
                                    QStringLiteral("custom")};
    const qsizetype order = list.sortOrder == u"DueDate" ? 2 : orders.indexOf(list.sortOrder);
    if (order >= 0) m_sortActions->actions()[order]->setChecked(true);
    m_sortActions->actions()[2]->setText(list.sortsByDueDate() ? localized(TOMELET_TEXT("Sort by &Due Date"))
                                                               : localized(TOMELET_TEXT("Sort by &Modification Date")));
    m_sortActions->setEnabled(list.orderCanBeChosen());
    m_sortActions->actions()[3]->setEnabled(list.source().smartType == OrdinaryBook ||
                                            list.source().smartType == InboxBook);
    m_descending->setEnabled(list.orderCanBeChosen());
    m_descending->setChecked(!list.sortAscending);
}

void MainWindow::documentSelected()
{
    const QStringList paths = selectedDocuments();
    if (paths.size() != 1 || paths.first() == document()->path() || pathIsPlainBook(paths.first())) return;
    const QScopedValueRollback showing(m_showsSelection, true);
    document()->showDocument(paths.first(), {searchKey(), {}});
    tm_addToRecentItems(paths.first());
}

DocumentPane *MainWindow::document() const
{
    return m_desk->current();
}

// The list follows to another document, of another tab or side too.
void MainWindow::documentChanged()
{
    const QString path = document()->path();
    m_info->setDocument(path);
    setWindowTitle(path.isEmpty() ? QStringLiteral("Tomelet") : lastPathComponent(path) + QStringLiteral(" — Tomelet"));
    const bool isSamePane = std::exchange(m_lastDocument, document()) == document();
    if (m_showsSelection || m_list->selectionModel()->selectedRows().size() > 1) return;
    if (selectedDocuments() == QStringList{path}) return;
    const QModelIndex index = m_listModel->indexOfPath(path);
    if (index.isValid()) m_list->selectOnly(index);
    else if (!isSamePane && !path.isEmpty()) m_list->clearSelection();
}

void MainWindow::openSelectionInTabs()
{
    const QStringList paths = selectedDocuments();
    if (paths.isEmpty()) m_desk->openInNewTab({}, true);
    for (const QString &path : paths)
        if (!pathIsPlainBook(path)) m_desk->openInNewTab(path, true);
}

void MainWindow::showItem(const QString &path)
{
    const QString root = tomeletRoot();
    QString full = tm_itemIsChildOfTomelet(path, root) ? path : fullPathOf(path, root);
    QString anchor;
    if (!itemExists(full)) {
        anchor = tm_pathAnchor(full);
        full = tm_pathWithoutAnchor(full);
    }
    if (path.isEmpty() || !itemExists(full)) return;
    m_outlineController.expandPathToItem(full);
    const QString book = pathIsPlainBook(full) ? full : parentPath(full);
    if (m_listModel->controller().source().book != book) showSource({book, OrdinaryBook, {}});
    if (book == full) return;
    if (const QModelIndex index = m_listModel->indexOfPath(full); index.isValid()) {
        m_list->selectOnly(index);
        m_list->scrollTo(index);
    }
    // Selecting it in the list may have shown it.
    if (document()->path() != full) document()->showDocument(full, {{}, anchor});
    else if (!anchor.isEmpty()) document()->scrollToAnchor(anchor);
    tm_addToRecentItems(full);
}

// -- selection --------------------------------------------------------------------------------------------------------

QStringList MainWindow::selectedDocuments() const
{
    QStringList paths;
    for (const QModelIndex &index : m_list->selectionModel()->selectedRows())
        if (const QString path = m_listModel->pathAt(index); !path.isEmpty()) paths.append(path);
    return paths;
}

void MainWindow::forSelection(const std::function<void(const QStringList &)> &action)
{
    const QStringList paths = m_outline->hasFocus() ? m_outline->selectedPaths() : selectedDocuments();
    if (!paths.isEmpty()) action(paths);
}

void MainWindow::newBook()
{
    // In Contexts there are no books: there it is a context.
    const TMLTOutlineItem *selected = m_outline->selectedItem();
    if (selected && (selected->smartBookType() == ContextsBook || selected->smartBookType() == ContextBook)) {
        makeNewContext();
        return;
    }
    const QStringList books = m_outline->selectedPaths();
    const QString path = m_actions.newBook(books.isEmpty() ? tomeletRoot() : books.first());
    if (path.isEmpty()) return;
    m_outline->setFocus();
    m_outline->editName(path);
}

// In the book on display, with its name ready to be typed.
void MainWindow::renameSelection()
{
    if (m_outline->hasFocus()) m_outline->edit(m_outline->currentIndex());
    else if (m_list->currentIndex().isValid()) m_list->edit(m_list->currentIndex());
}

// Who comes by the keyboard finds a document selected, so that every further key has something to work on.
void MainWindow::focusList()
{
    m_list->setFocus(Qt::TabFocusReason);
    if (!m_list->selectionModel()->hasSelection()) m_list->selectOnly(m_listModel->index(0));
}

void MainWindow::focusNextPane(int step)
{
    QList<QWidget *> panes{m_outline, m_list};
    for (DocumentPane *pane : m_desk->visiblePanes()) panes.append(pane->shownWidget());
    qsizetype at = 0;
    for (qsizetype i = 0; i < panes.size(); ++i)
        if (panes[i]->hasFocus() || panes[i]->isAncestorOf(focusWidget())) at = i;
    QWidget *next = panes[(at + step + panes.size()) % panes.size()];
    if (next == m_list) focusList();
    else next->setFocus(Qt::TabFocusReason);
}

// A pane hands the focus on to its text, which leaves out the header above it.
bool MainWindow::focusNextPrevChild(bool next)
{
    return (next && m_list->hasFocus() && document()->header()->focusFirst()) || QMainWindow::focusNextPrevChild(next);
}

static const QString geometryKey = QStringLiteral("mainWindowGeometry");
static const QString panesKey = QStringLiteral("mainWindowPanes");

void MainWindow::restoreLayout()
{
    restoreGeometry(QByteArray::fromBase64(settings().string(geometryKey).toLatin1()));
    m_splitter->restoreState(QByteArray::fromBase64(settings().string(panesKey).toLatin1()));
}

void MainWindow::saveLayout() const
{
    if (isFullScreen() || !showsNotebook()) return;
    settings().setObject(geometryKey, QString::fromLatin1(saveGeometry().toBase64()));
    settings().setObject(panesKey, QString::fromLatin1(m_splitter->saveState().toBase64()));
}

void MainWindow::createDocument(const QString &extension)
{
    const ListSource &source = m_listModel->controller().source();
    document()->createDocument(extension, source.book, source.contexts);
}

// The document alone, its text in a column that the eye can follow.
void MainWindow::toggleFullScreen()
{
    const bool full = !isFullScreen();
    if (full) showFullScreen();
    else showNormal();
    m_outline->setVisible(!full);
    m_listSide->setVisible(!full);
    for (DocumentPane *pane : m_desk->panes()) pane->setFullScreen(full);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_application) m_application->applicationWillTerminate();
    m_application = nullptr;
    event->accept();
}

} // namespace tomelet::desktop
