// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/LibraryNames.h"

#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/Extensions.h"
#include "library/FileChanges.h"
#include "library/ItemPath.h"
#include "library/Root.h"

#include <QFileInfo>

#include <algorithm>

namespace tomelet {

LibraryNames::LibraryNames()
    : m_subscriptions(observeFileChanges([this](const QString &path) { noteChange(path); }))
{}

// What is written again is known already.
void LibraryNames::noteChange(const QString &path)
{
    if (!m_holds || tm_pathIsExcludedFromDisplay(path)) return;
    const QString below = tm_normalizedPath(path, m_root);
    const bool isKnown = m_names.contains({lastPathComponent(path).toCaseFolded(), below});
    const auto isInside = [folder = QString(below + u'/')](const auto &name) { return name.second.startsWith(folder); };
    if (itemExists(path)) m_holds = isKnown;
    else m_holds = !isKnown && std::ranges::none_of(m_names, isInside);
}

namespace {

// Links to folders are not followed: one may lead back up. What lies in a package is no document.
template <typename Take>
void eachDocumentBelow(const QString &root, const QString &below, Take take)
{
    for (const FolderEntry &entry : listFolder(root + below).value_or(std::vector<FolderEntry>())) {
        const QString item = below + u'/' + entry.name;
        if (!entry.exists || tm_pathIsExcludedFromDisplay(item)) continue;
        if (!entry.isFolder || hasPackageExtension(item)) take(entry.name, item);
        else if (!QFileInfo(root + item).isSymLink()) eachDocumentBelow(root, item, take);
    }
}

} // namespace

LibraryNames::Names LibraryNames::listed(const QString &root)
{
    Names names;
    eachDocumentBelow(root, {},
                      [&](const QString &name, const QString &path) { names.emplace(name.toCaseFolded(), path); });
    return names;
}

void LibraryNames::want(const std::function<void()> &whenListed)
{
    const QString root = tomeletRoot();
    if (m_isListing || root.isEmpty() || (m_holds && m_root == root)) return;
    m_isListing = m_holds = true; // until something else is told
    if (m_root != root) m_names.clear();
    m_root = root;
    m_listings.add([this, root, whenListed] {
        QMetaObject::invokeMethod(
            &m_mainThread,
            [this, whenListed, names = listed(root)]() mutable {
                m_isListing = false;
                m_names = std::move(names);
                whenListed();
            },
            Qt::QueuedConnection);
    });
}

QStringList LibraryNames::beginningWith(const QString &beginning, size_t most) const
{
    const QString folded = beginning.toCaseFolded();
    QStringList paths;
    for (auto name = m_names.lower_bound({folded, QString()});
         name != m_names.end() && name->first.startsWith(folded) && size_t(paths.size()) < most; ++name)
        paths.append(name->second);
    return paths;
}

} // namespace tomelet
