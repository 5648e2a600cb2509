// SPDX-License-Identifier: GPL-3.0-or-later
// Files and stores on a real disk: what a write keeps, what a failure leaves, what is never overwritten.
#include "foundation/SafeWriter.h"
#include "foundation/Collation.h"
#include "foundation/ExtendedAttributes.h"
#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/PropertyStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <atomic>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

using namespace tomelet;

namespace {

class Disk : public ::testing::Test
{
protected:
    [[nodiscard]] QString at(const QString &name) const { return m_folder.path() + u'/' + name; }
    void put(const QString &name, const QByteArray &bytes) const { ASSERT_TRUE(writeFile(at(name), bytes)); }
    [[nodiscard]] QByteArray get(const QString &name) const { return readFile(at(name)).value_or("(missing)"); }
    [[nodiscard]] QStringList names() const { return namesInFolder(m_folder.path()); }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Disk, aWriteKeepsModeAttributesAndLinks)
{
    put(QStringLiteral("a"), "old");
    ASSERT_TRUE(QFile::setPermissions(at(QStringLiteral("a")), QFile::ReadOwner | QFile::WriteOwner));
    const bool hasAttributes = setExtendedAttribute(at(QStringLiteral("a")), QStringLiteral("org.tomelet.app.x"), "v");
    ASSERT_TRUE(QFile::link(QStringLiteral("a"), at(QStringLiteral("link"))));
    put(QStringLiteral("link"), "new");
    EXPECT_TRUE(QFileInfo(at(QStringLiteral("link"))).isSymLink());
    EXPECT_EQ(get(QStringLiteral("a")), "new");
    struct stat status
    {};
    ASSERT_EQ(::stat(QFile::encodeName(at(QStringLiteral("a"))).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0600u);
    if (hasAttributes) {
        EXPECT_EQ(extendedAttribute(at(QStringLiteral("a")), QStringLiteral("org.tomelet.app.x")).value_or(""), "v");
    }
    EXPECT_EQ(names(), (QStringList{QStringLiteral("a"), QStringLiteral("link")})) << "nothing else is left behind";
}

TEST_F(Disk, aWriteThatFailsSaysWhereAndLeavesTheOld)
{
    EXPECT_TRUE(writeFile(at(QStringLiteral("none/a")), "x").message.contains(at(QStringLiteral("none/a"))));
    QDir().mkdir(at(QStringLiteral("folder")));
    EXPECT_FALSE(writeFile(at(QStringLiteral("folder")), "x"));
    EXPECT_FALSE(readFile(at(QStringLiteral("folder"))));
    EXPECT_EQ(names(), QStringList{QStringLiteral("folder")});
}

TEST_F(Disk, noReaderSeesHalfAFile)
{
    const QByteArray texts[] = {QByteArray(300000, 'a'), QByteArray(200000, 'b')};
    put(QStringLiteral("a"), texts[0]);
    std::atomic_bool stop = false;
    std::thread writer([&] {
        for (int i = 0; !stop; ++i) (void)writeFile(at(QStringLiteral("a")), texts[i % 2]);
    });
    for (int i = 0; i < 300; ++i) {
        const QByteArray seen = get(QStringLiteral("a"));
        EXPECT_TRUE(seen == texts[0] || seen == texts[1]) << seen.size();
    }
    stop = true;
    writer.join();
}

TEST_F(Disk, manyFilesAreWrittenLikeOne)
{
    QDir().mkdir(at(QStringLiteral("folder")));
    {
        FileBatch batch;
        const auto write = [&](const QString &name, const QByteArray &bytes) {
            batch.change(at(name), [bytes] { return bytes; });
        };
        for (int i = 0; i < 300; ++i) write(QStringLiteral("f%1").arg(i), QByteArray::number(i));
        write(QStringLiteral("folder"), "not over a folder");
        batch.change(at(QStringLiteral("f7")), [&] { return QByteArray(get(QStringLiteral("f7")) + ", changed"); });
        batch.change(at(QStringLiteral("f8")), [] { return std::nullopt; });
        batch.flush();
        EXPECT_EQ(get(QStringLiteral("f7")), "7, changed");
        EXPECT_EQ(get(QStringLiteral("f8")), "8");
    }
    EXPECT_EQ(get(QStringLiteral("f299")), "299");
    EXPECT_EQ(names().size(), 301) << "nothing is left beside the files";

    StoreBatch stores;
    const auto add = [&](const QString &key) {
        stores.change(at(QStringLiteral("s.plist")), [key](QVariantMap &values) {
            values.insert(key, true);
            return true;
        });
    };
    add(QStringLiteral("a"));
    add(QStringLiteral("b"));
    stores.flush();
    EXPECT_EQ(readDictionary(at(QStringLiteral("s.plist"))).keys().join(u' '), QStringLiteral("a b"));
}

TEST_F(Disk, whatOthersWriteMeanwhileIsNotLost)
{
    const QString path = at(QStringLiteral("s.plist"));
    const auto increase = [](const QString &key) {
        return [key](QVariantMap &values) { return values.insert(key, values.value(key).toLongLong() + 1), true; };
    };
    std::thread other([&] {
        StoreBatch batch;
        for (int i = 0; i < 100; ++i) batch.change(path, increase(QStringLiteral("there")));
    });
    for (int i = 0; i < 100; ++i) ASSERT_TRUE(changeDictionary(path, increase(QStringLiteral("here"))));
    other.join();
    EXPECT_EQ(readDictionary(path).value(QStringLiteral("here")), 100);
    EXPECT_EQ(readDictionary(path).value(QStringLiteral("there")), 100);

    FileBatch batch;
    put(QStringLiteral("a"), "old");
    batch.change(at(QStringLiteral("a")), [&] { return QByteArray(get(QStringLiteral("a")) + " and changed"); });
    put(QStringLiteral("a"), "new");
    batch.flush();
    EXPECT_EQ(get(QStringLiteral("a")), "new and changed");

    const auto state = fileStamp(at(QStringLiteral("a")));
    StagedFile staged(at(QStringLiteral("a")), "staged");
    put(QStringLiteral("a"), "newer");
    EXPECT_TRUE(staged.commitIfStill(state).isStale);
    EXPECT_EQ(get(QStringLiteral("a")), "newer");
}

TEST_F(Disk, aStoreOfAnotherTypeIsSetAside)
{
    const QString path = at(QStringLiteral("s.plist"));
    ASSERT_TRUE(writeStore(path, QVariantList{QStringLiteral("entry")}));
    EXPECT_TRUE(readDictionary(path).isEmpty());
    ASSERT_TRUE(
        changeDictionary(path, [](QVariantMap &values) { return values.insert(QStringLiteral("k"), 1LL), true; }));
    EXPECT_EQ(readDictionary(path).value(QStringLiteral("k")), 1LL);
    ASSERT_EQ(names().size(), 2);
    EXPECT_EQ(readStringArray(at(names().constLast())), QStringList{QStringLiteral("entry")});
    // What is read well is not set aside, and what does not change is not written.
    ASSERT_TRUE(changeDictionary(path, [](QVariantMap &values) { return values.clear(), false; }));
    EXPECT_EQ(readDictionary(path).size(), 1);
    EXPECT_EQ(names().size(), 2);
}

TEST_F(Disk, movesAndCopiesOverwriteNothing)
{
    put(QStringLiteral("a"), "a");
    put(QStringLiteral("b"), "b");
    EXPECT_FALSE(moveItem(at(QStringLiteral("a")), at(QStringLiteral("b"))));
    EXPECT_FALSE(copyItem(at(QStringLiteral("a")), at(QStringLiteral("b"))));
    EXPECT_FALSE(moveItem(at(QStringLiteral("a")), at(QStringLiteral("none/a"))));
    EXPECT_TRUE(moveItem(at(QStringLiteral("a")), at(QStringLiteral("A"))));
    EXPECT_EQ(get(QStringLiteral("A")) + get(QStringLiteral("b")), "ab");
}

TEST_F(Disk, aCopyOfAFolderIsWholeOrNotThere)
{
    QDir().mkpath(at(QStringLiteral("f/inner")));
    put(QStringLiteral("f/inner/n"), "n");
    ASSERT_TRUE(QFile::link(QStringLiteral(".."), at(QStringLiteral("f/up"))));
    const QDateTime date = QFileInfo(at(QStringLiteral("f/inner/n"))).lastModified();
    EXPECT_FALSE(copyItem(at(QStringLiteral("f")), at(QStringLiteral("f/inner/f")))) << "into itself";
    ASSERT_TRUE(copyItem(at(QStringLiteral("f")), at(QStringLiteral("g"))));
    EXPECT_EQ(get(QStringLiteral("g/inner/n")), "n");
    EXPECT_EQ(QFileInfo(at(QStringLiteral("g/inner/n"))).lastModified(), date);
    EXPECT_EQ(QFile::symLinkTarget(at(QStringLiteral("g/up"))), m_folder.path());
    // A socket cannot be copied, so the whole copy is taken back.
    ASSERT_EQ(::mkfifo(QFile::encodeName(at(QStringLiteral("f/pipe"))).constData(), 0600), 0);
    EXPECT_FALSE(copyItem(at(QStringLiteral("f")), at(QStringLiteral("h"))));
    EXPECT_EQ(names(), (QStringList{QStringLiteral("f"), QStringLiteral("g")}));
    EXPECT_TRUE(removeItem(at(QStringLiteral("f"))));
    EXPECT_EQ(get(QStringLiteral("g/inner/n")), "n");
}

TEST(Collation, equalNamesAreThoseOfTheSameLettersInAnyNormalForm)
{
    EXPECT_EQ(localizedCompare(QStringLiteral("\u00e9"), QStringLiteral("e\u0301")), 0);
    EXPECT_NE(localizedCompare(QStringLiteral("a"), QStringLiteral("A")), 0);
    EXPECT_NE(localizedCompare(QStringLiteral("a.md"), QStringLiteral("a md")), 0) << "points are not ignored";
    const LocalizedIndex index(QStringList{QStringLiteral("b"), QStringLiteral("e\u0301"), QStringLiteral("\u00e9")});
    EXPECT_EQ(index.find(QStringLiteral("\u00e9")), 2) << "the exact spelling goes first";
    EXPECT_EQ(LocalizedIndex(QStringList{QStringLiteral("e\u0301")}).find(QStringLiteral("\u00e9")), 0);
    EXPECT_FALSE(index.find(QStringLiteral("E\u0301")));
}

TEST(Collation, namesSortByTheLocaleWithDigitsAsNumbersWhereWanted)
{
    const auto sorted = [](QStringList names, bool numeric) {
        std::ranges::stable_sort(names, {}, [&](const QString &name) { return nameSortKey(name, numeric); });
        return names.join(u' ');
    };
    const QStringList names{QStringLiteral("b"),      QStringLiteral("B"), QStringLiteral("10"), QStringLiteral("9"),
                            QStringLiteral("\u00e4"), QStringLiteral("a"), QStringLiteral("z")};
    EXPECT_EQ(sorted(names, true), QString::fromUtf8("9 10 a ä B b z"));
    EXPECT_EQ(sorted(names, false), QString::fromUtf8("10 9 a ä B b z"));
}
