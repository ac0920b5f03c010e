#include "recording/PlayerRecordingController.h"
#include "tests/fakes/FakeAssetWriter.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeScreenCapture.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

using State = PlayerRecordingState;
constexpr auto normal = PlayerRecordingQuality::normal;
constexpr auto hd = PlayerRecordingQuality::hd;
const uchar pixels[16] = {};

class FakeSurface : public QObject, public PlayerRecordingSurface
{
public:
    QQuickItem *recordingView() override { return nullptr; }
    QRectF recordingRectInView() const override { return rect; }
    QRectF rect{0, 0, 640, 360};
};

struct World
{
    World()
    {
        capture.content =
            ShareableContent{.displays = {{.identifier = 1, .frame = {0, 0, 1000, 800}}},
                             .windows = {{.identifier = 7, .frame = {100, 50, 640, 360}}}};
        surfaces.setCurrentSurface(surface.get());
        panels.choice = file;
    }

    void start(PlayerRecordingQuality quality = normal) { controller->start(quality); }
    /// What the queue and the main thread still have to do.
    void settle()
    {
        queue->run();
        QCoreApplication::processEvents();
    }
    void show(MediaTime time)
    {
        queue->post([this, time] {
            capture.output->screen({.presentationTime = time,
                                    .size = {2, 2},
                                    .topRow = pixels,
                                    .bytesPerLine = 8,
                                    .owner = {}});
        });
    }

    QTemporaryDir folder;
    QUrl file = QUrl::fromLocalFile(folder.filePath(u"a.mp4"_s));
    // The capture keeps the queue, whose work may still use it.
    FakeAsset asset;
    FakeScreenCapture capture;
    QString refusal;
    FakeFilePanels panels;
    FakeScheduler scheduler;
    PlayerSurfaceRegistry surfaces;
    std::unique_ptr<FakeSurface> surface = std::make_unique<FakeSurface>();
    FakeSerialQueue *queue = nullptr;
    QString queueLabel;
    std::unique_ptr<PlayerRecordingController> controller =
        std::make_unique<PlayerRecordingController>(RecordingPlatform{
            .capture = capture,
            .makeWriter = fakeAssetWriters(asset, refusal),
            .makeQueue =
                [this](const QString &label) {
                    auto made = std::make_unique<FakeSerialQueue>();
                    queue = made.get();
                    queueLabel = label;
                    return made;
                },
            .panels = panels,
            .scheduler = scheduler,
            .clock = [] { return QDateTime({2026, 11, 16}, {1, 59, 49}).toUTC(); },
            .surfaces = surfaces,
            .moviesFolder = QUrl(u"file:///movies"_s)});
};

} // namespace

class RecordingControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksForPermission();
    void needsASurface_data();
    void needsASurface();
    void asksWhereToSave_data();
    void asksWhereToSave();
    void cancelIsSilent();
    void checksTheDuration_data();
    void checksTheDuration();
    void configuresTheStream();
    void failsWhilePreparing_data();
    void failsWhilePreparing();
    void keepsAFileThatWasNotReplaced();
    void records();
    void showsThePanel();
    void stopsByItself();
    void stopsWhenTheFileFails();
    void saysWhenNothingWasCaptured();
    void endsWithTheStream();
    void saysSomethingOfAnyError_data();
    void saysSomethingOfAnyError();
    void recognisesARefusal_data();
    void recognisesARefusal();
    void followsTheSurface();
    void completesTheFileAtTheEnd_data();
    void completesTheFileAtTheEnd();
};

void RecordingControllerTest::asksForPermission()
{
    World world;
    world.capture.allowed = false;
    world.start();
    QVERIFY(world.controller->requiresScreenRecordingPermission());
    QCOMPARE(
        world.controller->errorMessage(),
        u"Lumaro needs Screen & System Audio Recording permission to record the player and its "
        "system audio. Enable it in System Settings, then quit and reopen the app."_s);
    QVERIFY(world.panels.saveRequests.isEmpty());
    QCOMPARE(world.controller->state(), State::idle);

    world.capture.allowedWhenAsked = true;
    world.start();
    QVERIFY(!world.controller->requiresScreenRecordingPermission());
    QCOMPARE(world.controller->state(), State::recording);
    QVERIFY(world.controller->errorMessage().isEmpty());
    QCOMPARE(world.capture.accessRequests, 2);
}

