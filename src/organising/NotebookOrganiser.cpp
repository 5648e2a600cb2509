// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/NotebookOrganiser.h"

#include "conversion/Patterns.h"
#include "foundation/Folder.h"
#include "foundation/PropertyStore.h"
#include "library/Organiser.h"
#include "library/Properties.h"
#include "library/Root.h"
#include "organising/ContextStores.h"
#include "organising/Contexts.h"

#include <QFile>

namespace tomelet {

namespace {

class NotebookOrganiser final : public Organiser
{
public:
    QStringList itemsWithContext(const QString &context) override { return tm_listOfAllItemsForTag(context); }
    QStringList availableContexts() override { return tm_listOfAllAvailableTags(); }

    void setMark(const QString &path, const QString &mark, bool on) override
    {
        if (on) tm_setTag(path, mark);
        else tm_clearTag(path, mark);
    }
    void contextsFollow(const QString &path, const QString &target) override
    {
        tm_changePathInTagDBToPath(path, target);
    }
    void propertyFileChanged(const QString &path) override { tm_collectTagsInPlist(path); }
    void contextListChanged() override { mergeLeftoverList(); }

    QString withContextsMarked(const QString &path, const QString &html) override
    {
        QString marked = html;
        const QStringList tags = tm_propertyForKey(path, QStringLiteral("Tags")).toStringList();
        for (const QString &word : tm_listOfAllAvailableTags())
            if (tags.contains(word) && tm_tagIsManagedAutomatically(word))
                marked = regexSweep(marked, QStringLiteral("(\\W)(%1)(\\W)").arg(word),
                                    QStringLiteral("$1<span class=\"tm_context-tag\">$2</span>$3"));
        return marked;
    }

private:
    // An older program may still write its list beside the index.
    static void mergeLeftoverList()
    {
        const QString leftover = joinPath(rootStateFolder(), QStringLiteral("AvailableTags.plist"));
        if (!itemExists(leftover)) return;
        ContextStores stores;
        tm_mergeTagListWithList(stores.list, readStringArray(leftover));
        stores.save();
        QFile::remove(leftover);
    }
};

} // namespace

void installNotebookOrganiser()
{
    setOrganiser(std::make_unique<NotebookOrganiser>());
}

} // namespace tomelet
