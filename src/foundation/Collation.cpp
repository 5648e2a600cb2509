// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Collation.h"

#include <unicode/ucol.h>

#include <algorithm>
#include <memory>

namespace tomelet {

namespace {

using Collator = std::unique_ptr<UCollator, decltype(&ucol_close)>;

QByteArray collationLocale()
{
    for (const char *variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        QByteArray value = qgetenv(variable);
        if (value.isEmpty()) continue;
        value = value.left(value.indexOf('.') < 0 ? value.size() : value.indexOf('.'));
        // Sorting by bytes is for machines; people get the root order of Unicode.
        return value == "C" || value == "POSIX" ? QByteArray() : value;
    }
    return {};
}

Collator openCollator(UCollationStrength strength, bool numeric)
{
    UErrorCode status = U_ZERO_ERROR;
    Collator collator(ucol_open(collationLocale().constData(), &status), &ucol_close);
    status = U_ZERO_ERROR;
    ucol_setAttribute(collator.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
    ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, numeric ? UCOL_ON : UCOL_OFF, &status);
    ucol_setStrength(collator.get(), strength);
    return collator;
}

const UChar *units(const QString &text)
{
    return reinterpret_cast<const UChar *>(text.utf16());
}

int compare(const Collator &collator, const QString &a, const QString &b)
{
    return ucol_strcoll(collator.get(), units(a), int32_t(a.size()), units(b), int32_t(b.size()));
}

QByteArray sortKey(const Collator &collator, const QString &text)
{
    QByteArray key(text.size() * 4 + 16, Qt::Uninitialized);
    const auto fill = [&] {
        return ucol_getSortKey(collator.get(), units(text), int32_t(text.size()),
                               reinterpret_cast<uint8_t *>(key.data()), int32_t(key.size()));
    };
    int32_t length = fill();
    if (length > key.size()) {
        key.resize(length);
        length = fill();
    }
    key.truncate(length);
    return key;
}

const Collator &tertiary()
{
    static const Collator collator = openCollator(UCOL_TERTIARY, false);
    return collator;
}

const Collator &tertiaryNumeric()
{
    static const Collator collator = openCollator(UCOL_TERTIARY, true);
    return collator;
}

const Collator &names(bool numeric)
{
    static const Collator plain = openCollator(UCOL_SECONDARY, false);
    static const Collator withNumbers = openCollator(UCOL_SECONDARY, true);
    return numeric ? withNumbers : plain;
}

} // namespace

int localizedCompare(const QString &a, const QString &b)
{
    return a == b ? 0 : compare(tertiary(), a, b);
}

int localizedStandardCompare(const QString &a, const QString &b)
{
    return a == b ? 0 : compare(tertiaryNumeric(), a, b);
}

int compareNames(const QString &a, const QString &b, bool numeric)
{
    const int order = compare(names(numeric), a, b);
    return order != 0 ? order : a.compare(b);
}

QByteArray nameSortKey(const QString &name, bool numeric)
{
    QByteArray key = sortKey(names(numeric), name);
    // Big-endian code units behind the key's closing zero keep the forced order.
    for (const QChar unit : name) key.append(char(unit.unicode() >> 8)).append(char(unit.unicode() & 0xff));
    return key;
}

QByteArray standardSortKey(const QString &name)
{
    return sortKey(tertiaryNumeric(), name);
}

static bool isPlainAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar unit) { return unit.unicode() >= 0x20 && unit.unicode() < 0x7f; });
}

std::optional<qsizetype> tm_localizedIndexOfObject(const QStringList &list, const QString &text)
{
    if (text.isNull()) return std::nullopt;
    if (const qsizetype exact = list.indexOf(text); exact >= 0) return exact;
    // Two different texts of plain ASCII are never equal, so most lists need no collation at all.
    const bool isPlain = isPlainAscii(text);
    for (qsizetype i = 0; i < list.size(); ++i)
        if (!(isPlain && isPlainAscii(list[i])) && localizedCompare(list[i], text) == 0) return i;
    return std::nullopt;
}

QByteArray localizedKey(const QString &text)
{
    return sortKey(tertiary(), text);
}

LocalizedIndex::LocalizedIndex(const QStringList &list)
{
    for (qsizetype i = 0; i < list.size(); ++i)
        if (!m_exact.contains(list[i])) m_exact.insert(list[i], i);
}

std::optional<qsizetype> LocalizedIndex::find(const QString &text) const
{
    if (m_exact.isEmpty() || text.isNull()) return std::nullopt;
    if (const auto found = m_exact.constFind(text); found != m_exact.cend()) return found.value();
    if (m_byKey.isEmpty()) {
        for (auto it = m_exact.cbegin(); it != m_exact.cend(); ++it) {
            const QByteArray key = localizedKey(it.key());
            const auto known = m_byKey.constFind(key);
            if (known == m_byKey.cend() || it.value() < known.value()) m_byKey.insert(key, it.value());
        }
    }
    const auto found = m_byKey.constFind(localizedKey(text));
    if (found == m_byKey.cend()) return std::nullopt;
    return found.value();
}

QString withoutMarks(const QString &text)
{
    QString result;
    for (const QChar unit : text.normalized(QString::NormalizationForm_D))
        if (!unit.isMark()) result.append(unit);
    return result.normalized(QString::NormalizationForm_C);
}

} // namespace tomelet
