// SPDX-License-Identifier: GPL-3.0-or-later
// What a line of a screenplay is.
#include "conversion/RegexLayer.h"
#include "screenplay/FastFountainParser.h"
#include "tests/screenplay/Scripts.h"
#include "tests/support/TextCase.h"

#include <QFile>
#include <QTemporaryDir>

using namespace tomelet;
using namespace tomelet::test;
using namespace Qt::StringLiterals;

static QString elementsOf(const QString &text)
{
    return described(FastFountainParser::initWithString(text).elements);
}

static QString titleOf(const QString &text)
{
    QStringList entries;
    const auto parser = FastFountainParser::initWithString(text);
    for (const FNTitleEntry &entry : parser.titlePage) entries << QString(entry.key + u'=' + entry.values.join(u'|'));
    return QString(entries.join(u'\n') + QStringLiteral("\n--\n") + described(parser.elements));
}

TEST(Parser, ScenesAndAction)
{
    check(elementsOf,
          {
              {"empty", {}, {}},
              {"heading", u"INT. HOUSE - DAY\n\nRain."_s, u"Scene Heading: INT. HOUSE - DAY\nAction: Rain."_s},
              {"all beginnings, in any case", u"x\n\next house\n\nEST-A\n\nInt./Ext. a\n\nI/E b\n\nINTERIOR\n\nINT."_s,
               u"Action: x\nScene Heading: ext house\nScene Heading: EST-A\nScene Heading: Int./Ext. a\n"
               "Scene Heading: I/E b\nAction: INTERIOR\nAction: INT."_s},
              {"no empty line above", u"He runs.\nINT. HOUSE"_s, u"Action: He runs.|INT. HOUSE"_s},
              {"no empty line below", u"INT. HOUSE\nHe runs."_s, u"Action: INT. HOUSE|He runs."_s},
              {"forced", u"x\n.  the bridge \n\n..no\n\n."_s,
               u"Action: x\nScene Heading: the bridge\nAction: ..no\nAction: ."_s},
              {"number", u"INT. A #1-b#  \n\n.B#2#\n\nINT. C #1# #2#\n\nINT. D ##\n\nINT. E #1# x"_s,
               u"Scene Heading #1-b#: INT. A \nScene Heading #2#: B\nScene Heading #2#: INT. C #1# \n"
               "Scene Heading ##: INT. D \nScene Heading: INT. E #1# x"_s},
              {"forced action", u"!INT. HOUSE\n!JANE\nmore"_s, u"Action: !INT. HOUSE\nAction: !JANE|more"_s},
              {"blanks", u"x\n   \n  \n \ny"_s, u"Action: x\nAction:    \nAction:   | |y"_s},
              {"centered", u"> the end <\n\n>a<\n\n><\n\n> a\n\n>"_s,
               u"Action (centered): the end\nAction (centered): a\nAction (centered): \nTransition: a\n"
               "Transition: "_s},
              {"line ends", u"\r\n \n a.\r\rb.\r\nc."_s, u"Action: a.\nAction: b.|c."_s},
          });
}

TEST(Parser, Transitions)
{
    check(elementsOf,
          {
              {"capitals and a colon", u"x\n\nCUT TO:\n\nDISSOLVE SLOWLY TO:\n\nGOTO:"_s,
               u"Action: x\nTransition: CUT TO:\nTransition: DISSOLVE SLOWLY TO:\nTransition: GOTO:"_s},
              {"within lines", u"x\n\ny\nCUT TO:\nz"_s, u"Action: x\nAction: y\nTransition: CUT TO:|z"_s},
              {"the three endings", u"x\n\n  FADE OUT.\n\nCUT TO BLACK.\n\nFADE TO BLACK.\n\nFade out."_s,
               u"Action: x\nTransition:   FADE OUT.\nTransition: CUT TO BLACK.\nTransition: FADE TO BLACK.\n"
               "Action: Fade out."_s},
              {"a heading that ends so", u"x\n\nINT. A TO:\n\ny\n.INT. A TO:\nz\n\nTO: B"_s,
               u"Action: x\nScene Heading: INT. A TO:\nAction: y\nAction: INT. A TO:|z\nAction: TO: B"_s},
          });
}

