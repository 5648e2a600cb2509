// SPDX-License-Identifier: GPL-3.0-or-later
// What is completed in a plain text, and what links in it lead to.
#include "editor/Completion.h"
#include "editor/LibraryNames.h"
#include "editor/TextLinks.h"
#include "foundation/Platform.h"
#include "library/Properties.h"
#include "library/RecentItems.h"
#include "organising/contexts/Contexts.h"
#include "tests/support/Notebook.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

using namespace tomelet;

namespace {

class Completion : public tomelet::test::Notebook
{
protected:
    Completion()
    {
        settings().setObject(QStringLiteral("contextsEnabled"), true);
        settings().setObject(QStringLiteral("extractContextsAutomatically"), true);
    }
    // "|" marks the caret.
    static std::optional<CompletionPlace> placeIn(QString line)
    {
        const qsizetype caret = line.indexOf(u'|');
        return completionPlace(line.remove(caret, 1), caret);
    }
    [[nodiscard]] QStringList offered(const QString &line, const QString &book) const
    {
        const auto place = placeIn(line);
        if (!place) return {};
        return completionsFor(completionCandidates(*place, book, book + QStringLiteral("/Note.md")), *place);
    }
    static QString completed(QString text, const QString &completion, bool isWhole = true)
    {
        const qsizetype caret = text.indexOf(u'|');
        text.remove(caret, 1);
        const auto place = completionPlace(text, caret);
        if (!place) return QStringLiteral("nowhere");
        EditedText edited(text, {caret, 0});
        complete(edited, *place, completion, isWhole);
        return QString(edited.text()).insert(edited.selection().location, u'|');
    }
};

} // namespace

TEST_F(Completion, placesAreFoundByWhatStandsBeforeTheCaret)
{
    struct Row
    {
        const char *line;
        int kind; ///< -1 for nowhere
        const char *typed;
    };
    const Row rows[] = {
        {"see [[No|", 0, "No"},
        {"see [[No|]]", 0, "No"},
        {"[[a]] and [[b/c d|", 0, "b/c d"},
        {"[[|", 0, ""},
        {"[[a]]|", -1, ""},
        {"[a|", -1, ""},
        {"call @ho|", 1, "@ho"},
        {"@|", 1, "@"},
        {"a@ho|", -1, ""},
        {"@@ho|", -1, ""},
        {"> %no|", 2, "no"},
        {">%|", 2, ""},
        {"> %note% text|", -1, ""},
        {"a > %no|", -1, ""},
        {"[word](class:im|)", 2, "im"},
        {"plain|", -1, ""},
    };
    for (const Row &row : rows) {
        const auto place = placeIn(QString::fromLatin1(row.line));
        ASSERT_EQ(place.has_value(), row.kind >= 0) << row.line;
        if (!place) continue;
        EXPECT_EQ(int(place->kind), row.kind) << row.line;
        EXPECT_EQ(place->typed, QString::fromLatin1(row.typed)) << row.line;
    }
    const QString far = QString(100000, u'x') + QStringLiteral(" [[No");
    EXPECT_EQ(completionPlace(far, far.size())->start, 100003);
}

TEST_F(Completion, pathsAreThoseOfOneFolderAndTheRecentOnes)
{
    for (const char *name :
         {"/Work/Note.md", "/Work/Notes 10.md", "/Work/Notes 9.md", "/Work/Other.txt", "/Work/North/In.md",
          "/Work/.hidden.md", "/Work/Note.md.plist", "/Home/Nothing.md", "/Home/No [x].md", "/Nowhere.md"})
        write(QString::fromLatin1(name));
    tm_addToRecentItems(at(QStringLiteral("/Home/Nothing.md")));
    tm_addToRecentItems(at(QStringLiteral("/Work/Notes 9.md")));
    const QString book = at(QStringLiteral("/Work"));
    EXPECT_EQ(offered(QStringLiteral("[[no|"), book),
              (QStringList{QStringLiteral("North/"), QStringLiteral("Note.md"), QStringLiteral("Notes 9.md"),
                           QStringLiteral("Notes 10.md"), QStringLiteral("../Home/Nothing.md")}));
    EXPECT_EQ(offered(QStringLiteral("[[North/|"), book), QStringList(QStringLiteral("North/In.md")));
    EXPECT_EQ(offered(QStringLiteral("[[../home/|"), book), QStringList());
    EXPECT_EQ(offered(QStringLiteral("[[../Home/n|"), book), QStringList(QStringLiteral("../Home/Nothing.md")));
    EXPECT_EQ(offered(QStringLiteral("[[/No|"), book), QStringList(QStringLiteral("/Nowhere.md")));
    EXPECT_EQ(offered(QStringLiteral("[[Note.md|"), book), QStringList());
    EXPECT_EQ(offered(QStringLiteral("[[../../|"), book), QStringList()); // nothing from outside
}

