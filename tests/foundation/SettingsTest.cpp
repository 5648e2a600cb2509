// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Settings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tomelet;

TEST(Settings, typesSurviveTheFile)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("deep/settings.ini"));
    const QDateTime date = QDateTime::fromString(QStringLiteral("2071-03-01T10:20:30Z"), Qt::ISODate);
    const QVariantMap values{{QStringLiteral("b"), true},
                             {QStringLiteral("i"), qlonglong(1) << 40},
                             {QStringLiteral("d"), 1.25},
                             {QStringLiteral("s"), QStringLiteral("true")},
                             {QStringLiteral("t"), QStringLiteral("ümläut; \"q\" \\ \n ,")},
                             {QStringLiteral("date"), date},
                             {QStringLiteral("list"), QVariantList{QStringLiteral("/a"), QStringLiteral("")}},
                             {QStringLiteral("key with ü and /"), QStringLiteral("x")}};
    {
        const auto settings = openSettings(path);
        for (auto it = values.begin(); it != values.end(); ++it) settings->setObject(it.key(), it.value());
    }
    const auto settings = openSettings(path);
    for (auto it = values.begin(); it != values.end(); ++it)
        EXPECT_EQ(settings->object(it.key()), it.value()) << it.key().toStdString();
    EXPECT_EQ(settings->keys().size(), values.size());
    settings->remove(QStringLiteral("b"));
    EXPECT_FALSE(settings->contains(QStringLiteral("b")));
}

TEST(Settings, looseReadings)
{
    const auto settings = makeMemorySettings();
    const struct
    {
        const char *text;
        bool boolean;
        qlonglong integer;
        double number;
    } rows[] = {
        {"YES", true, 0, 0}, {"true", true, 0, 0},       {"0", false, 0, 0}, {"  +0012px", true, 12, 12},
        {"no", false, 0, 0}, {"-3.5e1x", true, -3, -35}, {"", false, 0, 0},  {"1e", true, 1, 1},
    };
    for (const auto &row : rows) {
        settings->setObject(QStringLiteral("k"), QString::fromLatin1(row.text));
        EXPECT_EQ(settings->boolean(QStringLiteral("k")), row.boolean) << row.text;
        EXPECT_EQ(settings->integer(QStringLiteral("k")), row.integer) << row.text;
        EXPECT_EQ(settings->number(QStringLiteral("k")), row.number) << row.text;
    }
    EXPECT_FALSE(settings->boolean(QStringLiteral("unset")));
    settings->setObject(QStringLiteral("k"), 2.5);
    EXPECT_EQ(settings->string(QStringLiteral("k")), QStringLiteral("2.5"));
    EXPECT_EQ(settings->integer(QStringLiteral("k")), 2);
}

TEST(Settings, brokenFileIsSetAside)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("settings.ini"));
    const QByteArray broken = "this line has no sign\n[unclosed\n";
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(broken);
    file.close();
    openSettings(path)->setObject(QStringLiteral("k"), true);
    const QStringList aside = QDir(folder.path()).entryList({QStringLiteral("*.unreadable-*")});
    ASSERT_EQ(aside.size(), 1);
    QFile kept(folder.filePath(aside.first()));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), broken);
}
