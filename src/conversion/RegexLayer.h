// SPDX-License-Identifier: GPL-3.0-or-later
// Regular expressions on texts, through a table of compiled patterns: for checks and small replacements that
// run very often. Pipelines that collect all matches and rewrite the text by them use conversion/Patterns.h.
//
// Patterns are ICU's (userguide/strings/regexp) with ICU's default flags. `options` is a sum of the flags
// below, `range` a range of the text in UTF-16 units: the pattern sees that part alone, so "^" stands at its
// start, and results are positions in the whole text. `capture` is the number of a group, 0 the whole match.
//
// An empty text has no matches. A null QString counts as an empty text, but as a pattern it is a fault.
// Nothing is ever thrown. A bad pattern or argument gives no matches and changes nothing, and is told through
// `error`, which is left as it is by a call that succeeds.
//
// All functions can be called from any thread, and blocks may call back into the layer. Patterns must not be
// made by QString::fromRawData, since the table keeps them.
#pragma once

#include "conversion/RegexError.h"
#include "foundation/Range.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <utility>

namespace tomelet {

/// ICU's flags.
enum RKLRegexOptions : quint32 {
    RKLNoOptions = 0,
    RKLCaseless = 2,  // letters match either case
    RKLMultiline = 8, // "^" and "$" match at every line
    RKLDotAll = 32    // "." also matches line ends
};

/// Whether the pattern matches anywhere.
[[nodiscard]] bool isMatchedByRegex(const QString &text, const QString &regex, quint32 options, Range range,
                                    RKLError *error = nullptr);
[[nodiscard]] bool isMatchedByRegex(const QString &text, const QString &regex, Range range = wholeRange);

/// Where the first match, or a group of it, lies. Not found where there is none or the group took no part.
[[nodiscard]] Range rangeOfRegex(const QString &text, const QString &regex, quint32 options, Range range, int capture,
                                 RKLError *error = nullptr);
[[nodiscard]] Range rangeOfRegex(const QString &text, const QString &regex, int capture = 0);
[[nodiscard]] Range rangeOfRegex(const QString &text, const QString &regex, Range range);

/// The text of the first match or of a group of it; null where there is none or the group took no part.
[[nodiscard]] QString stringByMatching(const QString &text, const QString &regex, quint32 options, Range range,
                                       int capture, RKLError *error = nullptr);
[[nodiscard]] QString stringByMatching(const QString &text, const QString &regex, int capture = 0);
[[nodiscard]] QString stringByMatching(const QString &text, const QString &regex, Range range);

/// The texts of all matches, or of one group of each; "" for a group that took no part.
[[nodiscard]] QStringList componentsMatchedByRegex(const QString &text, const QString &regex, quint32 options,
                                                   Range range, int capture, RKLError *error = nullptr);
[[nodiscard]] QStringList componentsMatchedByRegex(const QString &text, const QString &regex, int capture = 0);
[[nodiscard]] QStringList componentsMatchedByRegex(const QString &text, const QString &regex, Range range);

/// The first match with all its groups: the whole match first, "" for a group that took no part. Empty
/// without a match.
[[nodiscard]] QStringList captureComponentsMatchedByRegex(const QString &text, const QString &regex, quint32 options,
                                                          Range range, RKLError *error = nullptr);
[[nodiscard]] QStringList captureComponentsMatchedByRegex(const QString &text, const QString &regex,
                                                          Range range = wholeRange);

/// The same for every match.
[[nodiscard]] QList<QStringList> arrayOfCaptureComponentsMatchedByRegex(const QString &text, const QString &regex,
                                                                        quint32 options, Range range,
                                                                        RKLError *error = nullptr);
[[nodiscard]] QList<QStringList> arrayOfCaptureComponentsMatchedByRegex(const QString &text, const QString &regex,
                                                                        Range range = wholeRange);

/// What lies between the matches, empty pieces too; groups are dropped. Without a match the text itself is
/// the one piece. ("a, b,c" by ",\s*" gives "a", "b", "c".) Empty on a fault.
[[nodiscard]] QStringList componentsSeparatedByRegex(const QString &text, const QString &regex, quint32 options,
                                                     Range range, RKLError *error = nullptr);
[[nodiscard]] QStringList componentsSeparatedByRegex(const QString &text, const QString &regex,
                                                     Range range = wholeRange);

/// The text with all matches in the range replaced. The replacement is ICU's template: "$1" and "${name}" are
/// groups, a backslash takes the next character as it is. What lies outside of the range stays.
[[nodiscard]] QString stringByReplacingOccurrencesOfRegex(const QString &text, const QString &regex,
                                                          const QString &withString, quint32 options, Range range,
                                                          RKLError *error = nullptr);
[[nodiscard]] QString stringByReplacingOccurrencesOfRegex(const QString &text, const QString &regex,
                                                          const QString &withString, Range range = wholeRange);

/// The same in place. Gives the number of matches replaced.
qsizetype replaceOccurrencesOfRegex(QString &text, const QString &regex, const QString &withString, quint32 options,
                                    Range range, RKLError *error = nullptr);
qsizetype replaceOccurrencesOfRegex(QString &text, const QString &regex, const QString &withString,
                                    Range range = wholeRange);

/// What a block is called with: group 0 first; "" and a range not found for a group that took no part. For
/// pieces between matches, the piece alone.
struct RegexMatch
{
    QStringList capturedStrings;
    QList<Range> capturedRanges;
};
/// Sets `stop` to end the walk after this call.
using RegexBlock = std::function<void(const RegexMatch &match, bool &stop)>;
/// Gives what stands in place of the match, as it is.
using RegexReplacementBlock = std::function<QString(const RegexMatch &match, bool &stop)>;

/// Options of the block forms; none is defined, and any other value is a fault.
using RKLRegexEnumerationOptions = quint32;

/// Calls the block for each match, or for each piece between matches. True when there was no fault.
bool enumerateStringsMatchedByRegex(const QString &text, const QString &regex, quint32 options, Range inRange,
                                    RKLError *error, RKLRegexEnumerationOptions enumerationOptions,
                                    const RegexBlock &usingBlock);
bool enumerateStringsMatchedByRegex(const QString &text, const QString &regex, const RegexBlock &usingBlock);
bool enumerateStringsSeparatedByRegex(const QString &text, const QString &regex, quint32 options, Range inRange,
                                      RKLError *error, RKLRegexEnumerationOptions enumerationOptions,
                                      const RegexBlock &usingBlock);
bool enumerateStringsSeparatedByRegex(const QString &text, const QString &regex, const RegexBlock &usingBlock);

/// As the replacements above. Matches behind the one at which the block stopped stay as they are.
[[nodiscard]] QString stringByReplacingOccurrencesOfRegex(const QString &text, const QString &regex, quint32 options,
                                                          Range inRange, RKLError *error,
                                                          RKLRegexEnumerationOptions enumerationOptions,
                                                          const RegexReplacementBlock &usingBlock);
[[nodiscard]] QString stringByReplacingOccurrencesOfRegex(const QString &text, const QString &regex,
                                                          const RegexReplacementBlock &usingBlock);
qsizetype replaceOccurrencesOfRegex(QString &text, const QString &regex, quint32 options, Range inRange,
                                    RKLError *error, RKLRegexEnumerationOptions enumerationOptions,
                                    const RegexReplacementBlock &usingBlock);
qsizetype replaceOccurrencesOfRegex(QString &text, const QString &regex, const RegexReplacementBlock &usingBlock);

/// Names for groups: the result holds for each key the text of its group, and no key for a group that took no
/// part.
using RegexKeysAndCaptures = QList<std::pair<QString, int>>;

/// Of the first match; empty without one.
[[nodiscard]] QVariantMap dictionaryByMatchingRegex(const QString &text, const QString &regex,
                                                    const RegexKeysAndCaptures &withKeysAndCaptures);
/// Of every match.
[[nodiscard]] QList<QVariantMap> arrayOfDictionariesByMatchingRegex(const QString &text, const QString &regex,
                                                                    quint32 options, Range range, RKLError *error,
                                                                    const RegexKeysAndCaptures &withKeysAndCaptures);

/// How many groups the pattern has; -1 when it is none.
[[nodiscard]] qsizetype captureCount(const QString &regex);
[[nodiscard]] qsizetype captureCountWithOptions(const QString &regex, quint32 options, RKLError *error = nullptr);
[[nodiscard]] qsizetype captureCountForRegex(const QString &regex, quint32 options = RKLNoOptions,
                                             RKLError *error = nullptr);
[[nodiscard]] bool isRegexValid(const QString &regex);
[[nodiscard]] bool isRegexValidWithOptions(const QString &regex, quint32 options, RKLError *error = nullptr);

/// Frees all compiled patterns and buffers.
void clearStringCache();
/// Lets go of this text, which the layer keeps in case that the next call is about it again.
void flushCachedRegexData(const QString &text);

} // namespace tomelet
