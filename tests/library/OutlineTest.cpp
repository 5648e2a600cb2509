// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Notebook.h"

#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/AppState.h"
#include "library/OutlineItem.h"
#include "library/Properties.h"
#include "organising/lists/DocumentList.h"

using namespace tomelet;

class Outline : public tomelet::test::Notebook
{
protected:
    static QString books() { return TMLTOutlineItem::booksItem()->titlesOfChildren().join(u' '); }
};

TEST_F(Outline, whatShowsInTheTree)
{
    for (const char *name :
         {"b10", "b9", "A", "Odd.NUMBERS", "x.numbers", ".hidden", "TMImages", "TMResources", "Icons"})
        makeBook(u'/' + QString::fromLatin1(name));
    write(QStringLiteral("/doc.md"));
    settings().setObject(QStringLiteral("useNumericOrder"), true);
    EXPECT_EQ(books(), QStringLiteral("A b9 b10 Icons Odd.NUMBERS"));
    EXPECT_EQ(TMLTOutlineItem::booksItem()->fullPath(), root);
    EXPECT_FALSE(TMLTOutlineItem::childAtPath(QStringLiteral("/A"))->mayHaveChildren());
    EXPECT_EQ(tm_listOfBooksAtPath(root).join(u' '), QStringLiteral("A b9 b10 Odd.NUMBERS x.numbers"));
}

TEST_F(Outline, levelsAreReadWhenAskedFor)
{
    makeBook(QStringLiteral("/A/B/C"));
    TMLTOutlineItem *a = TMLTOutlineItem::booksItem()->childAtIndex(0);
    EXPECT_FALSE(a->isLoaded());
    EXPECT_EQ(a->numberOfChildren(), 0);
    EXPECT_TRUE(a->mayHaveChildren());
    EXPECT_FALSE(a->isLoaded());
    TMLTOutlineItem *c = TMLTOutlineItem::childAtPath(at(QStringLiteral("/A/B/C")));
    ASSERT_TRUE(c);
    EXPECT_EQ(c->fullPath(), at(QStringLiteral("/A/B/C")));
    EXPECT_EQ(TMLTOutlineItem::childAtPath(QStringLiteral("/A/none/C")), nullptr);
    EXPECT_EQ(TMLTOutlineItem::childAtPath(root), TMLTOutlineItem::booksItem());
    makeBook(QStringLiteral("/A/New/Deep"));
    TMLTOutlineItem *deep = TMLTOutlineItem::insertChildAtPath(at(QStringLiteral("/A/New/Deep")));
    ASSERT_TRUE(deep);
    EXPECT_EQ(deep->parent()->parent(), a);
    EXPECT_EQ(a->titlesOfChildren().size(), 2);
}

TEST_F(Outline, customOrderPutsNewOnesFirst)
{
    for (const char *name : {"a", "b", "c", "d"}) makeBook(u'/' + QString::fromLatin1(name));
    saveCustomSortOrder(root, {QStringLiteral("d"), QStringLiteral("b")}, {});
    tm_setProperty(root, QStringLiteral("custom"), QStringLiteral("sortOrderForNotes"));
    EXPECT_EQ(books(), QStringLiteral("a c d b"));
    EXPECT_TRUE(TMLTOutlineItem::booksItem()->customSortSelected());
}

TEST_F(Outline, renameSortsAnew)
{
    for (const char *name : {"a", "b", "c"}) makeBook(u'/' + QString::fromLatin1(name));
    books();
    TMLTOutlineItem::childAtPath(QStringLiteral("/a"))->changeRelativePath(QStringLiteral("z"));
    EXPECT_EQ(books(), QStringLiteral("b c z"));
}

