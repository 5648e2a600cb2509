// SPDX-License-Identifier: GPL-3.0-or-later
// ICU's regular expressions on the buffers of QStrings, without copies.
#pragma once

#include "conversion/RegexError.h"
#include "foundation/Range.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

#include <unicode/uregex.h>

namespace tomelet {

inline const UChar *unitsOf(const QString &text)
{
    return reinterpret_cast<const UChar *>(text.constData());
}

/// Compiles a pattern with ICU's flags; null, with a report, where it is none. The caller closes it.
[[nodiscard]] URegularExpression *compiledRegex(const QString &regex, quint32 icuOptions, RKLError *error);

struct CloseRegex
{
    void operator()(URegularExpression *regex) const { uregex_close(regex); }
};
using OwnedRegex = std::unique_ptr<URegularExpression, CloseRegex>;

/// The range cut to the text, or nothing where it reaches outside of it.
[[nodiscard]] std::optional<Range> rangeWithin(qsizetype size, Range range);

/// Walks the matches of a compiled pattern whose text is set. It ends for good at the first failure of ICU.
class RegexMatcher
{
public:
    /// `base` is where in its string the text begins that the pattern was set to.
    RegexMatcher(URegularExpression *regex, qsizetype base)
        : m_regex(regex)
        , m_base(base)
    {}

    [[nodiscard]] bool next() { return uregex_findNext(m_regex, &m_status); }
    /// Of the present match; not found for a group that took no part.
    [[nodiscard]] Range range(int group = 0);
    [[nodiscard]] UErrorCode status() const { return m_status; }

private:
    URegularExpression *m_regex;
    qsizetype m_base;
    UErrorCode m_status = U_ZERO_ERROR;
};

/// The text that the pattern was set to, with all matches replaced by ICU's template ("$1", "\$"). `count`
/// becomes the number of matches. The result lies in `buffer`; nothing, with `status`, where ICU fails or the
/// result would have 2^31 units or more (U_BUFFER_OVERFLOW_ERROR).
[[nodiscard]] std::optional<QStringView> replacedByTemplate(URegularExpression *regex, const QString &replacement,
                                                            std::vector<char16_t> &buffer, qsizetype &count,
                                                            UErrorCode &status);

} // namespace tomelet
