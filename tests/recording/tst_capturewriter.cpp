#include "recording/PlayerCaptureWriter.h"
#include "tests/fakes/FakeAssetWriter.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

const uchar pixels[16] = {};

VideoSample picture(MediaTime time)
{
    return {
        .presentationTime = time, .size = {2, 2}, .topRow = pixels, .bytesPerLine = 8, .owner = {}};
}

AudioSample sound(MediaTime time)
{
    return {.presentationTime = time, .channels = 2, .data = std::vector<float>(4)};
}

/// A writer on a fake file, and its end.
struct World
{
    QTemporaryDir folder;
    QUrl file = QUrl::fromLocalFile(folder.filePath(u"a.mp4"_s));
    FakeAsset asset;
    QString refusal;
    std::optional<PlayerCaptureWriter::Outcome> outcome;

    auto create(const QSize &size = {640, 360})
    {
        return PlayerCaptureWriter::create(fakeAssetWriters(asset, refusal), file, size);
    }
    void finish(PlayerCaptureWriter &writer)
    {
        writer.finish([this](const auto &result) { outcome = result; });
    }
};

} // namespace

class CaptureWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bitRateFollowsTheSize_data();
    void bitRateFollowsTheSize();
    void configures();
    void replacesAFile();
    void refusesInputs_data();
    void refusesInputs();
    void beginsWithAPicture();
    void dropsWhatCannotBeWritten();
    void finishes();
    void reportsFailures_data();
    void reportsFailures();
    void leavesNoFileWithoutPictures();
};

void CaptureWriterTest::bitRateFollowsTheSize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("bitRate");
    QTest::newRow("1080p") << QSize(1920, 1080) << 12'441'600;
    QTest::newRow("720p") << QSize(1280, 720) << 5'529'600;
    QTest::newRow("raised") << QSize(640, 360) << 4'000'000;
    QTest::newRow("smallest") << QSize(2, 2) << 4'000'000;
    QTest::newRow("absurd") << QSize(30'000, 30'000) << std::numeric_limits<int>::max();
}

void CaptureWriterTest::bitRateFollowsTheSize()
{
    QFETCH(const QSize, size);
    QFETCH(const int, bitRate);
    QCOMPARE(videoInputSettings(size).averageBitRate, bitRate);
}

void CaptureWriterTest::configures()
{
    World world;
    QVERIFY(world.create());
    QVERIFY(world.asset.video
            == (VideoInputSettings{.width = 640,
                                   .height = 360,
                                   .averageBitRate = 4'000'000,
                                   .expectedFrameRate = 30,
                                   .maximumKeyFrameInterval = 60}));
    QVERIFY(world.asset.audio
            == (AudioInputSettings{.channels = 2, .sampleRate = 48'000, .bitRate = 192'000}));
    QCOMPARE(world.asset.status, AssetWriter::Status::Writing);
}

void CaptureWriterTest::replacesAFile()
{
    World world;
    QFile old(world.file.toLocalFile());
    QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
    old.close();
    // The fake makes a new file only where there is none.
    QVERIFY(world.create());
    QCOMPARE(QFileInfo(world.file.toLocalFile()).size(), 0);
}

void CaptureWriterTest::refusesInputs_data()
{
    QTest::addColumn<bool>("video");
    QTest::addColumn<bool>("audio");
    QTest::addColumn<bool>("starts");
    QTest::addColumn<QString>("writerError");
    QTest::addColumn<QString>("error");
    const QString unconfigured = u"The MP4 recording writer could not be configured."_s;
    QTest::newRow("no video") << false << true << true << QString() << unconfigured;
    QTest::newRow("no audio") << true << false << true << u"ignored"_s << unconfigured;
    QTest::newRow("no start") << true << true << false << QString() << unconfigured;
    QTest::newRow("no start, with a reason")
        << true << true << false << u"No room."_s << u"No room."_s;
}

void CaptureWriterTest::refusesInputs()
{
    QFETCH(const bool, video);
    QFETCH(const bool, audio);
    QFETCH(const bool, starts);
    QFETCH(const QString, writerError);
    QFETCH(const QString, error);
    World world;
    world.asset.acceptsVideo = video;
    world.asset.acceptsAudio = audio;
    world.asset.starts = starts;
    world.asset.error = writerError;
    const auto writer = world.create();
    QVERIFY(!writer);
    QCOMPARE(writer.error(), error);
    QVERIFY(!QFile::exists(world.file.toLocalFile()));
    world.refusal = u"Read-only."_s;
    QCOMPARE(world.create().error(), u"Read-only."_s);
}

void CaptureWriterTest::beginsWithAPicture()
{
    World world;
    const auto writer = *world.create();
    writer->append(sound(1ms));
    writer->append(picture(5ms));
    writer->append(sound(6ms));
    writer->append(picture(7ms));
    QCOMPARE(world.asset.log,
             (QStringList{u"session 5"_s, u"video 5"_s, u"audio 6"_s, u"video 7"_s}));
}

void CaptureWriterTest::dropsWhatCannotBeWritten()
{
    World world;
    const auto writer = *world.create();
    VideoSample notReady = picture(1ms);
    notReady.topRow = nullptr;
    VideoSample invalid = picture(2ms);
    invalid.size = {};
    writer->append(notReady);
    writer->append(invalid);
    QVERIFY(world.asset.log.isEmpty());

    world.asset.videoReady = false;
    writer->append(picture(3ms));
    world.asset.videoReady = true;
    world.asset.audioReady = false;
    writer->append(sound(4ms));
    world.asset.audioReady = true;
    AudioSample odd = sound(5ms);
    odd.data.pop_back();
    writer->append(odd);
    writer->append(AudioSample{});
    // The first picture begins the session even when there is no room for it.
    QCOMPARE(world.asset.log, QStringList{u"session 3"_s});

    world.asset.status = AssetWriter::Status::Failed;
    QVERIFY(writer->hasFailed());
    writer->append(picture(6ms));
    writer->append(sound(6ms));
    QCOMPARE(world.asset.log.size(), 1);
}

void CaptureWriterTest::finishes()
{
    World world;
    const auto writer = *world.create();
    writer->append(picture(0ms));
    world.finish(*writer);
    QCOMPARE(world.asset.log.mid(2),
             (QStringList{u"video finished"_s, u"audio finished"_s, u"finished"_s}));
    QCOMPARE(world.outcome->value(), world.file);
}

void CaptureWriterTest::reportsFailures_data()
{
    QTest::addColumn<QString>("writerError");
    QTest::addColumn<QString>("error");
    QTest::newRow("with a reason") << u"The disk is full."_s << u"The disk is full."_s;
    QTest::newRow("without") << QString() << u"The MP4 recording writer could not be configured."_s;
}

void CaptureWriterTest::reportsFailures()
{
    QFETCH(const QString, writerError);
    QFETCH(const QString, error);
    World world;
    world.asset.completes = false;
    world.asset.error = writerError;
    const auto writer = *world.create();
    writer->append(picture(0ms));
    world.finish(*writer);
    QCOMPARE(world.outcome->error(), error);
}

void CaptureWriterTest::leavesNoFileWithoutPictures()
{
    World world;
    const auto writer = *world.create();
    writer->append(sound(0ms));
    world.finish(*writer);
    QCOMPARE(world.outcome->error(), u"No video frames were captured."_s);
    QCOMPARE(world.asset.status, AssetWriter::Status::Cancelled);
    QVERIFY(!QFile::exists(world.file.toLocalFile()));
}

QTEST_APPLESS_MAIN(CaptureWriterTest)
#include "tst_capturewriter.moc"
