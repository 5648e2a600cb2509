// SPDX-License-Identifier: GPL-3.0-or-later
// The rewrites that start again from the top after each replacement, beside the plain loop that they stand for.
#include "conversion/NestedRewrites.h"

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

// Each closing tag sets free another one: as deep as the text is long.
TEST(NestedRewrites, closingTagsThatFreeOneAnotherNeedNoStack)
{
    const QString hostile = u"<ul>"_s + u"<ol></ul><ul></ol>"_s.repeated(50000) + u"</ul>"_s;
    const QString result = replaceInnermost(hostile, {u"ul"_s, u"ol"_s},
                                            [](const QString &, const QString &content) { return content.right(5); });
    EXPECT_FALSE(result.contains(u"<ul>"));
}
