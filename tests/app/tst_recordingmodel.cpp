#include "app/RecordingModel.h"
#include "tests/app/ShellWorld.h"
#include "tests/fakes/FakeAssetWriter.h"
#include "tests/fakes/FakeScreenCapture.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

class FakeSurface : public QObject, public PlayerRecordingSurface
{
public:
    QQuickItem *recordingView() override { return nullptr; }
    QRectF recordingRectInView() const override { return {0, 0, 640, 360}; }
};

const uchar pixels[16] = {};

struct World : ShellWorld
{
    World()
    {
        capture.content =
            ShareableContent{.displays = {{.identifier = 1, .frame = {0, 0, 1000, 800}}},
                             .windows = {{.identifier = 7, .frame = {0, 0, 640, 360}}}};
        surfaces.setCurrentSurface(&surface);
        panels.choice = file;
    }
    void settle()
    {
        queue->run();
        QCoreApplication::processEvents();
    }
    /// Records one picture and stops.
    void recordSomething()
    {
        recording.toggle();
        queue->post([this] {
            capture.output->screen({.presentationTime = 1ms,
                                    .size = {2, 2},
                                    .topRow = pixels,
                                    .bytesPerLine = 8,
                                    .owner = {}});
        });
        recording.toggle();
    }

    QUrl file = QUrl::fromLocalFile(saveFolder.filePath(u"a.mp4"_s));
    FakeSurface surface;
    // The capture keeps the queue, whose work may still use it.
    FakeAsset asset;
    FakeScreenCapture capture;
    QString refusal;
    PlayerSurfaceRegistry surfaces;
    FakeSerialQueue *queue = nullptr;
    PlayerRecordingController controller{{.capture = capture,
                                          .makeWriter = fakeAssetWriters(asset, refusal),
                                          .makeQueue =
                                              [this](const QString &) {
                                                  auto made = std::make_unique<FakeSerialQueue>();
                                                  queue = made.get();
                                                  return made;
                                              },
                                          .panels = panels,
                                          .scheduler = scheduler,
                                          .clock = systemClock(),
                                          .surfaces = surfaces,
                                          .moviesFolder = {}}};
    QRect visibleArea{0, 0, 1000, 800};
    RecordingModel recording{controller, workspace, scheduler, [this] { return visibleArea; }};
};

} // namespace

class RecordingModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void buttonFollowsTheState();
    void tellsWhereTheFileIs();
    void tellsOfErrors();
    void offersTheSettings();
    void tellsOfMissingSound();
    void placesThePanel_data();
    void placesThePanel();
};

void RecordingModelTest::buttonFollowsTheState()
{
    World world;
    QCOMPARE(world.recording.normalTitle(), u"Normal Recording"_s);
    QCOMPARE(world.recording.hdTitle(), u"HD Recording (1080p)"_s);
    QCOMPARE(world.recording.buttonText(), u"Record"_s);
    world.recording.startHd();
    QCOMPARE(world.asset.video->width, 1920);
    QVERIFY(world.recording.isRecording());
    QCOMPARE(world.recording.buttonText(), u"Stop Recording"_s);
    world.recording.stop();
    QVERIFY(!world.recording.isReady());
    QCOMPARE(world.recording.buttonText(), u"Saving Recording…"_s);
    world.settle();
    QVERIFY(world.recording.isReady());
}

void RecordingModelTest::tellsWhereTheFileIs()
{
    World world;
    world.recordSomething();
    world.settle();
    QCOMPARE(world.recording.notice(), u"The MP4 recording was saved."_s);
    QVERIFY(!world.recording.noticeIsError());
    QCOMPARE(world.recording.savedPath(), world.file.toLocalFile());
    world.recording.showInFolder();
    QCOMPARE(world.workspace.shown, QList{world.file});
    world.scheduler.advance(RecordingModel::noticeDuration);
    QVERIFY(world.recording.notice().isEmpty());
    QVERIFY(world.recording.savedPath().isEmpty());
}

void RecordingModelTest::tellsOfErrors()
{
    World world;
    world.recordSomething();
    world.settle();
    world.panels.text = u"45s"_s;
    world.recording.startNormal();
    QVERIFY(world.recording.noticeIsError());
    QVERIFY(world.recording.savedPath().isEmpty());
    QVERIFY(!world.recording.offersSettings());
    // The end of the notice before does not take this one away.
    world.scheduler.advance(60s);
    QVERIFY(world.recording.notice().startsWith(u"Enter a valid duration"));
    world.recording.dismissNotice();
    QVERIFY(world.recording.notice().isEmpty());
    // The same error again is told again.
    world.recording.startNormal();
    QVERIFY(world.recording.noticeIsError());
    world.panels.text.clear();
    world.recording.startNormal();
    QVERIFY(world.recording.notice().isEmpty());
}

void RecordingModelTest::offersTheSettings()
{
    World world;
    world.capture.allowed = false;
    world.recording.startNormal();
    QVERIFY(world.recording.offersSettings());
    world.recording.openSystemSettings();
    QCOMPARE(world.workspace.settingsOpened, 1);
}

void RecordingModelTest::tellsOfMissingSound()
{
    World world;
    world.recording.startNormal();
    world.capture.output->audioBecameUnavailable();
    world.settle();
    QVERIFY(world.recording.isWithoutSound());
    // Nothing of it in the picture.
    QVERIFY(world.player.toastMessage().isEmpty());
    QVERIFY(world.recording.notice().isEmpty());
    world.recording.stop();
    world.settle();
    world.recording.startNormal();
    QVERIFY(!world.recording.isWithoutSound());
}

void RecordingModelTest::placesThePanel_data()
{
    QTest::addColumn<QRect>("visibleArea");
    QTest::addColumn<QString>("stopAfter");
    QTest::addColumn<QPoint>("position");
    QTest::newRow("one display") << QRect(0, 0, 1920, 1080) << QString() << QPoint(1692, 18);
    QTest::newRow("below a bar") << QRect(0, 32, 1920, 1048) << QString() << QPoint(1692, 50);
    QTest::newRow("the right one") << QRect(1920, 0, 1280, 1024) << QString() << QPoint(2972, 18);
    QTest::newRow("one above to the left")
        << QRect(-1280, -1024, 1280, 1024) << QString() << QPoint(-228, -1006);
    QTest::newRow("with a limit") << QRect(0, 0, 1920, 1080) << u"1m"_s << QPoint(1592, 18);
}

void RecordingModelTest::placesThePanel()
{
    QFETCH(const QRect, visibleArea);
    QFETCH(const QString, stopAfter);
    QFETCH(const QPoint, position);
    World world;
    world.visibleArea = visibleArea;
    world.panels.text = stopAfter;
    world.recording.startNormal();
    QCOMPARE(world.recording.panelPosition(), position);
}

QTEST_GUILESS_MAIN(RecordingModelTest)
#include "tst_recordingmodel.moc"
