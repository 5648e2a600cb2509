// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Notebook.h"

#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/ItemOperations.h"
#include "library/Properties.h"
#include "library/Root.h"
#include "organising/NotebookOrganiser.h"
#include "organising/links/Backlinks.h"
#include "organising/links/DocumentReferences.h"
#include "organising/links/LinkRewriting.h"
#include "organising/links/LinkWalks.h"
#include "organising/links/LostTarget.h"

#include <QDir>
#include <QFile>

using namespace tomelet;

class Links : public tomelet::test::Notebook
{
protected:
    Links()
    {
        installNotebookOrganiser();
        settings().setObject(QStringLiteral("manageLinks"), true);
    }
    void refresh(std::initializer_list<const char *> documents) const
    {
        for (const char *document : documents)
            tm_refreshBacklinksForReferencedDocuments(at(QString::fromUtf8(document)));
    }
    void move(const char *from, const char *to) const
    {
        ASSERT_TRUE(tm_moveItemToPath(at(QString::fromUtf8(from)), at(QString::fromUtf8(to))));
        drainPendingWork();
    }
    QString backlinks(const char *item) const
    {
        return tm_propertyForKey(at(QString::fromUtf8(item)), QStringLiteral("Backlinks")).toStringList().join(u' ');
    }
    QByteArray text(const char *path) const { return read(QString::fromUtf8(path)); }
};

TEST_F(Links, formsOfReferences)
{
    const struct
    {
        const char *text;
        const char *references;
    } rows[] = {
        {"<img alt=\"\" src=\"TMImages/a.png\"> <a class=\"x\" href=\"b.md\">b</a>", "TMImages/a.png b.md"},
        {"[[Note]] [[Sub/b.md | shown]]", "Note Sub/b.md "},
        {"![](a.png) [x](#here) [y](http://x.org) [z](../c.md#p)", "a.png ../c.md#p"},
        {"see tomelet://show/A/b.md and [x](tomelet://show/c.md)", "tomelet://show/A/b.md tomelet://show/c.md"},
        {"x\n[ref]: d.md\n", "d.md"},
        {"\xF0\x9F\x98\x80 [e](\xF0\x9F\x98\x80.md)", "\xF0\x9F\x98\x80.md"},
    };
    for (const auto &row : rows) {
        const QString source = QString::fromUtf8(row.text);
        QStringList found;
        for (const Reference &reference : referencesInText(source)) {
            found.append(reference.path);
            EXPECT_EQ(substring(source, reference.range), reference.path);
        }
        EXPECT_EQ(found.join(u' '), QString::fromUtf8(row.references)) << row.text;
    }
}

TEST_F(Links, whatReferencesMean)
{
    for (const char *path : {"/Book/a.md", "/Book/my file.md", "/b.md", "/Book/R&D.md"}) write(QString::fromUtf8(path));
    const QString document =
        write(QStringLiteral("/Book/d.md"),
              "[](a.md#x) [](my%20file.md) [](/b.md) [](../b.md) <a href=\"R&amp;D.md\"> [](none.md) "
              "[](../../out.md) [](..) tomelet://search/a tomelet://Book/a.md");
    EXPECT_EQ(tm_verifiedArrayOfReferencedDocuments(document).join(u' '),
              QStringLiteral("/Book/a.md /Book/my file.md /b.md /Book/R&D.md"));
}

TEST_F(Links, aRenameReachesEveryFormAndNothingElse)
{
    write(QStringLiteral("/A/b.md"));
    write(QStringLiteral("/A/b.md2"));
    write(QStringLiteral("/C/b.md"), "another");
    write(QStringLiteral("/A/r.md"),
          "[1](b.md) [2](/A/b.md#p) [3](tomelet://show/A/b.md) [[b.md]] [4](b.md2) [5](../A/b.md)");
    write(QStringLiteral("/C/r.md"), "[1](../A/b.md) [2](b.md) <a href=\"/A/b.md\">");
    refresh({"/A/r.md", "/C/r.md"});
    EXPECT_EQ(backlinks("/A/b.md"), QStringLiteral("/A/r.md /C/r.md"));
    move("/A/b.md", "/A/new (1).md");
    EXPECT_EQ(text("/A/r.md"), "[1](new (1).md) [2](/A/new (1).md#p) [3](tomelet://show/A/new (1).md) [[new (1).md]] "
                               "[4](b.md2) [5](new (1).md)");
    EXPECT_EQ(text("/C/r.md"), "[1](../A/new (1).md) [2](b.md) <a href=\"/A/new (1).md\">");
}

