// SPDX-License-Identifier: GPL-3.0-or-later
// The search field above the list, the results as a smart book, and what a listing throws away or leaves out.
#include "organising/lists/ListSearch.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/OutlineItem.h"
#include "library/Root.h"
#include "organising/NotebookOrganiser.h"
#include "organising/contexts/Contexts.h"
#include "organising/lists/DocumentList.h"
#include "organising/search/FileIndex.h"
#include "organising/search/SearchResults.h"
#include "tests/support/Notebook.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>

namespace tomelet {

using namespace Qt::StringLiterals;

namespace {

QStringList titlesOf(const TMLTDocumentListViewController &list)
{
    QStringList titles;
    for (const QVariantMap &row : list.documentsList) titles.append(row.value(u"title"_s).toString());
    return titles;
}

class FieldView final : public SearchFieldView
{
public:
    explicit FieldView(TMLTDocumentListViewController &list)
        : m_list(list)
    {}
    void reloadList() override { m_list.getDocumentsInFolder(); }
    void showStatus(const QString &text) override { status = text; }
    void showSearchOptions() override { showsOptions = true; }
    void hideSearchOptions() override { showsOptions = false; }

    QString status;
    bool showsOptions = true;

private:
    TMLTDocumentListViewController &m_list;
};

class Field : public test::Notebook
{
protected:
    Field()
    {
        write(u"/Book/Pear.md"_s, "An apple\n");
        write(u"/Book/Plum.md"_s, "A stone\n");
        write(u"/Other/Apple.md"_s, "A core\n");
        list.setSource({at(u"/Book"_s), OrdinaryBook, {}});
        list.getDocumentsInFolder();
        index.present();
        index.settle();
        settings().setObject(u"searchAllBooks"_s, true);
    }

