#include "platform/qt/ThreadQueue.h"

#include <QTest>

#include <atomic>
#include <semaphore>

using namespace std::chrono_literals;
using namespace lumaro;

class ThreadQueueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void worksInOrderUntilTheEnd_data();
    void worksInOrderUntilTheEnd();
    void leavesBehindWhatHangs();
};

void ThreadQueueTest::worksInOrderUntilTheEnd_data()
{
    QTest::addColumn<bool>("drains");
    QTest::newRow("drained") << true;
    QTest::newRow("destroyed") << false;
}

void ThreadQueueTest::worksInOrderUntilTheEnd()
{
    QFETCH(const bool, drains);
    QList<int> done;
    auto queue = std::make_unique<ThreadQueue>(QStringLiteral("test"), 1min);
    queue->post([&done, itself = queue.get()] {
        std::this_thread::sleep_for(20ms);
        done.append(1);
        // Asked for while the end waits already.
        itself->post([&done] { done.append(3); });
    });
    queue->post([&] { done.append(2); });
    if (drains)
        queue->drain();
    else
        queue.reset();
    QCOMPARE(done, (QList<int>{1, 2, 3}));
}

/// As a recording does on a disk that stands still, when the program is quit.
void ThreadQueueTest::leavesBehindWhatHangs()
{
    struct Disk
    {
        std::binary_semaphore wakes{0};
        std::binary_semaphore isAsked{0};
        std::atomic<bool> isDone = false;
    };
    const auto disk = std::make_shared<Disk>();
    const auto picture = std::make_shared<int>(0);
    {
        ThreadQueue queue(QStringLiteral("test"), 20ms);
        queue.post([disk] {
            disk->isAsked.release();
            disk->wakes.acquire();
            disk->isDone = true;
        });
        queue.post([picture] { ++*picture; });
        disk->isAsked.acquire();
        queue.drain();
        QCOMPARE(picture.use_count(), 1);
    }
    QVERIFY(!disk->isDone);
    disk->wakes.release();
    QTRY_VERIFY(disk->isDone);
    QCOMPARE(*picture, 0);
}

QTEST_GUILESS_MAIN(ThreadQueueTest)
#include "tst_threadqueue.moc"
