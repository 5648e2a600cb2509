// SPDX-License-Identifier: GPL-3.0-or-later
// The settings of the current user: one flat, typed store without a schema. A key that is not set reads as false,
// 0 or empty, and that absence is its default; so switching a boolean off usually means removing its key.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>

namespace tomelet {

class Settings
{
public:
    virtual ~Settings() = default;

    /// The stored value, or an invalid variant. Types: bool, qlonglong, double, QString, QDateTime (UTC),
    /// QVariantList, QVariantMap.
    [[nodiscard]] virtual QVariant object(const QString &key) const = 0;
    /// Stores a value of one of the types above; an invalid variant removes the key.
    virtual void setObject(const QString &key, const QVariant &value) = 0;
    [[nodiscard]] virtual QStringList keys() const = 0;
    /// Brings the store on disk and the one in memory together: writes what was set, reads what others wrote.
    /// False when it could not be written.
    virtual bool synchronize() = 0;

    void remove(const QString &key) { setObject(key, {}); }
    [[nodiscard]] bool contains(const QString &key) const { return object(key).isValid(); }
    /// True for true, for a number other than 0, and for texts that begin as "true", "yes" or a digit 1 to 9 do.
    [[nodiscard]] bool boolean(const QString &key) const;
    /// The whole number, a text's leading number, or 0.
    [[nodiscard]] qlonglong integer(const QString &key) const;
    [[nodiscard]] double number(const QString &key) const;
    /// The text, a number's decimal text, or "" (lists and dictionaries have none).
    [[nodiscard]] QString string(const QString &key) const;
    [[nodiscard]] QStringList stringList(const QString &key) const;
    [[nodiscard]] QDateTime date(const QString &key) const { return object(key).toDateTime(); }
};

/// The store in an INI file, made with its folder at the first write. Every value is kept as one line of JSON, so
/// that types survive; a date is {"$date": "2026-11-21T08:30:00Z"}. A file that cannot be parsed is set aside
/// under a new name and the store begins empty.
std::unique_ptr<Settings> openSettings(const QString &iniPath);

/// A store that lives in memory alone, for tests.
std::unique_ptr<Settings> makeMemorySettings();

} // namespace tomelet