    void type(const QString &text) { search.searchFieldDidChange(text); }
    void waitForResults()
    {
        platform().delayedCalls.drain();
        QElapsedTimer timer;
        for (timer.start(); index.isSearching() && timer.elapsed() < 20000;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }

    TMLTDocumentListViewController list;
    FileIndex index;
    FieldView view{list};
    ListSearch search{list, index, view};
};

TEST_F(Field, FiltersByNameAndThenSearchesAndLeadsBack)
{
    type(u"pEA"_s);
    EXPECT_EQ(titlesOf(list), QStringList{u"Pear.md"_s});
    EXPECT_FALSE(view.showsOptions);
    type(u"apple"_s);
    EXPECT_EQ(titlesOf(list), QStringList());
    EXPECT_EQ(list.source().smartType, OrdinaryBook);
    waitForResults();
    EXPECT_EQ(list.source().smartType, SearchResultsBook);
    EXPECT_EQ(titlesOf(list), (QStringList{u"Apple.md"_s, u"Pear.md"_s}));
    EXPECT_EQ(search.header(), u"Search: apple - 2 Hits"_s);
    EXPECT_TRUE(view.showsOptions);
    EXPECT_EQ(view.status, QString());
    EXPECT_TRUE(TMLTOutlineItem::smartBookOfType(SearchResultsBook));

    ASSERT_TRUE(QFile::remove(at(u"/Other/Apple.md"_s)));
    search.reloadResults();
    EXPECT_EQ(titlesOf(list).size(), 2); // in the background
    waitForResults();
    EXPECT_EQ(titlesOf(list), QStringList{u"Pear.md"_s});

    type(u"apple pie"_s);
    waitForResults();
    EXPECT_EQ(titlesOf(list), QStringList());
    EXPECT_EQ(search.header(), u"Search: apple pie - 0 Hits"_s);
    type({});
    EXPECT_EQ(list.source().book, at(u"/Book"_s));
    EXPECT_EQ(titlesOf(list), (QStringList{u"Pear.md"_s, u"Plum.md"_s}));
    EXPECT_TRUE(view.showsOptions);
}

TEST_F(Field, SearchesOneBookWhereTheSettingSaysSo)
{
    settings().setObject(u"searchAllBooks"_s, {});
    search.startSpotlightSearchWithString(u"apple"_s);
    EXPECT_EQ(view.status, u"Searching..."_s);
    waitForResults();
    EXPECT_EQ(titlesOf(list), QStringList{u"Pear.md"_s});
    EXPECT_EQ(search.header(), u"Search: apple (Book) - 1 Hits"_s);
    search.startSpotlightSearchWithString(u"core"_s); // still below the book in which the search began
    waitForResults();
    EXPECT_EQ(titlesOf(list), QStringList());
}

TEST_F(Field, OnlyFiltersInOtherSmartBooks)
{
    list.setSource({{}, RecentItemsBook, {}});
    type(u"apple"_s);
    platform().delayedCalls.drain();
    EXPECT_FALSE(index.isSearching());
    EXPECT_EQ(list.searchFilter, u"apple"_s);
    EXPECT_EQ(list.source().smartType, RecentItemsBook);

    notifications().post(u"TMStartSpotlightSearchNotification"_s, {{u"term"_s, u"core"_s}});
    waitForResults();
    EXPECT_EQ(titlesOf(list), QStringList{u"Apple.md"_s});
}

TEST_F(Field, ModesComeFromTheSettings)
{
    settings().setObject(u"searchContent"_s, true);
    search.startSpotlightSearchWithString(u"apple"_s);
    waitForResults();
    EXPECT_EQ(titlesOf(list), QStringList{u"Pear.md"_s});
    settings().setObject(u"searchTitle"_s, true); // goes first
    search.startSpotlightSearchWithString(u"apple"_s);
    waitForResults();
    EXPECT_EQ(titlesOf(list), QStringList{u"Apple.md"_s});
}

class Listing : public test::Notebook
{
protected:
    QStringList listed(const ListSource &source) const
    {
        TMLTDocumentListViewController list;
        list.setSource(source);
        list.getDocumentsInFolder();
        return titlesOf(list);
    }
    void writeProperties(const QString &path, const QVariantMap &properties) const { writeStore(at(path), properties); }
};

TEST_F(Listing, ResultsSurviveAndLeaveOutWhatIsGone)
{
    storeSearchResults({write(u"/b.md"_s), write(u"/a.md"_s), at(u"/gone.md"_s), write(u"/a.md.plist"_s)});
    EXPECT_EQ(lastSearchResults().size(), 3);
    EXPECT_EQ(listed({{}, SearchResultsBook, {}}), (QStringList{u"a.md"_s, u"b.md"_s}));
    settings().setObject(u"searchResultsSortDescending"_s, true);
    EXPECT_EQ(listed({{}, SearchResultsBook, {}}), (QStringList{u"b.md"_s, u"a.md"_s}));
    // The order of one call.
    TMLTDocumentListViewController list;
    list.setSource({{}, SearchResultsBook, {}});
    list.sortAscending = true;
    list.getDocumentsInFolder();
    EXPECT_EQ(titlesOf(list), (QStringList{u"a.md"_s, u"b.md"_s}));
    list.searchFilter = u"B"_s;
    list.getDocumentsInFolder();
    EXPECT_EQ(titlesOf(list), QStringList{u"b.md"_s});
}

TEST_F(Listing, FilterFindsNamesInEitherNormalForm)
{
    const QStringList names{u"\u00dcbung.md"_s, u"U\u0308bersicht.md"_s};
    for (const QString &name : names) write(u'/' + name);
    TMLTDocumentListViewController list;
    list.setSource({root, OrdinaryBook, {}});
    for (const QString &filter : {u"\u00fcb"_s, u"u\u0308B"_s}) {
        list.searchFilter = filter;
        list.getDocumentsInFolder();
        EXPECT_EQ(list.documentsList.size(), 2) << filter.toStdString();
    }
}

TEST_F(Listing, MovesOrphanedPropertyFilesToTheTrash)
{
    write(u"/Here.md"_s);
    writeProperties(u"/Here.md.plist"_s, {{u"Description"_s, u"kept"_s}});
    writeProperties(u"/Gone.md.plist"_s, {{u"Description"_s, u"orphan"_s}});
    writeProperties(u"/Own.data.plist"_s, {{u"Something"_s, u"of its own"_s}});
    writeProperties(u"/Plain.plist"_s, {{u"Description"_s, u"no document's name"_s}});
    writeProperties(u"/Remote.md.plist"_s, {{u"Description"_s, u"not downloaded"_s}});
    write(u"/.Remote.md.icloud"_s);
    writeProperties(u"/BookProperties.plist"_s, {{u"Description"_s, u"of the book"_s}});
    settings().setObject(u"iCloudSyncProgress"_s, 1);
    EXPECT_EQ(listed({root, OrdinaryBook, {}}), QStringList{u"Here.md"_s});
    EXPECT_TRUE(exists(u"/Gone.md.plist"_s));
    settings().setObject(u"iCloudSyncProgress"_s, {});
    EXPECT_EQ(listed({root, OrdinaryBook, {}}), QStringList{u"Here.md"_s});
    EXPECT_FALSE(exists(u"/Gone.md.plist"_s));
    for (const auto &kept : {u"/Here.md.plist"_s, u"/Own.data.plist"_s, u"/Plain.plist"_s, u"/Remote.md.plist"_s,
                             u"/BookProperties.plist"_s})
        EXPECT_TRUE(exists(kept)) << kept.toStdString();
}

TEST_F(Listing, OfContextsAndOfTheRootWithoutTheOutline)
{
    installNotebookOrganiser();
    makeBook(u"/TMResources/Misc"_s);
    settings().setObject(u"contextsEnabled"_s, true);
    const QString note = write(u"/Box/note.md"_s);
    tm_updateContextsRemoving(note, {}, {u"@work"_s, u"@home"_s});
    tm_setTag(note, u"_TMFAV"_s);
    const ListSource contexts{{}, ContextsBook, {}};
    EXPECT_EQ(listed(contexts), (QStringList{u"@home"_s, u"@work"_s}));
    settings().setObject(u"contextsSortOrder"_s, u"custom"_s);
    EXPECT_EQ(listed(contexts), (QStringList{u"@work"_s, u"@home"_s}));
    settings().setObject(u"contextsSortOrder"_s, u"title"_s);
    settings().setObject(u"contextsSortDescending"_s, true);
    EXPECT_EQ(listed(contexts), (QStringList{u"@work"_s, u"@home"_s}));

    TMLTDocumentListViewController list;
    const auto rows = [&list] {
        QStringList titles;
        for (const QVariantMap &row : list.rows()) titles.append(row.value(u"title"_s).toString());
        return titles.join(u", "_s);
    };
    list.setSource({root, OrdinaryBook, {}});
    list.getDocumentsInFolder();
    EXPECT_EQ(rows(), QString());
    settings().setObject(u"outlineIsCollapsed"_s, true);
    list.getDocumentsInFolder();
    EXPECT_EQ(rows(), u"Favorites, Recent Items, Recently Modified, Contexts, Box"_s);
    EXPECT_EQ(list.sourceOf(list.rows()[0]).smartType, FavoritesBook);
    EXPECT_EQ(list.sourceOf(list.rows()[4]).book, at(u"/Box"_s));
    list.setSource({at(u"/Box"_s), OrdinaryBook, {}});
    list.getDocumentsInFolder();
    EXPECT_EQ(rows(), u"note.md"_s);
    EXPECT_EQ(list.enclosingSource().book, root);
    list.setSource({{}, ContextBook, {u"@home"_s}});
    EXPECT_EQ(list.enclosingSource().smartType, ContextsBook);
}

TEST_F(Listing, HidesDoneTasksAndSaysSo)
{
    installNotebookOrganiser();
    const QString book = makeBook(u"/Tasks"_s);
    for (const auto &[name, state] : {std::pair(u"a.md"_s, u"done"_s), {u"b.md"_s, u"canceled"_s}})
        write(u"/Tasks/"_s + name);
    writeStore(book + u"/TMTasklistDetails.plist"_s,
               QVariantMap{{u"a.md"_s, QVariantMap{{u"State"_s, u"done"_s}}},
                           {u"b.md"_s, QVariantMap{{u"State"_s, u"canceled"_s}}}});
    settings().setObject(u"hideDoneTasks"_s, true);
    TMLTDocumentListViewController list;
    list.setSource({book, OrdinaryBook, {}});
    list.getDocumentsInFolder();
    EXPECT_EQ(list.documentsList.size(), 0);
    EXPECT_TRUE(list.emptyText().startsWith(u" 2 Done Tasks"_s));
    tm_setTag(at(u"/Tasks/a.md"_s), u"@home"_s);
    tm_setTag(write(u"/note.md"_s), u"@home"_s);
    EXPECT_EQ(listed({{}, ContextBook, {u"@home"_s}}), QStringList{u"note.md"_s});
    settings().setObject(u"hideDoneTasks"_s, {});
    EXPECT_EQ(listed({{}, ContextBook, {u"@home"_s}}).size(), 2);
    list.getDocumentsInFolder();
    EXPECT_EQ(list.documentsList.size(), 2);
    EXPECT_EQ(list.numberOfHiddenDoneTasks, 0);
}

} // namespace

} // namespace tomelet
