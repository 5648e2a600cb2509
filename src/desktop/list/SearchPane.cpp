// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's search: the field above the list, its options, and the index behind it.
#include "desktop/MainWindow.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/outline/OutlinePane.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/OutlineItem.h"

#include <QActionGroup>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QShortcut>
#include <QStatusBar>
#include <QToolButton>

namespace tomelet::desktop {

QWidget *MainWindow::makeSearchField()
{
    m_filter->setPlaceholderText(localized(TOMELET_TEXT("Search")));
    m_filter->setAccessibleName(localized(TOMELET_TEXT("Search")));
    m_filter->setClearButtonEnabled(true);
    QToolButton *options = m_searchOptions = new QToolButton;
    options->setText(QStringLiteral("…"));
    options->setAutoRaise(true);
    options->setPopupMode(QToolButton::InstantPopup);
    options->setAccessibleName(localized(TOMELET_TEXT("Search options")));
    options->setToolTip(localized(TOMELET_TEXT("Search options")));
    options->setMenu(new QMenu(options));
    fillSearchOptions(options->menu());

    m_indexProgress->setMaximumWidth(180);
    m_indexProgress->setFormat(localized(TOMELET_TEXT("Indexing %p%")));
    m_indexProgress->hide();
    statusBar()->addPermanentWidget(m_indexProgress);
    // An empty bar tells nothing.
    const auto showBar = [this] {
        statusBar()->setVisible(!statusBar()->currentMessage().isEmpty() || !m_indexProgress->isHidden());
    };
    connect(statusBar(), &QStatusBar::messageChanged, this, showBar);
    showBar();
    m_index.onProgress = [this, showBar](qsizetype done, qsizetype all) {
        m_indexProgress->setVisible(done < all);
        showBar();
        m_indexProgress->setRange(0, int(all));
        m_indexProgress->setValue(int(done));
    };
    m_search.emplace(m_listModel->controller(), m_index, static_cast<SearchFieldView &>(*this));
    connect(m_filter, &QLineEdit::textChanged, this,
            [this](const QString &text) { m_search->searchFieldDidChange(text); });
    connect(m_filter, &QLineEdit::returnPressed, this,
            [this] { m_search->startSpotlightSearchWithString(m_filter->text()); });
    const auto onKey = [this](Qt::Key key, const std::function<void()> &action) {
        connect(new QShortcut(key, m_filter, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated, this,
                action);
    };
    onKey(Qt::Key_Down, [this] { focusList(); });
    onKey(Qt::Key_Escape, [this] {
        m_filter->clear();
        focusList();
    });

    auto *field = new QWidget;
    auto *layout = new QHBoxLayout(field);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_filter, 1);
    layout->addWidget(options);
    return field;
}

void MainWindow::fillSearchOptions(QMenu *menu)
{
    const QString title = QStringLiteral("searchTitle");
    const QString content = QStringLiteral("searchContent");
    const QString everywhere = QStringLiteral("searchAllBooks");
    const auto searchAnew = [this] { m_search->startSpotlightSearchWithString(m_filter->text()); };
    auto *modes = new QActionGroup(menu);
    const std::pair<const char *, QString> choices[] = {{TOMELET_TEXT("Title and Content"), {}},
                                                        {TOMELET_TEXT("Title Only"), title},
                                                        {TOMELET_TEXT("Content Only"), content}};
    for (const auto &[text, chosen] : choices) {
        QAction *mode = menu->addAction(localized(text), this, [=, key = chosen] {
            for (const QString &other : {title, content}) settings().remove(other);
            if (!key.isEmpty()) settings().setObject(key, true);
            searchAnew();
        });
        mode->setCheckable(true);
        modes->addAction(mode);
    }
    menu->addSeparator();
    QAction *all = menu->addAction(localized(TOMELET_TEXT("All Books")));
    all->setCheckable(true);
    connect(all, &QAction::triggered, this, [=](bool on) {
        settings().setObject(everywhere, on ? QVariant(true) : QVariant());
        searchAnew();
    });
    connect(menu, &QMenu::aboutToShow, this, [=] {
        const int mode = settings().boolean(title) ? 1 : settings().boolean(content) ? 2 : 0;
        modes->actions()[mode]->setChecked(true);
        all->setChecked(settings().boolean(everywhere));
    });
}

// What is looked for in the documents of the list, when it is more than their names.
QString MainWindow::searchKey() const
{
    const bool results = m_listModel->controller().source().smartType == SearchResultsBook;
    if (!results || searchModeOfSettings() == SearchMode::Title) return {};
    return tm_arrayOfSearchTermsInString(m_filter->text()).value(0);
}

void MainWindow::presentIndex()
{
    m_index.present();
}

// The field tells what the list is filtered by, and nothing else.
void MainWindow::leaveSearch()
{
    const QSignalBlocker quiet(m_filter);
    m_filter->clear();
    if (m_search) m_search->leave();
}

void MainWindow::reloadList()
{
    const ListSource source = m_listModel->controller().source();
    // The outline shows where the list has gone, and asks for nothing.
    TMLTOutlineItem *shown = source.smartType == OrdinaryBook ? TMLTOutlineItem::childAtPath(source.book)
                                                              : TMLTOutlineItem::smartBookOfType(source.smartType);
    if (shown) m_outline->select(shown, true);
    reloadRows();
}

void MainWindow::showTerm(const QString &term)
{
    const QSignalBlocker quiet(m_filter); // nothing was typed
    m_filter->setText(term);
}

void MainWindow::showSearchOptions()
{
    m_searchOptions->show();
}

void MainWindow::hideSearchOptions()
{
    m_searchOptions->hide();
}

void MainWindow::showStatus(const QString &text)
{
    if (text.isEmpty()) statusBar()->clearMessage();
    else statusBar()->showMessage(text);
}

} // namespace tomelet::desktop
