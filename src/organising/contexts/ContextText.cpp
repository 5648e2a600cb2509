// SPDX-License-Identifier: GPL-3.0-or-later
// Contexts in texts.
#include "organising/contexts/Contexts.h"

#include "conversion/CodeRanges.h"
#include "conversion/Edits.h"
#include "conversion/Patterns.h"
#include "foundation/Log.h"
#include "organising/contexts/ContextStores.h"

namespace tomelet {

namespace {

// The markers inside a set of a pattern.
QString markersInSet()
{
    QString set;
    for (const QChar marker : contextMarkers()) {
        if (QStringView(u"\\^-[]&").contains(marker)) set += u'\\';
        set += marker;
    }
    return set;
}

QString withoutFencedCode(const QString &text)
{
    Edits edits;
    const QList<Range> ranges = tm_rangesOfFencedCodeBlocks(text);
    qsizetype before = text.size();
    for (qsizetype i = ranges.size(); i-- > 0;) {
        // Inline code may lie inside a fence; the outer range takes it with it.
        if (ranges[i].end() > before) continue;
        edits.replace(ranges[i], QStringLiteral(" "));
        before = ranges[i].location;
    }
    return edits.appliedTo(text);
}

// "- something @done" is how another format of task lists marks what is done.
bool isForeignDoneMark(const QString &text, Range match)
{
    const qsizetype begin = text.lastIndexOf(u'\n', match.location) + 1;
    qsizetype end = text.indexOf(u'\n', match.end());
    if (end < 0) end = text.size();
    const QStringView line = QStringView(text).sliced(begin, end - begin).trimmed();
    return line.startsWith(u'-') && line.endsWith(u"@done");
}

QString withoutTrailingPunctuation(QString word)
{
    QString removable = QStringLiteral(",;.:([{");
    for (const auto &[closing, opening] : {std::pair{u']', u'['}, {u')', u'('}, {u'}', u'{'}})
        if (!word.contains(QChar(opening))) removable += QChar(closing);
    while (!word.isEmpty() && removable.contains(word.back())) word.chop(1);
    return word;
}

} // namespace

QStringList tm_extractTagsFromString(const QString &text)
{
    const QString plain = withoutFencedCode(text);
    const QString set = markersInSet();
    const QString pattern = QStringLiteral("(?<!\\S)([%1](?![%1])\\S+?)(?=,|;|\\s|$)").arg(set);
    const PatternMatches matches = matchesOfPattern(plain, pattern, PatternLineAnchored);
    const QStringList excluded = excludedContexts();
    QStringList words;
    for (size_t i = 0; i < matches.size(); ++i) {
        const QString candidate = substring(plain, matches[i].group(1));
        if (candidate == u"@done" && isForeignDoneMark(plain, matches[i].group(1))) {
            logLine(QStringLiteral("ignoring TP @done notation!"));
            continue;
        }
        const QString word = withoutTrailingPunctuation(candidate.trimmed());
        if (word.size() >= 2 && !excluded.contains(word) && !words.contains(word)) words.append(word);
    }
    return words;
}

bool tm_tagIsManagedAutomatically(const QString &word)
{
    return contextMarkers().contains(word.front());
}

QStringList contextsForCompletion(const QString &textBeforeCaret)
{
    if (!managesContextsAutomatically()) return {};
    const QString pattern = QStringLiteral("(?<!\\S)([%1](?![%1])\\S*?)$").arg(markersInSet());
    const Range typed = rangeOfPattern(textBeforeCaret, pattern, 0, wholeRange, 1);
    if (!typed.isFound()) return {};
    const QString beginning = substring(textBeforeCaret, typed);
    QStringList words;
    for (const QString &word : tm_listOfAllAvailableTags())
        if (word != favoriteContext && word.startsWith(beginning, Qt::CaseInsensitive)) words.append(word);
    return words;
}

QString tm_assignClassToContextTags(const QString &html, const QStringList &tags)
{
    QString marked = html;
    for (const QString &word : tm_listOfAllAvailableTags())
        if (tags.contains(word) && tm_tagIsManagedAutomatically(word))
            marked = regexSweep(marked, QStringLiteral("(\\W)(%1)(\\W)").arg(word),
                                QStringLiteral("$1<span class=\"tm_context-tag\">$2</span>$3"));
    return marked;
}

} // namespace tomelet