void RecordingControllerTest::needsASurface_data()
{
    QTest::addColumn<bool>("window");
    QTest::addColumn<bool>("registered");
    QTest::addColumn<bool>("goesMeanwhile");
    QTest::newRow("no window") << false << true << false;
    QTest::newRow("no surface") << true << false << false;
    QTest::newRow("gone while the panel was open") << true << true << true;
}

void RecordingControllerTest::needsASurface()
{
    QFETCH(const bool, window);
    QFETCH(const bool, registered);
    QFETCH(const bool, goesMeanwhile);
    World world;
    if (!window)
        world.capture.key.reset();
    if (!registered)
        world.surface.reset();
    if (goesMeanwhile)
        world.panels.whileOpen = [&] { world.surface.reset(); };
    world.start();
    QCOMPARE(world.controller->errorMessage(), u"The player surface is not available."_s);
    QCOMPARE(world.panels.saveRequests.size(), goesMeanwhile ? 1 : 0);
    QCOMPARE(world.controller->state(), State::idle);
}

void RecordingControllerTest::asksWhereToSave_data()
{
    QTest::addColumn<bool>("isHd");
    QTest::addColumn<QString>("name");
    QTest::newRow("normal") << false << u"Lumaro Normal Recording 2026-11-16 01-59-49.mp4"_s;
    QTest::newRow("hd") << true << u"Lumaro HD Recording 2026-11-16 01-59-49.mp4"_s;
}

void RecordingControllerTest::asksWhereToSave()
{
    QFETCH(const bool, isHd);
    QFETCH(const QString, name);
    World world;
    world.start(isHd ? hd : normal);
    const SavePanelRequest request = world.panels.saveRequests.value(0);
    QCOMPARE(request.title, u"Save Recording"_s);
    QCOMPARE(request.proposedName, name);
    QCOMPARE(request.extension, u"mp4"_s);
    const SavePanelAccessory accessory = world.panels.accessories.value(0);
    QCOMPARE(accessory.label, u"Stop After (Optional)"_s);
    QCOMPARE(accessory.placeholder, u"30m or 1.2hr"_s);
    QCOMPARE(accessory.folder, QUrl(u"file:///movies"_s));
}

void RecordingControllerTest::cancelIsSilent()
{
    World world;
    world.panels.choice.reset();
    world.panels.text = u"nonsense"_s;
    const QSignalSpy states(world.controller.get(), &PlayerRecordingController::stateChanged);
    world.start();
    QVERIFY(world.controller->errorMessage().isEmpty());
    QCOMPARE(states.count(), 0);
}

void RecordingControllerTest::checksTheDuration_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("starts");
    QTest::newRow("empty") << QString() << true;
    QTest::newRow("only spaces") << u"  \n\t"_s << true;
    QTest::newRow("valid between spaces") << u"\n1,2 hr "_s << true;
    QTest::newRow("no number") << u"m"_s << false;
    QTest::newRow("no duration") << u"abc"_s << false;
    QTest::newRow("too long") << u"1e9m"_s << false;
}

void RecordingControllerTest::checksTheDuration()
{
    QFETCH(const QString, text);
    QFETCH(const bool, starts);
    World world;
    world.panels.text = text;
    world.start();
    QCOMPARE(world.controller->state(), starts ? State::recording : State::idle);
    QCOMPARE(world.controller->errorMessage(),
             starts ? QString()
                    : u"Enter a valid duration such as 30m, 90m or 1.2hr, or leave the field blank "
                      "for manual Stop."_s);
    QCOMPARE(QFile::exists(world.file.toLocalFile()), starts);
}

