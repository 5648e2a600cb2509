// SPDX-License-Identifier: GPL-3.0-or-later
// The operations of the regular-expression layer, by the number of their arguments: the short forms and the long ones.
// A fault is told by an exception, which becomes the failure of the call.
#include "cli/op/Registry.h"

#include "conversion/Patterns.h"
#include "conversion/RegexLayer.h"

#include <stdexcept>

namespace tomelet::cli {

namespace {

// Calls an operation of the layer with a place for its error, and throws what it reports.
template <typename F>
auto orThrow(F operation)
{
    RKLError error;
    auto result = operation(&error);
    if (!error.isSet()) return result;
    const QString reason = error.reason.isEmpty() ? QString() : u' ' + error.reason;
    throw std::runtime_error(QString(error.description + reason).toStdString());
}

// The third argument of the short forms: a capture's number, or a range in its text form.
struct CaptureOrRange
{
    explicit CaptureOrRange(const QVariant &given)
    {
        if (given.typeId() == QMetaType::QString && given.toString().trimmed().startsWith(u'{'))
            range = fromVariant<Range>(given);
        else capture = fromVariant<int>(given);
    }

    int capture = 0;
    Range range = wholeRange;
};

QVariant textOrNothing(const QString &text)
{
    return text.isNull() ? QVariant() : QVariant(text);
}

QVariantList listOfLists(const QList<QStringList> &lists)
{
    QVariantList all;
    for (const QStringList &list : lists) all.append(QVariant(toVariant(list)));
    return all;
}

// {"key": capture, ...} or ["key", capture, ...].
RegexKeysAndCaptures keysAndCaptures(const QVariant &given)
{
    RegexKeysAndCaptures pairs;
    if (given.typeId() == QMetaType::QVariantMap) {
        const QVariantMap map = given.toMap();
        for (auto it = map.begin(); it != map.end(); ++it) pairs.append({it.key(), fromVariant<int>(it.value())});
        return pairs;
    }
    const QVariantList list = given.toList();
    for (qsizetype i = 0; i + 1 < list.size(); i += 2)
        pairs.append({fromVariant<QString>(list[i]), fromVariant<int>(list[i + 1])});
    return pairs;
}

// -- the long forms, from which the short ones follow -----------------------------------------------------------------

using Text = const QString &;

bool isMatched(Text text, Text regex, quint32 options, Range range)
{
    return orThrow([&](RKLError *error) { return isMatchedByRegex(text, regex, options, range, error); });
}

Range rangeOf(Text text, Text regex, quint32 options, Range range, int capture)
{
    return orThrow([&](RKLError *error) { return rangeOfRegex(text, regex, options, range, capture, error); });
}

QVariant matching(Text text, Text regex, quint32 options, Range range, int capture)
{
    return orThrow(
        [&](RKLError *error) { return textOrNothing(stringByMatching(text, regex, options, range, capture, error)); });
}

QStringList components(Text text, Text regex, quint32 options, Range range, int capture)
{
    return orThrow(
        [&](RKLError *error) { return componentsMatchedByRegex(text, regex, options, range, capture, error); });
}

QStringList captures(Text text, Text regex, quint32 options, Range range)
{
    return orThrow(
        [&](RKLError *error) { return captureComponentsMatchedByRegex(text, regex, options, range, error); });
}

QVariantList allCaptures(Text text, Text regex, quint32 options, Range range)
{
    return orThrow([&](RKLError *error) {
        return listOfLists(arrayOfCaptureComponentsMatchedByRegex(text, regex, options, range, error));
    });
}

QStringList separated(Text text, Text regex, quint32 options, Range range)
{
    return orThrow([&](RKLError *error) { return componentsSeparatedByRegex(text, regex, options, range, error); });
}

QString replacing(Text text, Text regex, Text with, quint32 options, Range range)
{
    return orThrow(
        [&](RKLError *error) { return stringByReplacingOccurrencesOfRegex(text, regex, with, options, range, error); });
}

// The text is a copy of the caller's, so that the number of replacements is what remains.
qsizetype replace(QString text, Text regex, Text with, quint32 options, Range range)
{
    return orThrow(
        [&](RKLError *error) { return replaceOccurrencesOfRegex(text, regex, with, options, range, error); });
}

QVariantList dictionaries(Text text, Text regex, quint32 options, Range range, const QVariant &keys)
{
    const QList<QVariantMap> found = orThrow([&](RKLError *error) {
        return arrayOfDictionariesByMatchingRegex(text, regex, options, range, error, keysAndCaptures(keys));
    });
    return {found.begin(), found.end()};
}

qsizetype countOfCaptures(Text regex, quint32 options)
{
    return orThrow([&](RKLError *error) { return captureCountWithOptions(regex, options, error); });
}

// -- registration -----------------------------------------------------------------------------------------------------

// Families whose short forms take a range and whose long form takes options and a range.
template <typename R>
void addWithRange(Registry &add, const char *name, R (*longForm)(Text, Text, quint32, Range))
{
    add.text(name, "text, regex", [=](Text text, Text regex) { return longForm(text, regex, 0, wholeRange); });
    add.text(name, "text, regex, range",
             [=](Text text, Text regex, Range range) { return longForm(text, regex, 0, range); });
    add.text(name, "text, regex, options, range", longForm);
}

// Families that take the number of a capture as well.
template <typename R>
void addWithCapture(Registry &add, const char *name, R (*longForm)(Text, Text, quint32, Range, int))
{
    add.text(name, "text, regex", [=](Text text, Text regex) { return longForm(text, regex, 0, wholeRange, 0); });
    add.text(name, "text, regex, captureOrRange", [=](Text text, Text regex, const QVariant &given) {
        const CaptureOrRange what(given);
        return longForm(text, regex, 0, what.range, what.capture);
    });
    add.text(name, "text, regex, options, range, capture", longForm);
}

void addReplacements(Registry &add)
{
    const char *const text = "stringByReplacingOccurrencesOfRegex";
    add.text(text, "text, regex, withString",
             [](Text in, Text regex, Text with) { return replacing(in, regex, with, 0, wholeRange); });
    add.text(text, "text, regex, withString, range",
             [](Text in, Text regex, Text with, Range range) { return replacing(in, regex, with, 0, range); });
    add.text(text, "text, regex, withString, options, range", replacing);

    const char *const count = "replaceOccurrencesOfRegex";
    add.text(count, "text, regex, withString",
             [](Text in, Text regex, Text with) { return replace(in, regex, with, 0, wholeRange); });
    add.text(count, "text, regex, withString, range",
             [](Text in, Text regex, Text with, Range range) { return replace(in, regex, with, 0, range); });
    add.text(count, "text, regex, withString, options, range", replace);
}

void addChecks(Registry &add)
{
    add.text("captureCount", "regex", [](Text regex) { return countOfCaptures(regex, 0); });
    add.text("captureCountWithOptions", "regex, options", countOfCaptures);
    add.text("captureCountForRegex", "regex", [](Text regex) { return countOfCaptures(regex, 0); });
    add.text("captureCountForRegex", "regex, options", countOfCaptures);
    add.text("isRegexValid", "regex", isRegexValid);
    add.text("isRegexValidWithOptions", "regex, options",
             [](Text regex, quint32 options) { return isRegexValidWithOptions(regex, options); });
    add.plain("clearStringCache", "", clearStringCache);
    add.text("flushCachedRegexData", "text", flushCachedRegexData);
}

// Matches as lists of ranges: the whole match first, then its groups.
QVariantList rangesOfMatches(Text text, Text pattern, int options, Range range)
{
    QVariantList all;
    const PatternMatches matches = matchesOfPattern(text, pattern, options, range);
    for (size_t i = 0; i < matches.size(); ++i) {
        QVariantList groups;
        for (size_t group = 0; group <= matches[i].groupCount(); ++group)
            groups.append(toVariant(matches[i].group(group)));
        all.append(QVariant(groups));
    }
    return all;
}

void addPatterns(Registry &add)
{
    add.text("matchesOfPattern", "text, pattern, options",
             [](Text text, Text pattern, int options) { return rangesOfMatches(text, pattern, options, wholeRange); });
    add.text("matchesOfPattern", "text, pattern, options, range", rangesOfMatches);
    add.text("rangeOfPattern", "text, pattern, options",
             [](Text text, Text pattern, int options) { return rangeOfPattern(text, pattern, options); });
    add.text("rangeOfPattern", "text, pattern, options, range, group", rangeOfPattern);
    add.text("isPatternValid", "pattern, options", isPatternValid);
    add.text("regexSweep", "text, pattern, replacement, options", regexSweep);
}

} // namespace

void addConversionOperations(Registry &add)
{
    addWithRange(add, "isMatchedByRegex", isMatched);
    addWithCapture(add, "rangeOfRegex", rangeOf);
    addWithCapture(add, "stringByMatching", matching);
    addWithCapture(add, "componentsMatchedByRegex", components);
    addWithRange(add, "captureComponentsMatchedByRegex", captures);
    addWithRange(add, "arrayOfCaptureComponentsMatchedByRegex", allCaptures);
    addWithRange(add, "componentsSeparatedByRegex", separated);
    addReplacements(add);
    add.text("dictionaryByMatchingRegex", "text, regex, withKeysAndCaptures",
             [](Text text, Text regex, const QVariant &keys) {
                 return dictionaries(text, regex, 0, wholeRange, keys).value(0, QVariantMap());
             });
    add.text("arrayOfDictionariesByMatchingRegex", "text, regex, options, range, withKeysAndCaptures", dictionaries);
    addChecks(add);
    addPatterns(add);
}

} // namespace tomelet::cli
