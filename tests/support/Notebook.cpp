// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Notebook.h"

#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "foundation/SafeWriter.h"
#include "library/Organiser.h"
#include "library/OutlineItem.h"

#include <QDir>

namespace tomelet::test {

namespace {

// A folder that takes things in, or, told so, refuses them as a disk without a trash does.
class FolderTrash final : public Trash
{
public:
    FolderTrash(QString folder, const bool &works)
        : m_folder(std::move(folder))
        , m_works(works)
    {}

    std::optional<QString> take(const QString &path) override
    {
        if (!m_works) return std::nullopt;
        makeFolder(m_folder);
        const QString where = joinPath(m_folder, QString::number(m_count++) + lastPathComponent(path));
        if (!moveItem(path, where)) return std::nullopt;
        return where;
    }
    bool restore(const QString &trashPath, const QString &originalPath) override
    {
        return moveItem(trashPath, originalPath).ok;
    }

private:
    QString m_folder;
    const bool &m_works;
    int m_count = 0;
};

} // namespace

Notebook::Notebook()
{
    const QString base = QDir(world.path()).canonicalPath();
    root = base + QStringLiteral("/root");
    QDir().mkpath(root);
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
        qputenv(variable, (base + u'/' + QLatin1StringView(variable)).toUtf8());
    auto made = std::make_unique<Platform>();
    made->settings = makeMemorySettings();
    made->settings->setObject(QStringLiteral("TomeletFolder"), root);
    made->trash = std::make_unique<FolderTrash>(base + QStringLiteral("/trash"), trashWorks);
    setPlatform(std::move(made));
    setOrganiser(nullptr);
    TMLTOutlineItem::rootItem()->resetAllChildren();
}

Notebook::~Notebook()
{
    TMLTOutlineItem::rootItem()->resetAllChildren();
    setOrganiser(nullptr);
    setPlatform(nullptr);
}

QString Notebook::write(const QString &path, const QByteArray &bytes) const
{
    makeFolder(parentPath(at(path)));
    EXPECT_TRUE(writeFile(at(path), bytes));
    return at(path);
}

QByteArray Notebook::read(const QString &path) const
{
    return readFile(at(path)).value_or("(missing)");
}

QVariantMap Notebook::plist(const QString &path) const
{
    return readDictionary(at(path));
}

QString Notebook::makeBook(const QString &path) const
{
    makeFolder(at(path));
    return at(path);
}

bool Notebook::exists(const QString &path) const
{
    return itemExists(at(path));
}

QStringList Notebook::names(const QString &path) const
{
    return namesInFolder(at(path));
}

} // namespace tomelet::test
