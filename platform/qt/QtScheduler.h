#pragma once

#include "platform/Scheduler.h"

#include <QObject>
#include <QThread>
#include <QThreadPool>

#include <memory>
#include <unordered_map>

class QTimer;

namespace lumaro {

/// The threads that a scheduler works on.
struct BackgroundThreads
{
    /// An idle one only takes what nothing else wants.
    QThread::Priority priority = QThread::InheritPriority;
    int count = QThread::idealThreadCount();
    /// How long the end waits for what is under way.
    std::chrono::milliseconds patience{10'000};
};

/// Delays by Qt's timers, background work on its own threads. Destroying it does the work that was
/// asked for and reports it. What then takes longer than the threads' patience, as in a file system
/// that does not answer, ends with the process, unreported.
class QtScheduler final : public QObject, public Scheduler
{
    Q_OBJECT

public:
    explicit QtScheduler(const BackgroundThreads &threads = {}, QObject *parent = nullptr);
    ~QtScheduler() override;

    TimePoint now() const override;
    TimerId callAfter(Duration delay, std::function<void()> action) override;
    void cancel(TimerId timer) override;
    void runInBackground(std::function<void()> work, std::function<void()> done) override;

private:
    class Reports;

    TimerId m_lastId = 0;
    std::unordered_map<TimerId, std::unique_ptr<QTimer>> m_timers;
    const std::chrono::milliseconds m_patience;
    /// Shared with the work.
    std::shared_ptr<Reports> m_reports;
    std::unique_ptr<QThreadPool> m_threads;
    /// Pieces of work so far.
    quint64 m_begun = 0;
};

} // namespace lumaro