TEST_F(Links, encodedAndComposedForms)
{
    write(QStringLiteral("/A/M\u00fcll #1.md"));
    write(QStringLiteral("/r.md"), "[1](/A/M%C3%BCll%20%231.md) [2](A/Mu\xCC\x88ll #1.md)");
    refresh({"/r.md"});
    move("/A/M\u00fcll #1.md", "/A/neu.md");
    EXPECT_EQ(text("/r.md"), "[1](/A/neu.md) [2](A/neu.md)");

    // The name itself stands in the decomposed form on the disk.
    write(QStringLiteral("/D/e\u0301t.md"));
    write(QStringLiteral("/D/s.md"), "[1](e%CC%81t.md) [2](/D/e%CC%81t.md) [3](e\xCC\x81t.md)");
    refresh({"/D/s.md"});
    move("/D/e\u0301t.md", "/D/new.md");
    EXPECT_EQ(text("/D/s.md"), "[1](new.md) [2](/D/new.md) [3](new.md)");
    write(QStringLiteral("/D/e\u0301t.md"));
    write(QStringLiteral("/D/own.md"), "[1](e%CC%81t.md) [3](e\xCC\x81t.md)");
    move("/D/own.md", "/E.md");
    EXPECT_EQ(text("/E.md"), "[1](D/e%CC%81t.md) [3](D/e\xCC\x81t.md)");
}

TEST_F(Links, theMovedDocumentKeepsItsOwnLinks)
{
    write(QStringLiteral("/A/t.md"));
    write(QStringLiteral("/A/d.md"), "[t](t.md#x) [u](my%20u.md) [gone](none.md)");
    write(QStringLiteral("/A/my u.md"));
    makeBook(QStringLiteral("/B/C"));
    refresh({"/A/d.md"});
    move("/A/d.md", "/B/C/d.md");
    EXPECT_EQ(text("/B/C/d.md"), "[t](../../A/t.md#x) [u](../../A/my%20u.md) [gone](none.md)");
    EXPECT_EQ(backlinks("/A/t.md"), QStringLiteral("/B/C/d.md"));
}

TEST_F(Links, aMovedBook)
{
    write(QStringLiteral("/A/Sub/t.md"), "[back](../../r.md)");
    write(QStringLiteral("/A/d.md"), "[t](Sub/t.md) [abs](/A/Sub/t.md)");
    write(QStringLiteral("/r.md"), "[t](A/Sub/t.md) [[/A/d.md]] [x](A2/t.md)");
    refresh({"/A/Sub/t.md", "/A/d.md", "/r.md"});
    move("/A", "/New Book");
    EXPECT_EQ(text("/r.md"), "[t](New Book/Sub/t.md) [[/New Book/d.md]] [x](A2/t.md)");
    EXPECT_EQ(text("/New Book/d.md"), "[t](Sub/t.md) [abs](/New Book/Sub/t.md)");
    EXPECT_EQ(text("/New Book/Sub/t.md"), "[back](../../r.md)");
    EXPECT_EQ(backlinks("/New Book/Sub/t.md"), QStringLiteral("/New Book/d.md /r.md"));
    EXPECT_EQ(backlinks("/r.md"), QStringLiteral("/New Book/Sub/t.md"));
}

TEST_F(Links, otherEncodingsAndCopies)
{
    write(QStringLiteral("/t.md"));
    write(QStringLiteral("/mac.txt"), "caf\x8e [t](t.md)");
    refresh({"/mac.txt"});
    ASSERT_TRUE(tm_copyItemToPath(at(QStringLiteral("/t.md")), at(QStringLiteral("/copy.md"))));
    tm_repairBrokenBacklink(at(QStringLiteral("/copy.md")));
    EXPECT_EQ(backlinks("/copy.md"), QString()) << "a copy has no referrers of its own";
    move("/t.md", "/u.md");
    EXPECT_EQ(text("/mac.txt"), "caf\x8e [t](u.md)");
    EXPECT_EQ(backlinks("/u.md"), QStringLiteral("/mac.txt"));
}

