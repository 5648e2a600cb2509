// SPDX-License-Identifier: GPL-3.0-or-later
// How the reports of the regular-expression layer are made, with their fixed texts.
#pragma once

#include "conversion/RegexError.h"
#include "foundation/Range.h"

#include <unicode/parseerr.h>
#include <unicode/utypes.h>

namespace tomelet::regexerror {

inline constexpr char nullRegex[] = "The regular expression argument is NULL.";
inline constexpr char regexTooLong[] = "Regex string length exceeds INT_MAX";
inline constexpr char subjectTooLong[] = "String length exceeds INT_MAX.";
inline constexpr char outOfBounds[] = "Range or index out of bounds.";
inline constexpr char badCapture[] = "The capture argument is not valid.";
inline constexpr char replacementTooLong[] = "Replacement string length exceeds INT_MAX.";
inline constexpr char resultTooLong[] = "Replaced string length exceeds INT_MAX.";
inline constexpr char badEnumerationOptions[] = "The RKLRegexEnumerationOptions argument is not valid.";

/// The call that a report is about; what it has is put into the report's details.
struct Call
{
    const QString &regex;
    quint32 options;
    const QString *subject = nullptr;
    Range range = wholeRange;
    const QString *replacement = nullptr;
};

// All of them do nothing where no report is wanted.
void reportCompileFailure(RKLError *error, const Call &call, UErrorCode status, const UParseError &place);
void reportIcuFailure(RKLError *error, const Call &call, UErrorCode status);
/// A fault of the arguments, in one of the texts above.
void reportArgument(RKLError *error, const Call &call, const QString &text);

} // namespace tomelet::regexerror
