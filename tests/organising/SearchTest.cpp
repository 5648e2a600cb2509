// SPDX-License-Identifier: GPL-3.0-or-later
// Searching: terms, what a hit is, the index against the plain scan, and an index that cannot be used.
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/Root.h"
#include "organising/search/FileIndex.h"
#include "organising/search/IndexTokens.h"
#include "organising/search/Query.h"
#include "organising/search/SearchIndex.h"
#include "organising/search/SearchResults.h"
#include "tests/support/Notebook.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <fstream>
#include <random>
#include <sqlite3.h>
#include <sys/resource.h>

namespace tomelet {

using namespace Qt::StringLiterals;

namespace {

TEST(SearchTerms, AreWordsAndQuotedPhrases)
{
    const struct
    {
        QString text;
        QStringList terms;
    } rows[] = {
        {u"one two"_s, {u"one"_s, u"two"_s}},
        {u"one \"two three\" four"_s, {u"one"_s, u"two three"_s, u"four"_s}},
        {u"«deux mots» trois"_s, {u"deux mots"_s, u"trois"_s}},
        {u"„zwei Worte“ und “two words”"_s, {u"zwei Worte"_s, u"und"_s, u"two words"_s}},
        {u"one \"open to the end"_s, {u"one"_s, u"open to the end"_s}},
        {u"a\"b c\"d"_s, {u"a"_s, u"b c"_s, u"d"_s}},
        {u"\" kept \""_s, {u" kept "_s}},
        {u"  \t "_s, {}},
        {u"\"\"\"“”«»"_s, {}},
        {u"NEAR(a AND b) * ^c"_s, {u"NEAR(a"_s, u"AND"_s, u"b)"_s, u"*"_s, u"^c"_s}},
    };
    for (const auto &row : rows)
        EXPECT_EQ(tm_arrayOfSearchTermsInString(row.text), row.terms) << row.text.toStdString();
}

bool found(const QString &term, const QString &text, SearchMode mode)
{
    const FoldedText folded = foldedForSearch(text);
    const bool inName = mode == SearchMode::Title;
    return matchesQuery(makeSearchQuery({term}, mode), inName ? folded.text : std::string(),
                        [&]() -> const FoldedText & { return folded; });
}

TEST(SearchHits, InContentBeginWhereAWordBegins)
{
    const struct
    {
        QString term;
        QString text;
        bool isFound;
    } rows[] = {
        {u"note"_s, u"My Notebook"_s, true},
        {u"book"_s, u"My Notebook"_s, false},
        {u"NOTE"_s, u"a note"_s, true},
        {u"resume"_s, u"Résumé"_s, true},
        {u"Résumé"_s, u"the resumes"_s, true},
        {u"strasse"_s, u"Hauptstraße, Straße"_s, true},
        {u"Άνθρωπος"_s, u"ο ανθρωποσ"_s, true},
        {u"fine"_s, u"a ﬁne day"_s, true},
        {u"soft"_s, u"so\u00adft"_s, true},
        {u"two words"_s, u"two\n\t words"_s, true},
        {u"two words"_s, u"two, words"_s, false},
        {u"two wor"_s, u"two words"_s, true},
        {u"wo words"_s, u"two words"_s, false},
        {u" note"_s, u"note"_s, true},
        {u" note"_s, u"(note)"_s, true},
        {u" note"_s, u"a footnote"_s, false},
        {u"note "_s, u"a note of"_s, true},
        {u"note "_s, u"a note."_s, false},
        {u" "_s, u"note"_s, false},
        {u"amour"_s, u"l’amour"_s, true},
        {u"com"_s, u"example.com"_s, true},
        {u"bar"_s, u"foo_bar"_s, false},
        {u"don't"_s, u"I don't know"_s, true},
        {u"C++"_s, u"in C++, too"_s, true},
        {u"#tag"_s, u"see #tags"_s, true},
        {u"#tag"_s, u"see tags"_s, false},
        {u"*"_s, u"a * b"_s, true},
        {u"*"_s, u"a b"_s, false},
        {u"wo?d"_s, u"word"_s, false},
        {u"学生"_s, u"我是学生。"_s, true},
        {u"東京"_s, u"私は東京都に住んでいます"_s, true},
        {u"京都"_s, u"私は東京都に住んでいます"_s, false},
        {u"ภาษา"_s, u"ฉันเรียนภาษาไทย"_s, true},
        {u"한국"_s, u"한국어"_s, true},
        {u"가"_s, u"각"_s, false},
        {u"3"_s, u"第3章"_s, true},
        {u"😀"_s, u"so 😀😀"_s, true},
    };
    for (const auto &row : rows)
        EXPECT_EQ(found(row.term, row.text, SearchMode::Content), row.isFound)
            << row.term.toStdString() << " in " << row.text.toStdString();
}

TEST(SearchHits, InNamesAreAnywhere)
{
    EXPECT_TRUE(found(u"book"_s, u"Mein Notébook.md"_s, SearchMode::Title));
    EXPECT_TRUE(found(u"otebo"_s, u"Mein Notébook.md"_s, SearchMode::Title));
    EXPECT_TRUE(found(u"n n"_s, u"Mein Notébook.md"_s, SearchMode::Title));
    EXPECT_FALSE(found(u" otebo"_s, u"Mein Notébook.md"_s, SearchMode::Title));
    EXPECT_FALSE(found(u"note book"_s, u"Mein Notébook.md"_s, SearchMode::Title));
    EXPECT_FALSE(matchesQuery(makeSearchQuery({}, SearchMode::Title), "name", {}));
}

// -- the index --------------------------------------------------------------------------------------------------------

class Search : public test::Notebook
{
protected:
    Search()
        : index(root, searchIndexFile())
    {}

