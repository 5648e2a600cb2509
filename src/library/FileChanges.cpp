// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/FileChanges.h"

#include "foundation/Platform.h"

namespace tomelet {

std::vector<NotificationCenter::Subscription>
observeFileChanges(const std::function<void(const QString &path)> &observer)
{
    static constexpr std::pair<const char *, const char *> sources[] = {
        {"TMLTFileModifiedOnDiskNotification", "path"}, {"TMLTFileDeletedFromDiskNotification", "path"},
        {"TMLTFileMovedNotification", "originalPath"},  {"TMLTFileMovedNotification", "newPath"},
        {"TMLTNewFileCreatedNotification", "path"},
    };
    std::vector<NotificationCenter::Subscription> subscriptions;
    for (const auto &[notification, key] : sources)
        subscriptions.push_back(notifications().observe(
            QString::fromLatin1(notification), [observer, name = QString::fromLatin1(key)](const QVariantMap &payload) {
                observer(payload.value(name).toString());
            }));
    return subscriptions;
}

} // namespace tomelet
