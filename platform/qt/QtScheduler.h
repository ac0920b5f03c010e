#pragma once

#include "platform/Scheduler.h"

#include <QObject>
#include <QThread>
#include <QThreadPool>

#include <unordered_map>

class QTimer;

namespace lumaro {

/// Delays by Qt's timers, background work on its own threads. Destroying it waits for the work
/// that already runs and drops what has not been reported.
class QtScheduler final : public QObject, public Scheduler
{
    Q_OBJECT

public:
    /// `priority` is that of the work in the background; an idle one only takes what nothing else
    /// wants.
    explicit QtScheduler(QThread::Priority priority = QThread::InheritPriority,
                         QObject *parent = nullptr);
    ~QtScheduler() override;

    TimePoint now() const override;
    TimerId callAfter(Duration delay, std::function<void()> action) override;
    void cancel(TimerId timer) override;
    void runInBackground(std::function<void()> work, std::function<void()> done) override;

private:
    TimerId m_lastId = 0;
    std::unordered_map<TimerId, std::unique_ptr<QTimer>> m_timers;
    QThreadPool m_threads;
};

} // namespace lumaro