TEST_F(Links, nothingMovesWhileTheOldPathStands)
{
    write(QStringLiteral("/a.md"));
    write(QStringLiteral("/b.md"));
    write(QStringLiteral("/r.md"), "[a](a.md)");
    refresh({"/r.md"});
    tm_adjustLinksAndBacklinksAfterRenameFrom(at(QStringLiteral("/b.md")), at(QStringLiteral("/a.md")));
    drainPendingWork();
    EXPECT_EQ(text("/r.md"), "[a](a.md)");
    settings().remove(QStringLiteral("manageLinks"));
    move("/a.md", "/c.md");
    EXPECT_EQ(text("/r.md"), "[a](a.md)");
}

TEST_F(Links, refreshCheckAndRepairOfAll)
{
    write(QStringLiteral("/A/b.md"));
    write(QStringLiteral("/A/r.md"), "[x](b.md) [y](/C/c.md)");
    write(QStringLiteral("/C/c.md"), "[[/A/b.md]]");
    const RefreshedLinks found = tm_refreshAllBacklinksStartingAtReferenceDate(root, false);
    EXPECT_EQ(found.message(), QStringLiteral("Found 3 Links in 3 Documents"));
    EXPECT_EQ(backlinks("/A/b.md"), QStringLiteral("/A/r.md /C/c.md"));
    EXPECT_EQ(tm_findBrokenBacklinks(root, BacklinkCheck::Find).message(), QStringLiteral("No Broken Backlinks"));

    // Another program moves a document, and its property file along with it.
    const QString from = at(QStringLiteral("/A/b.md"));
    const QString to = at(QStringLiteral("/C/moved.md"));
    const QString properties = propertyFileOf(from);
    ASSERT_TRUE(QFile::rename(from, to));
    ASSERT_TRUE(QFile::rename(properties, propertyFileOf(to)));
    const CheckedBacklinks broken = tm_findBrokenBacklinks(root, BacklinkCheck::Find);
    EXPECT_EQ(broken.message(), QStringLiteral("One Broken Backlink Found"));
    EXPECT_TRUE(broken.explanation().endsWith(u"\n\n/C/moved.md\n( /A/b.md )")) << broken.explanation().toStdString();
    EXPECT_EQ(text("/A/r.md"), "[x](b.md) [y](/C/c.md)");
    tm_findBrokenBacklinks(root, BacklinkCheck::Repair);
    drainPendingWork();
    EXPECT_EQ(text("/A/r.md"), "[x](../C/moved.md) [y](/C/c.md)");
    EXPECT_EQ(text("/C/c.md"), "[[/C/moved.md]]");
    EXPECT_EQ(tm_findBrokenBacklinks(root, BacklinkCheck::Find).message(), QStringLiteral("No Broken Backlinks"));

    EXPECT_GT(tm_findBrokenBacklinks(root, BacklinkCheck::Remove).removed, 1);
    EXPECT_EQ(backlinks("/C/moved.md"), QString());
}

