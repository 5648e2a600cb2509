// SPDX-License-Identifier: GPL-3.0-or-later
// The way of a file event from the watching thread to the receiver: an outbox that settles what belongs
// together, and a bounded queue between the threads.
#pragma once

#include <QString>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>

namespace tomelet {

/// One event. Paths are the bytes of the file system.
struct FileReport
{
    enum Kind { Changed, Moved, Vanished, Settled };
    Kind kind = Changed;
    std::string path;
    std::string target;       // Moved: the new path
    quint64 settleTicket = 0; // Settled: which call of settle() is answered
};

/// Holds reports back, in order, until nothing that follows can change their meaning. Used by one thread.
class FileReportOutbox
{
public:
    using Clock = std::chrono::steady_clock;

    void changed(const std::string &path);
    /// A move began: it is reported as a change of the path unless moveEnded follows within a moment. Gives
    /// the number that moveEnded takes.
    quint64 moveBegan(const std::string &from);
    void moveEnded(quint64 number, const std::string &from, const std::string &to, bool isFolder);
    /// Whether the report with that number was taken.
    bool isOut(quint64 number) const { return number < m_firstNumber; }
    /// An item was made at the path. Where a move away from it still waits, a program set the old file aside
    /// to save under its name: that is a change of both and no move.
    void made(const std::string &path);
    void vanished();

    /// The next report that may go out, in order.
    std::optional<FileReport> take();
    /// When take() will give something; nothing for an empty outbox.
    std::optional<Clock::time_point> due() const;

private:
    struct Entry
    {
        FileReport report;
        Clock::time_point due;
    };
    Entry &entry(quint64 number) { return m_entries[number - m_firstNumber]; }

    std::deque<Entry> m_entries;
    quint64 m_firstNumber = 0;
    std::unordered_map<std::string, quint64> m_waitingMoves; // by the path moved from
};

/// The queue between the two threads. It holds a limited number of reports: the pushing thread waits, the
/// kernel's queue then overflows, and a new look at the folders makes good what was lost.
class FileReportQueue
{
public:
    /// `whenFilled` is called by the pushing thread when the first report comes into the empty queue.
    explicit FileReportQueue(std::function<void()> whenFilled, size_t limit = 1 << 16)
        : m_limit(limit)
        , m_whenFilled(std::move(whenFilled))
    {}

    /// Drops all events and takes only those of the new generation from now on.
    void begin(quint64 generation);
    /// Ends all waiting in push().
    void stop();
    /// A change that is already waiting, with no move behind it, is not added again: the receiver will look
    /// later than both happened.
    void push(FileReport report, quint64 generation);
    std::optional<FileReport> take();
    /// Waits for a report.
    FileReport wait();

private:
    FileReport takeFront();

    std::mutex m_mutex;
    std::condition_variable m_filled, m_emptied;
    std::deque<FileReport> m_reports;
    std::set<std::string> m_waitingChanges; // those behind the last move
    quint64 m_generation = 0;
    bool m_stopped = false;
    size_t m_limit;
    std::function<void()> m_whenFilled;
};

} // namespace tomelet
