// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/FilePresenter.h"

#include "foundation/FolderWatcher_p.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

using namespace tomelet;
using namespace std::string_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
namespace fs = std::filesystem;

namespace {

void write(const fs::path &path, const std::string &text = "text")
{
    std::ofstream(path) << text;
}

std::string numbered(const std::string &name, int number)
{
    return name + std::to_string(number);
}

// A presented folder with two books in it; what is reported is kept as "~ path", "from > to" and "vanished".
class FilePresenterTest : public testing::Test
{
protected:
    FilePresenterTest()
    {
        fs::create_directories(m_root / "a/deep");
        fs::create_directories(m_root / "b");
        fs::create_directories(m_outside);
        write(m_root / "a/old.md");
        write(m_root / "a/deep/leaf.md");
        present();
    }

    ~FilePresenterTest() override { fs::remove_all(m_base); }

    void present()
    {
        m_presenter->present(QString::fromStdString(m_root.string() + "/"));
        settled();
    }

    // Without the changes of a path that was told before: how many are told hangs on when the receiver looks.
    std::vector<std::string> settled()
    {
        m_presenter->settle();
        std::set<std::string> seen;
        std::erase_if(m_events, [&](const std::string &event) { return !seen.insert(event).second; });
        return std::exchange(m_events, {});
    }

    std::string relative(const QString &path) const
    {
        EXPECT_TRUE(path.startsWith(QString::fromStdString(m_root.string() + "/")));
        return fs::path(QFile::encodeName(path).toStdString()).lexically_relative(m_root).string();
    }

    QTemporaryDir m_temporary;
    const fs::path m_base = m_temporary.path().toStdString();
    const fs::path m_root = m_base / "parent/root";
    const fs::path m_outside = m_base / "outside";
    std::vector<std::string> m_events;
    std::unique_ptr<FilePresenter> m_presenter = makeFilePresenter(
        {[this](const QString &path) { m_events.push_back("~ " + relative(path)); },
         [this](const QString &from, const QString &to) { m_events.push_back(relative(from) + " > " + relative(to)); },
         [this] { m_events.push_back("vanished"); }});
};

} // namespace

TEST_F(FilePresenterTest, changesAtAnyDepth)
{
    EXPECT_THAT(settled(), IsEmpty());
    write(m_root / "new \xFC\n.md");
    write(m_root / "a/deep/leaf.md", "changed");
    fs::permissions(m_root / "a/old.md", fs::perms::owner_read);
    fs::remove(m_root / "a/old.md");
    fs::remove_all(m_root / "a/deep");
    // The byte that is no UTF-8 cannot be told, the rest of the name can.
    EXPECT_THAT(settled(), ElementsAre("~ new \xEF\xBF\xBD\n.md", "~ a/deep/leaf.md", "~ a/old.md", "~ a/deep"));
}

TEST_F(FilePresenterTest, nothingIsLostInNewFolders)
{
    for (int i = 0; i < 30; ++i) {
        const std::string folder = numbered("n", i) + "/x/y/z";
        fs::create_directories(m_root / folder);
        write(m_root / folder / "file.md");
    }
    fs::create_directories(m_outside / "in/deep");
    write(m_outside / "in/deep/file.md");
    fs::rename(m_outside / "in", m_root / "b/in");
    const auto events = settled();
    for (int i = 0; i < 30; ++i)
        for (const char *below : {"", "/x", "/x/y", "/x/y/z", "/x/y/z/file.md"})
            EXPECT_THAT(events, Contains(numbered("~ n", i) + below));
    for (const char *path : {"b/in", "b/in/deep", "b/in/deep/file.md"}) EXPECT_THAT(events, Contains("~ "s + path));
    write(m_root / "b/in/deep/file.md", "later");
    EXPECT_THAT(settled(), ElementsAre("~ b/in/deep/file.md"));
}

