#include "app/TerminalDownload.h"

#include "app/TransportModel.h"
#include "platform/Terminal.h"

#include <QLocale>

namespace lumaro {

using namespace std::chrono_literals;

namespace {

constexpr auto rateWindow = 3s;

QString pathOf(const M3U8DownloadManager::JobState &job)
{
    return job.destination.toLocalFile();
}

QString sizeText(qint64 bytes)
{
    return QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

double seconds(Scheduler::Duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

QString joined(const QStringList &parts)
{
    return parts.join(QStringLiteral(" · "));
}

} // namespace

TerminalDownload::TerminalDownload(M3U8DownloadManager &manager, Scheduler &scheduler,
                                   Terminal &terminal, QObject *parent)
    : QObject(parent)
    , m_manager(manager)
    , m_scheduler(scheduler)
    , m_terminal(terminal)
    , m_tick(scheduler)
{
    connect(&manager, &M3U8DownloadManager::jobChanged, this, &TerminalDownload::follow);
    connect(&terminal, &Terminal::interrupted, this, [this](int signalNumber) {
        m_signalNumber = signalNumber;
        m_manager.stop(m_url);
    });
}

void TerminalDownload::start(const QUrl &url, const std::optional<QString> &name)
{
    m_url = url;
    m_begin = m_scheduler.now();
    m_manager.start(url, name);
    tick();
}

void TerminalDownload::follow()
{
    const auto job = m_manager.jobs().value(M3U8DownloadManager::keyOf(m_url));
    if (!job.isActive)
        return finish(job);
    const bool isNew = job.destination != m_lastActive.destination;
    m_lastActive = job;
    if (isNew)
        m_terminal.say(tr("Saving to %1").arg(pathOf(job)));
}

void TerminalDownload::tick()
{
    if (!m_lastActive.isActive)
        return;
    report();
    const Scheduler::Duration interval =
        m_terminal.isInteractive() ? Scheduler::Duration(watchedInterval) : loggedInterval;
    m_tick.start(interval, [this] { tick(); });
}

void TerminalDownload::report()
{
    const QString line = progressLine();
    if (m_terminal.isInteractive())
        m_terminal.showProgress(line);
    else
        m_terminal.say(line);
}

QString TerminalDownload::progressLine()
{
    const Scheduler::TimePoint now = m_scheduler.now();
    m_samples.push_back({now, fileSize()});
    while (m_samples.size() > 2 && now - m_samples[1].time >= rateWindow)
        m_samples.pop_front();

    QStringList parts{m_lastActive.message};
    if (m_samples.back().size > 0) {
        parts.append(sizeText(m_samples.back().size));
        const double time = seconds(now - m_samples.front().time);
        // A file that lost its torn end has not grown.
        const qint64 growth = std::max<qint64>(m_samples.back().size - m_samples.front().size, 0);
        if (time > 0)
            parts.append(sizeText(qint64(double(growth) / time)) + u"/s");
    }
    parts.append(formatTime(seconds(now - m_begin)));
    return joined(parts);
}

/// Without asking the disk, which may not answer.
qint64 TerminalDownload::fileSize() const
{
    return m_manager.fileSize(M3U8DownloadManager::keyOf(m_url));
}

void TerminalDownload::finish(const M3U8DownloadManager::JobState &job)
{
    m_lastActive.isActive = false;
    m_tick.cancel();
    m_terminal.showProgress(QString());
    const qint64 size = fileSize();
    const QString time = formatTime(seconds(m_scheduler.now() - m_begin));
    if (!job.duration) {
        m_terminal.say(m_manager.errorMessage());
        if (size > 0)
            m_terminal.say(tr("What had arrived is kept: %1").arg(pathOf(job)));
        return Q_EMIT finished(1);
    }
    const bool isSaved = job.progress.has_value();
    m_terminal.say(joined({job.message, sizeText(size), time}));
    if (!job.destination.isEmpty())
        m_terminal.print(pathOf(job));
    Q_EMIT finished(isSaved ? 0 : statusAfterStop(size));
}

int TerminalDownload::statusAfterStop(qint64 keptSize) const
{
    return m_lastActive.isLive && keptSize > 0 ? 0 : 128 + m_signalNumber;
}

} // namespace lumaro
