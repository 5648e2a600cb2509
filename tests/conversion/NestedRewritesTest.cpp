// SPDX-License-Identifier: GPL-3.0-or-later
// The rewrites that start again from the top after each replacement, beside the plain loop that they stand for.
#include "conversion/NestedRewrites.h"

#include "conversion/HtmlToMarkdown.h"

#include "tests/support/Notebook.h"

#include <gtest/gtest.h>

#include <random>

using namespace tomelet;
using namespace Qt::StringLiterals;

namespace {

QString loopOfFirstMatches(QString text, const QString &pattern, int options, const MatchReplacement &replacement)
{
    for (;;) {
        const PatternMatches found = firstMatchOfPattern(text, pattern, options);
        if (found.isEmpty()) return text;
        replaceRange(text, found[0].range(), replacement(found[0], text));
    }
}

QString randomText(std::mt19937 &random, const QStringList &pieces)
{
    QString text;
    for (auto left = random() % 24; left > 0; --left) text += pieces[qsizetype(random() % size_t(pieces.size()))];
    return text;
}

using MarkdownOfNests = test::Notebook;

struct Loop
{
    const char *name;
    QString pattern, opener, closer;
    QStringList pieces;
    MatchReplacement replacement;
};

QString bracketed(const PatternMatch &match, const QString &text)
{
    const QString content = substring(text, match.group(1));
    return content.isEmpty() ? QString() : QString(u'\n' + content + u'\n');
}

} // namespace

TEST(NestedRewrites, firstMatchesGiveWhatThePlainLoopGives)
{
    const Loop loops[] = {
        {"paragraphs", u"<p\\b.*?>(.*?)</p>"_s, u"<p"_s, u"</p>"_s,
         {u"<p>"_s, u"</p>"_s, u"<p class>"_s, u"<pre>"_s, u"a"_s, u"<"_s, u"p>"_s, u"\n"_s}, bracketed},
        {"links", u"<a [^>]*?href=\"(.+?)\".*?>(.*?)</a>"_s, u"<a "_s, u"</a>"_s,
         {u"<a "_s, u"href=\"u\""_s, u">"_s, u"</a>"_s, u"<a href=\"x\">"_s, u"<a name>"_s, u"<"_s, u"a "_s, u"\""_s},
         [](const PatternMatch &match, const QString &text) {
             const QString address = substring(text, match.group(1));
             const QString label = substring(text, match.group(2));
             return address == u"x" ? label : QString(u'[' + label + u"]("_s + address + u')');
         }},
        {"tables", u"<table.*?>(.*?)</table>"_s, u"<table"_s, u"</table>"_s,
         {u"<table>"_s, u"</table>"_s, u"<table b>"_s, u"x"_s, u"<t"_s, u"able>"_s, u">"_s}, bracketed},
        {"images", u"<img[^>]* src=\"(.+?)\".*?>"_s, u"<img"_s, u">"_s,
         {u"<img"_s, u" src=\"s\""_s, u">"_s, u"<img alt>"_s, u" src=\"<img\""_s, u"<"_s, u"img"_s}, bracketed},
    };
    for (const Loop &loop : loops) {
        std::mt19937 random(20261121);
        for (int round = 0; round < 4000; ++round) {
            const QString text = randomText(random, loop.pieces);
            ASSERT_EQ(replaceFirstMatches(text, loop.pattern, PatternDotAll, loop.opener, loop.closer, loop.replacement),
                      loopOfFirstMatches(text, loop.pattern, PatternDotAll, loop.replacement))
                << loop.name << ": " << text.toStdString();
        }
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
            const QString plain = loopOfFirstMatches(
                text, row.pattern, PatternDotAll, [&](const PatternMatch &match, const QString &all) {
                    return row.replacement(substring(all, match.group(1)), substring(all, match.group(2)));
                });
            ASSERT_EQ(replaceInnermost(text, row.names, row.replacement), plain) << text.toStdString();
        }
    }
}

// -- lists and quotes whose lines are marked at the end ----------------------------------------------------------------

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

TEST_F(MarkdownOfNests, isThatOfThePlainLoops)
{
    const QStringList pieces{u"<ul>"_s, u"</ul>"_s, u"<ol>"_s, u"</ol>"_s, u"<li>"_s, u"</li>"_s, u"x"_s, u"\n"_s, u"\n- y"_s,
                             u"- "_s,   u"3. "_s,   u" "_s,    u"<ul><li>"_s, u"</li></ul>"_s, u"<li> [ ] z</li>"_s};
    std::mt19937 random(3);
    for (int round = 0; round < 8000; ++round) {
        const QString text = u"start"_s + randomText(random, pieces) + randomText(random, pieces);
        // What the steps in front do to these tags.
        QString plain = regexSweep(regexSweep(text, u"<(ul|ol)( .*?)?>\\n*"_s, u"<$1>"_s), u"\\n*<li( .*?)?>\\n*"_s, u"<li>"_s);
        plain = loopOfFirstMatches(plain, u"<(ul|ol)>((?:(?!<ul|<ol)[\\s\\S])*?)</\\1>"_s, PatternDotAll,
                                   [](const PatternMatch &match, const QString &all) {
                                       return plainList(substring(all, match.group(1)), substring(all, match.group(2)));
                                   });
        if (plain.contains(u"<ul"_s) || plain.contains(u"<ol"_s)) continue; // the steps in front would meet them again
        plain.replace(u"<li>"_s, u"- "_s).replace(u"</li>"_s, u"\n"_s);
        ASSERT_EQ(tm_markdownifyHTML(text), tm_markdownifyHTML(plain)) << text.toStdString();
    }
}

TEST_F(MarkdownOfNests, quotesToo)
{
    const QStringList pieces{u"<blockquote>"_s, u"</blockquote>"_s, u"x"_s, u"\n"_s, u"\n> "_s, u"> "_s, u" "_s};
    std::mt19937 random(4);
    for (int round = 0; round < 8000; ++round) {
        const QString text = u"start"_s + randomText(random, pieces) + randomText(random, pieces);
        QString plain = regexSweep(text, u"<blockquote( .*?)?>\\n*"_s, u"\n<blockquote>"_s);
        plain = loopOfFirstMatches(
            plain, u"<blockquote>((?:(?!<blockquote)[\\s\\S])*?)</blockquote>"_s, 0,
            [](const PatternMatch &match, const QString &all) {
                const QString content = substring(all, match.group(1));
                if (content.isEmpty()) return QString();
                return QString(u"> "_s + content.trimmed().replace(u"\n> "_s, u"\n> > "_s));
            });
        if (plain.contains(u"<blockquote"_s)) continue;
        ASSERT_EQ(tm_markdownifyHTML(text), tm_markdownifyHTML(plain)) << text.toStdString();
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