TEST_F(FilePresenterTest, movesWithinInAndOut)
{
    fs::rename(m_root / "a/old.md", m_root / "b/new.md");
    fs::rename(m_root / "a", m_root / "b/moved");
    write(m_root / "b/moved/deep/leaf.md", "changed");
    EXPECT_THAT(settled(), ElementsAre("a/old.md > b/new.md", "a > b/moved", "~ b/moved/deep/leaf.md"));

    fs::rename(m_root / "b/moved", m_outside / "moved");
    EXPECT_THAT(settled(), ElementsAre("~ b/moved"));
    write(m_outside / "moved/deep/leaf.md", "outside");
    EXPECT_THAT(settled(), IsEmpty());
    fs::create_directory(m_root / "b/moved");
    write(m_root / "b/moved/another.md");
    EXPECT_THAT(settled(), Contains("~ b/moved/another.md"));
}

// What comes right behind a move must not be told before it.
TEST_F(FilePresenterTest, swappedNamesStayInOrder)
{
    write(m_root / "b/1");
    write(m_root / "b/2");
    settled();
    fs::rename(m_root / "b/1", m_root / "b/3");
    fs::rename(m_root / "b/2", m_root / "b/1");
    fs::rename(m_root / "b/3", m_root / "b/2");
    auto events = settled();
    // The files are young, so that each move is followed by a change of the target.
    std::erase_if(events, [](const std::string &event) { return event.starts_with("~"); });
    EXPECT_THAT(events, ElementsAre("b/1 > b/3", "b/2 > b/1", "b/3 > b/2"));
}

TEST_F(FilePresenterTest, waysOfSaving)
{
    write(m_root / "a/.old.md.tmp", "new");
    fs::rename(m_root / "a/.old.md.tmp", m_root / "a/old.md");
    auto events = settled();
    EXPECT_EQ(events.back(), "~ a/old.md") << "written beside and renamed over";
    EXPECT_THAT(events, Not(Contains("a/.old.md.tmp > a/old.md")));

    fs::rename(m_root / "a/old.md", m_root / "a/old.md~");
    write(m_root / "a/old.md", "newer");
    events = settled();
    EXPECT_THAT(events, Contains("~ a/old.md")) << "old file set aside first";
    EXPECT_THAT(events, Contains("~ a/old.md~"));
    EXPECT_THAT(events, Not(Contains("a/old.md > a/old.md~")));

    write(m_root / "a/tmp");
    fs::rename(m_root / "a/tmp", m_root / "a/fresh.md");
    EXPECT_THAT(settled(), ElementsAre("~ a/tmp", "a/tmp > a/fresh.md", "~ a/fresh.md"));

    const int unnamed = ::open((m_root / "a").c_str(), O_TMPFILE | O_WRONLY, 0600);
    ASSERT_GE(unnamed, 0);
    EXPECT_EQ(::write(unnamed, "new", 3), 3);
    EXPECT_EQ(::linkat(AT_FDCWD, ("/proc/self/fd/" + std::to_string(unnamed)).c_str(), AT_FDCWD,
                       (m_root / "a/named.md").c_str(), AT_SYMLINK_FOLLOW),
              0);
    ::close(unnamed);
    write(m_root / "a/#12");
    EXPECT_THAT(settled(), testing::UnorderedElementsAre("~ a/named.md", "~ a/#12")) << "a name only in the end";

    fs::rename(m_root / "a", m_root / "c");
    fs::create_directory(m_root / "a");
    EXPECT_THAT(settled(), ElementsAre("a > c", "~ a")) << "a folder is no document";
}

// Root reads every folder, so the test runs as nobody for a while; the folders are nobody's then.
class AsNobody
{
public:
    explicit AsNobody(const fs::path &folder)
        : m_wasRoot(geteuid() == 0)
    {
        if (!m_wasRoot) return;
        EXPECT_EQ(chown(folder.c_str(), nobody, nobody), 0);
        for (const auto &entry : fs::recursive_directory_iterator(folder))
            EXPECT_EQ(chown(entry.path().c_str(), nobody, nobody), 0);
        EXPECT_EQ(seteuid(nobody), 0);
    }
    ~AsNobody() { EXPECT_TRUE(!m_wasRoot || seteuid(0) == 0); }

private:
    static constexpr uid_t nobody = 65534;
    bool m_wasRoot;
};

TEST_F(FilePresenterTest, unreadableFoldersAreReadLater)
{
    fs::create_directory(m_root / "locked", m_root);
    const AsNobody reduced(m_base);
    fs::permissions(m_root / "locked", fs::perms::none);
    present();
    write(m_root / "a/old.md", "changed");
    EXPECT_THAT(settled(), Contains("~ a/old.md"));
    fs::permissions(m_root / "locked", fs::perms::owner_all);
    settled();
    write(m_root / "locked/file.md");
    EXPECT_THAT(settled(), ElementsAre("~ locked/file.md"));
}

