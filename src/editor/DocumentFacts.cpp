// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/DocumentFacts.h"

#include "foundation/Platform.h"
#include "library/EmbeddedPhotos.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "organising/contexts/ContextStores.h"
#include "organising/contexts/Contexts.h"
#include "organising/links/Backlinks.h"
#include "organising/links/DocumentReferences.h"

namespace tomelet {

namespace {

// The entries of one list that another does not have.
QStringList without(const QStringList &list, const QStringList &others)
{
    QStringList rest;
    for (const QString &entry : list)
        if (!others.contains(entry)) rest.append(entry);
    return rest;
}

} // namespace

static bool hasExtractableContexts(const QString &path)
{
    static const QStringList others{QStringLiteral("txt"), QStringLiteral("html"), QStringLiteral("fountain"),
                                    QStringLiteral("taskpaper")};
    return hasMarkdownExtension(path) || others.contains(lowerExtension(path));
}

bool readsContexts(const QString &path)
{
    return managesContextsAutomatically() && hasExtractableContexts(path);
}

QStringList contextsEmbeddedIn(const QString &path, const QString &text)
{
    if (!readsContexts(path)) return {};
    const QStringList inText = tm_extractTagsFromString(text);
    if (inText.isEmpty()) return {};
    const QStringList verified = tm_verifiedTagList(path);
    return without(inText, without(inText, verified));
}

static bool managesLinks()
{
    return settings().boolean(QStringLiteral("manageLinks"));
}

TextFacts factsOfText(const QString &path, const FormsOfText &text)
{
    TextFacts facts;
    if (readsContexts(path)) facts.contexts = tm_extractTagsFromString(text.plain);
    if (managesLinks()) facts.references = verifiedReferencesInText(text.stored, path);
    facts.pictures = tm_setOfEmbeddedPhotos(text.own);
    return facts;
}

void takeEmbeddedContexts(const QString &path, const QStringList &now, QStringList &embedded)
{
    if (!readsContexts(path)) return;
    const QStringList left = without(embedded, now);
    const QStringList came = without(now, embedded);
    if (!left.isEmpty() || !came.isEmpty()) tm_updateContextsRemoving(path, left, came);
    embedded = now;
}

void takeReferences(const QString &path, const QStringList &now, QStringList &referenced)
{
    if (!managesLinks()) return;
    for (const QString &target : without(referenced, now)) tm_changeBacklinkFrom(target, path, {});
    for (const QString &target : without(now, referenced)) tm_addBacklink(target, path);
    referenced = now;
}

void postSilentMove(const QString &from, const QString &to)
{
    notifications().post(QStringLiteral("TMLTFileMovedNotification"),
                         {{QStringLiteral("originalPath"), from},
                          {QStringLiteral("newPath"), to},
                          {QStringLiteral("silentReload"), QStringLiteral("1")}});
}

void checkEmbeddedImagesInText(const QString &path, const QString &text)
{
    takePictures(path, tm_setOfEmbeddedPhotos(text));
}

void takePictures(const QString &path, const QStringList &inText)
{
    const QString key = QStringLiteral("Embedded Photos");
    if (inText.isEmpty()) return;
    QStringList known = tm_propertyForKey(path, key).toStringList();
    const QStringList fresh = without(inText, known);
    if (fresh.isEmpty()) return;
    known += fresh;
    tm_setProperty(path, QVariantList(known.begin(), known.end()), key);
}

} // namespace tomelet
