// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Notebook.h"

#include "foundation/Platform.h"
#include "library/ItemOperations.h"
#include "library/OutlineItem.h"
#include "library/Properties.h"
#include "organising/NotebookOrganiser.h"
#include "organising/contexts/ContextStores.h"
#include "organising/contexts/Contexts.h"

using namespace tomelet;

class Contexts : public tomelet::test::Notebook
{
protected:
    Contexts()
    {
        installNotebookOrganiser();
        settings().setObject(QStringLiteral("contextsEnabled"), true);
        settings().setObject(QStringLiteral("extractContextsAutomatically"), true);
    }
    QString tagged(const QString &path, const QStringList &words)
    {
        const QString full = write(path);
        tm_updateContextsRemoving(full, {}, words);
        return full;
    }
    QStringList itemsOf(const QString &word) const
    {
        QStringList items;
        for (const QString &path : tm_listOfAllItemsForTag(word)) items.append(path.mid(root.size()));
        return items;
    }
};

TEST_F(Contexts, wordsInTexts)
{
    write(QStringLiteral("/TMResources/Misc/ExcludedTags.txt"), "@never, @not\n#no");
    const struct
    {
        const char *text;
        const char *words;
    } rows[] = {
        {"@Home, @Office.", "@Home @Office"},
        {"(@Home) x@y.org ## head #", ""},
        {"@Home) @Home(x) @a[b]", "@Home @Home(x) @a[b]"},
        {"@@Home @ #", ""},
        {"- buy milk @done\n@done later", "@done"},
        {"- buy milk @done", ""},
        {"x\n```\n@code\n```\n@text", "@text"},
        {"@never @not #no #yes;z", "#yes"},
        {"@a @b @a", "@a @b"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(tm_extractTagsFromString(QString::fromUtf8(row.text)).join(u' '), QString::fromUtf8(row.words))
            << row.text;
    settings().setObject(QStringLiteral("contextMarkers"), QStringLiteral("^]"));
    EXPECT_EQ(tm_extractTagsFromString(QStringLiteral("^one ]two @three")).join(u' '), QStringLiteral("^one ]two"));
}

TEST_F(Contexts, listAndIndexFollowTheItems)
{
    const QString a = tagged(QStringLiteral("/a.md"), {QStringLiteral("@Home"), QStringLiteral("byhand")});
    tagged(QStringLiteral("/b.md"), {QStringLiteral("@Home")});
    EXPECT_EQ(itemsOf(QStringLiteral("@Home")).join(u' '), QStringLiteral("/a.md /b.md"));
    tm_setFavorite(a);
    tm_clearTag(a, QStringLiteral("@Home"));
    EXPECT_TRUE(tm_isFavorite(a));
    EXPECT_EQ(tm_verifiedTagList(a).join(u' '), QStringLiteral("byhand"));
    tm_clearTag(a, QStringLiteral("byhand"));
    EXPECT_EQ(tm_listOfAllAvailableTags().join(u' '), QStringLiteral("@Home byhand")) << "words without marker stay";
    tm_deleteItemAtPath(at(QStringLiteral("/b.md")));
    EXPECT_EQ(tm_listOfAllAvailableTags().join(u' '), QStringLiteral("byhand"));
    EXPECT_TRUE(smartBookShouldExist(FavoritesBook));
}

TEST_F(Contexts, textsAddAndNeverTakeAway)
{
    const QString a = tagged(QStringLiteral("/a.md"), {QStringLiteral("@byhand")});
    tm_collectTagsFromText(a, QStringLiteral("now @new"));
    tm_collectTagsFromText(a, QStringLiteral("nothing"));
    EXPECT_EQ(tm_verifiedTagList(a).join(u' '), QStringLiteral("@byhand @new"));
}

TEST_F(Contexts, movesKeepThePlaces)
{
    tagged(QStringLiteral("/B/1.md"), {QStringLiteral("@x")});
    tagged(QStringLiteral("/B/2.md"), {QStringLiteral("@x")});
    tagged(QStringLiteral("/C/3.md"), {QStringLiteral("@x")});
    ASSERT_TRUE(tm_moveItemToPath(at(QStringLiteral("/B/1.md")), at(QStringLiteral("/C/1.md"))));
    EXPECT_EQ(itemsOf(QStringLiteral("@x")).join(u' '), QStringLiteral("/C/1.md /B/2.md /C/3.md"));
    ASSERT_TRUE(tm_moveItemToPath(at(QStringLiteral("/C")), at(QStringLiteral("/D"))));
    EXPECT_EQ(itemsOf(QStringLiteral("@x")).join(u' '), QStringLiteral("/D/1.md /B/2.md /D/3.md"));
    const auto before = ContextStores().index;
    tm_changePathInTagDBToPath(at(QStringLiteral("/C")), at(QStringLiteral("/D")));
    EXPECT_EQ(ContextStores().index, before) << "the move is reported a second time";
}

TEST_F(Contexts, renamingAndDeleting)
{
    const QString a = write(QStringLiteral("/a.md"), "call @home, not @homeless @home");
    const QString h = write(QStringLiteral("/h.html"), "<title>@home</title><body><p>@home</p></body>");
    for (const QString &path : {a, h})
        tm_updateContextsRemoving(path, {}, {QStringLiteral("@home"), QStringLiteral("@b")});
    platform().ask = [](const Question &) { return 0; };
    tm_renameTagTo(QStringLiteral("@home"), QStringLiteral("@Haus"));
    EXPECT_EQ(read(QStringLiteral("/a.md")), "call @Haus, not @homeless @Haus");
    EXPECT_EQ(read(QStringLiteral("/h.html")), "<title>@home</title><body><p>@Haus</p></body>");
    EXPECT_EQ(tm_listOfAllAvailableTags().join(u' '), QStringLiteral("@Haus @b"));
    tm_renameTagTo(QStringLiteral("@Haus"), QStringLiteral("@b"), true);
    EXPECT_EQ(tm_listOfAllAvailableTags().join(u' '), QStringLiteral("@b"));
    EXPECT_EQ(tm_verifiedTagList(a).join(u' '), QStringLiteral("@b"));
    tm_excludeTag(QStringLiteral("@b"));
    EXPECT_EQ(tm_listOfAllAvailableTags(), QStringList());
    EXPECT_EQ(tm_extractTagsFromString(QStringLiteral("@b @c")).join(u' '), QStringLiteral("@c"));
}

TEST_F(Contexts, refreshingGivesWhatItemByItemWorkGives)
{
    for (int i = 0; i < 40; ++i)
        tagged(QStringLiteral("/B%1/n%2.md").arg(i % 4).arg(i),
               {QStringLiteral("@%1").arg(i % 3), QStringLiteral("#y")});
    tm_setFavorite(at(QStringLiteral("/B0/n0.md")));
    tm_setTag(at(QStringLiteral("/B1")), QStringLiteral("@book"));
    const auto sorted = [](QMap<QString, QStringList> index) {
        for (QStringList &entry : index) entry.sort();
        return index;
    };
    tm_collectTagsInPlist(at(QStringLiteral("/B1")));
    const auto byItem = sorted(ContextStores().index);
    // Stores keep whole seconds: what changed in the second of a collection is collected once more.
    platform().clock.fix(QDateTime::currentDateTimeUtc().addSecs(2));
    tm_refreshContexts();
    EXPECT_EQ(sorted(ContextStores().index), byItem);
    EXPECT_EQ(collectNewContexts(), 0);
}

TEST_F(Contexts, extractionFromAllDocumentsCanBeStopped)
{
    write(QStringLiteral("/a.md"), "call @Phone\n\n```\n@code\n```\n");
    write(QStringLiteral("/B/own.html"), "<!-- Generator: Tomelet --><body><p>at @Home <code>@code</code></p></body>");
    write(QStringLiteral("/B/foreign.html"), "<body><p>@Foreign</p></body>");
    write(QStringLiteral("/TMResources/Misc/x.md"), "@Resource\n");
    EXPECT_EQ(extractContextsFromDocuments([](qsizetype, qsizetype) { return false; }), 1);
    EXPECT_EQ(extractContextsFromDocuments(), 3);
    QStringList words = tm_listOfAllAvailableTags();
    words.sort();
    EXPECT_EQ(words.join(u' '), QStringLiteral("@Home @Phone"));
    EXPECT_EQ(itemsOf(QStringLiteral("@Phone")).join(u' '), QStringLiteral("/a.md"));
}
