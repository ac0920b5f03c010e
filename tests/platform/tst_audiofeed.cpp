#include "platform/AudioFeed.h"
#include "tests/fakes/FakeScreenCapture.h"

#include <QTest>

using namespace std::chrono_literals;
using namespace lumaro;

namespace {

constexpr int rate = 1000;

AudioSample piece(MediaTime time)
{
    // A tenth of a second.
    return {.presentationTime = time, .channels = 2, .data = std::vector<float>(200)};
}

} // namespace

class AudioFeedTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dropsWhatTheQueueCannotTake();
    void mayGoBeforeTheQueue();
};

void AudioFeedTest::dropsWhatTheQueueCannotTake()
{
    const auto queue = std::make_shared<FakeSerialQueue>();
    QList<int> heard;
    AudioFeed feed(
        queue,
        [&](const AudioSample &sample) { heard.append(int(sample.presentationTime / 100ms)); },
        rate);
    for (int i = 0; i < 1000; ++i)
        feed.deliver(piece(i * 100ms));
    queue->run();
    // The oldest; what is missing after them is one gap.
    QCOMPARE(heard.size(), 50);
    QCOMPARE(heard.last(), 49);

    // Once it runs again, all of it arrives, however much that is.
    for (int i = 1000; i < 1100; ++i) {
        feed.deliver(piece(i * 100ms));
        queue->run();
    }
    QCOMPARE(heard.size(), 150);
    QCOMPARE(heard.last(), 1099);
}

void AudioFeedTest::mayGoBeforeTheQueue()
{
    const auto queue = std::make_shared<FakeSerialQueue>();
    int heard = 0;
    std::make_unique<AudioFeed>(
        queue, [&](const AudioSample &) { ++heard; }, rate)
        ->deliver(piece(0ms));
    queue->run();
    QCOMPARE(heard, 1);
}

QTEST_GUILESS_MAIN(AudioFeedTest)
#include "tst_audiofeed.moc"