void RecordingControllerTest::configuresTheStream()
{
    World world;
    // The window goes to a finer display while the panel is open, and the panel has the keyboard.
    world.panels.whileOpen = [&] { world.capture.key = KeyWindow{99, 2}; };
    world.surface->rect = {0, 0, 451, 253};
    world.capture.viewOrigin = {20, 30};
    world.start();
    const CaptureConfiguration expected{.source = {1, {120, 127, 451, 253}},
                                        .window = 7,
                                        .outputSize = {902, 506},
                                        .minimumFrameInterval = 33'333'333ns,
                                        .queueDepth = 6,
                                        .showsCursor = false,
                                        .capturesAudio = true,
                                        .excludesOwnAudio = false,
                                        .audioSampleRate = 48'000,
                                        .audioChannels = 2};
    QVERIFY(world.capture.configuration == expected);
    QCOMPARE(world.asset.video->width, 902);
    QVERIFY(world.queueLabel.endsWith(u".capture"));
}

void RecordingControllerTest::failsWhilePreparing_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QString>("error");
    QTest::newRow("content") << u"content"_s << u"No content."_s;
    QTest::newRow("window") << u"window"_s << u"The Lumaro window could not be captured."_s;
    QTest::newRow("display") << u"display"_s
                             << u"The display containing Lumaro could not be captured."_s;
    QTest::newRow("area") << u"area"_s << u"The video capture area is invalid."_s;
    QTest::newRow("writer") << u"writer"_s << u"Read-only."_s;
    QTest::newRow("inputs") << u"inputs"_s
                            << u"The MP4 recording writer could not be configured."_s;
    QTest::newRow("stream") << u"stream"_s << u"No stream."_s;
}

void RecordingControllerTest::failsWhilePreparing()
{
    QFETCH(const QString, what);
    QFETCH(const QString, error);
    World world;
    if (what == u"content")
        world.capture.content = std::unexpected(u"No content."_s);
    else if (what == u"window")
        world.capture.key->number = 8;
    else if (what == u"display")
        world.capture.content->displays.clear();
    else if (what == u"area")
        world.surface->rect = {0, 0, 8, 360};
    else if (what == u"writer")
        world.refusal = u"Read-only."_s;
    else if (what == u"inputs")
        world.asset.acceptsAudio = false;
    else
        world.capture.streamError = u"No stream."_s;
    QList<State> states;
    connect(world.controller.get(), &PlayerRecordingController::stateChanged, this,
            [&] { states.append(world.controller->state()); });
    world.start();
    world.settle();
    QCOMPARE(states, (QList{State::preparing, State::idle}));
    QCOMPARE(world.controller->errorMessage(), error);
    QVERIFY(!QFile::exists(world.file.toLocalFile()));
    QVERIFY(!world.controller->recordingPanelShown());
}

void RecordingControllerTest::keepsAFileThatWasNotReplaced()
{
    World world;
    QFile old(world.file.toLocalFile());
    QVERIFY(old.open(QIODevice::WriteOnly));
    world.capture.key->number = 8;
    world.start();
    QVERIFY(old.exists());
}

void RecordingControllerTest::records()
{
    World world;
    const QSignalSpy saved(world.controller.get(), &PlayerRecordingController::saved);
    QUrl savedWhenIdle;
    connect(world.controller.get(), &PlayerRecordingController::stateChanged, this, [&] {
        if (world.controller->state() == State::idle)
            savedWhenIdle = world.controller->lastSavedURL();
    });
    world.start();
    QCOMPARE(world.controller->state(), State::recording);
    world.start();
    QCOMPARE(world.panels.saveRequests.size(), 1);
    world.show(3ms);
    world.controller->stop();
    QCOMPARE(world.controller->state(), State::stopping);
    QVERIFY(world.controller->isRecording());
    QVERIFY(!world.controller->recordingPanelShown());
    world.controller->stop();
    QCOMPARE(world.capture.stops, 1);
    world.settle();
    QCOMPARE(world.controller->state(), State::idle);
    QCOMPARE(world.controller->lastSavedURL(), world.file);
    QCOMPARE(savedWhenIdle, world.file);
    QCOMPARE(saved.count(), 1);
    // The end follows the last picture.
    QCOMPARE(world.asset.log.first(2), (QStringList{u"session 3"_s, u"video 3"_s}));
    QCOMPARE(world.asset.log.last(), u"finished"_s);
    QCOMPARE(world.scheduler.pendingCalls(), 0);
}