    QStringList below(QStringList paths) const
    {
        for (QString &path : paths) path.remove(0, root.size());
        paths.sort();
        return paths;
    }
    QStringList hits(const QString &text, SearchMode mode = SearchMode::TitleAndContent, const QString &scope = {})
    {
        const auto paths = index.find(makeSearchQuery(tm_arrayOfSearchTermsInString(text), mode), root + scope);
        return paths ? below(*paths) : QStringList{u"no answer"_s};
    }
    QStringList scanned(const QString &text, SearchMode mode = SearchMode::TitleAndContent) const
    {
        return below(searchByWalk(root, makeSearchQuery(tm_arrayOfSearchTermsInString(text), mode), root));
    }
    void writeSome() const
    {
        write(u"/One.md"_s, "An apple a day.\n");
        write(u"/Book/Two.md"_s, "Pears and apples\n");
        write(u"/Book/Sub/Apple pie.txt"_s, "Flour\n");
    }

    SearchIndex index;
};

TEST_F(Search, ReadsWhatChangedAndForgetsWhatIsGone)
{
    writeSome();
    EXPECT_EQ(hits(u"apple"_s), QStringList{u"no answer"_s});
    EXPECT_EQ(index.update(root).read, 3);
    EXPECT_EQ(hits(u"apple"_s), (QStringList{u"/Book/Sub/Apple pie.txt"_s, u"/Book/Two.md"_s, u"/One.md"_s}));
    EXPECT_EQ(hits(u"apple"_s, SearchMode::Content), (QStringList{u"/Book/Two.md"_s, u"/One.md"_s}));
    EXPECT_EQ(hits(u"apple"_s, SearchMode::Title), QStringList{u"/Book/Sub/Apple pie.txt"_s});
    EXPECT_EQ(hits(u"apple"_s, SearchMode::TitleAndContent, u"/Book/Sub"_s), QStringList{u"/Book/Sub/Apple pie.txt"_s});
    EXPECT_EQ(hits(u"apple pear"_s), QStringList{u"/Book/Two.md"_s});
    EXPECT_EQ(index.update(root).read, 0);

    write(u"/One.md"_s, "An orange.\n");
    ASSERT_TRUE(QFile::rename(at(u"/Book"_s), at(u"/Bookshelf"_s)));
    const SearchIndex::Update update = index.update(root);
    EXPECT_EQ(update.read, 3);
    EXPECT_EQ(update.removed, 2);
    EXPECT_EQ(hits(u"apple"_s), (QStringList{u"/Bookshelf/Sub/Apple pie.txt"_s, u"/Bookshelf/Two.md"_s}));
    EXPECT_EQ(hits(u"orange"_s), QStringList{u"/One.md"_s});
    EXPECT_EQ(hits(u"apple"_s, SearchMode::TitleAndContent, u"/Book"_s), QStringList());

    ASSERT_TRUE(QFile::remove(at(u"/One.md"_s)));
    EXPECT_EQ(index.update(at(u"/One.md"_s)).removed, 1);
    EXPECT_EQ(hits(u"orange"_s), QStringList());
}

TEST_F(Search, LooksIntoMailsAndPagesAndPassesOverTheRest)
{
    write(u"/Page.html"_s,
          "<html><head><title>x</title></head><body><p class=\"hidden\">Visible&nbsp;words</p></body></html>");
    write(u"/Mail.eml"_s, "From: Ann Example <ann@example.org>\nSubject: =?UTF-8?Q?Gr=C3=BC=C3=9Fe?=\n"
                          "Content-Type: text/plain\n\nSee you on Monday.\n");
    write(u"/data.bin"_s, QByteArray("words\0words", 11));
    write(u"/Old.txt"_s, "caf\x8e words\n"); // Mac Roman
    write(u"/.hidden.md"_s, "words");
    write(u"/TMResources/Misc/words.txt"_s, "words");
    write(u"/Page.html.plist"_s, "words");
    index.update(root);
    EXPECT_EQ(hits(u"words"_s), (QStringList{u"/Old.txt"_s, u"/Page.html"_s}));
    EXPECT_EQ(hits(u"hidden"_s), QStringList());
    EXPECT_EQ(hits(u"cafe"_s), QStringList{u"/Old.txt"_s});
    EXPECT_EQ(hits(u"grusse monday ann"_s), QStringList{u"/Mail.eml"_s});
    EXPECT_EQ(hits(u"data"_s), QStringList{u"/data.bin"_s});
}

/// Makes texts out of few words and signs, so that queries made of the same find something.
class Babel
{
public:
    QString text(int pieces)
    {
        QString result;
        while (pieces-- > 0) result += pick(words) + pick(gaps);
        return result;
    }
    QString query()
    {
        QString result = text(1 + int(m_random() % 3));
        if (m_random() % 3 == 0) result = pick(gaps) + result;
        if (m_random() % 2) result.chop(qsizetype(m_random() % 3));
        switch (m_random() % 5) {
        case 0: return u'"' + result + u'"';
        case 1: return u'«' + result + u"» "_s + text(1);
        case 2: return u'“' + result;
        default: return result;
        }
    }

private:
    const QString &pick(const QStringList &list) { return list[qsizetype(m_random() % quint64(list.size()))]; }

