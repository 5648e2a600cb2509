// SPDX-License-Identifier: GPL-3.0-or-later
// Groups of matches under names.
#include "conversion/RegexCall_p.h"
#include "conversion/RegexLayer.h"

namespace tomelet {

namespace {

bool checkKeys(const RegexCall &call, const RegexKeysAndCaptures &keys, int groupCount)
{
    for (qsizetype i = 0; i < keys.size(); ++i) {
        const auto &[key, capture] = keys[i];
        if (key.isNull())
            return call.failed(QStringLiteral("The capture key (key %1 of %2) is NULL.").arg(i + 1).arg(keys.size()));
        if (capture < 0 || capture > groupCount)
            return call.failed(u"The capture argument " + QString::number(capture) + u" (capture " +
                               QString::number(i + 1) + u" of " + QString::number(keys.size()) + u") for key '" + key +
                               u"' is not valid.");
    }
    return true;
}

QVariantMap dictionaryOfMatch(RegexMatcher &matcher, const QString &text, const RegexKeysAndCaptures &keys)
{
    QVariantMap map;
    for (const auto &[key, capture] : keys) {
        const QString captured = matchedText(matcher, text, capture);
        if (!captured.isNull()) map.insert(key, captured);
    }
    return map;
}

QList<QVariantMap> dictionaries(const RegexCall &call, const RegexKeysAndCaptures &keys, bool firstOnly)
{
    QList<QVariantMap> result;
    const bool isDone = withRegex(call, [&](RegexCache::Entry &entry, Range range, UErrorCode &status) {
        if (!checkKeys(call, keys, entry.captureCount)) return false;
        RegexMatcher matcher(entry.icu_regex, range.location);
        while (!(firstOnly && !result.isEmpty()) && matcher.next())
            result.append(dictionaryOfMatch(matcher, call.text, keys));
        status = matcher.status();
        return true;
    });
    return isDone ? result : QList<QVariantMap>();
}

} // namespace

QVariantMap dictionaryByMatchingRegex(const QString &text, const QString &regex,
                                      const RegexKeysAndCaptures &withKeysAndCaptures)
{
    return dictionaries({text, regex, RKLNoOptions, wholeRange, nullptr}, withKeysAndCaptures, true).value(0);
}

QList<QVariantMap> arrayOfDictionariesByMatchingRegex(const QString &text, const QString &regex, quint32 options,
                                                      Range range, RKLError *error,
                                                      const RegexKeysAndCaptures &withKeysAndCaptures)
{
    return dictionaries({text, regex, options, range, error}, withKeysAndCaptures, false);
}

} // namespace tomelet
