// SPDX-License-Identifier: GPL-3.0-or-later
// The table of compiled patterns behind the regular-expression layer: 13 sets of 4 ways, the least recently
// used way of a set making room. The table itself has no lock: whoever works with it holds the mutex of
// regexCache().
#pragma once

#include "conversion/RegexError.h"
#include "foundation/Range.h"

#include <QString>

#include <array>
#include <mutex>
#include <vector>

#include <unicode/uregex.h>

namespace tomelet {

class RegexCache
{
public:
    static constexpr int setCount = 13;
    static constexpr int wayCount = 4;

    struct Entry
    {
        QString regexString; // shares the caller's buffer, so that the same pattern object is known by its
                             // address
        quint64 regexHash = 0;
        quint32 options = 0;
        URegularExpression *icu_regex = nullptr; // null while the entry is free
        qint32 captureCount = 0;
    };
    using Buffer = std::vector<char16_t>;

    RegexCache() = default;
    ~RegexCache() { clear(); }
    RegexCache(const RegexCache &) = delete;
    RegexCache &operator=(const RegexCache &) = delete;

    /// The compiled pattern, from the table or new; null, with a report, where it does not compile. Allocates
    /// nothing on a hit.
    Entry *find(const QString &regex, quint32 options, RKLError *error);

    /// Makes the range of the subject what the entry's pattern runs on, from its start. The subject stays
    /// shared until the next call, flush() or clear(), so that the same text need not be set again.
    void setSubject(Entry *entry, const QString &subject, Range range, UErrorCode &status);
    /// Lets go of the subject if it shares this text's buffer.
    void flush(const QString &subject);

    /// Room for a result in the making, kept from call to call.
    [[nodiscard]] Buffer &scratchBuffer();
    /// Frees everything.
    void clear();

    /// For tests: whether the table has the pattern, how often it compiled one, and the set that a pattern
    /// falls into.
    [[nodiscard]] bool holds(const QString &regex, quint32 options) const;
    [[nodiscard]] quint64 compileCount() const { return m_compileCount; }
    [[nodiscard]] static int setOf(const QString &regex, quint32 options);
    [[nodiscard]] bool holdsSubject() const { return m_subjectEntry != nullptr; }

    std::mutex mutex;

private:
    /// The text that a pattern was last set to.
    struct Subject
    {
        QString text;
        Range range;
    };

    [[nodiscard]] static quint64 hashOf(const QString &regex);
    [[nodiscard]] static size_t quickSlotOf(const QString &regex, quint32 options);
    [[nodiscard]] bool isEntryFor(const Entry &entry, const QString &regex, quint32 options) const;
    [[nodiscard]] int indexInSet(const QString &regex, quint32 options) const;
    [[nodiscard]] int leastRecentWay(int set) const;
    void markMostRecent(int set, int way);
    Entry *use(int index, size_t quickSlot);
    void release(Entry &entry);
    void dropSubject();

    std::array<Entry, setCount * wayCount> m_entries;
    std::array<quint16, setCount> m_recency = {}; // 4-by-4 bit matrices
    std::array<quint8, 64> m_quickLookup = {};    // indices of entries
    Entry *m_lastUsed = nullptr;
    Entry *m_subjectEntry = nullptr;
    Subject m_subject;
    std::array<Buffer, 5> m_scratchBuffers;
    size_t m_nextScratchBuffer = 0;
    quint64 m_compileCount = 0;
};

/// The one table of the process.
[[nodiscard]] RegexCache &regexCache();

} // namespace tomelet
