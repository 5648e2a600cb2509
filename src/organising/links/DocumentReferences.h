// SPDX-License-Identifier: GPL-3.0-or-later
// References in the texts of documents: where they stand, and which items they mean. Positions are UTF-16 units.
#pragma once

#include "foundation/Range.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace tomelet {

struct Reference
{
    QString path; ///< as it stands in the text
    Range range;
};

/// The references in a text, in their order; none overlaps another. External addresses and anchors are left out.
[[nodiscard]] QList<Reference> referencesInText(const QString &text);
/// The same of a document; an unreadable one has none.
[[nodiscard]] QList<Reference> referencesInDocument(const QString &document);
[[nodiscard]] QStringList tm_arrayOfAllReferencesInDocument(const QString &document);

/// Documents of these kinds can hold references.
[[nodiscard]] bool canHoldReferences(const QString &path);
/// The normalised path of the existing item that a reference in the document means; "" for none.
[[nodiscard]] QString resolvedReference(const QString &reference, const QString &document);
/// All items that the document refers to, normalised, each once, in text order.
[[nodiscard]] QStringList tm_verifiedArrayOfReferencedDocuments(const QString &document);
/// The same for a text that is to be the document's.
[[nodiscard]] QStringList verifiedReferencesInText(const QString &text, const QString &document);

/// A tomelet URL that asks for an action rather than an item.
[[nodiscard]] bool tm_isTomeletURLSchemeAction(const QString &url);
/// The path that a "tomelet://" reference names, with a leading "/"; every other reference as it is.
[[nodiscard]] QString withoutTomeletScheme(const QString &reference);
/// A relative path joined to a normalised folder, with "." and ".." resolved; "" when it leads above the root.
[[nodiscard]] QString resolvedAgainst(const QString &relative, const QString &normalizedFolder);

} // namespace tomelet