TEST_F(Completion, documentsOfTheWholeNotebookAreListedAnewWhenSomeCameOrWent)
{
    LibraryNames names;
    int listings = 0;
    const auto found = [&](int wanted) {
        names.want([&] { ++listings; });
        QElapsedTimer clock;
        for (clock.start(); listings < wanted && clock.elapsed() < 5000;) QCoreApplication::processEvents();
        EXPECT_EQ(listings, wanted);
        return names.beginningWith(QStringLiteral("NOTE"), 3).join(u'|');
    };
    const auto tell = [this](const char *notification, const char *name) {
        notifications().postPath(QString::fromLatin1(notification), at(QString::fromLatin1(name)));
    };
    for (const char *name : {"/a/Note.md", "/a/b/nOte 2.txt", "/TMResources/Note.css", "/c/Note.md", "/d/note 9.md"})
        write(QString::fromLatin1(name));
    EXPECT_EQ(found(1), QStringLiteral("/a/b/nOte 2.txt|/d/note 9.md|/a/Note.md"));
    tell("TMLTFileModifiedOnDiskNotification", "/a/Note.md"); // written again
    tell("TMLTFileModifiedOnDiskNotification", "/a/Note.md.plist");
    tell("TMLTFileDeletedFromDiskNotification", "/e");
    (void)found(1);
    QDir(at(QStringLiteral("/d"))).removeRecursively();
    tell("TMLTFileDeletedFromDiskNotification", "/d");
    EXPECT_EQ(found(2), QStringLiteral("/a/b/nOte 2.txt|/a/Note.md|/c/Note.md"));
    write(QStringLiteral("/a/Note 1.md"));
    tell("TMLTFileModifiedOnDiskNotification", "/a/Note 1.md");
    EXPECT_EQ(found(3), QStringLiteral("/a/Note 1.md|/a/b/nOte 2.txt|/a/Note.md"));
    EXPECT_EQ(completionsFromLibrary({QStringLiteral("/a/b/x.md"), QStringLiteral("/x].md")}, at(QStringLiteral("/a"))),
              QStringList(QStringLiteral("b/x.md")));
}

TEST_F(Completion, contextsAndClassesAreTheKnownOnes)
{
    tm_collectTagsFromText(write(QStringLiteral("/a.md")), QStringLiteral("@home"));
    tm_collectTagsFromText(write(QStringLiteral("/b.md")), QStringLiteral("@Hospital #house"));
    EXPECT_EQ(offered(QStringLiteral("to @ho|"), root),
              (QStringList{QStringLiteral("@home"), QStringLiteral("@Hospital")}));
    EXPECT_EQ(offered(QStringLiteral("#|"), root), QStringList(QStringLiteral("#house")));

    write(QStringLiteral("/TMResources/CSS/Own.css"), "@tm_classes: note, nice, box;\n");
    tm_setProperty(root, QStringLiteral("TMResources/CSS/Own.css"), QStringLiteral("CSS"));
    EXPECT_EQ(offered(QStringLiteral("> %n|"), root), (QStringList{QStringLiteral("note"), QStringLiteral("nice")}));

    settings().setObject(QStringLiteral("contextsEnabled"), false);
    EXPECT_EQ(offered(QStringLiteral("to @ho|"), root), QStringList());
}

