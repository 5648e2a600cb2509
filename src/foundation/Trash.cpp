// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Trash.h"

#include "foundation/Directories.h"
#include "foundation/FileOperations.h"
#include "foundation/Folder.h"

#include <QFile>

#include <unistd.h>

namespace tomelet {

namespace {

// The toolkit expects the base directory to stand, which it does not on a new account, and where there is no trash at
// all it takes the working folder for one. So the home trash is made here, or nothing is trashed.
bool makeHomeTrash()
{
    const QString base = parentPath(dataDirectory());
    const bool isNew = !itemExists(base);
    for (const auto &part : {QStringLiteral("/Trash/files"), QStringLiteral("/Trash/info")})
        if (!makeFolder(base + part) || ::access(QFile::encodeName(base + part).constData(), W_OK) != 0) return false;
    const auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (isNew) QFile::setPermissions(base, ownerOnly);
    QFile::setPermissions(base + QStringLiteral("/Trash"), ownerOnly);
    return true;
}

class DesktopTrash final : public Trash
{
public:
    std::optional<QString> take(const QString &path) override
    {
        QString where;
        if (!makeHomeTrash()) return std::nullopt;
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
