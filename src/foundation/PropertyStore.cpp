// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/PropertyStore.h"

#include "foundation/Log.h"
#include "foundation/PropertyList.h"

#include <QFileInfo>

namespace tomelet {

// No store of a person's notes comes near this; a file beyond it is not one of ours.
static constexpr qint64 largestStore = 256 * 1024 * 1024;

static QVariant readStore(const QString &path, QMetaType::Type type)
{
    // Most items have no store: one look tells.
    const QFileInfo file(path);
    if (!file.isFile() || file.size() > largestStore) return {};
    const auto bytes = readFile(path);
    if (!bytes) return {};
    const auto value = parsePropertyList(*bytes);
    return value && value->typeId() == type ? *value : QVariant();
}

QVariantMap readDictionary(const QString &path)
{
    return readStore(path, QMetaType::QVariantMap).toMap();
}

QVariantList readArray(const QString &path)
{
    return readStore(path, QMetaType::QVariantList).toList();
}

QStringList readStringArray(const QString &path)
{
    QStringList texts;
    for (const QVariant &entry : readArray(path))
        if (entry.typeId() == QMetaType::QString) texts.append(entry.toString());
    return texts;
}

// A store that was not read as a value of its type just now makes room for what is written in its place.
static bool makeRoom(const QString &path, bool readable)
{
    const bool exists = QFileInfo::exists(path) || QFileInfo(path).isSymLink();
    if (!exists || readable || setAside(path)) return true;
    logWarning(QStringLiteral("%1 could not be read nor set aside, so it was not written").arg(path));
    return false;
}

bool writeStore(const QString &path, const QVariant &value)
{
    if (!makeRoom(path, readStore(path, QMetaType::Type(value.typeId())).isValid())) return false;
    const WriteResult result = writeFile(path, xmlPropertyList(value));
    if (!result) logWarning(result.message);
    return result.ok;
}

// Nothing when the store is to stay as it is, or has to: then there is no room.
static std::optional<QByteArray> changedStore(const QString &path, const std::function<bool(QVariantMap &)> &change,
                                              bool &hasRoom)
{
    const QVariant old = readStore(path, QMetaType::QVariantMap);
    QVariantMap values = old.toMap();
    if (!change(values)) return std::nullopt;
    hasRoom = makeRoom(path, old.isValid());
    return hasRoom ? std::optional(xmlPropertyList(values)) : std::nullopt;
}

bool changeDictionary(const QString &path, const std::function<bool(QVariantMap &)> &change)
{
    bool hasRoom = true;
    const WriteResult result = changeFile(path, [&] { return changedStore(path, change, hasRoom); });
    if (!result) logWarning(result.message);
    return result.ok && hasRoom;
}

void StoreBatch::change(const QString &path, std::function<bool(QVariantMap &)> change)
{
    m_files.change(path, [path, change = std::move(change)] {
        bool hasRoom = true;
        return changedStore(path, change, hasRoom);
    });
}

} // namespace tomelet
