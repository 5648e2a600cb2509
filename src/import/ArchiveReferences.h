// SPDX-License-Identifier: GPL-3.0-or-later
// The references of a saved page to what was saved with it.
#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QUrl>

namespace tomelet {

/// A resource and the name under which its bytes were put into a file.
struct SavedResource
{
    QString url; ///< as the archive has it
    QString reference;
    bool isImage = false;
};

/// The last path component of an address, percent-encoded but for what RFC 3986 allows in a fragment, so that an escape
/// is encoded once more: "http://h/d/a b.png?v=2" gives "a%20b.png". "" where that is no name for a file.
[[nodiscard]] QString nameOfResource(const QString &url);

/// Writes the references of the resources into the values of `src="..."` and `href="..."`. In this order a value means
/// the resource whose address it is; the one whose address it is as seen from the page's; the one whose path it is;
/// and, for `src` alone, the picture with whose name it ends, the longest such name. Of several the first in the list.
/// Each value is looked at once, so that resources of one name do not take each other's places, and the cost grows with
/// the text. Of the pictures that `srcset="..."` offers the first one that is there is left, else none, so that the
/// view takes what `src` says.
class ArchiveReferences
{
public:
    /// `pageUrl` may be empty. Without regard to case, attributes, addresses and paths are found in any; names are not.
    ArchiveReferences(const QList<SavedResource> &resources, const QString &pageUrl, Qt::CaseSensitivity sensitivity);

    [[nodiscard]] QString writtenInto(const QString &text) const;

private:
    [[nodiscard]] QString keyOf(const QString &address) const;
    void add(const SavedResource &resource);
    [[nodiscard]] QString attributeAt(QStringView text, qsizetype equals) const;
    [[nodiscard]] const QString *referenceFor(QStringView value, bool isExactSource) const;
    [[nodiscard]] QString pictureOffered(QStringView value) const;
    [[nodiscard]] const QString *referenceOfAddress(const QString &value) const;
    [[nodiscard]] const QString *pictureNamedAtEndOf(QStringView value) const;

    QUrl m_page;
    Qt::CaseSensitivity m_sensitivity;
    QHash<QString, QString> m_byAddress; // addresses, and addresses in their normal form
    QHash<QString, QString> m_byPath;
    QHash<QString, QString> m_byName;
    QList<qsizetype> m_nameLengths; // from the longest
    qsizetype m_longestAddress = 0;
};

} // namespace tomelet
