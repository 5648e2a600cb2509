// SPDX-License-Identifier: GPL-3.0-or-later
// What an operation of the regular-expression layer reports when it fails.
#pragma once

#include <QString>
#include <QVariantMap>

namespace tomelet {

inline const QString RKLICURegexErrorDomain = QStringLiteral("RKLICURegexErrorDomain");

// Keys of RKLError::userInfo. A report holds those that it has something to say about.
inline const QString RKLICURegexEnumerationOptions = QStringLiteral("RKLICURegexEnumerationOptions");
inline const QString RKLICURegexErrorCode = QStringLiteral("RKLICURegexErrorCode"); // ICU's number
inline const QString RKLICURegexErrorName = QStringLiteral("RKLICURegexErrorName"); // "U_REGEX_MISMATCHED_PAREN"
inline const QString RKLICURegexLine = QStringLiteral("RKLICURegexLine");           // of the pattern, from 1
inline const QString RKLICURegexOffset = QStringLiteral("RKLICURegexOffset");       // column in that line
inline const QString RKLICURegexPreContext = QStringLiteral("RKLICURegexPreContext");
inline const QString RKLICURegexPostContext = QStringLiteral("RKLICURegexPostContext");
inline const QString RKLICURegexRegex = QStringLiteral("RKLICURegexRegex");
inline const QString RKLICURegexRegexOptions = QStringLiteral("RKLICURegexRegexOptions");
inline const QString RKLICURegexReplacedCount = QStringLiteral("RKLICURegexReplacedCount");
inline const QString RKLICURegexReplacedString = QStringLiteral("RKLICURegexReplacedString");
inline const QString RKLICURegexReplacementString = QStringLiteral("RKLICURegexReplacementString");
inline const QString RKLICURegexSubjectRange = QStringLiteral("RKLICURegexSubjectRange"); // "{location, length}"
inline const QString RKLICURegexSubjectString = QStringLiteral("RKLICURegexSubjectString");

struct RKLError
{
    QString domain; // empty: no error
    int code = 0;   // ICU's UErrorCode; U_ILLEGAL_ARGUMENT_ERROR for faults of the arguments
    QString description;
    QString reason; // empty where the description says it all
    QVariantMap userInfo;

    [[nodiscard]] bool isSet() const { return !domain.isEmpty(); }
};

} // namespace tomelet