TEST_F(FilePresenterTest, linksAreItemsAndNotFollowed)
{
    fs::create_directory_symlink(m_root, m_root / "a/loop");
    fs::create_directory_symlink(m_outside, m_root / "b/link");
    EXPECT_THAT(settled(), ElementsAre("~ a/loop", "~ b/link"));
    write(m_outside / "file.md");
    write(m_root / "b/file.md");
    EXPECT_THAT(settled(), ElementsAre("~ b/file.md"));

    fs::create_directory_symlink(m_root, m_outside / "root");
    std::vector<std::string> seen;
    const auto through = makeFilePresenter({[&](const QString &path) { seen.push_back(path.toStdString()); }, {}, {}});
    through->present(QString::fromStdString((m_outside / "root").string()));
    through->settle();
    seen.clear();
    write(m_root / "a/old.md", "changed");
    through->settle();
    EXPECT_THAT(seen, Contains((m_outside / "root/a/old.md").string()));
}

TEST_F(FilePresenterTest, aBurstArrivesWholeAndInOrder)
{
    std::vector<std::string> wanted;
    for (int i = 0; i < 10000; ++i) {
        const std::string name = numbered("a/", i) + ".md";
        write(m_root / name);
        wanted.push_back("~ " + name);
    }
    EXPECT_EQ(settled(), wanted);
}

// A receiver that does nothing but look where it is told to look ends up with what is on disk, whatever
// happens.
TEST_F(FilePresenterTest, aMirrorStaysTrue)
{
    std::set<std::string> mirror;
    const auto forgetBelow = [&](const std::string &path) {
        std::erase_if(mirror, [&](const std::string &known) { return known == path || known.starts_with(path + "/"); });
    };
    const auto look = [&](const std::string &path) {
        if (fs::exists(path)) mirror.insert(path);
        else forgetBelow(path);
    };
    const auto lookBelow = [&](const std::string &path) {
        std::error_code gone;
        for (fs::recursive_directory_iterator it(path, gone), end; it != end && !gone; it.increment(gone))
            mirror.insert(it->path().string());
    };
    const auto presenter = makeFilePresenter({[&](const QString &path) { look(path.toStdString()); },
                                              [&](const QString &from, const QString &to) {
                                                  forgetBelow(from.toStdString());
                                                  look(from.toStdString());
                                                  look(to.toStdString());
                                                  lookBelow(to.toStdString());
                                              },
                                              {}});
    presenter->present(QString::fromStdString(m_root.string()));
    presenter->settle();
    lookBelow(m_root.string());

    std::thread other([this] {
        std::mt19937 random(7);
        const auto pick = [&](int count) { return int(random() % unsigned(count)); };
        const auto path = [&] {
            fs::path result = pick(12) == 0 ? m_outside : m_root;
            for (int depth = 1 + pick(3); depth > 0; --depth) result /= numbered("n", pick(4));
            return result;
        };
        std::error_code ignored;
        for (int i = 0; i < 4000; ++i) {
            const fs::path at = path();
            switch (pick(5)) {
            case 0: fs::remove_all(at, ignored); break;
            case 1: write(at); break;
            case 2: fs::create_directories(at, ignored); break;
            default: fs::rename(at, path(), ignored);
            }
        }
    });
    for (int i = 0; i < 5; ++i) presenter->settle();
    other.join();
    presenter->settle();
    std::set<std::string> onDisk;
    for (const auto &entry : fs::recursive_directory_iterator(m_root)) onDisk.insert(entry.path().string());
    EXPECT_EQ(mirror, onDisk);
}

TEST_F(FilePresenterTest, theRootVanishes)
{
    fs::rename(m_base / "parent", m_base / "elsewhere");
    EXPECT_THAT(settled(), ElementsAre("vanished")) << "a folder above it moved";
    fs::rename(m_base / "elsewhere", m_base / "parent");
    present();
    fs::remove_all(m_root);
    EXPECT_EQ(settled().back(), "vanished");
    m_presenter->present(QString::fromStdString(m_root.string()));
    EXPECT_THAT(settled(), ElementsAre("vanished")) << "it was never there";
}

