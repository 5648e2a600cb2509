// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/RegexMatcher_p.h"

#include "conversion/RegexErrors_p.h"

#include <limits>

namespace tomelet {

URegularExpression *compiledRegex(const QString &regex, quint32 icuOptions, RKLError *error)
{
    UErrorCode status = U_ZERO_ERROR;
    UParseError place = {};
    URegularExpression *compiled = uregex_open(unitsOf(regex), int32_t(regex.size()), icuOptions, &place, &status);
    if (U_SUCCESS(status)) return compiled;
    if (compiled) uregex_close(compiled);
    regexerror::reportCompileFailure(error, {regex, icuOptions}, status, place);
    return nullptr;
}

std::optional<Range> rangeWithin(qsizetype size, Range range)
{
    if (range.location < 0 || range.length < 0 || range.location > size) return {};
    if (range.length == Range::notFound) return Range{range.location, size - range.location};
    if (range.length > size - range.location) return {};
    return range;
}

Range RegexMatcher::range(int group)
{
    const int32_t start = uregex_start(m_regex, group, &m_status);
    const int32_t end = uregex_end(m_regex, group, &m_status);
    if (U_FAILURE(m_status) || start < 0) return {};
    return {m_base + start, end - start};
}

namespace {

// One sweep into a buffer that may be too small: the length is right all the same, for a second sweep.
qint64 sweep(URegularExpression *regex, const QString &replacement, std::vector<char16_t> &buffer, qsizetype &count,
             UErrorCode &status)
{
    UErrorCode findStatus = U_ZERO_ERROR;
    UChar *place = buffer.data();
    auto room = int32_t(buffer.size());
    qint64 length = 0;
    count = 0;
    status = U_ZERO_ERROR;
    uregex_reset(regex, 0, &findStatus);
    while (uregex_findNext(regex, &findStatus)) {
        ++count;
        length +=
            uregex_appendReplacement(regex, unitsOf(replacement), int32_t(replacement.size()), &place, &room, &status);
        if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR) return length;
    }
    length += uregex_appendTail(regex, &place, &room, &status);
    if (U_FAILURE(findStatus)) status = findStatus;
    return length;
}

} // namespace

std::optional<QStringView> replacedByTemplate(URegularExpression *regex, const QString &replacement,
                                              std::vector<char16_t> &buffer, qsizetype &count, UErrorCode &status)
{
    if (buffer.empty()) buffer.resize(1024);
    qint64 length = sweep(regex, replacement, buffer, count, status);
    if (status == U_BUFFER_OVERFLOW_ERROR && length < std::numeric_limits<int32_t>::max()) {
        buffer.resize(size_t(length));
        length = sweep(regex, replacement, buffer, count, status);
    }
    if (U_FAILURE(status)) return {};
    return QStringView(buffer.data(), length);
}

} // namespace tomelet
