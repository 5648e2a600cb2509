// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/Patterns.h"

#include "conversion/PatternCache_p.h"

#include <algorithm>
#include <limits>

namespace tomelet {

namespace {

/// The steps have a few hundred patterns; those that are made from words of the user come on top and must not
/// pile up.
constexpr qsizetype cacheLimit = 2000;
constexpr qsizetype longest = std::numeric_limits<int32_t>::max();

constexpr quint32 icuOptions(int options)
{
    quint32 flags = 0;
    if (options & PatternCaseInsensitive) flags |= UREGEX_CASE_INSENSITIVE;
    if (options & PatternDotAll) flags |= UREGEX_DOTALL;
    if (options & PatternLineAnchored) flags |= UREGEX_MULTILINE;
    return flags;
}

} // namespace

PatternCache &patternCache()
{
    static PatternCache cache;
    return cache;
}

OwnedRegex PatternCache::regex(const QString &pattern, quint32 options)
{
    if (pattern.size() >= longest) return {};
    std::shared_ptr<URegularExpression> compiled;
    {
        const std::lock_guard lock(m_mutex);
        const auto known = m_compiled.constFind({pattern, options});
        if (known != m_compiled.constEnd()) {
            compiled = *known;
        } else {
            if (m_compiled.size() >= cacheLimit) m_compiled.clear();
            ++m_compileCount;
            compiled.reset(compiledRegex(pattern, options, nullptr), CloseRegex());
            // The key is a copy: the caller's text might be made of a buffer that is not its own.
            m_compiled.insert({QString(pattern.constData(), pattern.size()), options}, compiled);
        }
    }
    if (!compiled) return {};
    UErrorCode status = U_ZERO_ERROR;
    return OwnedRegex(uregex_clone(compiled.get(), &status));
}

namespace {

// A clone of the pattern, set to the range of the text; null where there is nothing to match.
OwnedRegex regexOn(const QString &text, const QString &pattern, int options, Range &range)
{
    const std::optional<Range> inside = rangeWithin(text.size(), range);
    if (!inside || text.isEmpty() || text.size() >= longest) return {};
    OwnedRegex regex = patternCache().regex(pattern, icuOptions(options));
    UErrorCode status = U_ZERO_ERROR;
    range = *inside;
    if (regex) uregex_setText(regex.get(), unitsOf(text) + range.location, int32_t(range.length), &status);
    return regex;
}

} // namespace

constexpr int unlimited = 0;

static PatternMatches collectMatches(const QString &text, const QString &pattern, int options, Range range, bool all,
                                     int steps = unlimited)
{
    const OwnedRegex regex = regexOn(text, pattern, options, range);
    if (!regex) return {};
    UErrorCode status = U_ZERO_ERROR;
    uregex_setTimeLimit(regex.get(), steps, &status);
    const int groupCount = uregex_groupCount(regex.get(), &status);
    std::vector<Range> ranges;
    RegexMatcher matcher(regex.get(), range.location);
    while ((all || ranges.empty()) && matcher.next())
        for (int group = 0; group <= groupCount; ++group) ranges.push_back(matcher.range(group));
    if (U_FAILURE(matcher.status()) && steps == unlimited) return {};
    return {std::move(ranges), size_t(groupCount) + 1};
}

PatternMatches matchesWithinSteps(const QString &text, const QString &pattern, int options, Range range, int steps)
{
    return collectMatches(text, pattern, options, range, true, steps);
}

PatternMatches matchesOfPattern(const QString &text, const QString &pattern, int options, Range range)
{
    return collectMatches(text, pattern, options, range, true);
}

PatternMatches firstMatchOfPattern(const QString &text, const QString &pattern, int options, Range range)
{
    return collectMatches(text, pattern, options, range, false);
}

Range rangeOfPattern(const QString &text, const QString &pattern, int options, Range range, size_t group)
{
    const OwnedRegex regex = regexOn(text, pattern, options, range);
    if (!regex) return {};
    RegexMatcher matcher(regex.get(), range.location);
    return matcher.next() ? matcher.range(int(group)) : Range();
}

bool isPatternValid(const QString &pattern, int options)
{
    return patternCache().regex(pattern, icuOptions(options)) != nullptr;
}

size_t rewriteEachMatch(QString &text, const QString &pattern, int options, const PatternRewriter &rewriter)
{
    const PatternMatches matches = matchesOfPattern(text, pattern, options);
    for (size_t i = matches.size(); i > 0; --i) rewriter(matches[i - 1], text);
    return matches.size();
}

void replaceGroups(QString &text, const PatternMatch &match,
                   std::initializer_list<std::pair<size_t, QString>> replacements)
{
    std::vector<std::pair<size_t, QString>> ordered(replacements);
    std::sort(ordered.begin(), ordered.end(), [](const auto &a, const auto &b) { return a.first > b.first; });
    for (const auto &[number, replacement] : ordered)
        if (match.group(number).isFound()) replaceRange(text, match.group(number), replacement);
}

QString regexSweep(const QString &text, const QString &pattern, const QString &replacement, int options)
{
    Range range = wholeRange;
    const OwnedRegex regex = regexOn(text, pattern, options, range);
    if (!regex) return text;
    std::vector<char16_t> buffer(size_t(text.size()) + 64);
    qsizetype count = 0;
    UErrorCode status = U_ZERO_ERROR;
    const auto replaced = replacedByTemplate(regex.get(), replacement, buffer, count, status);
    return replaced && count > 0 ? replaced->toString() : text;
}

} // namespace tomelet
