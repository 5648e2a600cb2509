// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/FolderWatcher_p.h"

#include <algorithm>
#include <cerrno>
#include <climits>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace tomelet {

using namespace std::chrono_literals;

namespace {

/// A file made less than this ago and then moved is a program's way of saving: its content is new as well.
constexpr auto youth = 10s;
constexpr size_t readSize = 64 << 10;

bool isBefore(const timespec &a, const timespec &b)
{
    return a.tv_sec != b.tv_sec ? a.tv_sec < b.tv_sec : a.tv_nsec < b.tv_nsec;
}

/// The clock that the kernel stamps files with.
timespec fileClockNow()
{
    timespec now;
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return now;
}

} // namespace

FolderWatcher::FolderWatcher(FileReportQueue &queue)
    : m_queue(queue)
    , m_wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    m_thread = std::thread([this] { run(); });
}

FolderWatcher::~FolderWatcher()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    wake();
    m_thread.join();
    ::close(m_wakeUp);
}

void FolderWatcher::wake()
{
    const uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_wakeUp, &one, sizeof one);
}

void FolderWatcher::present(const std::string &folder, quint64 generation)
{
    {
        const std::lock_guard lock(m_mutex);
        m_request = {folder, generation};
    }
    wake();
}

void FolderWatcher::settle(quint64 ticket)
{
    {
        const std::lock_guard lock(m_mutex);
        m_requestedTickets.push_back(ticket);
    }
    wake();
}

bool FolderWatcher::isStopped()
{
    const std::lock_guard lock(m_mutex);
    return m_stop;
}

// Folders are read one at a time and events between them, so that the kernel's queue stays short during a
// walk.
void FolderWatcher::run()
{
    while (!isStopped()) {
        takeRequests();
        scanNext();
        m_isDrained = !readEvents();
        flush();
        dropReportedDepartures();
        answerSettle();
        waitForWork();
    }
}

void FolderWatcher::takeRequests()
{
    std::optional<Request> request;
    {
        const std::lock_guard lock(m_mutex);
        request.swap(m_request);
        m_tickets.insert(m_tickets.end(), m_requestedTickets.begin(), m_requestedTickets.end());
        m_requestedTickets.clear();
    }
    if (request) begin(*request);
}

void FolderWatcher::begin(const Request &request)
{
    m_toScan.clear();
    m_departures.clear();
    m_outbox = {};
    m_folders.reset();
    m_generation = request.generation;
    if (request.folder.empty()) return;
    m_lastEmpty = fileClockNow();
    m_folders.emplace(request.folder);
    if (!m_folders->isOpen()) return m_folders.reset();
    if (m_folders->isRootInPlace()) plan(m_folders->root(), m_lastEmpty, true);
    else vanished();
}

void FolderWatcher::waitForWork()
{
    int timeout = -1;
    if (!m_toScan.empty() || (m_folders && !m_isDrained)) {
        timeout = 0;
    } else if (const auto due = m_outbox.due()) {
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(*due - FileReportOutbox::Clock::now());
        timeout = int(std::max<qint64>(0, rest.count()));
    }
    pollfd descriptors[] = {{m_wakeUp, POLLIN, 0}, {m_folders ? m_folders->descriptor() : -1, POLLIN, 0}};
    ::poll(descriptors, 2, timeout);
    uint64_t count;
    if (descriptors[0].revents != 0) [[maybe_unused]]
        const auto emptied = ::read(m_wakeUp, &count, sizeof count);
}

void FolderWatcher::answerSettle()
{
    if (!m_toScan.empty() || m_outbox.due() || (m_folders && !m_isDrained)) return;
    for (const quint64 ticket : m_tickets) m_queue.push({FileReport::Settled, {}, {}, ticket}, m_generation);
    m_tickets.clear();
}

void FolderWatcher::flush()
{
    while (auto report = m_outbox.take()) m_queue.push(std::move(*report), m_generation);
}

// One portion of events. False when there was none.
bool FolderWatcher::readEvents()
{
    if (!m_folders) return false;
    alignas(inotify_event) char buffer[readSize];
    const timespec before = fileClockNow();
    const ssize_t size = ::read(m_folders->descriptor(), buffer, sizeof buffer);
    if (size <= 0) {
        m_lastEmpty = before;
        return false;
    }
    for (ssize_t at = 0; at < size && m_folders;) {
        const auto *event = reinterpret_cast<const inotify_event *>(buffer + at);
        handle(*event);
        at += ssize_t(sizeof *event + event->len);
    }
    return true;
}

void FolderWatcher::handle(const inotify_event &event)
{
    if (event.mask & IN_Q_OVERFLOW) return overflowed();
    WatchedFolder *folder = m_folders->byWatch(event.wd);
    if (event.mask & (IN_IGNORED | IN_UNMOUNT | IN_DELETE_SELF | IN_MOVE_SELF))
        return folder ? handleFolderItself(folder, event.mask) : checkRoot();
    if (!folder || event.len == 0) return;
    const std::string name(event.name);
    const bool isFolder = event.mask & IN_ISDIR;
    if (event.mask & IN_CREATE) made(folder, name, isFolder);
    else if (event.mask & IN_MOVED_FROM) departed(folder, name, event.cookie);
    else if (event.mask & IN_MOVED_TO) arrived(folder, name, event.cookie, isFolder);
    else if (event.mask & IN_DELETE) gone(folder, name);
    else touched(folder, name, isFolder);
}

