// SPDX-License-Identifier: GPL-3.0-or-later
// The watching thread: reads inotify's events, walks folders, and fills the queue of reports.
#pragma once

#include "foundation/FileReports_p.h"
#include "foundation/WatchedFolders_p.h"

#include <ctime>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

struct inotify_event;

namespace tomelet {

class FolderWatcher
{
public:
    /// The thread runs from here to the destructor.
    explicit FolderWatcher(FileReportQueue &queue);
    ~FolderWatcher();
    FolderWatcher(const FolderWatcher &) = delete;
    FolderWatcher &operator=(const FolderWatcher &) = delete;

    /// From any thread: follows this folder and drops the one before; "" follows none.
    void present(const std::string &folder, quint64 generation);
    /// From any thread: pushes a Settled report with this ticket when all is walked, read and reported.
    void settle(quint64 ticket);

private:
    /// A folder that is to be read. In the first walk what changed since the walk began is reported; later
    /// everything that was not known, everything that changed since then, and everything that is gone.
    struct Scan
    {
        WatchedFolder *folder;
        timespec since;
        bool isFirstWalk;
    };
    /// The first half of a move, kept until its report goes out.
    struct Departure
    {
        uint32_t cookie;
        std::string from;
        WatchedItem item;
        quint64 report;
    };
    struct Request
    {
        std::string folder;
        quint64 generation;
    };

    void run();
    void wake();
    bool isStopped();
    void takeRequests();
    void begin(const Request &request);
    void waitForWork();
    void answerSettle();
    void flush();

    bool readEvents();
    void handle(const inotify_event &event);
    void handleFolderItself(WatchedFolder *folder, uint32_t mask);
    void made(WatchedFolder *folder, const std::string &name, bool isFolder);
    void departed(WatchedFolder *folder, const std::string &name, uint32_t cookie);
    void arrived(WatchedFolder *folder, const std::string &name, uint32_t cookie, bool isFolder);
    void moved(Departure departure, WatchedFolder *folder, const std::string &name, bool isFolder);
    void touched(WatchedFolder *folder, const std::string &name, bool isFolder);
    void gone(WatchedFolder *folder, const std::string &name);
    void planUnwatched(WatchedFolder *folder);
    void dropReportedDepartures();
    void overflowed();
    void checkRoot();
    void vanished();

    void plan(WatchedFolder *folder, timespec since, bool isFirstWalk);
    void scanNext();
    void scan(const Scan &scan);
    void found(const Scan &scan, int directory, const std::string &folderPath, const std::string &name, bool isFolder);
    void forgetMissing(WatchedFolder *folder, const std::string &folderPath, const std::vector<std::string> &seen);
    void forget(WatchedItem item);

    FileReportQueue &m_queue;
    FileReportOutbox m_outbox;
    std::optional<WatchedFolders> m_folders;
    std::deque<Scan> m_toScan;
    std::vector<Departure> m_departures;
    timespec m_lastEmpty = {}; // all that happened before has been read
    bool m_isDrained = false;
    quint64 m_generation = 0;
    std::vector<quint64> m_tickets;

    std::mutex m_mutex; // guards what other threads ask for
    std::optional<Request> m_request;
    std::vector<quint64> m_requestedTickets;
    bool m_stop = false;
    int m_wakeUp = -1;
    std::thread m_thread;
};

} // namespace tomelet
