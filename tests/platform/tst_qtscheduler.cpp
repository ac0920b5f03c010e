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

Task<> computeSquares(Scheduler &scheduler, int count, QList<int> &results)
{
    for (int number = 0; number < count; ++number) {
        auto next = computeSquare(scheduler, number, results);
        co_await next;
    }
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
    void destructionDoesAllWorkAndReportsIt();
    void destructionEndsCoroutines();
    void destructionLeavesBehindWhatHangs();
    void workIsGoneWhenItIsReported();
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

void QtSchedulerTest::destructionDoesAllWorkAndReportsIt()
{
    constexpr int threads = 2;
    constexpr int pieces = 5;
    std::atomic<int> begun = 0;
    std::atomic<bool> mayEnd = false;
    std::atomic<int> ended = 0;
    int reported = 0;
    auto scheduler = std::make_unique<QtScheduler>(BackgroundThreads{.count = threads});
    for (int i = 0; i < pieces; ++i)
        scheduler->runInBackground(
            [&] {
                ++begun;
                while (!mayEnd)
                    std::this_thread::yield();
                ++ended;
            },
            [&] { ++reported; });
    QVERIFY(QTest::qWaitFor([&] { return begun == threads; }, patience));
    // No more at a time than there are threads.
    QCOMPARE(begun.load(), threads);
    std::thread releasing([&] { mayEnd = true; });
    scheduler.reset();
    releasing.join();
    QCOMPARE(ended.load(), pieces);
    QCOMPARE(reported, pieces);
}

void QtSchedulerTest::destructionEndsCoroutines()
{
    QList<int> results;
    {
        QtScheduler scheduler({.count = 1});
        for (int number = 0; number < 3; ++number)
            computeSquare(scheduler, number, results);
    }
    QCOMPARE(results, (QList<int>{0, 1, 4}));
    {
        QtScheduler scheduler;
        // What one asks for when it is resumed is done as well.
        computeSquares(scheduler, 5, results);
    }
    QCOMPARE(results.last(), 16);
}

void QtSchedulerTest::destructionLeavesBehindWhatHangs()
{
    const auto mayEnd = std::make_shared<std::atomic<bool>>(false);
    const auto ended = std::make_shared<std::atomic<bool>>(false);
    int reported = 0;
    auto scheduler = std::make_unique<QtScheduler>(BackgroundThreads{.count = 2, .patience = 1ms});
    std::atomic<bool> begun = false;
    scheduler->runInBackground(
        [mayEnd, ended, &begun] {
            begun = true;
            while (!*mayEnd)
                std::this_thread::yield();
            *ended = true;
        },
        [&] { ++reported; });
    QVERIFY(QTest::qWaitFor([&] { return begun.load(); }, patience));
    scheduler.reset();
    QVERIFY(!*ended);
    *mayEnd = true;
    QVERIFY(QTest::qWaitFor([&] { return ended->load(); }, patience));
    // There is nobody to report to.
    QTest::qWait(5);
    QCOMPARE(reported, 0);
}

void QtSchedulerTest::workIsGoneWhenItIsReported()
{
    QtScheduler scheduler;
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> watched = held;
    std::optional<bool> wasGone;
    scheduler.runInBackground([held = std::exchange(held, nullptr)] {},
                              [&] { wasGone = watched.expired(); });
    QVERIFY(QTest::qWaitFor([&] { return wasGone.has_value(); }, patience));
    QVERIFY(*wasGone);
}

QTEST_GUILESS_MAIN(QtSchedulerTest)
#include "tst_qtscheduler.moc"
