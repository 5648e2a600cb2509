// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/SafeWriter.h"

#include "foundation/ExtendedAttributes.h"
#include "foundation/Log.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tomelet {

// A file that has no name yet, or a hidden one; what was not committed disappears with it.
class TemporaryFile
{
public:
    explicit TemporaryFile(const QByteArray &folder)
        : m_folder(folder)
    {
        m_descriptor = ::open(folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
        if (m_descriptor >= 0) return;
        makeNamed();
    }
    ~TemporaryFile()
    {
        if (m_descriptor >= 0) ::close(m_descriptor);
        if (!m_name.isEmpty()) ::unlink(m_name.constData());
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;

    [[nodiscard]] int descriptor() const { return m_descriptor; }

    bool write(QByteArrayView bytes) const
    {
        while (!bytes.isEmpty()) {
            const ssize_t written = ::write(m_descriptor, bytes.data(), static_cast<size_t>(bytes.size()));
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) return false;
            bytes = bytes.sliced(written);
        }
        return true;
    }

    bool renameOver(const QByteArray &target)
    {
        if (m_name.isEmpty() && !giveName()) return false;
        if (::rename(m_name.constData(), target.constData()) != 0) return false;
        m_name.clear();
        return true;
    }

private:
    void makeNamed()
    {
        m_name = m_folder + "/.tomelet-XXXXXX";
        m_descriptor = ::mkostemp(m_name.data(), O_CLOEXEC);
        if (m_descriptor < 0) {
            m_name.clear();
            return;
        }
        const mode_t mask = ::umask(0);
        ::umask(mask);
        ::fchmod(m_descriptor, 0666 & ~mask);
    }

    // A nameless file can be linked to a free name only, so it takes a hidden one for the blink of the rename.
    bool giveName()
    {
        const QByteArray source = "/proc/self/fd/" + QByteArray::number(m_descriptor);
        for (int attempt = 0; attempt < 100; ++attempt) {
            const QByteArray name = m_folder + "/.tomelet-" + QByteArray::number(::getpid()) + '-' +
                                    QByteArray::number(quintptr(this), 36) + QByteArray::number(attempt);
            if (::linkat(AT_FDCWD, source.constData(), AT_FDCWD, name.constData(), AT_SYMLINK_FOLLOW) == 0) {
                m_name = name;
                return true;
            }
            if (errno != EEXIST) return false;
        }
        return false;
    }

    QByteArray m_folder;
    QByteArray m_name;
    int m_descriptor = -1;
};

namespace {

// The file itself behind a symbolic link.
QByteArray targetOf(const QString &path)
{
    const QString resolved = QFileInfo(path).isSymLink() ? QFileInfo(path).canonicalFilePath() : path;
    return QFile::encodeName(resolved.isEmpty() ? path : resolved);
}

QByteArray folderOf(const QByteArray &target)
{
    return target.left(std::max<qsizetype>(1, target.lastIndexOf('/')));
}

WriteResult failure(const QString &path)
{
    const int code = errno;
    return {false, QStringLiteral("%1 could not be written: %2").arg(path, QString::fromLocal8Bit(::strerror(code)))};
}

void takeOver(const QByteArray &target, int descriptor)
{
    struct stat old
    {};
    if (::stat(target.constData(), &old) != 0) return;
    // The owner goes first: changing it clears bits of the mode. Only root may, and nobody else needs to.
    if (old.st_uid != ::geteuid() || old.st_gid != ::getegid())
        if (::fchown(descriptor, old.st_uid, old.st_gid) != 0) errno = 0;
    ::fchmod(descriptor, old.st_mode & 07777);
    copyExtendedAttributes(target, descriptor);
}

// Between the look at a file and its replacement comes no other replacement, of this program's threads or of another
// run of it.
class ReplacementLock
{
public:
    explicit ReplacementLock(const QByteArray &folder)
        : m_lock(mutex())
        , m_folder(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        // A program that was halted at the wrong moment stops nobody for good.
        for (int tries = 0; tries < 100 && ::flock(m_folder, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK; ++tries)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ~ReplacementLock()
    {
        if (m_folder >= 0) ::close(m_folder);
    }
    ReplacementLock(const ReplacementLock &) = delete;
    ReplacementLock &operator=(const ReplacementLock &) = delete;

private:
    static std::mutex &mutex()
    {
        static std::mutex one;
        return one;
    }
    std::lock_guard<std::mutex> m_lock;
    int m_folder;
};

void flushFolder(const QByteArray &folder)
{
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace

// -- one file ---------------------------------------------------------------------------------------------------------

StagedFile::StagedFile(const QString &path, QByteArrayView bytes)
    : m_path(path)
    , m_target(targetOf(path))
    , m_file(std::make_unique<TemporaryFile>(folderOf(m_target)))
    , m_staged{true, {}}
{
    if (m_file->descriptor() < 0 || !m_file->write(bytes)) {
        m_staged = failure(path);
        return;
    }
    takeOver(m_target, m_file->descriptor());
    if (::fsync(m_file->descriptor()) != 0) m_staged = failure(path);
}

StagedFile::~StagedFile() = default;

WriteResult StagedFile::commit()
{
    if (!m_staged) return m_staged;
    const ReplacementLock lock(folderOf(m_target));
    return m_file->renameOver(m_target) ? WriteResult{true, {}} : failure(m_path);
}

WriteResult StagedFile::commitIfStill(const std::optional<FileStamp> &state)
{
    if (!m_staged) return m_staged;
    const ReplacementLock lock(folderOf(m_target));
    if (fileStamp(m_path) != state) return {false, QStringLiteral("%1 was changed elsewhere").arg(m_path), true};
    return m_file->renameOver(m_target) ? WriteResult{true, {}} : failure(m_path);
}

void StagedFile::flushName() const
{
    flushFolder(folderOf(m_target));
}

WriteResult writeFile(const QString &path, QByteArrayView bytes)
{
    StagedFile file(path, bytes);
    const WriteResult written = file.commit();
    if (written) file.flushName();
    return written;
}

std::optional<FileStamp> fileStamp(const QString &path)
{
    struct stat found
    {};
    if (::stat(QFile::encodeName(path).constData(), &found) != 0) return std::nullopt;
    const auto nanoseconds = [](const timespec &time) { return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec; };
    return FileStamp{found.st_ino, found.st_size, nanoseconds(found.st_mtim), nanoseconds(found.st_ctim)};
}

// Some file systems tell another state at each look: there the last try goes through.
static constexpr int tries = 50;

WriteResult changeFile(const QString &path, const FileChange &change)
{
    for (int left = tries; left > 0; --left) {
        const auto state = fileStamp(path);
        const auto bytes = change();
        if (!bytes) return {true, {}};
        StagedFile file(path, *bytes);
        const WriteResult written = left > 1 ? file.commitIfStill(state) : file.commit();
        if (written.isStale) continue;
        if (written) file.flushName();
        return written;
    }
    return {};
}

// -- many files -------------------------------------------------------------------------------------------------------

// Each waiting file holds a descriptor while it is flushed.
static constexpr qsizetype filesAtOnce = 256;
static constexpr size_t manyFiles = 8;

void FileBatch::change(const QString &path, FileChange change)
{
    if (m_files.size() >= filesAtOnce || m_paths.contains(path)) flush();
    const auto state = fileStamp(path);
    auto bytes = change();
    if (!bytes) return;
    m_files.append({path, std::move(change), state, std::move(*bytes)});
    m_paths.insert(path);
}

struct FileBatch::Written
{
    const Waiting *waiting;
    QByteArray target;
    std::unique_ptr<TemporaryFile> file;

    // False: it was written by somebody else meanwhile, or could not be.
    [[nodiscard]] bool replaceTarget() const
    {
        const ReplacementLock lock(folderOf(target));
        return fileStamp(waiting->path) == waiting->state && file->renameOver(target);
    }
};

// Each file flushed by itself makes the disk wait anew; a call for all that waits to be written makes it wait once.
bool FileBatch::flushDisksOf(const std::vector<Written> &files)
{
    std::set<dev_t> flushed;
    for (const Written &entry : files) {
        struct stat status
        {};
        if (::fstat(entry.file->descriptor(), &status) != 0) return false;
        if (flushed.insert(status.st_dev).second && ::syncfs(entry.file->descriptor()) != 0) return false;
    }
    return true;
}

std::vector<FileBatch::Written> FileBatch::writeWaiting() const
{
    std::vector<Written> written;
    for (const Waiting &waiting : m_files) {
        const QByteArray target = targetOf(waiting.path);
        auto file = std::make_unique<TemporaryFile>(folderOf(target));
        if (file->descriptor() < 0 || !file->write(waiting.bytes)) {
            logWarning(failure(waiting.path).message);
            continue;
        }
        takeOver(target, file->descriptor());
        written.push_back({&waiting, target, std::move(file)});
    }
    return written;
}

void FileBatch::flush()
{
    const std::vector<Written> written = writeWaiting();
    const bool together = written.size() >= manyFiles && flushDisksOf(written);
    QSet<QByteArray> folders;
    for (const Written &entry : written) {
        const bool isOnDisk = together || ::fsync(entry.file->descriptor()) == 0;
        if (isOnDisk && entry.replaceTarget()) {
            folders.insert(folderOf(entry.target));
        } else if (const WriteResult alone = changeFile(entry.waiting->path, entry.waiting->change); !alone) {
            logWarning(alone.message);
        }
    }
    if (!together || !flushDisksOf(written))
        for (const QByteArray &folder : folders) flushFolder(folder);
    m_files.clear();
    m_paths.clear();
}

// To its end, which may have moved since its size was told.
static std::optional<QByteArray> bytesOf(int descriptor)
{
    struct stat status
    {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    QByteArray bytes(qsizetype(status.st_size) + 1, Qt::Uninitialized);
    qsizetype end = 0;
    while (true) {
        const ssize_t count = ::read(descriptor, bytes.data() + end, size_t(bytes.size() - end));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        end += count;
        if (end == bytes.size()) bytes.resize(2 * end);
    }
    bytes.truncate(end);
    return bytes;
}

// Lists and searches read thousands of small files. Without O_NONBLOCK a pipe would keep them waiting.
std::optional<QByteArray> readFile(const QString &path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return std::nullopt;
    auto bytes = bytesOf(descriptor);
    ::close(descriptor);
    return bytes;
}

bool setAside(const QString &path)
{
    const QString stamp = QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd'T'hhmmsszzz"));
    const QString suffix = QFileInfo(path).suffix();
    const QString aside = path + QStringLiteral(".unreadable-") + stamp + (suffix.isEmpty() ? suffix : u'.' + suffix);
    if (!QFile::rename(path, aside)) return false;
    logWarning(QStringLiteral("%1 could not be read and was set aside as %2").arg(path, aside));
    return true;
}

} // namespace tomelet
