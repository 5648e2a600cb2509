// SPDX-License-Identifier: GPL-3.0-or-later
// Tabs and two sides: where the keys are, what the next session gets, and two views of one document.
#include "tests/support/Notebook.h"

#include "desktop/actions/ItemActions.h"
#include "desktop/document/DocumentDesk.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/document/DocumentTabs.h"
#include "desktop/text/TMLTTextView.h"
#include "foundation/Platform.h"
#include "library/AppState.h"
#include "organising/NotebookOrganiser.h"

#include <QApplication>
#include <QTest>

using namespace tomelet;
using namespace tomelet::desktop;

namespace {

class Desk : public tomelet::test::Notebook
{
protected:
    Desk()
    {
        installNotebookOrganiser();
        settings().setObject(QStringLiteral("showMarkdownAsPlainText"), true);
        for (const char *name : {"/A.md", "/B.md", "/C.md", "/D.md"}) write(QString::fromLatin1(name), "text\n");
        desk.resize(900, 500);
        desk.show();
        QApplication::setActiveWindow(&desk);
    }
    [[nodiscard]] QStringList shown(const QList<WindowEntry> &entries) const
    {
        QStringList names;
        for (const WindowEntry &entry : entries)
            names.append(QString(entry.path.mid(root.size()) + (entry.selected ? u"*" : u"") + entry.side +
                                 (entry.toggled ? u"~" : u"")));
        return names;
    }
    [[nodiscard]] QStringList shown() const { return shown(desk.entries(QStringLiteral("0"))); }
    QString path(const char *name) { return at(QString::fromLatin1(name)); }
    [[nodiscard]] TMLTTextView *textInFront() const { return desk.current()->textView(); }

    ItemActions actions;
    DocumentDesk desk{actions, true};
};

} // namespace

TEST_F(Desk, tabsComeAndGoAndTheKeysStay)
{
    desk.current()->showDocument(path("/A.md"));
    desk.openInNewTab(path("/B.md"), true);
    desk.openInNewTab(path("/C.md"), false);
    EXPECT_EQ(shown(), (QStringList{QStringLiteral("/A.md"), QStringLiteral("/B.md*"), QStringLiteral("/C.md")}));
    EXPECT_EQ(desk.panes().size(), 2); // the third is loaded when it is looked at
    textInFront()->setFocus();
    desk.tabs()->step(1);
    EXPECT_EQ(desk.current()->path(), path("/C.md"));
    EXPECT_TRUE(textInFront()->hasFocus());
    desk.tabs()->step(1);
    EXPECT_EQ(desk.current()->path(), path("/A.md"));
    desk.closeTab();
    EXPECT_EQ(desk.current()->path(), path("/B.md"));
    EXPECT_TRUE(textInFront()->hasFocus());
    desk.closeTab();
    desk.closeTab();
    EXPECT_TRUE(shown().isEmpty());
    EXPECT_TRUE(desk.isAncestorOf(QApplication::focusWidget()));
}

TEST_F(Desk, theNextSessionGetsTabsAndSides)
{
    desk.current()->showDocument(path("/A.md"));
    desk.openInNewTab(path("/B.md"), true);
    desk.current()->toggleView();
    desk.openBeside(path("/C.md"));
    EXPECT_TRUE(textInFront()->hasFocus());
    desk.openInNewTab(path("/D.md"), false);
    const QStringList wanted{QStringLiteral("/A.md"), QStringLiteral("/B.md*~"), QStringLiteral("/C.md*1"),
                             QStringLiteral("/D.md1")};
    EXPECT_EQ(shown(), wanted);
    saveDocumentsToOpenOnStartup(desk.entries(QStringLiteral("0")));
    for (const char *open : {"", "/A.md", "/B.md"}) {
        DocumentDesk next(actions, true);
        if (*open) next.current()->showDocument(path(open));
        next.restore(documentsToOpenOnStartup());
        QStringList now = shown(next.entries(QStringLiteral("0")));
        if (std::string_view(open) == "/A.md") { // what was asked for stays in front
            EXPECT_EQ(now[0], QStringLiteral("/A.md*"));
            continue;
        }
        EXPECT_EQ(now, wanted) << open;
    }
    desk.setSplit(false);
    EXPECT_EQ(shown().size(), 4);
    EXPECT_FALSE(shown().join(u' ').contains(u'1'));
}

TEST_F(Desk, twoViewsOfADocumentWriteOneText)
{
    desk.current()->showDocument(path("/A.md"));
    desk.setSplit(true);
    const QList<DocumentPane *> panes = desk.visiblePanes();
    ASSERT_EQ(panes.size(), 2);
    QString expected = QStringLiteral("text\n");
    for (int i = 0; i < 6; ++i) {
        TMLTTextView *view = panes[i % 2]->textView();
        view->setFocus();
        QTest::qWait(20); // dates of files are that coarse
        EXPECT_EQ(view->documentText(), expected);
        QTest::keyClicks(view, QString::number(i));
        expected = view->documentText();
    }
    for (const DocumentPane *pane : panes) const_cast<DocumentPane *>(pane)->saveTyping();
    EXPECT_EQ(QString::fromUtf8(read(QStringLiteral("/A.md"))), expected);
    EXPECT_EQ(expected.size(), 11);
    EXPECT_EQ(names({}).filter(QStringLiteral("elsewhere")).size(), 0);
}

TEST_F(Desk, aDocumentThatCannotBeSavedKeepsItsTab)
{
    desk.current()->showDocument(path("/A.md"));
    desk.openInNewTab(path("/B.md"), true);
    textInFront()->setFocus();
    QTest::keyClicks(textInFront(), QStringLiteral("new"));
    QFile file(path("/B.md"));
    file.setPermissions(QFile::ReadOwner);
    desk.closeTab();
    EXPECT_EQ(desk.current()->path(), path("/B.md"));
    EXPECT_TRUE(textInFront()->documentText().contains(QStringLiteral("new")));
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    desk.closeTab();
    EXPECT_EQ(desk.current()->path(), path("/A.md"));
    EXPECT_TRUE(read(QStringLiteral("/B.md")).contains("new"));
}
