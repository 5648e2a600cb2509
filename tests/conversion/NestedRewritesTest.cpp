// SPDX-License-Identifier: GPL-3.0-or-later
// The rewrites that start again from the top after each replacement, beside the plain loop that they stand
// for.
#include "conversion/NestedRewrites.h"

#include "conversion/HtmlSteps_p.h"

#include "tests/conversion/PlainLoops.h"
#include "tests/support/Notebook.h"

#include <gtest/gtest.h>

#include <random>

using namespace tomelet;
using namespace Qt::StringLiterals;

namespace {

QString randomText(std::mt19937 &random, const QStringList &pieces)
{
    QString text;
    for (auto left = random() % 24; left > 0; --left) text += pieces[qsizetype(random() % size_t(pieces.size()))];
    return text;
}

struct Nests
{
    const char *name;
    const test::PlainLoop &plain;
    QStringList pieces;
};

void expectSame(const Nests &nests)
{
    std::mt19937 random(20261121);
    for (int round = 0; round < 5000; ++round) {
        const QString text = randomText(random, nests.pieces);
        QString result = text;
        nests.plain.step(result);
        ASSERT_EQ(result, nests.plain.result(text)) << nests.name << ": " << text.toStdString();
    }
}

using NestedElements = test::Notebook;

} // namespace

// The long words are what lets a step leave parts of a content alone.
TEST_F(NestedElements, areRewrittenAsByThePlainLoop)
{
    const QString words = u"some words "_s.repeated(60);
    const Nests kinds[] = {
        {"paragraphs",
         test::plainParagraphs,
         {u"<p>"_s, u"</p>"_s, u"<p class>"_s, u"<pre>"_s, u"<p\u00e9>"_s, words, u"<"_s, u"p>"_s, u"</"_s, u"<p"_s,
          u"\n"_s}},
        {"links",
         test::plainLinks,
         {u"<a "_s, u"href=\"u\""_s, u">"_s, u"</a>"_s, u"<a href=\"x-apple:\">"_s, u"<a x href=\"</a>\">"_s,
          u"<a name>"_s, u"<"_s, u"a "_s, u"\""_s, u"<a href=\""_s + root + u"/b\">"_s, u"</"_s, u"a>"_s,
          u"<a href=\"\"\">"_s}},
        {"images",
         test::plainImages,
         {u"<img"_s, u" src=\"s)\""_s, u">"_s, u"<img alt>"_s, u" src=\"<img\""_s, u"<"_s, u"img"_s,
          u" src=\""_s + root + u"\""_s}},
        {"tables", test::plainTables, {u"<table>"_s,  u"</table>"_s,   u"<table b>"_s,   words,      words,
                                       u"<tr>"_s,     u"<td>"_s,       u"</td>"_s,       u"</tr>"_s, u"<thead>"_s,
                                       u"</thead>"_s, u"<th right>"_s, u"<th>"_s,        u"</th>"_s, u"<tbody>"_s,
                                       u"</tbody>"_s, u"<colgroup>"_s, u"</colgroup>"_s, u"\n"_s,    u"|"_s,
                                       u" "_s,        u"a < b"_s}},
        {"torn tables",
         test::plainTables,
         {u"<table>"_s, u"</table>"_s, u"</table>"_s, words, words, u"<t"_s, u"</t"_s, u"<tbody>"_s, u"able>"_s,
          u"d>"_s, u"<tr>"_s, u"<td "_s, u">"_s, u"<"_s, u"</thead>"_s, u"<th>"_s, u"x"_s, u"< a"_s}},
        {"definitions",
         test::plainDefinitionLists,
         {u"<dl>"_s, u"</dl>"_s, u"<dl c>"_s, u"<dt>"_s, u"</dt>"_s, u"<dd>"_s, u"</dd>"_s, u"<dt"_s, u"<dd "_s, u">"_s,
          words, words, u"<dlx>"_s}},
    };
    for (const Nests &kind : kinds) expectSame(kind);
}

TEST(NestedRewrites, doubleContainersGoAsByThePlainLoop)
{
    const auto plain = [](QString text) {
        for (;;) {
            const PatternMatches found =
                firstMatchOfPattern(text, u"(<div[^>]*?>\\s*<div[^>]*?>)((?!<div).*?)(</div>\\s*</div>)"_s,
                                    PatternCaseInsensitive | PatternDotAll);
            if (found.isEmpty()) return text;
            const qsizetype opening = substring(text, found[0].group(1)).indexOf(u"<div>"_s);
            const qsizetype closing = substring(text, found[0].group(3)).lastIndexOf(u"</div>"_s);
            if (opening < 0 || closing < 0) return text;
            text.remove(found[0].group(3).location + closing, 6).remove(found[0].group(1).location + opening, 5);
        }
    };
    const QStringList pieces{u"<div>"_s, u"<div>"_s, u"</div>"_s, u"</div>"_s, u"<div x>"_s,
                             u" "_s,     u"a"_s,     u"<DIV>"_s,  u"<div "_s,  u">"_s};
    std::mt19937 random(5);
    for (int round = 0; round < 8000; ++round) {
        const QString text = randomText(random, pieces);
        QString result = text;
        mergeDoubleContainers(result);
        ASSERT_EQ(result, plain(text)) << text.toStdString();
    }
}

