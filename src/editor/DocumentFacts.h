// SPDX-License-Identifier: GPL-3.0-or-later
// What the library notes about a document when its text was saved: its contexts, the items that it refers to, its
// pictures. Each function compares with what was known and writes only what changed.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

/// The contexts in the text that the item has in its list as well; empty while contexts are not taken from texts.
[[nodiscard]] QStringList contextsEmbeddedIn(const QString &path, const QString &text);
/// What a text says about its document; found out on any thread.
struct TextFacts
{
    QStringList contexts;   ///< empty while they are not taken from such texts
    QStringList references; ///< of existing items, normalised; empty while links are not managed
    QStringList pictures;
};
struct FormsOfText
{
    QString plain;  ///< without markup; read for contexts
    QString stored; ///< what the file holds; read for references
    QString own;    ///< without what surrounds it in the file; read for pictures
};
[[nodiscard]] TextFacts factsOfText(const QString &path, const FormsOfText &text);

/// Gives the item the contexts that came and takes away those that left; `embedded` becomes those of now.
void takeEmbeddedContexts(const QString &path, const QStringList &now, QStringList &embedded);
/// Contexts are read from the text of the document: its kind and the settings want it.
[[nodiscard]] bool readsContexts(const QString &path);

/// Items that the document no longer refers to lose its backlink, new ones get one; `referenced` (normalised paths)
/// becomes what it refers to now. Nothing while links are not managed.
void takeReferences(const QString &path, const QStringList &now, QStringList &referenced);

/// Tells that the document is at a new path, or was written anew at its own; nobody needs to load it again.
void postSilentMove(const QString &from, const QString &to);

/// Adds the pictures of the text to those that are known of the document.
void checkEmbeddedImagesInText(const QString &path, const QString &text);
/// The same with the pictures of the text.
void takePictures(const QString &path, const QStringList &inText);

} // namespace tomelet
