// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/RegexErrors_p.h"

namespace tomelet::regexerror {

static RKLError newReport(const Call &call, UErrorCode status)
{
    RKLError report{RKLICURegexErrorDomain, status, {}, {}, {}};
    report.userInfo = {{RKLICURegexRegex, call.regex},
                       {RKLICURegexRegexOptions, qlonglong(call.options)},
                       {RKLICURegexErrorCode, qlonglong(status)},
                       {RKLICURegexErrorName, QString::fromLatin1(u_errorName(status))}};
    if (call.subject) {
        report.userInfo.insert(RKLICURegexSubjectString, *call.subject);
        report.userInfo.insert(RKLICURegexSubjectRange, textOfRange(call.range));
    }
    if (call.replacement) {
        report.userInfo.insert(RKLICURegexReplacementString, *call.replacement);
        report.userInfo.insert(RKLICURegexReplacedString, *call.subject);
        report.userInfo.insert(RKLICURegexReplacedCount, 0LL);
    }
    return report;
}

void reportCompileFailure(RKLError *error, const Call &call, UErrorCode status, const UParseError &place)
{
    if (!error) return;
    *error = newReport(call, status);
    error->description = QStringLiteral("There was an error compiling the regular expression.");
    const QString name = QString::fromLatin1(u_errorName(status));
    if (place.line <= 0) {
        error->reason = QStringLiteral("The error %1 occurred.").arg(name);
        return;
    }
    const QString before = QString::fromUtf16(place.preContext);
    const QString behind = QString::fromUtf16(place.postContext);
    error->userInfo.insert(RKLICURegexLine, qlonglong(place.line));
    error->userInfo.insert(RKLICURegexOffset, qlonglong(place.offset));
    error->userInfo.insert(RKLICURegexPreContext, before);
    error->userInfo.insert(RKLICURegexPostContext, behind);
    // One pass over the text: the contexts may hold what looks like a place to fill.
    error->reason = u"The error " + name + u" occurred at line " + QString::number(place.line) + u", column " +
                    QString::number(place.offset) + u": " + before + u"<<HERE>>" + behind;
}

void reportIcuFailure(RKLError *error, const Call &call, UErrorCode status)
{
    if (!error) return;
    *error = newReport(call, status);
    const bool isOfRegex = status >= U_REGEX_ERROR_START && status < U_REGEX_ERROR_LIMIT;
    error->description = isOfRegex ? QStringLiteral("ICU regular expression error #%1, %2.")
                                         .arg(int(status))
                                         .arg(QLatin1StringView(u_errorName(status)))
                                   : QStringLiteral("The ICU library returned an unexpected error.");
}

void reportArgument(RKLError *error, const Call &call, const QString &text)
{
    if (!error) return;
    *error = newReport(call, U_ILLEGAL_ARGUMENT_ERROR);
    error->description = text;
}

} // namespace tomelet::regexerror