TEST_F(Completion, whatClosesItComesOnce)
{
    EXPECT_EQ(completed(QStringLiteral("[[no|"), QStringLiteral("Note.md")), QStringLiteral("[[Note.md]]|"));
    EXPECT_EQ(completed(QStringLiteral("[[no|]] x"), QStringLiteral("Note.md")), QStringLiteral("[[Note.md]]| x"));
    EXPECT_EQ(completed(QStringLiteral("[[no|] x"), QStringLiteral("Note.md")), QStringLiteral("[[Note.md]]| x"));
    EXPECT_EQ(completed(QStringLiteral("[[no|"), QStringLiteral("North/")), QStringLiteral("[[North/|"));
    EXPECT_EQ(completed(QStringLiteral("[[no|"), QStringLiteral("Not"), false), QStringLiteral("[[Not|"));
    EXPECT_EQ(completed(QStringLiteral("@ho|, x"), QStringLiteral("@home")), QStringLiteral("@home|, x"));
    EXPECT_EQ(completed(QStringLiteral("> %n|"), QStringLiteral("note")), QStringLiteral("> %note%|"));
    EXPECT_EQ(completed(QStringLiteral("> %n|%"), QStringLiteral("note")), QStringLiteral("> %note%|"));
    EXPECT_EQ(completed(QStringLiteral("[a](class:n|)"), QStringLiteral("note")), QStringLiteral("[a](class:note|)"));
}

TEST_F(Completion, whatIsCommonIsFoundInAnyCase)
{
    const QString typed = QStringLiteral("no");
    EXPECT_EQ(commonBeginning({QStringLiteral("Note.md"), QStringLiteral("notes.md")}, typed), QStringLiteral("Note"));
    EXPECT_EQ(commonBeginning({QStringLiteral("Note.md"), QStringLiteral("../Nope.md")}, typed), typed);
    EXPECT_EQ(commonBeginning({}, typed), typed);
}

TEST_F(Completion, linksAreFoundWhereTheyStand)
{
    const QString line =
        QStringLiteral("a [text](b%20c.md \"Title\") ![](p.png)[d](<e f>) <https://x.org/y> <b> [[Note.md | n]]");
    const auto at = [&](const char *part) { return addressOfLinkAt(line, line.indexOf(QLatin1String(part))); };
    EXPECT_EQ(at("ext"), QStringLiteral("b%20c.md"));
    EXPECT_EQ(at("Title"), QStringLiteral("b%20c.md"));
    EXPECT_EQ(at("p.png"), QStringLiteral("p.png"));
    EXPECT_EQ(at("[d"), QStringLiteral("e f"));
    EXPECT_EQ(at("x.org"), QStringLiteral("https://x.org/y"));
    for (const char *part : {"a ", "b> ", "| n"}) EXPECT_EQ(at(part), QString()) << part;
    settings().setObject(QStringLiteral("WikiActivateLinksInPlaintext"), true);
    EXPECT_EQ(at("| n"), QStringLiteral("Note.md"));
    EXPECT_EQ(addressOfLinkAt(line, line.size()), QString());

    // Addresses by themselves.
    const QString text = QStringLiteral("See (https://x.org/a_(b)?c=1), www.y.org. mailto:me@z.org! awww.no ftp");
    const auto bare = [&](const char *part) { return addressOfLinkAt(text, text.indexOf(QLatin1String(part))); };
    EXPECT_EQ(bare("x.org"), QString()) << "by the setting";
    settings().setObject(QStringLiteral("HighlightLinks"), true);
    EXPECT_EQ(bare("x.org"), QStringLiteral("https://x.org/a_(b)?c=1"));
    EXPECT_EQ(bare("y.org"), QStringLiteral("http://www.y.org"));
    EXPECT_EQ(bare("me@"), QStringLiteral("mailto:me@z.org"));
    for (const char *part : {"See", "no ", "ftp", ", www"}) EXPECT_EQ(bare(part), QString()) << part;
}