void FolderWatcher::handleFolderItself(WatchedFolder *folder, uint32_t mask)
{
    if (mask & IN_IGNORED) m_folders->watchEnded(folder);
    if (!folder->parent) {
        if (mask & IN_MOVE_SELF) checkRoot();
        else vanished();
    } else if (mask & IN_UNMOUNT) {
        plan(folder, m_lastEmpty, false);
    }
}

void FolderWatcher::made(WatchedFolder *folder, const std::string &name, bool isFolder)
{
    m_outbox.made(WatchedFolders::path(folder) + '/' + name);
    const auto known = folder->items.find(name);
    if (known != folder->items.end() && bool(known->second.folder) == isFolder) {
        // A walk came before the event; what it found in a folder did not look new to it.
        if (isFolder) plan(known->second.folder.get(), {}, false);
        return;
    }
    forget(m_folders->detach(folder, name));
    WatchedItem &item = m_folders->add(folder, name, isFolder);
    item.madeAt = FileReportOutbox::Clock::now();
    if (isFolder) plan(item.folder.get(), m_lastEmpty, false);
}

void FolderWatcher::departed(WatchedFolder *folder, const std::string &name, uint32_t cookie)
{
    const std::string from = WatchedFolders::path(folder) + '/' + name;
    WatchedItem item = m_folders->detach(folder, name);
    m_departures.push_back({cookie, from, std::move(item), m_outbox.moveBegan(from)});
}

void FolderWatcher::arrived(WatchedFolder *folder, const std::string &name, uint32_t cookie, bool isFolder)
{
    const auto found = std::find_if(m_departures.begin(), m_departures.end(),
                                    [&](const Departure &departure) { return departure.cookie == cookie; });
    if (found == m_departures.end()) return made(folder, name, isFolder);
    Departure departure = std::move(*found);
    m_departures.erase(found);
    moved(std::move(departure), folder, name, isFolder);
}

// A move onto an item that exists is how programs save: the item there got new content, and stays the item it
// is.
void FolderWatcher::moved(Departure departure, WatchedFolder *folder, const std::string &name, bool isFolder)
{
    const std::string to = WatchedFolders::path(folder) + '/' + name;
    if (folder->items.contains(name)) {
        m_outbox.changed(to);
        forget(m_folders->detach(folder, name));
        forget(std::move(departure.item));
        WatchedItem &item = m_folders->add(folder, name, isFolder);
        if (isFolder) plan(item.folder.get(), m_lastEmpty, false);
        return;
    }
    m_outbox.moveEnded(departure.report, departure.from, to, isFolder);
    const bool isYoung = departure.item.madeAt + youth > FileReportOutbox::Clock::now();
    if (isYoung && !isFolder) m_outbox.changed(to);
    if (isFolder == bool(departure.item.folder)) return m_folders->attach(folder, name, std::move(departure.item));
    // The walk had not yet come to the old place.
    WatchedItem &item = m_folders->add(folder, name, isFolder);
    if (isFolder) plan(item.folder.get(), fileClockNow(), true);
}

// A walk may have looked for the folder at its old place when it had left.
void FolderWatcher::planUnwatched(WatchedFolder *folder)
{
    if (folder->watch < 0) return plan(folder, m_lastEmpty, false);
    for (const auto &[name, item] : folder->items)
        if (item.folder) planUnwatched(item.folder.get());
}

// A temporary file without a name (O_TMPFILE) has events all the same, under its number: "#123".
static bool isNumberOfUnnamed(const std::string &name)
{
    return name.size() > 1 && name[0] == '#' && name.find_first_not_of("0123456789", 1) == std::string::npos;
}

void FolderWatcher::touched(WatchedFolder *folder, const std::string &name, bool isFolder)
{
    if (isNumberOfUnnamed(name) && !folder->items.contains(name)) return;
    m_outbox.changed(WatchedFolders::path(folder) + '/' + name);
    if (!isFolder) return;
    // A folder that could not be read may have become readable.
    const auto known = folder->items.find(name);
    if (known == folder->items.end() || !known->second.folder || known->second.folder->watch >= 0) return;
    plan(known->second.folder.get(), m_lastEmpty, false);
}

void FolderWatcher::gone(WatchedFolder *folder, const std::string &name)
{
    m_outbox.changed(WatchedFolders::path(folder) + '/' + name);
    forget(m_folders->detach(folder, name));
}

// Moves whose other half did not come went out of the presented folder.
void FolderWatcher::dropReportedDepartures()
{
    while (!m_departures.empty() && m_outbox.isOut(m_departures.front().report)) {
        forget(std::move(m_departures.front().item));
        m_departures.erase(m_departures.begin());
    }
}

// Events were lost: everything is looked at again. Folders that are to be told whole go on waiting for it.
void FolderWatcher::overflowed()
{
    timespec since = m_lastEmpty;
    std::erase_if(m_toScan, [&](const Scan &scan) {
        if (scan.isFirstWalk || scan.since.tv_sec == 0) return false;
        if (isBefore(scan.since, since)) since = scan.since;
        return true;
    });
    plan(m_folders->root(), since, false);
}

void FolderWatcher::checkRoot()
{
    if (!m_folders->isRootInPlace()) vanished();
}

void FolderWatcher::vanished()
{
    m_toScan.clear();
    m_departures.clear();
    m_folders.reset();
    m_outbox.vanished();
}

} // namespace tomelet
