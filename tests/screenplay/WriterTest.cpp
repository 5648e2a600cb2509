// SPDX-License-Identifier: GPL-3.0-or-later
// Screenplays as text again: the same elements when they are read once more.
#include "screenplay/FNScript.h"
#include "tests/screenplay/Scripts.h"
#include "tests/support/TextCase.h"

#include <QFile>
#include <QTemporaryDir>

using namespace tomelet;
using namespace tomelet::test;
using namespace Qt::StringLiterals;

static QString written(const QString &text)
{
    return FNScript::initWithString(text).stringFromDocument();
}

// What is written of elements made by hand.
static QString bodyOf(const QList<FNElement> &elements)
{
    FNScript script;
    script.elements = elements;
    return script.stringFromBody();
}

TEST(Writer, Forms)
{
    check(written,
          {
              {"nothing", {}, {}},
              {"title page", u"title: T\nauthor:\n  A\n  B\ncontact:\nC\ndraft date: 1\n\n  x"_s,
               u"Title: T\nAuthors:\n\tA\n\tB\nContact:\n\tC\nDraft date: 1\n\n  x\n"_s},
              {"a scene", u"INT. A #1#\n\n\n\nRain.\nMore.\n\nJANE\n(low)\nGo.\n(loud)\nGo!\n\n.B#2#\n\nx"_s,
               u"INT. A #1#\n\nRain.\nMore.\n\nJANE\n(low)\nGo.\n(loud)\nGo!\n\n.B #2#\n\nx\n"_s},
              {"at once", u"A\nx\n\nB^\ny\n\nC\nz\n\nD ^\nz\n\nE ^\nz"_s,
               u"A\nx\n\nB ^\ny\n\nC\nz\n\nD ^\nz\n\nE ^\nz\n"_s},
              {"transitions", u"x\n\nCUT TO:\n\n> FADE OUT.\n\n>Flash"_s, u"x\n\nCUT TO:\n\nFADE OUT.\n\n> Flash\n"_s},
              {"notes and parts", u"x\n\n[[n]]\n\n/*\na\n\nb\n*/\n\n/* c */\n\n=plan\n\n## part\n\n===="_s,
               u"x\n\n[[n]]\n\n/*\na\n\nb\n*/\n\n/* c */\n\n=plan\n\n## part\n\n====\n"_s},
              {"centered", u"x\n\n>a<\n\n> b <\nc"_s, u"x\n\n> a <\n\n> b <\nc\n"_s},
              {"a song", u"x\n\n~a\n~b\n\n~c"_s, u"x\n\n~a\n~b\n\n~c\n"_s},
              {"no heading after all", u"INT. A #1#\nx\n\n.B #2#\ny"_s, u"INT. A #1#\nx\n\n.B #2#\ny\n"_s},
              {"nothing for blanks", u"x\n\n   \n\ny"_s, u"x\n\ny\n"_s},
          });
}

// Elements that no text was read for get the marks that they need.
TEST(Writer, ForcingMarks)
{
    const auto element = [](const char *type, const char *text) {
        return FNElement::elementOfType(QLatin1StringView(type), QLatin1StringView(text));
    };
    EXPECT_EQ(bodyOf({element("Scene Heading", "ROOM")}), u"\n.ROOM\n"_s);
    EXPECT_EQ(bodyOf({element("Action", "INT. ROOM")}), u"\n!INT. ROOM\n"_s);
    EXPECT_EQ(bodyOf({element("Action", "CUT TO:")}), u"\n!CUT TO:\n"_s);
    EXPECT_EQ(bodyOf({element("Character", "Jo"), element("Dialogue", "Hm.")}), u"\n@Jo\nHm.\n"_s);
    EXPECT_EQ(bodyOf({element("Character", "JO"), element("Dialogue", "Hm.")}), u"\nJO\nHm.\n"_s);
    EXPECT_EQ(bodyOf({element("Character", "JO")}), u"\n@JO\n"_s);
    EXPECT_EQ(bodyOf({element("Transition", "Flash")}), u"\n> Flash\n"_s);
    EXPECT_EQ(bodyOf({element("Lyrics", "la")}), u"\n~la\n"_s);
    FNElement centered = element("Action", "a ");
    centered.isCentered = true;
    EXPECT_EQ(bodyOf({centered}), u"\n> a <\n"_s);
    FNScript colon; // no title page
    colon.elements = {element("Action", "He says: no.")};
    EXPECT_EQ(colon.stringFromDocument(), u"/**/\n\nHe says: no.\n"_s);
    EXPECT_EQ(bodyOf({element("Dialogue", ""), element("Page Break", "")}), u"\n====\n"_s);
}

