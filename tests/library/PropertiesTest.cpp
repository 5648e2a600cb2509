// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Notebook.h"

#include "foundation/Clock.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "library/Appearance.h"
#include "library/ItemDictionary.h"
#include "library/LocationSettings.h"
#include "library/Properties.h"
#include "library/RecentItems.h"

#include <QFileInfo>

using namespace tomelet;
using Properties = tomelet::test::Notebook;

namespace {

const QString note = QStringLiteral("/Book/Note.md");
const QString spacing = QStringLiteral("lineSpacing");

} // namespace

TEST_F(Properties, defaultsDiffer)
{
    const QString path = write(note);
    EXPECT_FALSE(tm_propertyForKey(path, QStringLiteral("Tags")).isValid());
    EXPECT_EQ(tm_propertyForKey(path, QStringLiteral("Description")), QVariant(QString()));
    EXPECT_EQ(tm_propertyForKey(path, QStringLiteral("Backlinks")), QVariant(QVariantList()));
    EXPECT_EQ(tm_propertyForKey(path, QStringLiteral("Print")), QVariant(farPast()));
    tm_setProperty(path, 7LL, QStringLiteral("Offset"));
    tm_setProperty(path, QStringLiteral("white"), QStringLiteral("cellColor"));
    EXPECT_EQ(tm_propertyForKey(path, QStringLiteral("Offset")), QVariant(QStringLiteral("7")));
    EXPECT_EQ(tm_propertyForKey(path, QStringLiteral("cellColor")), QVariant(QStringLiteral("default")));
}

TEST_F(Properties, equalValuesTouchNothing)
{
    const QString path = write(note);
    tm_setProperty(path, QStringLiteral("x"), QStringLiteral("Description"));
    const auto inode = [&] { return QFileInfo(path + QStringLiteral(".plist")).lastModified(); };
    const QByteArray before = read(note + QStringLiteral(".plist"));
    const QDateTime date = inode();
    tm_setProperty(path, QStringLiteral("x"), QStringLiteral("Description"));
    EXPECT_EQ(inode(), date);
    EXPECT_EQ(read(note + QStringLiteral(".plist")), before);
    tm_removePropertyForKey(path, QStringLiteral("Description"));
    EXPECT_TRUE(exists(note + QStringLiteral(".plist")));
    EXPECT_TRUE(plist(note + QStringLiteral(".plist")).isEmpty());
}

TEST_F(Properties, unreadableStoreIsSetAside)
{
    const QString path = write(note);
    const QByteArray broken = "<?xml version=\"1.0\"?><plist><dict><key>Description</key><string>precious";
    write(note + QStringLiteral(".plist"), broken);
    EXPECT_EQ(tm_propertyForKey(path, QStringLiteral("Description")), QVariant(QString()));
    tm_setProperty(path, QStringLiteral("new"), QStringLiteral("URL"));
    QStringList aside = names(QStringLiteral("/Book"));
    aside.removeIf([](const QString &name) { return !name.contains(u".unreadable-"); });
    ASSERT_EQ(aside.size(), 1);
    EXPECT_EQ(read(QStringLiteral("/Book/") + aside.first()), broken);
    EXPECT_EQ(plist(note + QStringLiteral(".plist")).value(QStringLiteral("URL")), QStringLiteral("new"));
}

TEST_F(Properties, whatIsNeverKept)
{
    const QString temporary = write(QStringLiteral("/__NewNoteTmp1.md"));
    tm_setProperty(temporary, QStringLiteral("x"), QStringLiteral("URL"));
    EXPECT_FALSE(exists(QStringLiteral("/__NewNoteTmp1.md.plist")));
    const QString outside = world.filePath(QStringLiteral("outside.md"));
    tm_setProperty(outside, QStringLiteral("x"), QStringLiteral("URL"));
    EXPECT_FALSE(itemExists(outside + QStringLiteral(".plist")));
    tm_setProperty(outside, QStringLiteral("CSS/Handbook.css"), QStringLiteral("CSS"));
    EXPECT_TRUE(itemExists(outside + QStringLiteral(".plist")));
}

TEST_F(Properties, inheritance)
{
    const QString path = write(QStringLiteral("/A/B/n.md"));
    tm_setProperty(root, QStringLiteral("1.9"), spacing);
    tm_setProperty(at(QStringLiteral("/A")), QString(), spacing);
    EXPECT_EQ(tm_inheritedPropertyForKey(path, spacing), QVariant(QStringLiteral("1.9")));
    EXPECT_EQ(tm_linespacingAtPath(path), 1.9);
    tm_setProperty(at(QStringLiteral("/A/B")), QStringLiteral("1.1"), spacing);
    EXPECT_EQ(tm_linespacingAtPath(path), 1.1);
    settings().setObject(QStringLiteral("MarkdownConverter"), 1LL);
    EXPECT_EQ(tm_inheritedPropertyForKey(path, QStringLiteral("MarkdownConverter")), QVariant(QStringLiteral("1")));
    tm_setProperty(at(QStringLiteral("/A")), QStringLiteral("0"), QStringLiteral("MarkdownConverter"));
    EXPECT_EQ(tm_markdownConverterAtPath(path), 0);
}

