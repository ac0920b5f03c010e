#pragma once

#include "download/M3U8DownloadManager.h"
#include "platform/DelayedTask.h"

#include <deque>

namespace lumaro {

class Terminal;

/// One download, told in a terminal. Main thread.
class TerminalDownload : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds watchedInterval{250};
    static constexpr std::chrono::seconds loggedInterval{10};

    /// All arguments outlive it.
    TerminalDownload(M3U8DownloadManager &manager, Scheduler &scheduler, Terminal &terminal,
                     QObject *parent = nullptr);

    /// Called once.
    void start(const QUrl &url, const std::optional<QString> &name);

Q_SIGNALS:
    /// With the process's exit status: 0 when the stream was saved, which for a live one means
    /// until the user stopped it, 1 when that failed, and 128 and the signal's number when it was
    /// stopped before.
    void finished(int exitStatus);

private:
    struct Sample
    {
        Scheduler::TimePoint time;
        qint64 size = 0;
    };

    void follow();
    void tick();
    void report();
    QString progressLine();
    qint64 fileSize() const;
    void finish(const M3U8DownloadManager::JobState &job);
    int statusAfterStop(qint64 keptSize) const;

    M3U8DownloadManager &m_manager;
    Scheduler &m_scheduler;
    Terminal &m_terminal;
    DelayedTask m_tick;
    QUrl m_url;
    Scheduler::TimePoint m_begin;
    /// The file's growth in the last seconds.
    std::deque<Sample> m_samples;
    M3U8DownloadManager::JobState m_lastActive;
    int m_signalNumber = 0;
};

} // namespace lumaro
