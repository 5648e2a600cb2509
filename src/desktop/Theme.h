// SPDX-License-Identifier: GPL-3.0-or-later
// Light and dark: what the desktop asks for, and the palettes for a style that has none of its own.
#pragma once

#include <QDBusVariant>
#include <QObject>

namespace tomelet::desktop {

/// Follows the desktop's colour scheme (the settings portal of freedesktop.org, "org.freedesktop.appearance").
class Theme final : public QObject
{
    Q_OBJECT

public:
    explicit Theme(QObject *parent = nullptr);
    /// What the desktop asks for; where it says nothing, what its palette looks like.
    [[nodiscard]] bool desktopIsDark() const { return m_dark; }
    /// Lays the light or dark palette over the application; the desktop's own where that fits already.
    static void apply(bool dark);

Q_SIGNALS:
    void desktopChanged(bool dark);

private Q_SLOTS:
    void portalSettingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    bool m_dark = false;
};

} // namespace tomelet::desktop
