// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/RegexLayer.h"

#include "conversion/RegexCall_p.h"

#include <limits>

namespace tomelet {

static constexpr qsizetype longest = std::numeric_limits<int32_t>::max();

bool RegexCall::failed(const QString &what) const
{
    regexerror::reportArgument(error, details(), what);
    return false;
}

bool RegexCall::check()
{
    if (regex.isNull()) return failed(QLatin1StringView(regexerror::nullRegex));
    if (regex.size() >= longest) return failed(QLatin1StringView(regexerror::regexTooLong));
    if (text.size() >= longest) return failed(QLatin1StringView(regexerror::subjectTooLong));
    const std::optional<Range> inside = rangeWithin(text.size(), range);
    if (!inside) return failed(QLatin1StringView(regexerror::outOfBounds));
    range = *inside;
    return true;
}

namespace {

// Calls `each(matcher, groupCount)` for the matches until it gives false. False on a fault.
template <typename Each>
bool forEachMatch(const RegexCall &call, int capture, Each each)
{
    return withRegex(call, [&](RegexCache::Entry &entry, Range range, UErrorCode &status) {
        if (capture < 0 || capture > entry.captureCount) return call.failed(QLatin1StringView(regexerror::badCapture));
        RegexMatcher matcher(entry.icu_regex, range.location);
        while (matcher.next())
            if (!each(matcher, entry.captureCount)) break;
        status = matcher.status();
        return true;
    });
}

QStringList allGroups(RegexMatcher &matcher, const QString &text, int groupCount)
{
    QStringList groups;
    for (int group = 0; group <= groupCount; ++group) {
        const QString captured = matchedText(matcher, text, group);
        groups.append(captured.isNull() ? QStringLiteral("") : captured);
    }
    return groups;
}

} // namespace

bool isMatchedByRegex(const QString &text, const QString &regex, quint32 options, Range range, RKLError *error)
{
    return rangeOfRegex(text, regex, options, range, 0, error).isFound();
}

bool isMatchedByRegex(const QString &text, const QString &regex, Range range)
{
    return isMatchedByRegex(text, regex, RKLNoOptions, range);
}

Range rangeOfRegex(const QString &text, const QString &regex, quint32 options, Range range, int capture,
                   RKLError *error)
{
    Range result;
    const bool isDone = forEachMatch({text, regex, options, range, error}, capture, [&](RegexMatcher &matcher, int) {
        result = matcher.range(capture);
        return false;
    });
    return isDone ? result : Range();
}

Range rangeOfRegex(const QString &text, const QString &regex, int capture)
{
    return rangeOfRegex(text, regex, RKLNoOptions, wholeRange, capture);
}

Range rangeOfRegex(const QString &text, const QString &regex, Range range)
{
    return rangeOfRegex(text, regex, RKLNoOptions, range, 0);
}

QString stringByMatching(const QString &text, const QString &regex, quint32 options, Range range, int capture,
                         RKLError *error)
{
    const Range found = rangeOfRegex(text, regex, options, range, capture, error);
    return found.isFound() ? text.sliced(found.location, found.length) : QString();
}

QString stringByMatching(const QString &text, const QString &regex, int capture)
{
    return stringByMatching(text, regex, RKLNoOptions, wholeRange, capture);
}

QString stringByMatching(const QString &text, const QString &regex, Range range)
{
    return stringByMatching(text, regex, RKLNoOptions, range, 0);
}

QStringList componentsMatchedByRegex(const QString &text, const QString &regex, quint32 options, Range range,
                                     int capture, RKLError *error)
{
    QStringList result;
    const bool isDone = forEachMatch({text, regex, options, range, error}, capture, [&](RegexMatcher &matcher, int) {
        const QString captured = matchedText(matcher, text, capture);
        result.append(captured.isNull() ? QStringLiteral("") : captured);
        return true;
    });
    return isDone ? result : QStringList();
}

QStringList componentsMatchedByRegex(const QString &text, const QString &regex, int capture)
{
    return componentsMatchedByRegex(text, regex, RKLNoOptions, wholeRange, capture);
}

QStringList componentsMatchedByRegex(const QString &text, const QString &regex, Range range)
{
    return componentsMatchedByRegex(text, regex, RKLNoOptions, range, 0);
}

QStringList captureComponentsMatchedByRegex(const QString &text, const QString &regex, quint32 options, Range range,
                                            RKLError *error)
{
    QStringList result;
    const bool isDone =
        forEachMatch({text, regex, options, range, error}, 0, [&](RegexMatcher &matcher, int groupCount) {
            result = allGroups(matcher, text, groupCount);
            return false;
        });
    return isDone ? result : QStringList();
}

QStringList captureComponentsMatchedByRegex(const QString &text, const QString &regex, Range range)
{
    return captureComponentsMatchedByRegex(text, regex, RKLNoOptions, range);
}

QList<QStringList> arrayOfCaptureComponentsMatchedByRegex(const QString &text, const QString &regex, quint32 options,
                                                          Range range, RKLError *error)
{
    QList<QStringList> result;
    const bool isDone =
        forEachMatch({text, regex, options, range, error}, 0, [&](RegexMatcher &matcher, int groupCount) {
            result.append(allGroups(matcher, text, groupCount));
            return true;
        });
    return isDone ? result : QList<QStringList>();
}

QList<QStringList> arrayOfCaptureComponentsMatchedByRegex(const QString &text, const QString &regex, Range range)
{
    return arrayOfCaptureComponentsMatchedByRegex(text, regex, RKLNoOptions, range);
}

QStringList componentsSeparatedByRegex(const QString &text, const QString &regex, quint32 options, Range range,
                                       RKLError *error)
{
    QStringList result;
    qsizetype start = range.location;
    const bool isDone = forEachMatch({text, regex, options, range, error}, 0, [&](RegexMatcher &matcher, int) {
        const Range match = matcher.range();
        result.append(text.sliced(start, match.location - start));
        start = match.end();
        return true;
    });
    if (!isDone) return {};
    result.append(text.sliced(start, rangeWithin(text.size(), range)->end() - start));
    return result;
}

QStringList componentsSeparatedByRegex(const QString &text, const QString &regex, Range range)
{
    return componentsSeparatedByRegex(text, regex, RKLNoOptions, range);
}

qsizetype replaceOccurrencesOfRegex(QString &text, const QString &regex, const QString &withString, quint32 options,
                                    Range range, RKLError *error)
{
    qsizetype count = 0;
    QString result;
    const RegexCall call{text, regex, options, range, error, &withString};
    if (withString.size() >= longest) return call.failed(QLatin1StringView(regexerror::replacementTooLong));
    const bool isDone = withRegex(call, [&](RegexCache::Entry &entry, Range inside, UErrorCode &status) {
        const auto replaced =
            replacedByTemplate(entry.icu_regex, withString, regexCache().scratchBuffer(), count, status);
        if (status == U_BUFFER_OVERFLOW_ERROR) return call.failed(QLatin1StringView(regexerror::resultTooLong));
        if (replaced && count > 0)
            result = text.first(inside.location) % *replaced % QStringView(text).sliced(inside.end());
        return true;
    });
    if (!isDone || count == 0) return 0;
    text = result;
    return count;
}

qsizetype replaceOccurrencesOfRegex(QString &text, const QString &regex, const QString &withString, Range range)
{
    return replaceOccurrencesOfRegex(text, regex, withString, RKLNoOptions, range);
}

QString stringByReplacingOccurrencesOfRegex(const QString &text, const QString &regex, const QString &withString,
                                            quint32 options, Range range, RKLError *error)
{
    QString result = text;
    replaceOccurrencesOfRegex(result, regex, withString, options, range, error);
    return result;
}

QString stringByReplacingOccurrencesOfRegex(const QString &text, const QString &regex, const QString &withString,
                                            Range range)
{
    return stringByReplacingOccurrencesOfRegex(text, regex, withString, RKLNoOptions, range);
}

qsizetype captureCount(const QString &regex)
{
    return captureCountForRegex(regex);
}

qsizetype captureCountWithOptions(const QString &regex, quint32 options, RKLError *error)
{
    return captureCountForRegex(regex, options, error);
}

qsizetype captureCountForRegex(const QString &regex, quint32 options, RKLError *error)
{
    const QString noText;
    RegexCall call{noText, regex, options, wholeRange, error};
    if (!call.check()) return -1;
    RegexCache &cache = regexCache();
    const std::lock_guard lock(cache.mutex);
    const RegexCache::Entry *entry = cache.find(regex, options, error);
    return entry ? entry->captureCount : -1;
}

bool isRegexValid(const QString &regex)
{
    return isRegexValidWithOptions(regex, RKLNoOptions);
}

bool isRegexValidWithOptions(const QString &regex, quint32 options, RKLError *error)
{
    return captureCountForRegex(regex, options, error) >= 0;
}

void clearStringCache()
{
    RegexCache &cache = regexCache();
    const std::lock_guard lock(cache.mutex);
    cache.clear();
}

void flushCachedRegexData(const QString &text)
{
    RegexCache &cache = regexCache();
    const std::lock_guard lock(cache.mutex);
    cache.flush(text);
}

} // namespace tomelet
