// SPDX-License-Identifier: GPL-3.0-or-later
// Settings that travel with the library, in `TMResources/Misc/Settings.txt`.
#pragma once

#include <QString>
#include <QVariant>

namespace tomelet {

/// The value in the library's file; null when it has none.
[[nodiscard]] QVariant tm_locationSpecificSettingForKey(const QString &key);
/// Stores a value in the library's file; null removes the key.
void tm_setLocationSpecificSetting(const QVariant &value, const QString &key);
/// Copies the library's file into the application's settings. A key that the file lacks leaves its setting alone.
void tm_readLocationSpecificSettings();
/// Writes the application's settings into the library's file, if that changes it.
void tm_writeLocationSpecificSettings();

} // namespace tomelet
