// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/Highlighting.h"

#include "editor/EditedText.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/Extensions.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "organising/contexts/ContextStores.h"

namespace tomelet {

namespace {

bool isHtmlSource(const HighlightOptions &options)
{
    if (!options.extension.startsWith(u"htm")) return false;
    return !(options.isCombinedMarkdown && options.extension == u"html");
}

bool runs(const HighlightRow &row, const HighlightOptions &options)
{
    switch (row.condition) {
    case HighlightCondition::MarkdownOrHtml: return options.highlightMarkdown || isHtmlSource(options);
    case HighlightCondition::Html: return isHtmlSource(options);
    case HighlightCondition::Outline: return options.extension == u"opml";
    case HighlightCondition::Contexts: return options.contexts && !options.contextMarkers.isEmpty();
    case HighlightCondition::Markdown: return options.highlightMarkdown;
    case HighlightCondition::Comments: return options.highlightMarkdown && options.ignoreCommentsForWordCount;
    case HighlightCondition::Tasks: return options.highlightMarkdown && !options.markTaskWithCharacter.isEmpty();
    case HighlightCondition::Lists:
        return options.highlightMarkdown && options.autoIndentLists &&
               (!options.markTaskWithCharacter.isEmpty() || !row.pattern.contains(u"%1"));
    }
    return false;
}

QString patternOf(const HighlightRow &row, const HighlightOptions &options)
{
    if (!row.pattern.contains(u"%1")) return row.pattern;
    const bool isContext = row.condition == HighlightCondition::Contexts;
    const QString &given = isContext ? options.contextMarkers : options.markTaskWithCharacter;
    QString pattern = row.pattern;
    return pattern.replace(QLatin1StringView("%1"), tm_stringByEscapingWildcards(given));
}

// What stands at the start of a text is not looked for at the start of a line of it.
bool needsStartOfText(const HighlightRow &row)
{
    return row.pattern.startsWith(u"\\A");
}

// The part of the range in which the row can match at all; empty where it cannot.
Range searched(const QString &text, Range range, const HighlightRow &row)
{
    const QStringView part = QStringView(text).sliced(range.location, range.length);
    if (!row.needed.isEmpty() && !part.contains(row.needed)) return {range.location, 0};
    if (row.closer.isEmpty()) return range;
    const qsizetype last = part.lastIndexOf(row.closer);
    return {range.location, last < 0 ? 0 : last + row.closer.size()};
}

// Enough for every text that a person writes; about ten points of return for each unit.
int stepsFor(Range range)
{
    static constexpr qsizetype least = 50;
    static constexpr qsizetype unitsOfStep = 1000;
    return int(least + range.length / unitsOfStep);
}

// The list may name a word with its marker or without.
bool isExcluded(const QString &text, const PatternMatch &match, const HighlightRow &row,
                const HighlightOptions &options)
{
    if (row.condition != HighlightCondition::Contexts) return false;
    const QString context = substring(text, match.group(1));
    return options.excludedContexts.contains(context) || options.excludedContexts.contains(context.mid(1));
}

template <typename Take>
void eachMatch(const QString &text, Range range, const HighlightOptions &options, Take take)
{
    if (!range.isFound()) return logLine(QStringLiteral("*** highlightStringInRange NOT FOUND"));
    if (range.location < 0 || range.location > text.size() || range.length > text.size() - range.location)
        return logLine(QStringLiteral("*** highlightStringInRange outof bounds"));
    for (const HighlightRow &row : highlightRows()) {
        if (!runs(row, options) || (needsStartOfText(row) && range.location > 0)) continue;
        const Range part = searched(text, range, row);
        if (part.length == 0) continue;
        const PatternMatches matches =
            matchesWithinSteps(text, patternOf(row, options), row.options, part, stepsFor(part));
        for (size_t i = 0; i < matches.size(); ++i)
            if (!isExcluded(text, matches[i], row, options)) take(row, matches[i]);
    }
}

HighlightStyle emphasisOf(qsizetype marks)
{
    return {.bold = marks >= 2, .italic = marks != 2};
}

// The text that a substitution takes away, between its opening and the arrow.
StyledRange oldTextOf(const QString &text, Range substitution)
{
    const qsizetype start = substitution.location + 3;
    return {{start, text.indexOf(u"~>", start) - start}, {.strikethrough = true}};
}

} // namespace

HighlightOptions highlightOptions(const QString &extension)
{
    HighlightOptions options;
    options.extension = extension;
    options.contexts = managesContextsAutomatically();
    options.contextMarkers = contextMarkers();
    if (options.contexts) options.excludedContexts = excludedContexts();
    options.ignoreCommentsForWordCount = settings().boolean(QStringLiteral("ignoreCommentsForWordCount"));
    options.autoIndentLists = settings().boolean(QStringLiteral("AutoIndentLists"));
    options.markTaskWithCharacter = settings().string(QStringLiteral("markTaskWithCharacter"));
    return options;
}

HighlightOptions highlightOptionsForItem(const QString &path)
{
    HighlightOptions options = highlightOptions(lowerExtension(path));
    options.isCombinedMarkdown = tm_propertyForKey(path, QStringLiteral("Markdown")).toString() == u"OK";
    options.highlightMarkdown = settings().boolean(QStringLiteral("HighlightMarkdown"));
    return options;
}

std::vector<Highlight> tm_highlightStringinRange(const QString &text, Range range, const HighlightOptions &options)
{
    std::vector<Highlight> highlights;
    eachMatch(text, range, options, [&](const HighlightRow &row, const PatternMatch &match) {
        highlights.push_back({match.range(), row.number});
    });
    return highlights;
}

std::vector<StyledRange> stylesInRange(const QString &text, Range range, const HighlightOptions &options)
{
    static constexpr int stars = 13, underscores = 14, substitution = 43;
    std::vector<StyledRange> styles;
    eachMatch(text, range, options, [&](const HighlightRow &row, const PatternMatch &match) {
        const bool isEmphasis = row.number == stars || row.number == underscores;
        for (const HighlightPart &part : row.parts) {
            if (!match.group(part.group).isFound()) continue;
            const bool takesStrength = isEmphasis && part.group == 1;
            styles.push_back({match.group(part.group), takesStrength ? emphasisOf(match.group(2).length) : part.style});
        }
        if (row.number == substitution) styles.push_back(oldTextOf(text, match.range()));
    });
    return styles;
}

Range tm_highlightCurrentLine(const QString &text, Range selection)
{
    return paragraphRange(text, selection);
}

} // namespace tomelet