TEST(NestedRewrites, innermostGivesWhatThePlainLoopGives)
{
    const auto quote = [](const QString &, const QString &content) {
        if (content.isEmpty()) return QString();
        return QString(u"> "_s + content.trimmed().replace(u"\n> "_s, u"\n> > "_s));
    };
    const auto list = [](const QString &name, const QString &content) { return QString(u'(' + name + content + u')'); };
    const struct
    {
        QStringList names, pieces;
        QString pattern;
        std::function<QString(const QString &, const QString &)> replacement;
    } rows[] = {
        {{u"blockquote"_s},
         {u"<blockquote>"_s, u"</blockquote>"_s, u"\n"_s, u"> "_s, u"a"_s, u"<blockquote x>"_s, u"<"_s, u"</"_s},
         u"<(blockquote)>((?:(?!<blockquote)[\\s\\S])*?)</blockquote>"_s,
         quote},
        {{u"ul"_s, u"ol"_s},
         {u"<ul>"_s, u"</ul>"_s, u"<ol>"_s, u"</ol>"_s, u"<li>"_s, u"</li>"_s, u"<ultra>"_s, u"x"_s, u"<"_s, u"ul>"_s},
         u"<(ul|ol)>((?:(?!<ul|<ol)[\\s\\S])*?)</\\1>"_s,
         list},
    };
    for (const auto &row : rows) {
        std::mt19937 random(42);
        for (int round = 0; round < 6000; ++round) {
            const QString text = randomText(random, row.pieces);
            const QString plain = test::loopOfFirstMatches(
                text, row.pattern, PatternDotAll, [&](const PatternMatch &match, const QString &all) {
                    return row.replacement(substring(all, match.group(1)), substring(all, match.group(2)));
                });
            ASSERT_EQ(replaceInnermost(text, row.names, row.replacement), plain) << text.toStdString();
        }
    }
}

// -- lists and quotes whose lines are marked at the end ---------------------------------------------------------------

namespace {

QString indented(const QString &text)
{
    return regexSweep(text, u"\n([ \t]*)(-|\\d+\\.)\\s"_s, u"\n$1    $2 "_s, PatternDotAll);
}

QString plainList(const QString &name, const QString &content)
{
    QString list;
    const QStringList pieces = content.split(u"</li>"_s);
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const QString piece = pieces[i].trimmed();
        const qsizetype item = piece.indexOf(u"<li>"_s);
        const QString before = item < 0 ? piece : piece.left(item);
        const QString inside = item < 0 ? QString() : piece.mid(item).remove(u"<li>"_s).trimmed();
        if (!before.isEmpty()) list += indented(u'\n' + before);
        if (inside.isEmpty()) continue;
        QString line = (name == u"ol" ? u"\n%1. "_s.arg(i + 1) : u"\n- "_s) + indented(inside);
        list += line.replace(u"\n-  ["_s, u"\n- ["_s);
    }
    return list.replace(u"\n\n"_s, u"\n"_s) + u'\n';
}

} // namespace

TEST_F(NestedElements, listsAreThoseOfThePlainLoop)
{
    const QStringList pieces{u"<ul>"_s,  u"</ul>"_s, u"<ol>"_s,     u"</ol>"_s,      u"<li>"_s,
                             u"</li>"_s, u"x"_s,     u"\n"_s,       u"\n- y"_s,      u"- "_s,
                             u"3. "_s,   u" "_s,     u"<ul><li>"_s, u"</li></ul>"_s, u"<li> [ ] z</li>"_s};
    std::mt19937 random(3);
    for (int round = 0; round < 8000; ++round) {
        const QString text = randomText(random, pieces) + randomText(random, pieces);
        QString plain = test::loopOfFirstMatches(text, u"<(ul|ol)>((?:(?!<ul|<ol)[\\s\\S])*?)</\\1>"_s, PatternDotAll,
                                                 [](const PatternMatch &match, const QString &all) {
                                                     return plainList(substring(all, match.group(1)),
                                                                      substring(all, match.group(2)));
                                                 });
        plain.replace(u"<li>"_s, u"- "_s).replace(u"</li>"_s, u"\n"_s);
        QString result = text;
        convertLists(result);
        ASSERT_EQ(result, plain) << text.toStdString();
    }
}

TEST_F(NestedElements, quotesAreThoseOfThePlainLoop)
{
    const QStringList pieces{u"<blockquote>"_s, u"</blockquote>"_s, u"x"_s, u"\n"_s, u"\n> "_s, u"> "_s, u" "_s};
    std::mt19937 random(4);
    for (int round = 0; round < 8000; ++round) {
        const QString text = randomText(random, pieces) + randomText(random, pieces);
        const QString plain =
            test::loopOfFirstMatches(regexSweep(text, u"<blockquote( .*?)?>\\n*"_s, u"\n<blockquote>"_s),
                                     u"<blockquote>((?:(?!<blockquote)[\\s\\S])*?)</blockquote>"_s, 0,
                                     [](const PatternMatch &match, const QString &all) {
                                         const QString content = substring(all, match.group(1));
                                         if (content.isEmpty()) return QString();
                                         return QString(u"> "_s + content.trimmed().replace(u"\n> "_s, u"\n> > "_s));
                                     });
        QString result = text;
        convertQuotes(result);
        ASSERT_EQ(result, plain) << text.toStdString();
    }
}

// Each closing tag sets free another one: as deep as the text is long.
TEST(NestedRewrites, closingTagsThatFreeOneAnotherNeedNoStack)
{
    const QString hostile = u"<ul>"_s + u"<ol></ul><ul></ol>"_s.repeated(50000) + u"</ul>"_s;
    const QString result = replaceInnermost(hostile, {u"ul"_s, u"ol"_s},
                                            [](const QString &, const QString &content) { return content.right(5); });
    EXPECT_FALSE(result.contains(u"<ul>"));
}
