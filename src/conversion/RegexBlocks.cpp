// SPDX-License-Identifier: GPL-3.0-or-later
// The block forms. They walk a private copy of the compiled pattern with the table unlocked, so that a block
// may use any operation of the layer, on the same pattern too.
#include "conversion/RegexCall_p.h"
#include "conversion/RegexLayer.h"

namespace tomelet {

namespace {

class RKLBlockEnumerationHelper
{
public:
    /// A clone of the pattern, set to a text of its own. Without one, isReady() is false and the fault
    /// reported.
    explicit RKLBlockEnumerationHelper(const RegexCall &arguments, RKLRegexEnumerationOptions enumerationOptions)
        : m_text(arguments.text)
        , m_call{m_text, arguments.regex, arguments.options, arguments.range, arguments.error, arguments.replacement}
    {
        if (enumerationOptions != 0) {
            m_call.failed(QLatin1StringView(regexerror::badEnumerationOptions));
            if (m_call.error)
                m_call.error->userInfo.insert(RKLICURegexEnumerationOptions, qlonglong(enumerationOptions));
        } else if (m_call.check()) {
            clone();
        }
    }

    bool isReady() const { return m_regex != nullptr; }
    const QString &text() const { return m_text; }
    Range range() const { return m_call.range; }

    /// Calls `each(match)` for the matches until it gives false. False on a fault of ICU.
    template <typename Each>
    bool walk(Each each)
    {
        if (!isReady()) return false;
        if (m_text.isEmpty()) return true;
        RegexMatcher matcher(m_regex.get(), m_call.range.location);
        while (matcher.next())
            if (!each(present(matcher))) break;
        if (U_FAILURE(matcher.status())) regexerror::reportIcuFailure(m_call.error, m_call.details(), matcher.status());
        return U_SUCCESS(matcher.status());
    }

private:
    void clone()
    {
        UErrorCode status = U_ZERO_ERROR;
        {
            RegexCache &cache = regexCache();
            const std::lock_guard lock(cache.mutex);
            const RegexCache::Entry *entry = cache.find(m_call.regex, m_call.options, m_call.error);
            if (!entry) return;
            m_regex.reset(uregex_clone(entry->icu_regex, &status));
            m_captureCount = entry->captureCount;
        }
        const Range range = m_call.range;
        uregex_setText(m_regex.get(), unitsOf(m_text) + range.location, int32_t(range.length), &status);
        if (U_SUCCESS(status)) return;
        regexerror::reportIcuFailure(m_call.error, m_call.details(), status);
        m_regex.reset();
    }

    RegexMatch present(RegexMatcher &matcher) const
    {
        RegexMatch match;
        for (int group = 0; group <= m_captureCount; ++group) {
            const Range range = matcher.range(group);
            match.capturedRanges.append(range);
            match.capturedStrings.append(range.isFound() ? m_text.sliced(range.location, range.length)
                                                         : QStringLiteral(""));
        }
        return match;
    }

    const QString m_text; // shares the caller's buffer until the caller changes it
    RegexCall m_call;
    OwnedRegex m_regex;
    int m_captureCount = 0;
};

} // namespace

bool enumerateStringsMatchedByRegex(const QString &text, const QString &regex, quint32 options, Range inRange,
                                    RKLError *error, RKLRegexEnumerationOptions enumerationOptions,
                                    const RegexBlock &usingBlock)
{
    RKLBlockEnumerationHelper helper({text, regex, options, inRange, error}, enumerationOptions);
    return helper.walk([&](const RegexMatch &match) {
        bool stop = false;
        usingBlock(match, stop);
        return !stop;
    });
}

bool enumerateStringsMatchedByRegex(const QString &text, const QString &regex, const RegexBlock &usingBlock)
{
    return enumerateStringsMatchedByRegex(text, regex, RKLNoOptions, wholeRange, nullptr, 0, usingBlock);
}

bool enumerateStringsSeparatedByRegex(const QString &text, const QString &regex, quint32 options, Range inRange,
                                      RKLError *error, RKLRegexEnumerationOptions enumerationOptions,
                                      const RegexBlock &usingBlock)
{
    RKLBlockEnumerationHelper helper({text, regex, options, inRange, error}, enumerationOptions);
    bool stop = false;
    qsizetype start = inRange.location;
    const auto give = [&](qsizetype end) {
        const Range piece{start, end - start};
        usingBlock({{helper.text().sliced(piece.location, piece.length)}, {piece}}, stop);
        return !stop;
    };
    const bool isDone = helper.walk([&](const RegexMatch &match) {
        const Range separator = match.capturedRanges.first();
        if (!give(separator.location)) return false;
        start = separator.end();
        return true;
    });
    if (isDone && !stop) give(helper.range().end());
    return isDone;
}

bool enumerateStringsSeparatedByRegex(const QString &text, const QString &regex, const RegexBlock &usingBlock)
{
    return enumerateStringsSeparatedByRegex(text, regex, RKLNoOptions, wholeRange, nullptr, 0, usingBlock);
}

qsizetype replaceOccurrencesOfRegex(QString &text, const QString &regex, quint32 options, Range inRange,
                                    RKLError *error, RKLRegexEnumerationOptions enumerationOptions,
                                    const RegexReplacementBlock &usingBlock)
{
    RKLBlockEnumerationHelper helper({text, regex, options, inRange, error}, enumerationOptions);
    QString result;
    qsizetype count = 0, start = 0;
    const bool isDone = helper.walk([&](const RegexMatch &match) {
        bool stop = false;
        const Range range = match.capturedRanges.first();
        result += QStringView(helper.text()).sliced(start, range.location - start);
        result += usingBlock(match, stop);
        start = range.end();
        ++count;
        return !stop;
    });
    if (!isDone || count == 0) return 0;
    text = result + QStringView(helper.text()).sliced(start);
    return count;
}

qsizetype replaceOccurrencesOfRegex(QString &text, const QString &regex, const RegexReplacementBlock &usingBlock)
{
    return replaceOccurrencesOfRegex(text, regex, RKLNoOptions, wholeRange, nullptr, 0, usingBlock);
}

QString stringByReplacingOccurrencesOfRegex(const QString &text, const QString &regex, quint32 options, Range inRange,
                                            RKLError *error, RKLRegexEnumerationOptions enumerationOptions,
                                            const RegexReplacementBlock &usingBlock)
{
    QString result = text;
    replaceOccurrencesOfRegex(result, regex, options, inRange, error, enumerationOptions, usingBlock);
    return result;
}

QString stringByReplacingOccurrencesOfRegex(const QString &text, const QString &regex,
                                            const RegexReplacementBlock &usingBlock)
{
    return stringByReplacingOccurrencesOfRegex(text, regex, RKLNoOptions, wholeRange, nullptr, 0, usingBlock);
}

} // namespace tomelet
