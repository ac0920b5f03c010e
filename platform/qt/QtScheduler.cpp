#include "platform/qt/QtScheduler.h"

#include <QTimer>

namespace lumaro {

QtScheduler::QtScheduler(QThread::Priority priority, QObject *parent)
    : QObject(parent)
{
    m_threads.setThreadPriority(priority);
}

QtScheduler::~QtScheduler()
{
    m_threads.clear();
    m_threads.waitForDone();
}

Scheduler::TimePoint QtScheduler::now() const
{
    return std::chrono::steady_clock::now();
}

Scheduler::TimerId QtScheduler::callAfter(Duration delay, std::function<void()> action)
{
    const TimerId id = ++m_lastId;
    auto timer = std::make_unique<QTimer>();
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    timer->callOnTimeout(this, [this, id, action = std::move(action)] {
        // The timer is sending this very signal, and its closure holds the action.
        auto fired = m_timers.extract(id);
        const auto call = action;
        fired.mapped().release()->deleteLater();
        call();
    });
    timer->start(std::chrono::ceil<std::chrono::milliseconds>(delay));
    m_timers.emplace(id, std::move(timer));
    return id;
}

void QtScheduler::cancel(TimerId timer)
{
    m_timers.erase(timer);
}

void QtScheduler::runInBackground(std::function<void()> work, std::function<void()> done)
{
    m_threads.start([this, work = std::move(work), done = std::move(done)] {
        work();
        // Dropped with the scheduler if that goes first.
        QMetaObject::invokeMethod(this, done, Qt::QueuedConnection);
    });
}

} // namespace lumaro
