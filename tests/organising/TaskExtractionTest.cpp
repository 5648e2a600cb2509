// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/organising/Tasklist.h"

#include "foundation/TextCodec.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "organising/contexts/Contexts.h"
#include "organising/tasks/TaskExtraction.h"

using namespace tomelet;
using tomelet::test::Tasklist;

class TaskExtraction : public Tasklist
{
protected:
    TaskExtraction()
    {
        settings().setObject(QStringLiteral("markTaskWithCharacter"), QStringLiteral("- [ ]"));
        settings().setObject(QStringLiteral("DefaultDocumentType"), QStringLiteral("txt"));
    }
    // Names and states of what is extracted.
    QString extracted(const QString &text, const QString &path, int mode, bool inNewBook = false) const
    {
        QStringList found;
        for (const QString &item : extractTasks(text, path, mode, qlonglong(TextEncoding::Utf8), inNewBook)) {
            const QString itemState = state(item);
            found.append(item.mid(root.size() + 1) + (itemState.isEmpty() ? itemState : u' ' + itemState));
        }
        return found.join(u',');
    }
};

TEST_F(TaskExtraction, fiveModes)
{
    const QString text =
        QStringLiteral("- one\ntwo\r\n\n• three —\n----- \n(OK) four\n\n- [ ] five\n\t- [ ]  six \n- [ ]seven");
    const QString document = task(QStringLiteral("Doc.md"));
    const struct
    {
        int mode;
        const char *wanted;
    } rows[] = {
        {ExtractLines,
         "List/one.txt,List/two.txt,List/three.txt,List/four.txt done,List/[ ] five.txt,List/[ ]  six.txt,"
         "List/[ ]seven.txt"},
        {ExtractParagraphs, "List/one 1.txt,List/three —.txt,List/[ ] five 1.txt"},
        {ExtractByRules, "List/one 2.txt,List/four 1.txt done"},
        {ExtractMarked, "List/five.txt,List/six.txt"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(extracted(text, document, row.mode), QString::fromUtf8(row.wanted)) << row.mode;
    EXPECT_EQ(read(QStringLiteral("/List/six.txt")), "six");

    makeBook(QStringLiteral("/List/Doc"));
    EXPECT_EQ(tm_extractTasksToPath(text, document, ExtractWhole, 4, false), document);
    EXPECT_TRUE(exists(QStringLiteral("/List/Doc/Doc.md")));
    EXPECT_FALSE(exists(QStringLiteral("/List/Doc.md")));
}

TEST_F(TaskExtraction, statesGoThroughTheRing)
{
    const QString text =
        QStringLiteral("x\n- [ ] (OK) a\n- [ ] ✔ b\n- [ ] (X) c\n- [ ] ✘ d\n- [ ] (OK)\n- [ ] List\n- [ ] Doc");
    EXPECT_EQ(extracted(text, task(QStringLiteral("Doc.md")), ExtractMarked),
              QStringLiteral("List/a.txt done,List/b.txt done,List/c.txt canceled,List/d.txt canceled,List/(OK).txt"))
        << "names of the book and the document are no tasks";
    EXPECT_EQ(counters(), u"4 0");
    EXPECT_EQ(extracted(text, at(QStringLiteral("/List/Doc.md")), ExtractMarked), QString()) << "nothing twice";
    EXPECT_EQ(extracted(QStringLiteral("x\n- [ ] (OK) a"), write(QStringLiteral("/Plain/Doc.md")), ExtractMarked),
              u"Plain/a.txt")
        << "an ordinary book gets plain documents";
}

TEST_F(TaskExtraction, whatTheTasksCarry)
{
    settings().setObject(QStringLiteral("contextsEnabled"), true);
    settings().setObject(QStringLiteral("extractContextsAutomatically"), true);
    settings().setObject(QStringLiteral("assignDefaultDueDate"), true);
    const QString document = task(QStringLiteral("My Doc.md"));
    tm_updateContextsRemoving(document, {}, {QStringLiteral("@work")});
    EXPECT_EQ(extracted(QStringLiteral("\n- [ ] a: b @home,\n- [ ] second"), document, ExtractMarked),
              u"List/a- b @home,.txt,List/second.txt");
    const QString first = at(QStringLiteral("/List/a- b @home,.txt"));
    EXPECT_EQ(tm_verifiedTagList(first).join(u' '), u"@work @home");
    EXPECT_EQ(tm_propertyForKey(first, QStringLiteral("URL")), QStringLiteral("tomelet://show/List/My%20Doc.md"));
    EXPECT_EQ(tm_creationDate(first), now());
    EXPECT_EQ(tm_creationDate(at(QStringLiteral("/List/second.txt"))), now().addSecs(1));
    EXPECT_EQ(tm_dueDateForTask(first), utc(QStringLiteral("2026-11-20T23:01:00Z")));
    EXPECT_EQ(extracted(QStringLiteral("\n- [ ] a: b @home,"), document, ExtractMarked), QString())
        << "found again under the name that it got";
}

TEST_F(TaskExtraction, targets)
{
    const QString text = QStringLiteral("\n- [ ] a");
    const QString document = write(QStringLiteral("/Plain/Doc.md"));
    settings().setObject(QStringLiteral("extractTasksToInbox"), true);
    settings().setObject(QStringLiteral("defaultInbox"), QStringLiteral("/Gone"));
    EXPECT_EQ(extracted(text, document, ExtractMarked), u"Plain/a.txt");
    settings().setObject(QStringLiteral("defaultInbox"), QStringLiteral("/List"));
    EXPECT_EQ(extracted(text, document, ExtractMarked), u"List/a.txt");
    EXPECT_EQ(extracted(QStringLiteral("line"), document, ExtractLines), u"Plain/line.txt")
        << "the inbox is for marked lines";

    EXPECT_EQ(extracted(QStringLiteral("none"), document, ExtractMarked, true), QString());
    EXPECT_FALSE(exists(QStringLiteral("/Plain/Doc"))) << "a book that stayed empty is gone again";
    EXPECT_EQ(extracted(text, document, ExtractMarked, true), u"Plain/Doc/a.txt");
    EXPECT_TRUE(tm_bookIsTasklist(at(QStringLiteral("/Plain/Doc"))));
    EXPECT_EQ(extracted(QStringLiteral("\n- [ ] b"), document, ExtractMarked), u"Plain/Doc/b.txt");
}

TEST_F(TaskExtraction, twiceMakesNothingNewUnderAnyName)
{
    const QString document = task(QStringLiteral("Doc.md"));
    const QString text = QStringLiteral("x\naa\n\nx\nbb\n\nx\naa");
    EXPECT_EQ(extracted(text, document, ExtractParagraphs), u"List/x.txt,List/x 1.txt");
    EXPECT_EQ(extracted(text, document, ExtractParagraphs), QString());
}

TEST_F(TaskExtraction, bookThatCannotBeMadeCostsNothing)
{
    const QString document = write(QStringLiteral("/Plain/README"), "kept");
    for (const int mode : {0, 1, 4, 7})
        EXPECT_EQ(extracted(QStringLiteral("line\n- [ ] a"), document, mode, true), QString()) << mode;
    EXPECT_EQ(extracted({}, document, ExtractLines, true), QString());
    EXPECT_EQ(read(QStringLiteral("/Plain/README")), "kept");
    EXPECT_EQ(extracted(QStringLiteral("line"), document, ExtractLines), u"Plain/line.txt");
}

TEST_F(TaskExtraction, commands)
{
    const QString page = write(QStringLiteral("/List/Page.html"),
                               "<p>- [ ] no</p><!-- Plain Text Representation:\n- [ ] yes\n--></html>");
    EXPECT_EQ(extractMarkedTasks(page), QStringList{at(QStringLiteral("/List/yes.txt"))});
    EXPECT_FALSE(textHasMarkedLines(QStringLiteral("- [ ] on the first line")));
    EXPECT_TRUE(textHasMarkedLines(QStringLiteral("x\n- [ ]\ty")));
    settings().remove(QStringLiteral("markTaskWithCharacter"));
    EXPECT_FALSE(textHasMarkedLines(QStringLiteral("x\n- [ ] y")));
    EXPECT_TRUE(extractMarkedTasks(page).isEmpty());
    EXPECT_TRUE(extractMarkedTasks(at(QStringLiteral("/gone.md"))).isEmpty());
}