TEST_F(Properties, backgroundColourAndImageClimbTogether)
{
    const QString path = write(QStringLiteral("/A/B/n.md"));
    tm_setProperty(at(QStringLiteral("/A")), QStringLiteral("1 0 0 1"), QStringLiteral("BackgroundColor"));
    tm_setProperty(at(QStringLiteral("/A/B")), QStringLiteral("/x/y/paper.png"), QStringLiteral("BackgroundImage"));
    const ItemColors colors = tm_colorsAtPath(path);
    EXPECT_EQ(colors.imageName, QStringLiteral("paper.png"));
    EXPECT_EQ(colors.background, QStringLiteral("1 1 1 1"));
    EXPECT_FALSE(tm_colorFromString(QStringLiteral("1 0 0")));
    settings().setObject(QStringLiteral("useSolarizedTheme"), true);
    EXPECT_EQ(tm_colorsAtPath(path).text, QStringLiteral("0.396 0.4824 0.5137 1"));
    EXPECT_EQ(tm_colorsAtPath(path).trueText, QStringLiteral("0 0 0 1"));
}

TEST_F(Properties, creationDates)
{
    const QString path = write(note);
    const QDateTime before = tm_creationDate(path);
    EXPECT_TRUE(before.isValid());
    EXPECT_FALSE(exists(note + QStringLiteral(".plist")));
    tm_setProperty(path, QStringLiteral("x"), QStringLiteral("URL"));
    EXPECT_TRUE(tm_creationDate(path).isValid());
    EXPECT_TRUE(plist(note + QStringLiteral(".plist")).contains(QStringLiteral("CreationDate")));
    EXPECT_EQ(tm_creationDate(path + QStringLiteral(".plist")), farPast());
    platform().clock.fix(QDateTime(QDate(2030, 1, 2), QTime(3, 4, 5), Qt::UTC));
    const QString other = write(QStringLiteral("/Book/other.md"));
    tm_setCreationDate(other);
    EXPECT_EQ(tm_creationDate(other), platform().clock.now());
}

TEST_F(Properties, pinsAndOrders)
{
    const QString a = write(QStringLiteral("/Book/a.md"));
    const QString b = write(QStringLiteral("/Book/b.md"));
    tm_pinToTop(a);
    tm_pinToTop(b);
    const QString properties = QStringLiteral("/Book/BookProperties.plist");
    EXPECT_EQ(plist(properties).value(QStringLiteral("Pinned")).toStringList(),
              (QStringList{QStringLiteral("b.md"), QStringLiteral("a.md")}));
    saveCustomSortOrder(at(QStringLiteral("/Book")), {}, {QStringLiteral("b.md"), QStringLiteral("a.md")});
    EXPECT_EQ(tm_customSequenceNrForPath(a), 1);
    EXPECT_EQ(tm_customSequenceNrForPath(at(QStringLiteral("/Book/c.md"))), notFoundIndex);
    write(QStringLiteral("/Book/c.md"));
    tm_changeSortOrderToPath(a, at(QStringLiteral("/Book/c.md")));
    EXPECT_EQ(plist(properties).value(QStringLiteral("Notes")).toStringList().last(), QStringLiteral("c.md"));
    EXPECT_EQ(plist(properties).value(QStringLiteral("Pinned")).toStringList().last(), QStringLiteral("c.md"));
    tm_changeSortOrderToPath(at(QStringLiteral("/Book/c.md")), QString());
    EXPECT_EQ(plist(properties).value(QStringLiteral("Notes")).toStringList().size(), 1);
    EXPECT_EQ(plist(properties).value(QStringLiteral("Pinned")).toStringList().size(), 2);
    tm_pinToTop(b);
    EXPECT_FALSE(tm_isPinned(b));
}

// -- rows -------------------------------------------------------------------------------------------------------------

namespace {

QVariantMap row(const char *name, int created, const char *custom, qlonglong pinned = notFoundIndex)
{
    const QDateTime date(QDate(2026, 1, 1).addDays(created), QTime(0, 0), Qt::UTC);
    return {{QStringLiteral("path"), QString(QStringLiteral("/b/") + QString::fromUtf8(name))},
            {QStringLiteral("creationDate"), date},
            {QStringLiteral("custom"), QString::fromLatin1(custom)},
            {QStringLiteral("pinnedSequence"), pinned}};
}

QString order(const char *parameter, bool descending)
{
    QList<QVariantMap> rows{row("b10", 3, "9000"), row("b9", 1, "0001"), row("A", 2, "0000", 0), row("a", 1, "9000")};
    sortRows(rows, QString::fromLatin1(parameter), descending);
    QStringList names;
    for (const QVariantMap &one : rows) names.append(one.value(QStringLiteral("path")).toString().mid(3));
    return names.join(u' ');
}

} // namespace

