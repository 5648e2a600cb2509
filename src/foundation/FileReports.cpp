// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/FileReports_p.h"

namespace tomelet {

using namespace std::chrono_literals;

namespace {

/// The kernel writes both halves of a move one right after the other.
constexpr auto patienceForOtherHalf = 20ms;
/// Programs that set the old file aside make the new one at once.
constexpr auto patienceForSaving = 50ms;

} // namespace

void FileReportOutbox::changed(const std::string &path)
{
    m_entries.push_back({{FileReport::Changed, path, {}, 0}, {}});
}

quint64 FileReportOutbox::moveBegan(const std::string &from)
{
    changed(from);
    m_entries.back().due = Clock::now() + patienceForOtherHalf;
    return m_firstNumber + m_entries.size() - 1;
}

void FileReportOutbox::moveEnded(quint64 number, const std::string &from, const std::string &to, bool isFolder)
{
    const auto due = isFolder ? Clock::time_point() : Clock::now() + patienceForSaving;
    entry(number) = {{FileReport::Moved, from, to, 0}, due};
    if (!isFolder) m_waitingMoves[from] = number;
}

void FileReportOutbox::made(const std::string &path)
{
    const auto found = m_waitingMoves.find(path);
    if (found != m_waitingMoves.end()) {
        Entry &move = entry(found->second);
        const std::string target = move.report.target;
        move = {{FileReport::Changed, path, {}, 0}, {}};
        m_waitingMoves.erase(found);
        changed(target);
    }
    changed(path);
}

void FileReportOutbox::vanished()
{
    m_entries.push_back({{FileReport::Vanished, {}, {}, 0}, {}});
}

std::optional<FileReport> FileReportOutbox::take()
{
    if (m_entries.empty() || m_entries.front().due > Clock::now()) return {};
    FileReport report = std::move(m_entries.front().report);
    const auto move = m_waitingMoves.find(report.path);
    if (move != m_waitingMoves.end() && move->second == m_firstNumber) m_waitingMoves.erase(move);
    m_entries.pop_front();
    ++m_firstNumber;
    return report;
}

std::optional<FileReportOutbox::Clock::time_point> FileReportOutbox::due() const
{
    if (m_entries.empty()) return {};
    return m_entries.front().due;
}

void FileReportQueue::begin(quint64 generation)
{
    const std::lock_guard lock(m_mutex);
    m_generation = generation;
    std::erase_if(m_reports, [](const FileReport &report) { return report.kind != FileReport::Settled; });
    m_waitingChanges.clear();
    m_emptied.notify_all();
}

void FileReportQueue::stop()
{
    const std::lock_guard lock(m_mutex);
    m_stopped = true;
    m_emptied.notify_all();
}

void FileReportQueue::push(FileReport report, quint64 generation)
{
    std::unique_lock lock(m_mutex);
    if (report.kind != FileReport::Settled) {
        const auto isOver = [&] { return m_stopped || generation != m_generation; };
        m_emptied.wait(lock, [&] { return m_reports.size() < m_limit || isOver(); });
        if (isOver()) return;
        if (report.kind == FileReport::Moved) m_waitingChanges.clear();
        if (report.kind == FileReport::Changed && !m_waitingChanges.insert(report.path).second) return;
    }
    m_reports.push_back(std::move(report));
    const bool isFirst = m_reports.size() == 1;
    lock.unlock();
    m_filled.notify_one();
    if (isFirst) m_whenFilled();
}

FileReport FileReportQueue::takeFront()
{
    FileReport report = std::move(m_reports.front());
    m_reports.pop_front();
    if (report.kind == FileReport::Changed) m_waitingChanges.erase(report.path);
    if (m_reports.size() < m_limit / 2 + 1) m_emptied.notify_all();
    return report;
}

std::optional<FileReport> FileReportQueue::take()
{
    const std::lock_guard lock(m_mutex);
    if (m_reports.empty()) return {};
    return takeFront();
}

FileReport FileReportQueue::wait()
{
    std::unique_lock lock(m_mutex);
    m_filled.wait(lock, [&] { return !m_reports.empty(); });
    return takeFront();
}

} // namespace tomelet
