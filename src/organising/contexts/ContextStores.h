// SPDX-License-Identifier: GPL-3.0-or-later
// The stores of contexts: the list that travels with the library, the words that are excluded from extraction, and
// the reverse index and the notes on the root's last walks, which lie outside the library because they can always be
// made again.
#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>

namespace tomelet {

/// The mark of a favourite: a context that never shows as one.
inline const QString favoriteContext = QStringLiteral("_TMFAV");

/// Index and list, read once, changed in memory and written once.
class ContextStores
{
public:
    /// Reads both. A missing store reads as empty.
    ContextStores();

    /// Context words with the normalised paths of their items, in composed form.
    QMap<QString, QStringList> index;
    /// All contexts in the order in which they are to show.
    QStringList list;

    /// The key of the index that is equal to the word under the locale, or the word itself.
    [[nodiscard]] QString keyFor(const QString &word) const;
    /// Removes a word of the list that nobody has any more, if it is managed automatically.
    void dropIfUnused(const QString &word);
    /// Writes what has changed; true when the index has.
    bool save();

private:
    QMap<QString, QStringList> m_savedIndex;
    QStringList m_savedList;
};

/// Posts what a changed index means for outline and lists.
void announceContexts();

/// The words in `ExcludedTags.txt`, which are separated by newlines, blanks or commas.
[[nodiscard]] QStringList excludedContexts();
void writeExcludedContexts(QStringList words);
[[nodiscard]] QString excludedContextsFile();

/// The characters that begin a context in a text.
[[nodiscard]] QString contextMarkers();
/// Contexts are read out of texts and leave the list with their last item.
[[nodiscard]] bool managesContextsAutomatically();

/// The moment of the last collection; the far past before the first.
[[nodiscard]] QDateTime autocollectDate();
void setAutocollectDate(const QDateTime &date);

/// The moment of the last refresh of all backlinks of the root; the far past before the first.
[[nodiscard]] QDateTime lastRefreshOfBacklinks();
void setLastRefreshOfBacklinks(const QDateTime &date);
void setNumberOfDocumentsWithBacklinks(qsizetype number);

/// An item's normalised path in composed form, as the index holds it.
[[nodiscard]] QString indexPathOf(const QString &path);

} // namespace tomelet