void RecordingControllerTest::showsThePanel()
{
    World world;
    world.start();
    QVERIFY(world.controller->recordingPanelShown());
    QCOMPARE(world.controller->recordingPanelWidth(), 210);
    QCOMPARE(world.controller->durationLabel(), u"REC  00:00"_s);
    world.scheduler.advance(61s);
    QCOMPARE(world.controller->durationLabel(), u"REC  01:01"_s);
    QCOMPARE(world.controller->duration(), 61.0);
}

void RecordingControllerTest::stopsByItself()
{
    World world;
    world.panels.text = u"1m"_s;
    world.start();
    QCOMPARE(world.controller->recordingPanelWidth(), 310);
    world.scheduler.advance(20s);
    QCOMPARE(world.controller->durationLabel(), u"REC  00:20  •  LEFT  00:40"_s);
    world.scheduler.advance(39s + 999ms);
    QCOMPARE(world.controller->state(), State::recording);
    world.scheduler.advance(251ms);
    QCOMPARE(world.controller->state(), State::stopping);
    world.show(1ms);
    world.settle();
    QCOMPARE(world.controller->state(), State::idle);

    // The limit was for that recording.
    world.panels.text.clear();
    world.start();
    world.scheduler.advance(120s);
    QCOMPARE(world.controller->state(), State::recording);
}

void RecordingControllerTest::stopsWhenTheFileFails()
{
    World world;
    world.start();
    world.show(1ms);
    world.settle();
    world.asset.status = AssetWriter::Status::Failed;
    world.asset.error = u"The disk is full."_s;
    world.scheduler.advance(250ms);
    world.settle();
    QCOMPARE(world.controller->state(), State::idle);
    QCOMPARE(world.controller->errorMessage(), u"The disk is full."_s);
    QVERIFY(world.controller->lastSavedURL().isEmpty());
    QVERIFY(QFile::exists(world.file.toLocalFile()));
}

void RecordingControllerTest::saysWhenNothingWasCaptured()
{
    World world;
    world.start();
    world.controller->stopFromPanel();
    world.settle();
    QCOMPARE(world.controller->errorMessage(), u"No video frames were captured."_s);
    QVERIFY(!QFile::exists(world.file.toLocalFile()));
}

void RecordingControllerTest::endsWithTheStream()
{
    World world;
    world.panels.text = u"1m"_s;
    world.start();
    world.show(1ms);
    world.settle();
    world.capture.output->didStopWithError(u"No permission any more."_s);
    QCOMPARE(world.controller->state(), State::recording);
    world.settle();
    QCOMPARE(world.controller->state(), State::idle);
    // As it stands.
    QCOMPARE(world.controller->errorMessage(), u"No permission any more."_s);
    QVERIFY(!world.controller->requiresScreenRecordingPermission());
    QVERIFY(!world.controller->recordingPanelShown());
    QCOMPARE(world.scheduler.pendingCalls(), 0);
    QVERIFY(!world.asset.log.contains(u"finished"_s));
    QVERIFY(QFile::exists(world.file.toLocalFile()));
}

void RecordingControllerTest::saysSomethingOfAnyError_data()
{
    QTest::addColumn<bool>("whileRecording");
    QTest::newRow("preparing") << false;
    QTest::newRow("recording") << true;
}

