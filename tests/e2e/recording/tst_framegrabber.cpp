#include "platform/qt/FrameGrabber.h"
#include "tests/e2e/servers/VirtualDisplay.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QTest>

#include <thread>

using namespace std::chrono_literals;
using namespace lumaro;

class FrameGrabberTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void waitsForPicturesInUse();
};

/// When a window goes while the disk stands still, the queue still reads from the context's memory.
void FrameGrabberTest::waitsForPicturesInUse()
{
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    QVERIFY(context.create() && context.makeCurrent(&surface));
    constexpr QSize size(64, 64);
    VideoSample held;
    FrameGrabber grabber({.outputSize = size,
                          .minimumInterval = {},
                          .depth = 2,
                          .deliver = [&held](const VideoSample &sample) { held = sample; }});
    grabber.setFrame(size, QRect({0, 0}, size));
    grabber.frameRendered();
    grabber.collect(true);
    QVERIFY(held.isDataReady());
    grabber.release(20ms);
    QVERIFY(!grabber.isReleased());

    std::atomic<bool> hasBeenRead = false;
    std::thread queue([&] {
        std::this_thread::sleep_for(1500ms);
        std::vector<uchar> row(size.width() * 4);
        std::copy_n(held.topRow, row.size(), row.begin());
        hasBeenRead = true;
        held = {};
    });
    grabber.release(1min);
    const bool waited = hasBeenRead;
    queue.join();
    QVERIFY(waited);
    QVERIFY(grabber.isReleased());
}

int main(int argc, char *argv[])
{
    return runInDisplay([&] {
        const QGuiApplication qt(argc, argv);
        FrameGrabberTest test;
        return QTest::qExec(&test, argc, argv);
    });
}

#include "tst_framegrabber.moc"