TEST_F(FilePresenterTest, followsOneFolderAtATime)
{
    write(m_root / "a/old.md", "unheard");
    m_presenter->present(QString::fromStdString((m_root / "b").string()));
    write(m_root / "a/old.md", "unheard");
    write(m_root / "b/heard.md");
    settled();
    m_presenter->present({});
    write(m_root / "b/heard.md", "no more");
    EXPECT_THAT(settled(), IsEmpty());
}

TEST_F(FilePresenterTest, arrivesThroughTheEventLoop)
{
    int count = -1000;
    char name[] = "test";
    char *arguments[] = {name};
    int argumentCount = 1;
    const QCoreApplication application(argumentCount, arguments);
    std::unique_ptr<FilePresenter> own;
    own = makeFilePresenter({[&](const QString &) {
                                 // A receiver may end the presenter while it is called.
                                 if (++count == 2) own.reset();
                             },
                             {},
                             {}});
    own->present(QString::fromStdString(m_root.string()));
    own->settle();
    count = 0;
    for (const char *path : {"b/1", "b/2", "b/3"}) write(m_root / path);
    for (QDeadlineTimer deadline(20000); own && !deadline.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 100);
    EXPECT_EQ(count, 2);
}

// With room for a few reports only, the thread stops reading and the kernel drops events.
TEST(FolderWatcher, findsWhatALostEventWouldHaveTold)
{
    QTemporaryDir temporary;
    const fs::path root = temporary.path().toStdString();
    for (const char *folder : {"kept", "deleted", "moved/deep"}) fs::create_directories(root / folder);
    for (const char *file : {"kept/same", "kept/gone", "kept/written", "deleted/x", "moved/deep/x"}) write(root / file);

    // Files made within the present tick of the kernel's clock would count as changed.
    timespec start, now;
    clock_gettime(CLOCK_REALTIME, &start);
    do clock_gettime(CLOCK_REALTIME_COARSE, &now);
    while (now.tv_sec * 1000000000 + now.tv_nsec < start.tv_sec * 1000000000 + start.tv_nsec);

    std::vector<std::string> events;
    FileReportQueue queue([] {}, 10);
    FolderWatcher watcher(queue);
    const auto settle = [&](quint64 ticket) {
        watcher.settle(ticket);
        events.clear();
        for (FileReport report = queue.wait(); report.kind != FileReport::Settled; report = queue.wait())
            events.push_back(fs::path(report.path).lexically_relative(root).string());
    };
    queue.begin(1);
    watcher.present(root.string(), 1);
    settle(1);
    for (int i = 0; i < 20000; ++i) {
        const fs::path busy = root / numbered("busy", i % 20);
        i % 40 < 20 ? write(busy) : void(fs::remove(busy));
    }
    fs::remove(root / "kept/gone");
    write(root / "kept/written", "later");
    write(root / "kept/new");
    fs::remove_all(root / "deleted");
    fs::rename(root / "moved", root / "kept/moved");
    settle(2);
    for (const char *path :
         {"kept/gone", "kept/written", "kept/new", "deleted", "moved", "kept/moved", "kept/moved/deep/x"})
        EXPECT_THAT(events, Contains(path));
    EXPECT_THAT(events, Not(Contains("kept/same")));
    write(root / "kept/moved/deep/x", "watched again");
    settle(3);
    // Making it longer and closing it are two events, which may arrive apart.
    EXPECT_THAT(events, testing::AllOf(Not(IsEmpty()), testing::Each("kept/moved/deep/x")));
}

TEST(FileReportQueue, mergesWhatTheReceiverWillSeeAnyway)
{
    FileReportQueue queue([] {});
    queue.begin(1);
    for (const char *path : {"a", "b", "a"}) queue.push({FileReport::Changed, path, {}, 0}, 1);
    queue.push({FileReport::Moved, "a", "c", 0}, 1);
    for (const char *path : {"a", "a"}) queue.push({FileReport::Changed, path, {}, 0}, 1);
    queue.push({FileReport::Changed, "of another folder", {}, 0}, 2);
    std::string order;
    while (const auto report = queue.take()) order += report->path + report->target + ' ';
    EXPECT_EQ(order, "a b ac a ");
}