void RecordingControllerTest::saysSomethingOfAnyError()
{
    QFETCH(const bool, whileRecording);
    World world;
    if (!whileRecording)
        world.capture.content = std::unexpected(QString());
    world.start();
    if (whileRecording)
        world.capture.output->didStopWithError({});
    world.settle();
    QCOMPARE(world.controller->errorMessage(), u"Unknown recording error."_s);
}

void RecordingControllerTest::recognisesARefusal_data()
{
    QTest::addColumn<QString>("error");
    QTest::addColumn<bool>("refused");
    QTest::newRow("tcc") << u"The tcc database."_s << true;
    QTest::newRow("declined") << u"The user DECLINED."_s << true;
    QTest::newRow("permission") << u"No Permission."_s << true;
    QTest::newRow("other") << u"No stream."_s << false;
}

void RecordingControllerTest::recognisesARefusal()
{
    QFETCH(const QString, error);
    QFETCH(const bool, refused);
    World world;
    world.capture.streamError = error;
    world.start();
    QCOMPARE(world.controller->requiresScreenRecordingPermission(), refused);
    QCOMPARE(world.controller->errorMessage(),
             refused ? u"macOS has blocked screen recording permission for Lumaro. Enable Screen & "
                       "System Audio Recording in System Settings, then quit and reopen the app."_s
                     : error);
}

void RecordingControllerTest::followsTheSurface()
{
    World world;
    world.capture.content->displays.append({.identifier = 2, .frame = {1000, 0, 1000, 800}});
    QRectF &window = world.capture.content->windows[0].frame;
    world.start();
    world.scheduler.advance(1s);
    QVERIFY(world.capture.sources.isEmpty());
    window.translate(10, 20);
    world.scheduler.advance(250ms);
    QCOMPARE(world.capture.sources.takeFirst(), (CaptureArea{1, {110, 70, 640, 360}}));
    // The same place on another display is another source.
    window.translate(1000, 0);
    world.scheduler.advance(250ms);
    QCOMPARE(world.capture.sources.takeFirst(), (CaptureArea{2, {110, 70, 640, 360}}));
    // What is drawn is taken from where it is.
    world.surface->rect = {0, 0, 320, 180};
    world.capture.output->pictureIsDue();
    QCOMPARE(world.capture.sources.takeFirst(), (CaptureArea{2, {110, 250, 320, 180}}));
    // A window that goes off screen leaves the last part.
    window.translate(5000, 0);
    world.scheduler.advance(1s);
    QVERIFY(world.capture.sources.isEmpty());
    QCOMPARE(world.controller->state(), State::recording);
    world.controller->stop();
    world.capture.output->pictureIsDue();
}

void RecordingControllerTest::completesTheFileAtTheEnd_data()
{
    QTest::addColumn<bool>("stops");
    QTest::addColumn<bool>("streamEnds");
    QTest::newRow("recording") << false << false;
    QTest::newRow("while the stream stops") << true << false;
    QTest::newRow("while the file is finished") << true << true;
}

void RecordingControllerTest::completesTheFileAtTheEnd()
{
    QFETCH(const bool, stops);
    QFETCH(const bool, streamEnds);
    World world;
    world.start();
    world.show(1ms);
    world.queue->run();
    if (!streamEnds)
        world.capture.stopping.emplace();
    if (stops)
        world.controller->stop();
    world.capture.output.reset();
    world.controller.reset();
    // A stream that were left behind would go on capturing.
    QCOMPARE(world.capture.destroyedStreams, 1);
    QCOMPARE(world.asset.log.count(u"finished"_s), 1);
    QCOMPARE(world.asset.log.last(), u"finished"_s);
    // Before it could begin.
    QVERIFY(world.asset.log.indexOf(u"hurry"_s) < world.asset.log.indexOf(u"finished"_s));
    QVERIFY(world.asset.log.contains(u"hurry"_s));
    if (world.capture.stopping)
        world.capture.stopping->complete(true);
    QCOMPARE(world.asset.log.count(u"finished"_s), 1);
}

QTEST_GUILESS_MAIN(RecordingControllerTest)
#include "tst_recordingcontroller.moc"
