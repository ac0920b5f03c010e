#include "platform/qt/QtScheduler.h"

#include <QTest>
#include <QThread>

#include <atomic>
#include <thread>

using namespace std::chrono_literals;
using namespace lumaro;

namespace {

constexpr int patience = 30'000;

Task<> note(Scheduler &scheduler, Scheduler::Duration duration, std::stop_token stop,
            QList<bool> &outcomes)
{
    outcomes.append(co_await scheduler.sleep(duration, stop));
}

Task<> computeSquare(Scheduler &scheduler, int number, QList<int> &results)
{
    const auto work = scheduler.inBackground([number] { return number * number; });
    results.append(co_await work);
}

} // namespace

class QtSchedulerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsInOrderOfTime();
    void waitsAtLeastAsLongAsAsked();
    void cancelsWithinACall();
    void callMayDestroyTheScheduler();
    void sleepEndsOrStops();
    void backgroundWorkReportsOnTheMainThread();
    void destructionWaitsForRunningWorkAndDropsTheRest();
};

void QtSchedulerTest::callsInOrderOfTime()
{
    QtScheduler scheduler;
    QList<int> calls;
    scheduler.callAfter(60ms, [&] { calls.append(60); });
    scheduler.callAfter(20ms, [&] { calls.append(20); });
    scheduler.callAfter(0ms, [&] { calls.append(0); });
    // Those of one time in the order they were asked for.
    scheduler.callAfter(0ms, [&] { calls.append(1); });
    QVERIFY(calls.isEmpty());
    QVERIFY(QTest::qWaitFor([&] { return calls.size() == 4; }, patience));
    QCOMPARE(calls, (QList<int>{0, 1, 20, 60}));
}

void QtSchedulerTest::waitsAtLeastAsLongAsAsked()
{
    QtScheduler scheduler;
    const auto asked = 2ms + 300us;
    const Scheduler::TimePoint start = scheduler.now();
    std::optional<Scheduler::TimePoint> called;
    scheduler.callAfter(asked, [&] { called = scheduler.now(); });
    QVERIFY(QTest::qWaitFor([&] { return called.has_value(); }, patience));
    QVERIFY(*called - start >= asked);
}

void QtSchedulerTest::cancelsWithinACall()
{
    QtScheduler scheduler;
    QList<int> calls;
    Scheduler::TimerId first = 0;
    Scheduler::TimerId second = 0;
    first = scheduler.callAfter(0ms, [&] {
        calls.append(1);
        // Itself, which is too late, and one that is due as well.
        scheduler.cancel(first);
        scheduler.cancel(second);
        scheduler.callAfter(0ms, [&] { calls.append(3); });
    });
    second = scheduler.callAfter(0ms, [&] { calls.append(2); });
    QVERIFY(QTest::qWaitFor([&] { return calls.contains(3); }, patience));
    QCOMPARE(calls, (QList<int>{1, 3}));
}

void QtSchedulerTest::callMayDestroyTheScheduler()
{
    auto scheduler = std::make_unique<QtScheduler>();
    // Held by the call only; it must outlive the scheduler as long as the call runs.
    auto held = std::make_shared<int>(7);
    int seen = 0;
    scheduler->callAfter(0ms, [&scheduler, &seen, held] {
        scheduler.reset();
        seen = *held;
    });
    bool calledLater = false;
    scheduler->callAfter(1ms, [&] { calledLater = true; });
    const std::weak_ptr<int> watched = std::exchange(held, nullptr);
    QVERIFY(QTest::qWaitFor([&] { return watched.expired(); }, patience));
    QCOMPARE(seen, 7);
    QTest::qWait(5);
    QVERIFY(!calledLater);
}

void QtSchedulerTest::sleepEndsOrStops()
{
    QtScheduler scheduler;
    QList<bool> outcomes;
    const std::stop_source stop;
    note(scheduler, 1h, stop.get_token(), outcomes);
    note(scheduler, 1ms, stop.get_token(), outcomes);
    QVERIFY(QTest::qWaitFor([&] { return !outcomes.isEmpty(); }, patience));
    QCOMPARE(outcomes, QList<bool>{true});
    stop.request_stop();
    QCOMPARE(outcomes, (QList<bool>{true, false}));
    note(scheduler, 0ms, stop.get_token(), outcomes);
    QCOMPARE(outcomes, (QList<bool>{true, false, false}));
}

void QtSchedulerTest::backgroundWorkReportsOnTheMainThread()
{
    QtScheduler scheduler;
    std::atomic<std::thread::id> workedOn;
    std::thread::id reportedOn;
    scheduler.runInBackground([&] { workedOn = std::this_thread::get_id(); },
                              [&] { reportedOn = std::this_thread::get_id(); });
    QVERIFY(QTest::qWaitFor([&] { return reportedOn != std::thread::id(); }, patience));
    QCOMPARE(reportedOn, std::this_thread::get_id());
    QVERIFY(workedOn.load() != std::this_thread::get_id());

    QList<int> results;
    for (int number = 0; number < 100; ++number)
        computeSquare(scheduler, number, results);
    QVERIFY(results.isEmpty());
    QVERIFY(QTest::qWaitFor([&] { return results.size() == 100; }, patience));
    std::ranges::sort(results);
    for (int number = 0; number < 100; ++number)
        QCOMPARE(results[number], number * number);
}

void QtSchedulerTest::destructionWaitsForRunningWorkAndDropsTheRest()
{
    const int threads = QThread::idealThreadCount();
    std::atomic<int> begun = 0;
    std::atomic<int> ended = 0;
    bool queuedWorkRan = false;
    int reported = 0;
    // Goes with the work that waits for a thread.
    auto queued = std::make_shared<int>();
    const std::weak_ptr<int> watched = queued;
    auto scheduler = std::make_unique<QtScheduler>();
    for (int i = 0; i < threads; ++i)
        scheduler->runInBackground(
            [&begun, &ended, watched] {
                ++begun;
                while (!watched.expired())
                    std::this_thread::yield();
                ++ended;
            },
            [&] { ++reported; });
    scheduler->runInBackground([&, held = std::exchange(queued, nullptr)] { queuedWorkRan = true; },
                               [&] { ++reported; });
    QVERIFY(QTest::qWaitFor([&] { return begun == threads; }, patience));
    scheduler.reset();
    QCOMPARE(ended.load(), threads);
    QVERIFY(!queuedWorkRan);
    QCoreApplication::processEvents();
    QCOMPARE(reported, 0);
}

QTEST_GUILESS_MAIN(QtSchedulerTest)
#include "tst_qtscheduler.moc"
