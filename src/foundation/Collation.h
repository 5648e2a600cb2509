// SPDX-License-Identifier: GPL-3.0-or-later
// Comparison of texts as the current locale orders them (LC_ALL, LC_COLLATE, LANG), by ICU collation.
// In the C and POSIX locales the order of the Unicode Collation Algorithm holds.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

namespace tomelet {

/// Below, equal to or above 0. Tertiary strength: case and accents count, normal forms do not.
[[nodiscard]] int localizedCompare(const QString &a, const QString &b);
/// The same with runs of digits ordered as numbers.
[[nodiscard]] int localizedStandardCompare(const QString &a, const QString &b);
/// Names in lists: case and width do not count, digits run as numbers if `numeric`; two names that differ are never
/// equal (forced ordering: by code units where nothing else tells them apart).
[[nodiscard]] int compareNames(const QString &a, const QString &b, bool numeric);
/// A key whose order by bytes is that of compareNames; for sorting many names.
[[nodiscard]] QByteArray nameSortKey(const QString &name, bool numeric);
/// A key that is equal for two texts exactly when localizedCompare finds them equal.
[[nodiscard]] QByteArray localizedKey(const QString &text);
/// A key whose order by bytes is that of localizedStandardCompare.
[[nodiscard]] QByteArray standardSortKey(const QString &name);

/// The index of the very text, else the first whose text is equal under localizedCompare. Nothing when there is none,
/// or when the text sought is null.
[[nodiscard]] std::optional<qsizetype> tm_localizedIndexOfObject(const QStringList &list, const QString &text);

/// Looks up texts in one list many times, each in constant time, with the result of tm_localizedIndexOfObject.
class LocalizedIndex
{
public:
    LocalizedIndex() = default;
    explicit LocalizedIndex(const QStringList &list);
    [[nodiscard]] std::optional<qsizetype> find(const QString &text) const;
    [[nodiscard]] bool isEmpty() const { return m_exact.isEmpty(); }

private:
    QHash<QString, qsizetype> m_exact;
    // Keys of the collation, made when a text is sought that the list does not hold letter for letter.
    mutable QHash<QByteArray, qsizetype> m_byKey;
};

/// Removes accents and other marks: "Ä" becomes "A".
[[nodiscard]] QString withoutMarks(const QString &text);

} // namespace tomelet
