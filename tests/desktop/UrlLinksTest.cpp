// SPDX-License-Identifier: GPL-3.0-or-later
// tomelet URLs on pages: a click follows them, a page that is only shown does nothing.
#include "tests/support/Notebook.h"

#include "desktop/DesktopShell.h"
#include "desktop/DocumentWindow.h"
#include "desktop/document/DocumentDesk.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/list/DocumentListModel.h"
#include "desktop/list/DocumentListView.h"
#include "desktop/page/LinkPage.h"
#include "desktop/page/PageProfile.h"
#include "desktop/text/TMLTTextView.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/OutlineItem.h"
#include "organising/NotebookOrganiser.h"

#include <QApplication>
#include <QDesktopServices>
#include <QLineEdit>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTest>
#include <QWebEngineView>

using namespace tomelet;
using namespace tomelet::desktop;
using namespace Qt::StringLiterals;

namespace {

template <typename Condition>
bool comes(Condition condition)
{
    return QTest::qWaitFor(condition, 20000);
}

class Page : public ::testing::Test
{
protected:
    void load(const QString &html)
    {
        view = std::make_unique<QWebEngineView>(); // what comes late for another page stays with it
        followed.clear();
        view->setPage(new LinkPage(pageProfile(), view.get(), [this](const QString &address, bool inNewTab) {
            followed.append(inNewTab ? u"tab "_s + address : address);
        }));
        view->resize(400, 300);
        view->show();
        QSignalSpy loaded(view.get(), &QWebEngineView::loadFinished);
        view->setHtml(html);
        ASSERT_TRUE(loaded.wait(20000));
    }
    // In the upper left corner, where the link is. The engine may need more than one before it listens.
    bool click(Qt::MouseButton button = Qt::LeftButton)
    {
        return comes([&] {
            QTest::mouseClick(view->focusProxy(), button, {}, {20, 20});
            QTest::qWait(20);
            return !followed.isEmpty();
        });
    }
    static QString link(const QString &address)
    {
        return QString(u"<body style='margin:0'><a href='%1' style='display:block;height:90vh'>link</a></body>"_s)
            .arg(address);
    }

    QStringList followed;
    std::unique_ptr<QWebEngineView> view;
};

} // namespace

TEST_F(Page, doesNothingByBeingShown)
{
    load(u"<html><head><meta http-equiv='refresh' content='0;url=tomelet://addnote/refresh'></head>"
         "<body style='margin:0'><a href='tomelet://addnote/clicked' style='display:block;height:100px'>link</a>"
         "<iframe src='tomelet://addnote/frame'></iframe><img src='tomelet://addnote/picture'>"
         "<object data='tomelet://addnote/object'></object></body></html>"_s);
    ASSERT_TRUE(click()); // a refresh comes before it
    EXPECT_EQ(followed.first(), u"tomelet://addnote/clicked"_s);
    EXPECT_EQ(QStringList(followed).removeDuplicates(), followed.size() - 1) << "nothing else came";
}

TEST_F(Page, linksToItemsAreReadAsTheyAreWritten)
{
    for (const QString &address :
         {u"tomelet://My%20Book/Doc.md#Part"_s, u"tomelet://Upper/Case.md"_s, u"tomelet://grab/http://a.de/?b=%26"_s}) {
        load(link(address));
        ASSERT_TRUE(click()) << address.toStdString();
        EXPECT_EQ(followed.first(), address);
    }
    load(link(u"tomelet://Upper/Case.md"_s));
    ASSERT_TRUE(click(Qt::MiddleButton));
    EXPECT_EQ(followed.first(), u"tab tomelet://Upper/Case.md"_s);
}

// -- the windows ------------------------------------------------------------------------------------------------------

