// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/RegexCache_p.h"

#include "conversion/RegexErrors_p.h"
#include "conversion/RegexMatcher_p.h"

namespace tomelet {

RegexCache &regexCache()
{
    static RegexCache cache;
    return cache;
}

quint64 RegexCache::hashOf(const QString &regex)
{
    return qHash(regex, 0);
}

int RegexCache::setOf(const QString &regex, quint32 options)
{
    return int((hashOf(regex) ^ options) % setCount);
}

size_t RegexCache::quickSlotOf(const QString &regex, quint32 options)
{
    const auto identity = reinterpret_cast<quintptr>(regex.constData());
    return ((identity >> 4) + options + (options >> 4)) & 63;
}

static bool isSameObject(const QString &one, const QString &other)
{
    return one.constData() == other.constData() && one.size() == other.size();
}

bool RegexCache::isEntryFor(const Entry &entry, const QString &regex, quint32 options) const
{
    return entry.icu_regex && entry.options == options &&
           (isSameObject(entry.regexString, regex) || entry.regexString == regex);
}

int RegexCache::indexInSet(const QString &regex, quint32 options) const
{
    const quint64 hash = hashOf(regex);
    const int first = setOf(regex, options) * wayCount;
    for (int index = first + wayCount - 1; index >= first; --index) {
        const Entry &entry = m_entries[size_t(index)];
        if (entry.regexHash == hash && isEntryFor(entry, regex, options)) return index;
    }
    return -1;
}

RegexCache::Entry *RegexCache::find(const QString &regex, quint32 options, RKLError *error)
{
    if (m_lastUsed && m_lastUsed->options == options && m_lastUsed->icu_regex &&
        isSameObject(m_lastUsed->regexString, regex))
        return m_lastUsed;
    m_lastUsed = nullptr;
    const size_t quickSlot = quickSlotOf(regex, options);
    if (const int index = m_quickLookup[quickSlot]; isEntryFor(m_entries[size_t(index)], regex, options))
        return use(index, quickSlot);
    if (const int index = indexInSet(regex, options); index >= 0) return use(index, quickSlot);

    const int set = setOf(regex, options);
    const int index = set * wayCount + leastRecentWay(set);
    Entry &entry = m_entries[size_t(index)];
    release(entry);
    ++m_compileCount;
    entry.icu_regex = compiledRegex(regex, options, error);
    if (!entry.icu_regex) return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    entry.regexString = regex;
    entry.regexHash = hashOf(regex);
    entry.options = options;
    entry.captureCount = uregex_groupCount(entry.icu_regex, &status);
    return use(index, quickSlot);
}

RegexCache::Entry *RegexCache::use(int index, size_t quickSlot)
{
    m_quickLookup[quickSlot] = quint8(index);
    markMostRecent(index / wayCount, index % wayCount);
    m_lastUsed = &m_entries[size_t(index)];
    return m_lastUsed;
}

// A way's row says which others it was used after: all bits on for the latest, none for the one to go.
void RegexCache::markMostRecent(int set, int way)
{
    quint16 &matrix = m_recency[size_t(set)];
    matrix = quint16((matrix | 15U << (way * 4)) & ~(4369U << (3 - way)));
}

int RegexCache::leastRecentWay(int set) const
{
    for (int way = 0; way < wayCount; ++way)
        if ((m_recency[size_t(set)] >> (way * 4) & 15) == 0) return way;
    return 0;
}

void RegexCache::release(Entry &entry)
{
    if (m_lastUsed == &entry) m_lastUsed = nullptr;
    if (m_subjectEntry == &entry) dropSubject();
    if (entry.icu_regex) uregex_close(entry.icu_regex);
    entry = {};
}

void RegexCache::setSubject(Entry *entry, const QString &subject, Range range, UErrorCode &status)
{
    if (m_subjectEntry == entry && isSameObject(m_subject.text, subject) && m_subject.range == range)
        return uregex_reset(entry->icu_regex, 0, &status);
    m_subject = {subject, range};
    m_subjectEntry = entry;
    uregex_setText(entry->icu_regex, unitsOf(subject) + range.location, int32_t(range.length), &status);
}

void RegexCache::flush(const QString &subject)
{
    if (m_subjectEntry && isSameObject(m_subject.text, subject)) dropSubject();
}

void RegexCache::dropSubject()
{
    m_subjectEntry = nullptr;
    m_subject = {};
}

RegexCache::Buffer &RegexCache::scratchBuffer()
{
    m_nextScratchBuffer = (m_nextScratchBuffer + 1) % m_scratchBuffers.size();
    return m_scratchBuffers[m_nextScratchBuffer];
}

void RegexCache::clear()
{
    m_lastUsed = nullptr;
    for (Buffer &buffer : m_scratchBuffers) Buffer().swap(buffer);
    for (Entry &entry : m_entries) release(entry);
    m_recency = {};
}

bool RegexCache::holds(const QString &regex, quint32 options) const
{
    return indexInSet(regex, options) >= 0;
}

} // namespace tomelet