// All at once must leave the very same property files as one document after the other.
TEST_F(Links, refreshOfAllGivesWhatItemByItemWorkGives)
{
    QStringList documents;
    for (int i = 0; i < 40; ++i) {
        const QString text = QStringLiteral("[a](n%1.md) [[/B/n%2]] [b](../B/n%3.md) [[/B/n%4.md]]\n")
                                 .arg((i + 1) % 40)
                                 .arg((i * 3) % 40)
                                 .arg((i * 7) % 40)
                                 .arg((i * 11) % 40);
        documents.append(write(QStringLiteral("/B/n%1.md").arg(i), text.toUtf8()));
    }
    const auto stored = [&] {
        QStringList all;
        for (const QString &document : documents) {
            QStringList links = tm_propertyForKey(document, QStringLiteral("Backlinks")).toStringList();
            links.sort();
            all.append(links.join(u' ') + tm_propertyForKey(document, QStringLiteral("ReferencedPath")).toString());
            tm_removeBacklinks(document);
        }
        return all;
    };
    for (const QString &document : documents) tm_refreshBacklinksForReferencedDocuments(document);
    const QStringList oneByOne = stored();
    ASSERT_TRUE(oneByOne.first().contains(u"/B/n"));

    // Stopped anywhere, a second run finishes the work.
    for (const qsizetype stopAt : {3, 45, 70}) {
        qsizetype calls = 0;
        tm_refreshAllBacklinksStartingAtReferenceDate(root, true, [&](qsizetype done, qsizetype all) {
            EXPECT_LE(done, all);
            return ++calls < stopAt;
        });
        EXPECT_EQ(calls, stopAt);
    }
    tm_refreshAllBacklinksStartingAtReferenceDate(root, true);
    EXPECT_EQ(stored(), oneByOne);
}

// A program was killed after half of the texts were rewritten and all property files were.
TEST_F(Links, aBrokenOffMoveIsFinishedByTheNextRun)
{
    write(QStringLiteral("/Old/a.md"), "[[/Old/b.md]]\n");
    write(QStringLiteral("/Old/b.md"), "text\n");
    write(QStringLiteral("/done.md"), "[[/New/b.md]]\n");
    write(QStringLiteral("/open.md"), "[[/Old/b.md]]\n");
    refresh({"/Old/a.md", "/open.md"});
    ASSERT_TRUE(QFile::rename(at(QStringLiteral("/Old")), at(QStringLiteral("/New"))));
    tm_setProperty(at(QStringLiteral("/New/b.md")), QStringLiteral("/New/b.md"), QStringLiteral("ReferencedPath"));
    const auto entry = [&](const char *from, const char *to, bool all) {
        return QVariantMap{{QStringLiteral("from"), at(QString::fromUtf8(from))},
                           {QStringLiteral("to"), at(QString::fromUtf8(to))},
                           {QStringLiteral("allBelow"), all},
                           {QStringLiteral("process"), 0LL}};
    };
    const QString journal = rootStateFolder() + QStringLiteral("/MovesInWork.plist");
    ASSERT_TRUE(QDir().mkpath(rootStateFolder()));
    ASSERT_TRUE(writeStore(journal, QVariantList{entry("/Old", "/New", true), entry("/gone.md", "/none.md", false)}));
    finishAbandonedMoves();
    drainPendingWork();
    EXPECT_EQ(text("/New/a.md"), "[[/New/b.md]]\n");
    EXPECT_EQ(text("/open.md"), "[[/New/b.md]]\n");
    EXPECT_EQ(text("/done.md"), "[[/New/b.md]]\n");
    EXPECT_FALSE(QFile::exists(journal)) << "nothing is left to finish";
}

TEST_F(Links, aRenameMadeElsewhereIsAskedAbout)
{
    write(QStringLiteral("/B/a.md"), "[x](t.md)\n");
    write(QStringLiteral("/B/t.md"), "text\n");
    refresh({"/B/a.md"});
    QStringList asked;
    int answer = 2;
    platform().ask = [&](const Question &question) {
        asked.append(question.text);
        return answer;
    };
    QFile::rename(at(QStringLiteral("/B/t.md")), at(QStringLiteral("/B/new.md")));
    QFile::rename(at(QStringLiteral("/B/t.md.plist")), at(QStringLiteral("/B/new.md.plist")));
    const auto ask = [&] {
        tm_askToAdjustLinksAndBacklinksAfterRenameFrom(at(QStringLiteral("/B/new.md")), at(QStringLiteral("/B/t.md")));
        drainPendingWork();
    };
    ask();
    EXPECT_EQ(text("/B/a.md"), "[x](t.md)\n");
    EXPECT_EQ(asked, QStringList{QStringLiteral(
                         "One document is linking to this document.\nDo you want to update the links?")});
    answer = 0;
    ask();
    EXPECT_EQ(text("/B/a.md"), "[x](new.md)\n");
    answer = 1;
    ask();
    EXPECT_EQ(backlinks("/B/new.md"), QString());
    ask();
    EXPECT_EQ(asked.size(), 3) << "nothing is asked where no links are concerned";
}