TEST_F(Properties, rowOrders)
{
    EXPECT_EQ(order("", false), QStringLiteral("A a b10 b9"));
    settings().setObject(QStringLiteral("useNumericOrder"), true);
    EXPECT_EQ(order("title", false), QStringLiteral("A a b9 b10"));
    EXPECT_EQ(order("title", true), QStringLiteral("A b10 b9 a"));
    EXPECT_EQ(order("creationDate", false), QStringLiteral("A a b9 b10"));
    EXPECT_EQ(order("creationDate", true), QStringLiteral("A b10 a b9"));
    EXPECT_EQ(order("custom", true), QStringLiteral("A b9 a b10"));
    settings().setObject(QStringLiteral("manualSortNewAtTop"), true);
    EXPECT_EQ(order("custom", false), QStringLiteral("A b9 b10 a"));
    QList<QVariantMap> level{row("c", 1, "9000"), row("b", 1, "9000"), row("a", 1, "9000")};
    sortRows(level, QStringLiteral("custom"), false);
    EXPECT_EQ(level.first().value(QStringLiteral("path")), QStringLiteral("/b/a")) << "names settle ties";
}

TEST_F(Properties, rowsOfItems)
{
    const QString path = write(note);
    EXPECT_EQ(tm_dictionaryForItemAtPath(path).value(QStringLiteral("custom")), QStringLiteral("-0001"));
    saveCustomSortOrder(at(QStringLiteral("/Book")), {}, {QStringLiteral("x.md")});
    EXPECT_EQ(tm_dictionaryForItemAtPath(path).value(QStringLiteral("custom")), QStringLiteral("9000"));
    tm_setFavorite(path);
    tm_setColorLabel(path, QStringLiteral("red"));
    const QVariantMap made = tm_dictionaryForItemAtPath(path);
    EXPECT_EQ(made.value(QStringLiteral("_TMFAV")), QStringLiteral("1"));
    EXPECT_EQ(made.value(QStringLiteral("cellColor")), QStringLiteral("red"));
    EXPECT_EQ(made.value(QStringLiteral("DueDate")).toDateTime(), farFuture());
    // What describes a book as a child stands in the file of its parent.
    tm_setColorLabel(root, QStringLiteral("blue"));
    tm_setColorLabel(at(QStringLiteral("/Book")), QStringLiteral("green"));
    EXPECT_EQ(tm_dictionaryForItemAtPath(at(QStringLiteral("/Book"))).value(QStringLiteral("cellColor")),
              QStringLiteral("blue"));
}

// -- settings of the library, recent items ----------------------------------------------------------------------------

TEST_F(Properties, locationSettings)
{
    settings().setObject(QStringLiteral("contextsEnabled"), true);
    settings().setObject(QStringLiteral("manageLinks"), true);
    tm_readLocationSpecificSettings();
    EXPECT_TRUE(settings().boolean(QStringLiteral("contextsEnabled"))) << "a missing file changes nothing";
    tm_setLocationSpecificSetting(0LL, QStringLiteral("manageLinks"));
    tm_setLocationSpecificSetting(QStringLiteral("/In"), QStringLiteral("defaultInbox"));
    tm_readLocationSpecificSettings();
    EXPECT_FALSE(settings().contains(QStringLiteral("manageLinks")));
    EXPECT_TRUE(settings().boolean(QStringLiteral("contextsEnabled")));
    EXPECT_EQ(settings().string(QStringLiteral("defaultInbox")), QStringLiteral("/In"));
}

TEST_F(Properties, recentItems)
{
    for (int i = 0; i < 25; ++i) tm_addToRecentItems(write(QStringLiteral("/n%1.md").arg(i)));
    tm_addToRecentItems(at(QStringLiteral("/n10.md")));
    tm_addToRecentItems(at(QStringLiteral("/__NewNoteTmp.md")));
    EXPECT_EQ(storedRecentItems().size(), 20);
    EXPECT_EQ(storedRecentItems().first(), QStringLiteral("/n10.md"));
    EXPECT_EQ(storedRecentItems().count(QStringLiteral("/n10.md")), 1);
    EXPECT_EQ(verifiedListOfRecentItems().size(), 9);
    QFile::remove(at(QStringLiteral("/n10.md")));
    EXPECT_FALSE(verifiedListOfRecentItems().isEmpty());
    EXPECT_EQ(storedRecentItems().size(), 19);
    EXPECT_EQ(mostRecentDocument({at(QStringLiteral("/n24.md"))}), at(QStringLiteral("/n23.md")));
}
