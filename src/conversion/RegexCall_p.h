// SPDX-License-Identifier: GPL-3.0-or-later
// The frame that every operation of the regular-expression layer runs in: arguments are checked, the pattern
// is found, the text set, and failures of ICU reported.
#pragma once

#include "conversion/RegexCache_p.h"
#include "conversion/RegexErrors_p.h"
#include "conversion/RegexMatcher_p.h"

namespace tomelet {

/// The arguments of one call. `range` is cut to the text by check().
struct RegexCall
{
    const QString &text;
    const QString &regex;
    quint32 options;
    Range range;
    RKLError *error;
    const QString *replacement = nullptr;

    [[nodiscard]] regexerror::Call details() const { return {regex, options, &text, range, replacement}; }
    bool failed(const QString &what) const;
    /// Whether pattern, text and range can be used at all.
    [[nodiscard]] bool check();
};

/// Runs `work` with the compiled pattern, set to the range of the text, while the table is locked; not at all
/// for an empty text. `work` takes (RegexCache::Entry &, UErrorCode &). False, with a report, on any fault.
template <typename Work>
bool withRegex(RegexCall call, Work work)
{
    if (!call.check()) return false;
    RegexCache &cache = regexCache();
    const std::lock_guard lock(cache.mutex);
    RegexCache::Entry *entry = cache.find(call.regex, call.options, call.error);
    if (!entry) return false;
    if (call.text.isEmpty()) return true;
    UErrorCode status = U_ZERO_ERROR;
    cache.setSubject(entry, call.text, call.range, status);
    if (U_SUCCESS(status) && !work(*entry, call.range, status)) return false;
    if (U_FAILURE(status)) regexerror::reportIcuFailure(call.error, call.details(), status);
    return U_SUCCESS(status);
}

/// The text of a group of the matcher's present match; null where it took no part.
[[nodiscard]] inline QString matchedText(RegexMatcher &matcher, const QString &text, int capture)
{
    const Range range = matcher.range(capture);
    return range.isFound() ? text.sliced(range.location, range.length) : QString();
}

} // namespace tomelet
