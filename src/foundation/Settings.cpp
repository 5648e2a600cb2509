// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Settings.h"

#include "foundation/Conversions.h"
#include "foundation/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <mutex>

namespace tomelet {

bool Settings::boolean(const QString &key) const
{
    return boolFromVariant(object(key));
}

qlonglong Settings::integer(const QString &key) const
{
    return integerFromVariant(object(key));
}

double Settings::number(const QString &key) const
{
    return numberFromVariant(object(key));
}

QString Settings::string(const QString &key) const
{
    return textFromVariant(object(key));
}

QStringList Settings::stringList(const QString &key) const
{
    return object(key).toStringList();
}

namespace {

// The store holds the server's password, so only its owner reads it.
void makePrivate(const QString &path)
{
    QFile file(path);
    if (!file.exists() && (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly))) return;
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
}

// Read by the main thread and by the queues; QSettings by itself is for one thread at a time.
class IniSettings final : public Settings
{
public:
    explicit IniSettings(const QString &path)
        : m_path(path)
        , m_store(path, QSettings::IniFormat)
    {}

    QVariant object(const QString &key) const override
    {
        const std::lock_guard lock(m_mutex);
        if (!m_store.contains(key)) return {};
        return variantFromJsonText(m_store.value(key).toString());
    }

    void setObject(const QString &key, const QVariant &value) override
    {
        const std::lock_guard lock(m_mutex);
        if (!m_isPrivate) makePrivate(m_path);
        m_isPrivate = true;
        if (!value.isValid()) m_store.remove(key);
        else m_store.setValue(key, jsonTextFromVariant(value));
    }

    QStringList keys() const override
    {
        const std::lock_guard lock(m_mutex);
        return m_store.allKeys();
    }
    bool synchronize() override
    {
        const std::lock_guard lock(m_mutex);
        m_store.sync();
        return m_store.status() == QSettings::NoError;
    }

private:
    mutable std::mutex m_mutex;
    QString m_path;
    QSettings m_store;
    bool m_isPrivate = false;
};

class MemorySettings final : public Settings
{
public:
    QVariant object(const QString &key) const override { return m_values.value(key); }
    void setObject(const QString &key, const QVariant &value) override
    {
        if (value.isValid()) m_values.insert(key, value);
        else m_values.remove(key);
    }
    QStringList keys() const override { return m_values.keys(); }
    bool synchronize() override { return true; }

private:
    QVariantMap m_values;
};

// The parser of INI files accepts nearly everything; what it refuses must not be overwritten.
void setAsideIfBroken(const QString &path)
{
    if (!QFileInfo::exists(path)) return;
    const QSettings probe(path, QSettings::IniFormat);
    if (probe.status() == QSettings::NoError) return;
    const QString aside = path + QStringLiteral(".unreadable-") +
                          QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMddhhmmsszzz"));
    QFile::rename(path, aside);
    logWarning(QStringLiteral("%1 could not be read and was set aside as %2").arg(path, aside));
}

} // namespace

std::unique_ptr<Settings> openSettings(const QString &iniPath)
{
    setAsideIfBroken(iniPath);
    return std::make_unique<IniSettings>(iniPath);
}

std::unique_ptr<Settings> makeMemorySettings()
{
    return std::make_unique<MemorySettings>();
}

} // namespace tomelet
