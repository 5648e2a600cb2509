// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Trash.h"

#include "foundation/FileOperations.h"
#include "foundation/Folder.h"

#include <QFile>

namespace tomelet {

namespace {

class DesktopTrash final : public Trash
{
public:
    std::optional<QString> take(const QString &path) override
    {
        QString where;
        if (!QFile::moveToTrash(path, &where)) return std::nullopt;
        return where;
    }

    bool restore(const QString &trashPath, const QString &originalPath) override
    {
        if (!moveItem(trashPath, originalPath)) return false;
        // "Trash/files/NAME" has its story in "Trash/info/NAME.trashinfo".
        const QString trash = parentPath(parentPath(trashPath));
        QFile::remove(trash + QStringLiteral("/info/") + lastPathComponent(trashPath) + QStringLiteral(".trashinfo"));
        return true;
    }
};

} // namespace

std::unique_ptr<Trash> makeDesktopTrash()
{
    return std::make_unique<DesktopTrash>();
}

} // namespace tomelet