TEST_F(Outline, smartBooks)
{
    const auto types = [] {
        QStringList list;
        for (const auto &child : *TMLTOutlineItem::smartBooksItem()->children())
            list.append(QString::number(child->smartBookType()));
        return list.join(u' ');
    };
    EXPECT_EQ(types(), QStringLiteral("7 8"));
    TMLTOutlineItem::rootItem()->resetAllChildren();
    makeBook(QStringLiteral("/In"));
    settings().setObject(QStringLiteral("contextsEnabled"), true);
    settings().setObject(QStringLiteral("showInboxAsSmartBook"), true);
    settings().setObject(QStringLiteral("defaultInbox"), QStringLiteral("/In"));
    EXPECT_EQ(types(), QStringLiteral("5 7 8 10"));
    EXPECT_EQ(TMLTOutlineItem::smartBookOfType(InboxBook)->fullPath(), at(QStringLiteral("/In")));
    TMLTOutlineItem::insertSmartChildOfType(SearchResultsBook);
    EXPECT_EQ(types(), QStringLiteral("2 5 7 8 10"));
    EXPECT_EQ(TMLTOutlineItem::titleForSmartBookOfType(12), QStringLiteral("UNTITLED SMART BOOK"));
}

TEST_F(Outline, hierarchyListsDocumentsThenBooks)
{
    write(QStringLiteral("/B/2.md"));
    write(QStringLiteral("/B/1.md"));
    write(QStringLiteral("/a.md"));
    makeBook(QStringLiteral("/pack.key"));
    QStringList below;
    for (const QString &path : tm_sortedListOfAllItemsInHierarchy(root)) below.append(path.mid(root.size()));
    EXPECT_EQ(below.join(u' '), QStringLiteral("/a.md /pack.key /B/1.md /B/2.md"));
}

TEST_F(Outline, onlyTheDeepestExpandedPathsAreKept)
{
    saveExpandedPaths({QStringLiteral("TMSmartBooksCollapsed"), QStringLiteral("/r/A"), QStringLiteral("/r/A/B"),
                       QStringLiteral("/r/C")});
    EXPECT_EQ(savedExpandedPaths(),
              (QStringList{QStringLiteral("TMSmartBooksCollapsed"), QStringLiteral("/r/A/B"), QStringLiteral("/r/C")}));
    saveDocumentsToOpenOnStartup({{QStringLiteral("/r/a.md"), QStringLiteral("1"), true, {}, QStringLiteral("0")}});
    EXPECT_EQ(takeDocumentsToOpenOnStartup().size(), 1);
    EXPECT_TRUE(documentsToOpenOnStartup().isEmpty());
    EXPECT_EQ(savedExpandedPaths().size(), 3);
}

TEST_F(Outline, documentListOfABook)
{
    for (const char *name : {"b.md", "a.md", "c.md"}) write(QStringLiteral("/B/") + QString::fromLatin1(name));
    makeBook(QStringLiteral("/B/Sub"));
    write(QStringLiteral("/B/c.md.plist"));
    tm_pinToTop(at(QStringLiteral("/B/c.md")));
    TMLTDocumentListViewController list;
    const auto shown = [&] {
        list.setSource({at(QStringLiteral("/B")), OrdinaryBook, {}});
        list.getDocumentsInFolder();
        QStringList titles;
        for (const QVariantMap &row : list.documentsList) titles.append(row.value(QStringLiteral("title")).toString());
        return titles.join(u' ');
    };
    EXPECT_EQ(shown(), QStringLiteral("c.md a.md b.md"));
    list.moveDocuments({2}, 0);
    list.selectSortOrder(3);
    EXPECT_EQ(shown(), QStringLiteral("b.md c.md a.md"));
    list.selectSortOrder(0);
    list.selectSortOrder(4);
    EXPECT_EQ(shown(), QStringLiteral("c.md b.md a.md"));
    list.searchFilter = QStringLiteral("A.");
    EXPECT_EQ(shown(), QStringLiteral("a.md"));
    settings().setObject(QStringLiteral("outlineIsCollapsed"), true);
    list.searchFilter.clear();
    shown();
    EXPECT_EQ(list.booksList.size(), 1);
}
