#include "platform/qt/QtScheduler.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <mutex>

namespace lumaro {

/// The way back to the main thread, while there is one.
class QtScheduler::Reports
{
public:
    explicit Reports(QtScheduler *scheduler)
        : m_scheduler(scheduler)
    {
    }

    void post(const std::function<void()> &done)
    {
        const std::scoped_lock lock(m_mutex);
        if (m_scheduler)
            QMetaObject::invokeMethod(m_scheduler, done, Qt::QueuedConnection);
    }

    void end()
    {
        const std::scoped_lock lock(m_mutex);
        m_scheduler = nullptr;
    }

private:
    std::mutex m_mutex;
    QtScheduler *m_scheduler;
};

QtScheduler::QtScheduler(const BackgroundThreads &threads, QObject *parent)
    : QObject(parent)
    , m_patience(threads.patience)
    , m_reports(std::make_shared<Reports>(this))
    , m_threads(std::make_unique<QThreadPool>())
{
    m_threads->setThreadPriority(threads.priority);
    m_threads->setMaxThreadCount(threads.count);
}

QtScheduler::~QtScheduler()
{
    const QDeadlineTimer end(m_patience);
    bool isDone = true;
    // Coroutines that wait hold what nobody else would let go of, and may have more to do.
    for (quint64 begun = 0; isDone && begun != m_begun;) {
        begun = m_begun;
        isDone = m_threads->waitForDone(int(end.remainingTime()));
        QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
    }
    m_reports->end();
    // A thread that the system does not give back can only be left to the end of the process.
    if (!isDone)
        (void)m_threads.release();
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
    ++m_begun;
    m_threads->start(
        [reports = m_reports, work = std::move(work), done = std::move(done)]() mutable {
            work();
            // Who hears of it may rely on what it held being gone.
            work = nullptr;
            reports->post(done);
        });
}

} // namespace lumaro
