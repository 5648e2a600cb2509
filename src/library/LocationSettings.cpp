// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/LocationSettings.h"

#include "foundation/Conversions.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/Root.h"

namespace tomelet {

static const QStringList textKeys{QStringLiteral("defaultInbox"), QStringLiteral("contextMarkers")};
static const QStringList switchKeys{QStringLiteral("manageLinks"), QStringLiteral("contextsEnabled"),
                                    QStringLiteral("extractContextsAutomatically")};

static QString settingsFile()
{
    return miscFile(QStringLiteral("Settings.txt"));
}

QVariant tm_locationSpecificSettingForKey(const QString &key)
{
    return readDictionary(settingsFile()).value(key);
}

void tm_setLocationSpecificSetting(const QVariant &value, const QString &key)
{
    if (!makeMiscFolder()) return;
    changeDictionary(settingsFile(), [&](QVariantMap &values) {
        const QVariantMap before = values;
        if (value.isValid()) values.insert(key, value);
        else values.remove(key);
        return values != before;
    });
}

void tm_writeLocationSpecificSettings()
{
    if (!makeMiscFolder()) return;
    changeDictionary(settingsFile(), [](QVariantMap &values) {
        const QVariantMap before = values;
        for (const QString &key : textKeys) values.insert(key, settings().string(key));
        for (const QString &key : switchKeys) values.insert(key, qlonglong(settings().boolean(key) ? 1 : 0));
        return values != before;
    });
}

static QString activity(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

void tm_readLocationSpecificSettings()
{
    const QVariantMap values = readDictionary(settingsFile());
    const QString inboxBefore = settings().string(QStringLiteral("defaultInbox"));
    const bool contextsBefore = settings().boolean(QStringLiteral("contextsEnabled"));
    const bool linksBefore = settings().boolean(QStringLiteral("manageLinks"));

    for (const QString &key : textKeys) {
        if (!values.contains(key)) continue;
        const QString text = textFromVariant(values.value(key));
        settings().setObject(key, text.isEmpty() ? QVariant() : QVariant(text));
    }
    for (const QString &key : switchKeys) {
        if (!values.contains(key)) continue;
        const bool on = boolFromVariant(values.value(key));
        if (on != settings().boolean(key)) settings().setObject(key, on ? QVariant(true) : QVariant());
    }
    settings().synchronize();

    const bool links = settings().boolean(QStringLiteral("manageLinks"));
    if (links != linksBefore)
        logLine(QStringLiteral("> set Link Management from %1 to: %2").arg(activity(linksBefore), activity(links)));
    const QString inbox = settings().string(QStringLiteral("defaultInbox"));
    if (inbox != inboxBefore) {
        logLine(QStringLiteral("> set Default Inbox from %1 to: %2").arg(inboxBefore, inbox));
        notifications().post(QStringLiteral("TMLTUpdateDefaultInbox"));
    }
    if (settings().boolean(QStringLiteral("contextsEnabled")) != contextsBefore)
        notifications().post(QStringLiteral("TMLTReloadContextSmartBook"));
}

} // namespace tomelet
