// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/FilePresenter.h"

#include "foundation/FileReports_p.h"
#include "foundation/FolderWatcher_p.h"

#include <QFile>
#include <QObject>
#include <QPointer>

namespace tomelet {

namespace {

/// Reports delivered before the event loop gets its turn again, so that a burst does not freeze the windows.
constexpr int reportsPerTurn = 200;

std::string systemPath(const QString &path)
{
    QString clean = path;
    while (clean.size() > 1 && clean.endsWith(u'/')) clean.chop(1);
    return QFile::encodeName(clean).toStdString();
}

QString pathFromSystem(const std::string &path)
{
    return QFile::decodeName(path.c_str());
}

class InotifyPresenter final : public QObject, public FilePresenter
{
public:
    explicit InotifyPresenter(FileEvents events)
        : m_events(std::make_shared<const FileEvents>(std::move(events)))
        , m_queue([this] { deliverSoon(); })
        , m_watcher(m_queue)
    {}

    ~InotifyPresenter() override { m_queue.stop(); }

    void present(const QString &folder) override
    {
        ++m_generation;
        m_queue.begin(m_generation);
        m_watcher.present(systemPath(folder), m_generation);
    }

    void settle() override
    {
        const quint64 ticket = ++m_lastTicket;
        m_watcher.settle(ticket);
        const QPointer<InotifyPresenter> alive(this);
        while (alive && m_settledTicket < ticket) deliver(m_queue.wait());
    }

private:
    void deliverSoon()
    {
        QMetaObject::invokeMethod(
            this, [this] { deliverPortion(); }, Qt::QueuedConnection);
    }

    void deliverPortion()
    {
        const QPointer<InotifyPresenter> alive(this);
        for (int i = 0; i < reportsPerTurn; ++i) {
            const std::optional<FileReport> report = m_queue.take();
            if (!report) return;
            deliver(*report);
            if (!alive) return;
        }
        deliverSoon();
    }

    // The receiver may end this presenter, so nothing of it is used after the call.
    void deliver(const FileReport &report)
    {
        const std::shared_ptr<const FileEvents> events = m_events;
        switch (report.kind) {
        case FileReport::Settled: m_settledTicket = std::max(m_settledTicket, report.settleTicket); break;
        case FileReport::Changed:
            if (events->didChange) events->didChange(pathFromSystem(report.path));
            break;
        case FileReport::Moved:
            if (events->didMove) events->didMove(pathFromSystem(report.path), pathFromSystem(report.target));
            break;
        case FileReport::Vanished:
            if (events->didVanish) events->didVanish();
            break;
        }
    }

    std::shared_ptr<const FileEvents> m_events;
    quint64 m_generation = 0;
    quint64 m_lastTicket = 0;
    quint64 m_settledTicket = 0;
    FileReportQueue m_queue;
    FolderWatcher m_watcher;
};

} // namespace

std::unique_ptr<FilePresenter> makeFilePresenter(FileEvents events)
{
    return std::make_unique<InotifyPresenter>(std::move(events));
}

} // namespace tomelet