TEST_F(Links, aLostTargetIsMadeWhenThePersonWantsIt)
{
    const QString from = write(QStringLiteral("/B/from.md"), "[[gone]]\n");
    settings().setObject(QStringLiteral("DefaultDocumentType"), QStringLiteral("md"));
    QStringList buttons;
    QString title;
    int answer = 1;
    platform().ask = [&](const Question &question) {
        title = question.title;
        buttons = question.buttons;
        return answer;
    };
    const auto follow = [&](const char *target) {
        return tm_findAlternativePathExcludingOrPrompt(at(QString::fromUtf8(target)), {}, from);
    };
    EXPECT_EQ(follow("/B/gone"), QString());
    EXPECT_EQ(title, QStringLiteral("The document \"B ⟩ gone.md\" does not exist"));
    EXPECT_EQ(buttons.join(u' '), QStringLiteral("Create Cancel"));
    answer = 0;
    EXPECT_EQ(follow("/New/Sub/gone#part"), at(QStringLiteral("/New/Sub/gone.md#part")));
    EXPECT_EQ(text("/New/Sub/gone.md"), "gone");
    EXPECT_EQ(backlinks("/New/Sub/gone.md"), QStringLiteral("/B/from.md"));
    settings().remove(QStringLiteral("manageLinks"));
    answer = 1;
    EXPECT_EQ(follow("/B/back"), at(QStringLiteral("/B/back.md")));
    EXPECT_EQ(buttons.join(u' '), QStringLiteral("Create Create with Backlink Cancel"));
    EXPECT_EQ(text("/B/back.md"), "back\n\n[[/B/from.md]]");
    title.clear();
    EXPECT_EQ(follow("/B/picture.png"), QString()) << "no document that can be made";
    EXPECT_EQ(follow("/../outside.md"), QString()) << "nothing is made outside the notebook";
    EXPECT_EQ(title, QString());
}

TEST_F(Links, lostTargets)
{
    for (const char *path : {"/A/b.md", "/A/it's.md", "/A/Caf\xC3\xA9 de Flore.md", "/C/deep/Far Away.md",
                             "/C/far away too.md", "/A/other.txt"})
        write(QString::fromUtf8(path), path == QByteArray("/A/other.txt") ? "all about Needles" : "text");
    const auto found = [&](const char *target, const QStringList &excluding = {}) {
        const QString path = tm_findAlternativePathExcluding(at(QString::fromUtf8(target)), excluding);
        return path.isEmpty() ? path : path.mid(root.size());
    };
    EXPECT_EQ(found("/A/b.md#part"), QStringLiteral("/A/b.md#part"));
    EXPECT_EQ(found("/A/it\xE2\x80\x99s.md"), QStringLiteral("/A/it's.md"));
    EXPECT_EQ(found("/A/b#part"), QStringLiteral("/A/b.md#part"));
    EXPECT_EQ(found("/A/b.jpg"), QStringLiteral("/A/b.md"));
    EXPECT_EQ(found("/A/b2.md"), QString());
    EXPECT_EQ(found("/A/cafe"), QString());
    settings().setObject(QStringLiteral("WikiSmartResolveContents"), true);
    EXPECT_EQ(found("/A/needles"), QStringLiteral("/A/other.txt"));
    EXPECT_EQ(found("/A/needles", {at(QStringLiteral("/A/other.txt"))}), QString());
    settings().setObject(QStringLiteral("WikiSmartResolveGlobally"), true);
    EXPECT_EQ(found("/A/far away"), QString()) << "asks for titles as well";
    settings().setObject(QStringLiteral("WikiSmartResolveTitles"), true);
    EXPECT_EQ(found("/A/cafe"), QStringLiteral("/A/Caf\u00e9 de Flore.md"));
    EXPECT_EQ(found("/A/far away"), QStringLiteral("/C/deep/Far Away.md"));
}