TEST(Writer, SceneNumbersCanBeLeftOut)
{
    FNScript script = FNScript::initWithString(u"INT. A #1#\n\nx\n\n.B #2#\n\ny"_s);
    script.suppressSceneNumbers = true;
    EXPECT_EQ(script.stringFromBody(), u"\nINT. A \n\nx\n\n.B\n\ny\n"_s);
}

TEST(Writer, Files)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"ü.fountain"_s);
    const FNScript script = FNScript::initWithString(u"Title: Ü\n\nINT. CAFÉ\n\nx"_s);
    EXPECT_TRUE(script.writeToURL(QUrl::fromLocalFile(path)));
    EXPECT_EQ(FNScript::initWithFile(path).elements, script.elements);
    EXPECT_EQ(FNScript::initWithFile(path).titlePage, script.titlePage);
    EXPECT_FALSE(script.writeToFile(folder.filePath(u"none/a.fountain"_s)));
    EXPECT_FALSE(script.writeToURL(QUrl(u"http://example.org/a.fountain"_s)));
}

// -- the same elements again ------------------------------------------------------------------------------------------

// What writing may change: blanks alone are dropped, page breaks look alike, and what stood below a name or was one
// for the sake of a line that is no element is marked.
static QString comparable(const QList<FNElement> &elements)
{
    QStringList lines;
    for (FNElement element : elements) {
        if (element.is(FNType::PageBreak))
            element.elementText = u'=' + element.elementText.mid(element.elementText.indexOf(u'\n') < 0
                                                                     ? element.elementText.size()
                                                                     : element.elementText.indexOf(u'\n'));
        else if (element.isBlank()) continue;
        static const QString marks = u"@!"_s;
        if (marks.contains(element.elementText[0])) element.elementText = element.elementText.sliced(1);
        lines << described(element);
    }
    return lines.join(u'\n');
}

TEST(Writer, SameElementsOfScreenplays)
{
    std::mt19937 random(22);
    for (int i = 0; i < 300; ++i) {
        const QString text = randomScreenplay(random, 8);
        const FNScript script = FNScript::initWithString(text);
        const FNScript again = FNScript::initWithString(script.stringFromDocument());
        ASSERT_EQ(again.titlePage, script.titlePage);
        ASSERT_EQ(comparable(again.elements), comparable(script.elements)) << text.toStdString();
        ASSERT_EQ(again.stringFromDocument(), script.stringFromDocument());
    }
}

TEST(Writer, SameElementsOfAnyLines)
{
    std::mt19937 random(11);
    for (int i = 0; i < 20000; ++i) {
        const QString text = randomLines(random, 1 + int(random() % 12));
        const FNScript script = FNScript::initWithString(text);
        const QString document = script.stringFromDocument();
        const FNScript again = FNScript::initWithString(document);
        ASSERT_EQ(again.titlePage, script.titlePage) << text.toStdString() << "---\n" << document.toStdString();
        ASSERT_EQ(comparable(again.elements), comparable(script.elements)) << text.toStdString() << "---\n"
                                                                           << document.toStdString();
    }
}