TEST(Parser, Speeches)
{
    check(
        elementsOf,
        {
            {"speaker, manner, words", u"JANE\n(low)\nGo.\nNow.\n(loud)\nGo!\n\nShe goes."_s,
             u"Character: JANE\nParenthetical: (low)\nDialogue: Go.|Now.\nParenthetical: (loud)\nDialogue: Go!\n"
             "Action: She goes."_s},
            {"nobody's words below", u"JANE\n\nBOB"_s, u"Action: JANE\nAction: BOB"_s},
            {"small letters", u"Jane\nGo.\n\nJANE (cont'd)\nGo.\n\nJANE (CONT'D)\nGo.\n\n1947\nGo."_s,
             u"Action: Jane|Go.\nCharacter: JANE (cont'd)\nDialogue: Go.\nCharacter: JANE (CONT'D)\nDialogue: Go.\n"
             "Character: 1947\nDialogue: Go."_s},
            {"forced", u"@McCoy\nGo.\n\n@Jo\n\nHe goes."_s,
             u"Character: @McCoy\nDialogue: Go.\nCharacter: @Jo\nAction: He goes."_s},
            {"two blanks keep it together", u"JANE\nGo.\n  \nNow.\n\nBOB\n   \nx"_s,
             u"Character: JANE\nDialogue: Go.|  |Now.\nCharacter: BOB\nAction:    \nDialogue: x"_s},
            {"marked lines inside", u"JANE\n~la\nsaid\n!bang\nsaid\n# part\n= plan\n.PLACE\nsaid"_s,
             u"Character: JANE\nLyrics: ~la\nDialogue: said\nAction: !bang\nDialogue: said\nSection Heading 1:  part\n"
             "Synopsis:  plan\nScene Heading: PLACE\nDialogue: said"_s},
            {"a parenthesis outside", u"x\n(low)\n\n(LOW)\nx"_s, u"Action: x|(low)\nCharacter: (LOW)\nDialogue: x"_s},
            {"at once", u"JANE\nGo.\n\nShe waits.\n\nBOB  ^ \nStay."_s,
             u"Character (dual): JANE\nDialogue: Go.\nAction: She waits.\nCharacter (dual): BOB\nDialogue: Stay."_s},
            {"at once with nobody, a mark that is none", u"BOB ^\nStay.\n\n@Jo ^\nHm.\n\nA ^ ^\nx"_s,
             u"Character (dual): BOB\nDialogue: Stay.\nCharacter (dual): @Jo ^\nDialogue: Hm.\n"
             "Character (dual): A ^\nDialogue: x"_s},
        });
}

TEST(Parser, NotesAndParts)
{
    check(elementsOf,
          {
              {"lyrics", u"~a\n~b\n\n\n~c\nd"_s, u"Lyrics: ~a\nLyrics: ~b\nLyrics:  \nLyrics: ~c|d"_s},
              {"boneyard", u"/* a */\n\n/* hidden\nb\n\n c\nd */\n\n  */ \n\n/*/"_s,
               u"Boneyard:  a \nBoneyard: |b|| c|\nBoneyard: \nBoneyard: "_s},
              {"never closed, and closed by a marked line", u"x\n/*\na\n~b\nc\n*/\n/* d\ne"_s,
               u"Action: x\nLyrics: ~b|c\nBoneyard: |a|"_s},
              {"a line that goes on behind it", u"/* a */\nb\n/* c */ d\ne"_s, u"Boneyard:  a |b"_s},
              {"notes", u"x\n\n [[ a [[b ]] \n[[c]]\n\n[[]]\n\n[[a]b]]\n\nx\n[[d]]"_s,
               u"Action: x\nComment: a b\nComment: c\nAction: [[]]\nAction: [[a]b]]\nAction: x|[[d]]"_s},
              {"a plan keeps what was above it", u"x\n\n=plan\nJANE\nGo.\n\ny\n = plan\nz"_s,
               u"Action: x\nSynopsis: plan\nCharacter: JANE\nDialogue: Go.\nAction: y\nSynopsis:  plan|z"_s},
              {"a note does as well", u"x\n\n[[n]]\nINT. A\n\ny"_s,
               u"Action: x\nComment: n\nScene Heading: INT. A\nAction: y"_s},
              {"parts", u"x\n# A\n### B #\n  ##C\n#\n\n##"_s,
               u"Action: x\nSection Heading 1:  A\nSection Heading 3:  B #\nSection Heading 4: C"_s},
              {"page breaks", u"x\n===\n\n=====  \n\n==\n\n===x"_s,
               u"Action: x\nPage Break: ===\nPage Break: =====  \nSynopsis: =\nSynopsis: ==x"_s},
          });
}