namespace {

class Shell : public tomelet::test::Notebook
{
protected:
    Shell()
    {
        installNotebookOrganiser();
        settings().setObject(u"showMarkdownAsPlainText"_s, true);
        settings().setObject(u"DefaultDocumentType"_s, u"md"_s);
        write(u"/Book/Note.md"_s, "a needle\n");
        write(u"/Other.md"_s, "a needle too\n");
        shell.emplace();
        shell->launch({});
        QCoreApplication::processEvents();
        drainPendingWork();
        for (QWidget *each : QApplication::topLevelWidgets())
            if (auto *main = qobject_cast<MainWindow *>(each)) window = main;
    }
    ~Shell() override
    {
        while (DocumentWindow *extra = extraWindow()) delete extra;
    }
    [[nodiscard]] MainWindow &main() const { return *qobject_cast<MainWindow *>(window); }
    [[nodiscard]] static DocumentWindow *extraWindow()
    {
        for (QWidget *each : QApplication::topLevelWidgets())
            if (auto *extra = qobject_cast<DocumentWindow *>(each)) return extra;
        return nullptr;
    }

    std::optional<DesktopShell> shell;
    QWidget *window = nullptr;
};

} // namespace

TEST_F(Shell, carriesOutUrls)
{
    shell->handOver(u"tomelet://show/Book/Note.md"_s);
    EXPECT_EQ(main().documentOnDisplay(), at(u"/Book/Note.md"_s));
    shell->handOver(u"tomelet://search/needle&scope=/Book"_s);
    const auto fields = main().findChildren<QLineEdit *>();
    const auto field = std::ranges::find(fields, u"Search"_s, &QLineEdit::accessibleName);
    ASSERT_NE(field, fields.end());
    EXPECT_EQ((*field)->text(), u"needle"_s);
    auto *rows = qobject_cast<DocumentListModel *>(main().findChild<DocumentListView *>()->model());
    EXPECT_TRUE(comes([&] { return rows->controller().source().smartType == SearchResultsBook; }));
    EXPECT_EQ(rows->rowCount(), 1) << "the other one is outside of the book";
    QDesktopServices::openUrl(QUrl(u"tomelet://addnote/Linked&parent=Book"_s));
    EXPECT_EQ(read(u"/Book/Linked.txt"_s), "Linked");
    shell->handOver(u"tomelet://webdav_sync"_s);
    auto *box = main().findChild<QMessageBox *>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text(), u"<b>Unsupported URL Scheme<br>&quot;webdav_sync&quot;</b>"_s);
    EXPECT_EQ(box->informativeText(), u"This scheme is intended for Tomelet on an iPad or iPhone."_s);
    EXPECT_EQ(box->standardButtons(), QMessageBox::Close);
    box->close();
}

TEST_F(Shell, showsWhereADocumentIsOpenAlready)
{
    shell->handOver(u"tomelet://show/Other.md"_s);
    shell->openItemsInNewWindow({{at(u"/Book/Note.md"_s), {}, true, {}, {}}});
    ASSERT_NE(extraWindow(), nullptr);
    shell->handOver(u"tomelet://Book/Note.md#Part"_s);
    EXPECT_EQ(main().documentOnDisplay(), at(u"/Other.md"_s));
}

TEST_F(Shell, servicesWriteWhereThePersonIs)
{
    shell->handOver(u"--new-note"_s);
    drainPendingWork();
    ASSERT_NE(extraWindow(), nullptr);
    DocumentPane &note = *extraWindow()->desk().current();
    QApplication::setActiveWindow(extraWindow());
    note.textView()->setFocus();
    ASSERT_TRUE(shell->services().insertIntoCurrentDocument({u"quickly noted"_s, {}}));
    EXPECT_EQ(note.textView()->documentText(), u"quickly noted"_s);
    ASSERT_TRUE(note.closeDocument());
    EXPECT_TRUE(exists(u"/quickly noted.md"_s));

    shell->handOver(u"tomelet://show/Book/Note.md"_s);
    EXPECT_TRUE(shell->services().insertIntoCurrentDocument({u"x"_s, {}})) << "the window behind takes it";
    EXPECT_TRUE(main().desk().current()->textView()->documentText().contains(u'x'));
}
