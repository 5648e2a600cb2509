// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/LineEditing.h"

#include "conversion/Patterns.h"

#include <algorithm>

namespace tomelet {

namespace {

qsizetype firstLineLength(const QString &lines)
{
    return paragraphRange(lines, {0, 0}).length;
}

// Puts other lines in place of the selection's; the selection follows the change of the first line and of the whole.
bool replaceLines(EditedText &edited, Range range, const QString &lines)
{
    const QString before = edited.part(range);
    if (lines == before) return false;
    const Range selection = edited.selection();
    const qsizetype inFirst = firstLineLength(lines) - firstLineLength(before);
    const qsizetype inAll = lines.size() - before.size();
    edited.tm_replaceCharactersInRange(range, lines);
    const qsizetype start = std::max(range.location, selection.location + inFirst);
    edited.select({start, std::max<qsizetype>(0, selection.length + inAll - inFirst)});
    return true;
}

constexpr int linesAndDots = PatternLineAnchored | PatternDotAll;

QString withNextListKind(const QString &lines)
{
    struct Kind
    {
        QString found, replaced, by;
    };
    static const Kind kinds[] = {
        {QStringLiteral(R"(^\s*- (?!\[.\]))"), QStringLiteral(R"(^(\s*)- )"), QStringLiteral("$11. ")},
        {QStringLiteral(R"(^\s*\d+\. )"), QStringLiteral(R"(^(\s*)\d+\. )"), QStringLiteral("$1- [ ] ")},
        {QStringLiteral(R"(^\s*- \[[ |x]\] ?)"), QStringLiteral(R"(^(\s*)- \[[ |x]\] ?)"), QStringLiteral("$1")},
    };
    if (lines.isEmpty()) return QStringLiteral("- ");
    for (const Kind &kind : kinds)
        if (rangeOfPattern(lines, kind.found).isFound()) return regexSweep(lines, kind.replaced, kind.by, linesAndDots);
    return regexSweep(lines, QStringLiteral("^([ \\t]*)"), QStringLiteral("$1- "), linesAndDots);
}

QString withCommentsToggled(const QString &lines)
{
    if (lines.isEmpty()) return QStringLiteral("// ");
    if (lines.startsWith(u"//")) return regexSweep(lines, QStringLiteral(R"(^(\s*)//\s)"), {}, PatternLineAnchored);
    return regexSweep(lines, QStringLiteral("^"), QStringLiteral("// "), PatternLineAnchored);
}

} // namespace

bool tm_toggleList(EditedText &edited)
{
    const Range range = paragraphRange(edited.text(), edited.selection());
    return replaceLines(edited, range, withNextListKind(edited.part(range)));
}

bool tm_toggleComment(EditedText &edited)
{
    const Range range = paragraphRange(edited.text(), edited.selection());
    return replaceLines(edited, range, withCommentsToggled(edited.part(range)));
}

bool insertMarkdownHeading(EditedText &edited, int level)
{
    static constexpr int deepest = 6;
    const Range range = paragraphRange(edited.text(), {edited.selection().location, 0});
    const QString line = edited.part(range);
    const Range present = rangeOfPattern(line, QStringLiteral("^#+[ \\t]*"));
    const QString marks = level > 0 ? QString(QString(std::min(level, deepest), u'#') + u' ') : QString();
    return replaceLines(edited, range, QString(marks + line.mid(present.isFound() ? present.length : 0)));
}

} // namespace tomelet