TEST(Parser, TitlePage)
{
    check(titleOf, {
                       {"kinds of entries", u"\n Title: T\nAuthor: A:B \nDraft date:\t1\nContact:\n  x\ny z\n\nRain."_s,
                        u"title=T\nauthors=A:B \ndraft date=1\ncontact=x|y z\n--\nAction: Rain."_s},
                       {"values go on over keys", u"A1:\n\tx\nB1:\n\ty\nC1: z\nD1:\nE1:\n\tv"_s,
                        u"a1=x\nb1=x|y\nc1=z\nd1=\ne1=v\n--\n"_s},
                       {"lines before the first key", u"hello\nTitle: T\nmore\n\nx"_s, u"title=T\n--\nAction: x"_s},
                       {"a lonely key", u"FADE IN:\n\nRain."_s, u"\n--\nAction: FADE IN:\nAction: Rain."_s},
                       {"two lonely keys", u"FADE IN:\nAND:\n\nRain."_s, u"fade in=\nand=\n--\nAction: Rain."_s},
                       {"none", u"Rain.\nx : y\nT:z"_s, u"x =y\n--\n"_s},
                       {"none at all", u"Rain.\n:x\n\na: b"_s, u"\n--\nAction: Rain.|:x\nAction: a: b"_s},
                       {"every place where it stands", u"T1: t\n\na T1: t.\n\nT1: T1: t\n\nT1: tT1: t"_s,
                        u"t1=t\n--\nAction: a .\nAction: T1: "_s},
                   });
}

// By the usual search, the title page would be compared at each place of the text behind it.
TEST(Parser, LongTitlePageThatStandsAgain)
{
    const QString page = u"Key: "_s + QString(400000, u'a');
    const auto parser = FastFountainParser::initWithString(page + u"\n\n" + QString(900000, u'a') + page + u'b');
    ASSERT_EQ(parser.elements.size(), 1);
    EXPECT_EQ(parser.elements[0].elementText, QString(QString(900000, u'a') + u'b'));
}

TEST(Parser, Files)
{
    QTemporaryDir folder;
    const auto elementsIn = [&](const QByteArray &bytes) {
        QFile file(folder.filePath(u"a.fountain"_s));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        file.close();
        return described(FNScript::initWithFile(file.fileName()).elements);
    };
    EXPECT_EQ(elementsIn("\xEF\xBB\xBF"
                         "caf\xC3\xA9"),
              u"Action: café"_s);
    EXPECT_EQ(elementsIn("caf\xE9"), QString());
    EXPECT_EQ(elementsIn(""), QString());
    const FNScript missing = FNScript::initWithFile(folder.filePath(u"none.fountain"_s));
    EXPECT_EQ(missing.filename, u"none.fountain"_s);
    EXPECT_TRUE(missing.elements.isEmpty());
}

// The reader looks at some lines by hand; these are the patterns that it stands for.
TEST(Parser, SameAsPatterns)
{
    const QString blanks = u"\t\n\v\f\r \u0085\u00a0\u1680\u2003\u2028\u202f\u3000\u200b\u180e\ufeffx"_s;
    for (const QChar c : blanks) EXPECT_EQ(c.isSpace(), isMatchedByRegex(QString(c), u"\\s"_s)) << int(c.unicode());
    std::mt19937 random(8);
    const QString signs = u"[[]] *//^^TO:ab\u2028"_s;
    for (int i = 0; i < 20000; ++i) {
        QString line(int(random() % 9), u' ');
        for (QChar &c : line) c = signs[qsizetype(random() % size_t(signs.size()))];
        const auto elements = elementsOfBody(line + u"\nx");
        const auto firstIs = [&](QLatin1StringView type) { return !elements.isEmpty() && elements[0].is(type); };
        const bool isBoneyard = isMatchedByRegex(line, u"\\*\\/\\s*$"_s);
        const bool isNote = isMatchedByRegex(line, u"^\\s*\\[{2}\\s*([^\\]\\n])+\\s*\\]{2}\\s*$"_s);
        ASSERT_EQ(firstIs(FNType::Boneyard), isBoneyard) << line.toStdString();
        ASSERT_EQ(firstIs(FNType::Comment), isNote && !isBoneyard) << line.toStdString();
        const bool isTransition = isMatchedByRegex(line, u"[^a-z]*TO:$"_s);
        const bool isBlank = isMatchedByRegex(line, u"^\\s{2,}$"_s);
        const bool opens = line.startsWith(u"/*");
        if (isBoneyard || isNote || isBlank || opens || line.isEmpty()) continue;
        ASSERT_EQ(firstIs(FNType::Transition), isTransition) << line.toStdString();
        const bool isSpeaker = !isTransition && isMatchedByRegex(line, u"^[^a-z]+$"_s);
        const bool isDual = isSpeaker && isMatchedByRegex(line, u"\\^\\s*$"_s);
        ASSERT_EQ(elements[0].isDualDialogue, isDual) << line.toStdString();
    }
}