    const QStringList words{u"a"_s,
                            u"an"_s,
                            u"and"_s,
                            u"Andes"_s,
                            u"été"_s,
                            u"ÉTÉ"_s,
                            u"Straße"_s,
                            u"don't"_s,
                            u"foo_bar"_s,
                            u"x1"_s,
                            u"1"_s,
                            u"3.14"_s,
                            u"東京都"_s,
                            u"京都"_s,
                            u"学生是学生"_s,
                            u"カタカナ"_s,
                            u"ภาษาไทย"_s,
                            u"한국어"_s,
                            u"naïve"_s,
                            u"ﬁn"_s,
                            u"i̇"_s,
                            u"wordlongerthananythingthatfitsintoonetoken"_s,
                            u"wordlongerthananythingthatfitsintoonetokens"_s,
                            u"😀"_s,
                            u"NEAR"_s,
                            u"AND"_s,
                            u"שָׁלוֹם"_s};
    const QStringList gaps{
        u" "_s,           u" "_s,  u" "_s,  u" "_s,  u""_s,       u"\n"_s,     u", "_s,     u". "_s,
        u" - "_s,         u"* "_s, u" #"_s, u" @"_s, u"\" "_s,    u"'"_s,      u"——————"_s, u"-----------"_s,
        u"-=-=-=-=-=-"_s, u"++"_s, u" ("_s, u"**"_s, u"\u00a0"_s, u"\u3000"_s, u"…"_s};
    std::mt19937_64 m_random{5};
};

TEST_F(Search, TheIndexFindsWhatAScanFinds)
{
    Babel babel;
    for (int i = 0; i < 60; ++i)
        write(u"/Book %1/%2.md"_s.arg(i % 7).arg(babel.text(1).simplified().remove(u'/') + QString::number(i)),
              babel.text(3 + i % 20).toUtf8());
    ASSERT_TRUE(index.update(root).complete);
    qsizetype total = 0;
    for (int i = 0; i < 1500; ++i) {
        const QString query = babel.query();
        for (const SearchMode mode : {SearchMode::TitleAndContent, SearchMode::Title, SearchMode::Content}) {
            const QStringList expected = scanned(query, mode);
            ASSERT_EQ(hits(query, mode), expected) << query.toStdString() << " in mode " << int(mode);
            total += expected.size();
        }
    }
    EXPECT_GT(total, 5000);
}

// With few documents that hold the word their texts are read, with many all tokens of such ends are gathered.
TEST_F(Search, FindsWhatStandsBehindFrequentWords)
{
    QStringList expected;
    const int many = 8500; // more than a table of the index takes at a stretch
    makeFolder(at(u"/Book"_s));
    for (int i = 0; i < many; ++i) {
        const QString path = u"/Book/%1.md"_s.arg(i);
        // So many are not worth a safe write each.
        std::ofstream(at(path).toStdString()) << (i % 100 == 0 ? "a frequent.word" : "a frequent, word");
        if (i % 100 == 0) expected.append(path);
    }
    expected.sort();
    ASSERT_TRUE(index.update(root).complete);
    EXPECT_EQ(hits(u"frequent."_s), expected);
    EXPECT_EQ(hits(u"word frequent."_s), expected);
    EXPECT_EQ(hits(u"\"frequent, w\""_s).size(), many - expected.size());
    EXPECT_EQ(hits(u"\"a frequent.w\""_s), expected);
    EXPECT_EQ(hits(u"\"frequent \""_s), QStringList());
}

// What is not told by tokens has to be read from the documents, which takes a thousand times as long.
TEST(SearchTokens, TellMostTermsWithoutReadingDocuments)
{
    for (const QString &term :
         {u"word"_s,   u"two words"_s,   u"#tag"_s,    u"("_s,           u"; #"_s,       u"####"_s,
          u"# Head"_s, u". 2."_s,        u", \"so"_s,  u"x = y; z"_s,    u"- ["_s,       u"東京"_s,
          u"a"_s,      u"with a"_s,      u"|---|--"_s, u"-----------"_s, u"frequent."_s, u"the "_s,
          u"the ("_s,  u"-=-=-=-=-=-"_s, u"longer "_s, u"much longer "_s})
        EXPECT_TRUE(contentLookUps(foldedForSearch(term)).exact) << term.toStdString();
    EXPECT_FALSE(contentLookUps(foldedForSearch(u"-=-=-=-=-=-=-=-=-"_s)).exact);
}

TEST_F(Search, AVeryLongQueryIsAnsweredToo)
{
    QString text;
    for (int i = 0; i < 500; ++i) text += u"word%1 "_s.arg(i);
    write(u"/Long.md"_s, text.toUtf8());
    write(u"/Short.md"_s, text.left(2000).toUtf8());
    index.update(root);
    EXPECT_EQ(hits(text), QStringList{u"/Long.md"_s});
    EXPECT_EQ(hits(u'"' + text + u'"'), QStringList{u"/Long.md"_s});
    EXPECT_EQ(hits(u"word1"_s).size(), 2);
}

// -- an index that cannot be used -------------------------------------------------------------------------------------

TEST_F(Search, ADamagedIndexIsThrownAwayAndMadeAnew)
{
    writeSome();
    for (const bool garbage : {true, false}) {
        index.update(root);
        QFile file(searchIndexFile());
        {
            SearchIndex other(root, searchIndexFile());
            ASSERT_TRUE(file.open(QIODevice::ReadWrite));
            if (garbage) file.write(QByteArray(8192, 'x'));
            else file.resize(file.size() / 2);
            file.close();
            EXPECT_FALSE(other.find(makeSearchQuery({u"apple"_s}, SearchMode::Content), root)) << garbage;
            EXPECT_EQ(other.update(root).read, 3) << garbage;
        }
        SearchIndex later(root, searchIndexFile());
        EXPECT_EQ(later.update(root).read, 0);
        EXPECT_EQ(later.find(makeSearchQuery({u"apple"_s}, SearchMode::Content), root).value_or(QStringList()).size(),
                  2);
    }
}

TEST_F(Search, AnIndexOfAnotherVersionIsMadeAnew)
{
    writeSome();
    index.update(root);
    sqlite3 *other = nullptr;
    ASSERT_EQ(sqlite3_open(QFile::encodeName(searchIndexFile()).constData(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "PRAGMA user_version=1", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(other);
    SearchIndex later(root, searchIndexFile());
    EXPECT_FALSE(later.find(makeSearchQuery({u"apple"_s}, SearchMode::Content), root));
    EXPECT_EQ(later.update(root).read, 3);
}

TEST_F(Search, AnIndexThatAnotherProgramHoldsIsLeftAlone)
{
    writeSome();
    index.update(root);
    write(u"/Three.md"_s, "More apples\n");
    sqlite3 *other = nullptr;
    ASSERT_EQ(sqlite3_open(QFile::encodeName(searchIndexFile()).constData(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    const SearchIndex::Update update = index.update(root);
    EXPECT_FALSE(update.complete);
    EXPECT_FALSE(update.problem.isEmpty());
    EXPECT_EQ(scanned(u"apple"_s).size(), 4);
    sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(other);
    EXPECT_EQ(index.update(root).read, 1);
    EXPECT_EQ(hits(u"apple"_s).size(), 4);
}

TEST_F(Search, AFullDiskLeavesNoHalfIndex)
{
    writeSome();
    struct rlimit before
    {};
    getrlimit(RLIMIT_FSIZE, &before);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const struct rlimit little
    {
        20000, before.rlim_max
    };
    setrlimit(RLIMIT_FSIZE, &little);
    const SearchIndex::Update update = index.update(root);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(update.complete);
    EXPECT_FALSE(update.problem.isEmpty());
    EXPECT_FALSE(itemExists(searchIndexFile()));
    EXPECT_EQ(index.update(root).read, 3);
}

// -- the index of a running program -----------------------------------------------------------------------------------

class LiveSearch : public Search
{
protected:
    // What the callback gets, as it comes through the event loop.
    QStringList asked(FileIndex &files, const QString &text) const
    {
        bool answered = false;
        QStringList result;
        files.search(makeSearchQuery(tm_arrayOfSearchTermsInString(text), SearchMode::TitleAndContent), root,
                     [&](const QStringList &paths) -> FileIndex::Shown {
                         return [&, paths] {
                             answered = true;
                             result = below(paths);
                         };
                     });
        QElapsedTimer timer;
        for (timer.start(); !answered && timer.elapsed() < 20000;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        return answered ? result : QStringList{u"no answer"_s};
    }
};

TEST_F(LiveSearch, FollowsRoutedChanges)
{
    writeSome();
    FileIndex files;
    files.present();
    EXPECT_EQ(asked(files, u"apple"_s).size(), 3); // by the index or by a walk
    files.settle();

    notifications().postPath(u"TMLTFileModifiedOnDiskNotification"_s, write(u"/New.md"_s, "apples"));
    ASSERT_TRUE(QFile::rename(at(u"/Book"_s), at(u"/Shelf"_s)));
    notifications().post(u"TMLTFileMovedNotification"_s,
                         {{u"originalPath"_s, at(u"/Book"_s)}, {u"newPath"_s, at(u"/Shelf"_s)}});
    ASSERT_TRUE(QFile::remove(at(u"/One.md"_s)));
    notifications().postPath(u"TMLTFileDeletedFromDiskNotification"_s, at(u"/One.md"_s));
    files.settle();
    EXPECT_EQ(asked(files, u"apple"_s), (QStringList{u"/New.md"_s, u"/Shelf/Sub/Apple pie.txt"_s, u"/Shelf/Two.md"_s}));
    EXPECT_EQ(hits(u"apple"_s).size(), 3);
}

TEST_F(LiveSearch, AStoppedSearchNeverAnswers)
{
    writeSome();
    FileIndex files;
    files.present();
    files.search(makeSearchQuery({u"apple"_s}, SearchMode::Content), root,
                 [](const QStringList &) -> FileIndex::Shown { return [] { FAIL(); }; });
    EXPECT_EQ(asked(files, u"flour"_s), QStringList{u"/Book/Sub/Apple pie.txt"_s});
    files.stopSearch();
    EXPECT_FALSE(files.isSearching());
}

} // namespace

} // namespace tomelet
