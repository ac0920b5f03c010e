#include "tests/e2e/servers/FaultServer.h"
#include "tests/e2e/servers/LiveFeed.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/NginxServer.h"
#include "tests/platform/mpv/MpvWorld.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

Q_DECLARE_METATYPE(lumaro::Fixture)

namespace {

using Status = MediaPlayer::TimeControlStatus;
using Failure = MediaPlayer::ItemFailure;

/// Of 16-bit samples, as a share of full scale.
double loudness(const QString &file)
{
    QFile input(file);
    if (!input.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray bytes = input.readAll();
    const auto *samples = reinterpret_cast<const qint16 *>(bytes.constData());
    const qsizetype count = bytes.size() / qsizetype(sizeof(qint16));
    double sum = 0;
    for (qsizetype i = 0; i < count; ++i)
        sum += std::pow(samples[i] / 32768.0, 2);
    return count == 0 ? -1 : std::sqrt(sum / double(count));
}

QByteArray contentOf(const QString &file)
{
    QFile input(file);
    return input.open(QIODevice::ReadOnly) ? input.readAll() : QByteArray();
}

bool isNear(std::optional<double> value, double expected, double tolerance = 0.05)
{
    return value && std::abs(*value - expected) <= tolerance;
}

} // namespace

/// libmpv plays real media from files and real servers.
class MpvMediaPlayerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_world = std::make_unique<MpvWorld>(); }
    void cleanup() { m_world.reset(); }

    void tellsLengthAndReach_data();
    void tellsLengthAndReach();
    void seeksWithinWhatHasArrived();
    void liveStreamHasNoLengthButAReach();
    void statusFollowsTheData();
    void volumeIsAGain_data();
    void volumeIsAGain();
    void beginsWhereItIsTold();
    void seeksExactlyWhilePaused();
    void positionNeverFallsBackWhileSeeksFollowEachOther();
    void pausesAtTheEndAndBeginsAnew();
    void opensAgainWhatCannotBeSoughtIn_data();
    void opensAgainWhatCannotBeSoughtIn();
    void channelComesBack();
    void newItemBeginsAtZero();
    void lastOfManyItemsPlays();
    void knowsThatAPictureIsTurned();
    void tellsCoversFromFilms();
    void copiesPictures();
    void tellsWhyItCannotPlay_data();
    void tellsWhyItCannotPlay();
    void triesAgainWhatFailed();
    void playlistGoesOnToWhatCanBePlayed();
    void playlistsEndSomewhere_data();
    void playlistsEndSomewhere();
    void mayGoWhileLoading();

private:
    MpvMediaPlayer &player() { return *m_world->player; }
    QString fixture(Fixture fixture) const { return valueOrFail(m_media.path(fixture)); }
    QUrl file(Fixture fixture) const { return QUrl::fromLocalFile(this->fixture(fixture)); }

    MediaFixtures m_media{QStringLiteral(LUMARO_FIXTURE_FOLDER)};
    std::unique_ptr<NginxServer> m_nginx;
    std::unique_ptr<FaultServer> m_faults;
    std::unique_ptr<MpvWorld> m_world;
};

void MpvMediaPlayerTest::initTestCase()
{
    m_nginx = valueOrFail(NginxServer::start());
    m_faults = valueOrFail(FaultServer::start());
    QVERIFY(m_nginx && m_faults);
    QVERIFY(m_nginx->publish(fixture(Fixture::Movie), u"movie.mp4"_s));
    QVERIFY(m_nginx->publish(fixture(Fixture::Matroska), u"short.mkv"_s));
    QVERIFY(m_nginx->publish(QFileInfo(fixture(Fixture::Hls)).path(), u"hls"_s));
}

void MpvMediaPlayerTest::tellsLengthAndReach_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<double>("length");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("reachesAll");
    const QSize hd(1280, 720);
    const auto served = [this](const QString &path) { return m_nginx->url(path); };
    QTest::newRow("file") << file(Fixture::Movie) << 60. << hd << true;
    QTest::newRow("sound") << file(Fixture::AudioOnly) << 10. << QSize() << true;
    QTest::newRow("served in parts") << served(u"/movie.mp4"_s) << 60. << hd << true;
    QTest::newRow("finished HLS") << served(u"/hls/master.m3u8"_s) << 20. << QSize(640, 360)
                                  << true;
    QTest::newRow("served whole only") << served(u"/whole/0/movie.mp4"_s) << 60. << hd << true;
    QTest::newRow("served whole only, slowly")
        << served(u"/whole/400000/movie.mp4"_s) << 60. << hd << false;
}

void MpvMediaPlayerTest::tellsLengthAndReach()
{
    QFETCH(const QUrl, url);
    QFETCH(const double, length);
    m_world->open(url);
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(becomesTrue([&] { return isNear(player().duration(), length, 0.5); }));
    QTEST(player().presentationSize(), "size");
    QVERIFY(becomesTrue([&] { return player().seekableRange().has_value(); }));
    QVERIFY(player().seekableRange()->start < 0.5);
    QTEST(isNear(player().seekableRange()->end, length, 0.5), "reachesAll");
    QCOMPARE(m_world->failures.size(), 0);
}

void MpvMediaPlayerTest::seeksWithinWhatHasArrived()
{
    m_world->open(m_nginx->url(u"/whole/400000/movie.mp4"_s));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(becomesTrue(
        [&] { return player().seekableRange().value_or(MediaPlayer::TimeRange()).end > 15; }));
    player().seek(10.5);
    QVERIFY(m_world->playsTo(10.7));
    player().seek(1);
    QVERIFY(becomesTrue([&] { return player().currentTime().value_or(99) < 3; }));
    QVERIFY(m_world->playsTo(1.3));
    QVERIFY(isNear(player().duration(), 60, 0.5));
}

void MpvMediaPlayerTest::liveStreamHasNoLengthButAReach()
{
    const auto feed = valueOrFail(LiveFeed::start(*m_nginx, u"live"_s));
    QVERIFY(feed && feed->waitUntilServing(30s));
    QList<double> lengths;
    player().setPeriodicTimeObserver(50ms, [&] {
        if (player().duration())
            lengths.append(*player().duration());
    });
    m_world->open(feed->url());
    QVERIFY(becomesTrue([&] {
        return player().seekableRange().value_or(MediaPlayer::TimeRange()).end > 4
            && player().currentTime() > 3;
    }));
    QCOMPARE(lengths, QList<double>());
    player().seek(0.5);
    QVERIFY(becomesTrue([&] { return player().currentTime().value_or(99) < 2; }));
    QVERIFY(m_world->playsTo(1.0));
    QCOMPARE(lengths, QList<double>());
    player().setPeriodicTimeObserver(50ms, {});
}

void MpvMediaPlayerTest::statusFollowsTheData()
{
    m_faults->hold("/late");
    QCOMPARE(player().timeControlStatus(), Status::Paused);
    m_world->open(m_faults->url("/late"));
    QCOMPARE(player().timeControlStatus(), Status::WaitingToPlayAtSpecifiedRate);
    QCOMPARE(player().rate(), 1);
    player().pause();
    QCOMPARE(player().timeControlStatus(), Status::Paused);
    QCOMPARE(player().rate(), 0);

    const auto feed = valueOrFail(LiveFeed::start(*m_nginx, u"stalls"_s));
    QVERIFY(feed && feed->waitUntilServing(30s));
    const QSignalSpy empty(&player(), &MediaPlayer::playbackBufferEmptyChanged);
    const QSignalSpy likely(&player(), &MediaPlayer::playbackLikelyToKeepUpChanged);
    m_world->open(feed->url());
    QVERIFY(m_world->playsTo(0.1));
    feed->stall();
    QVERIFY(becomesTrue(
        [&] { return player().timeControlStatus() == Status::WaitingToPlayAtSpecifiedRate; }));
    QVERIFY(becomesTrue([&] { return !empty.isEmpty() && empty.last()[0].toBool(); }));
    feed->resume();
    QVERIFY(becomesTrue([&] { return player().timeControlStatus() == Status::Playing; }));
    QVERIFY(becomesTrue([&] { return likely.last()[0].toBool(); }));

    player().removeItem();
    QCOMPARE(player().timeControlStatus(), Status::Paused);
    QVERIFY(!player().currentTime() && !player().duration() && !player().seekableRange());
}

void MpvMediaPlayerTest::volumeIsAGain_data()
{
    QTest::addColumn<double>("gain");
    QTest::addColumn<bool>("muted");
    QTest::addColumn<double>("expected");
    QTest::newRow("half") << 0.5 << false << 0.5;
    QTest::newRow("a tenth") << 0.1 << false << 0.1;
    QTest::newRow("silence") << 0.0 << false << 0.0;
    QTest::newRow("muted") << 1.0 << true << 0.0;
    QTest::newRow("never louder than full") << 2.0 << false << 1.0;
}

void MpvMediaPlayerTest::volumeIsAGain()
{
    QFETCH(const double, gain);
    QFETCH(const bool, muted);
    QFETCH(const double, expected);
    const QTemporaryDir folder;
    mpv_handle *mpv = player().core()->handle();
    mpv_set_property_string(mpv, "ao", "pcm");
    mpv_set_property_string(mpv, "ao-pcm-waveheader", "no");
    mpv_set_property_string(mpv, "audio-format", "s16");
    const auto record = [&](const QString &name) {
        const QString path = folder.filePath(name);
        mpv_set_property_string(mpv, "ao-pcm-file", qPrintable(path));
        m_world->open(file(Fixture::AudioOnly));
        const bool ended = becomesTrue([&] { return player().rate() == 0; });
        player().removeItem();
        return ended && becomesTrue([&] { return QFileInfo(path).size() > 500'000; })
            ? loudness(path)
            : -1;
    };
    const double full = record(u"full"_s);
    QVERIFY(full > 0.01);
    player().setVolume(gain);
    player().setMuted(muted);
    QVERIFY(isNear(record(u"changed"_s) / full, expected, 0.01));
}

void MpvMediaPlayerTest::beginsWhereItIsTold()
{
    QList<double> times;
    player().setPeriodicTimeObserver(50ms, [&] { times << player().currentTime().value_or(-1); });
    m_world->open(file(Fixture::Movie));
    player().seek(30);
    times.clear();
    QVERIFY(m_world->playsTo(30.3));
    QVERIFY2(*std::ranges::min_element(times) >= 29.9, "showed another time before");
    // What comes next knows nothing of it.
    m_world->open(file(Fixture::Matroska));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(player().currentTime() < 8);
    // Nor does anything when what should have begun there does not exist.
    m_world->open(QUrl::fromLocalFile(u"/no/such.mp4"_s));
    player().seek(30);
    QVERIFY(becomesTrue([&] { return m_world->failures.size() == 1; }));
    m_world->open(file(Fixture::Matroska));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(player().currentTime() < 8);
}

void MpvMediaPlayerTest::seeksExactlyWhilePaused()
{
    player().replaceItem(file(Fixture::Movie));
    QVERIFY(becomesTrue([&] { return m_world->started == 1; }));
    const auto shownPosition = [this] {
        double seconds = -1;
        mpv_get_property(player().core()->handle(), "time-pos", MPV_FORMAT_DOUBLE, &seconds);
        return seconds;
    };
    // Key frames stand two seconds apart.
    for (const double target : {31.4, 2.9, 59.5, 0.0}) {
        player().seek(target);
        // Told at once, and still true when the picture is there.
        QCOMPARE(player().currentTime(), target);
        QVERIFY(becomesTrue([&] { return isNear(shownPosition(), target); }));
        QVERIFY(isNear(player().currentTime(), target));
    }
    QCOMPARE(player().timeControlStatus(), Status::Paused);
}

void MpvMediaPlayerTest::positionNeverFallsBackWhileSeeksFollowEachOther()
{
    m_world->open(file(Fixture::Movie));
    QVERIFY(m_world->playsTo(0.2));
    double last = 0;
    QList<double> fallen;
    player().setPeriodicTimeObserver(10ms, [&] {
        if (const double now = player().currentTime().value_or(0); now < last - 0.05)
            fallen.append(now);
    });
    // As a slider does that is dragged.
    for (int i = 1; i <= 40; ++i) {
        last = i;
        player().seek(i);
        QTest::qWait(15);
    }
    QVERIFY(m_world->playsTo(40.2));
    QCOMPARE(fallen, QList<double>());
    player().setPeriodicTimeObserver(50ms, {});
}

void MpvMediaPlayerTest::pausesAtTheEndAndBeginsAnew()
{
    const QSignalSpy ends(&player(), &MediaPlayer::itemEnded);
    m_world->open(file(Fixture::Matroska));
    QVERIFY(m_world->playsTo(0.2));
    player().seek(9.5);
    QVERIFY(becomesTrue([&] { return player().rate() == 0; }));
    QVERIFY(becomesTrue([&] { return isNear(player().currentTime(), 10, 0.2); }));
    QVERIFY(player().hasItem());
    QCOMPARE(ends.count(), 1);
    player().play();
    QVERIFY(becomesTrue([&] { return player().currentTime().value_or(99) < 5; }));
    QVERIFY(m_world->playsTo(0.2));

    // Back from the end without play() it stays paused.
    player().seek(9.8);
    QVERIFY(becomesTrue([&] { return player().rate() == 0; }));
    player().seek(5);
    QVERIFY(becomesTrue([&] { return isNear(player().currentTime(), 5); }));
    QCOMPARE(player().rate(), 0);
    QCOMPARE(ends.count(), 2);
    QCOMPARE(m_world->failures.size(), 0);
}

void MpvMediaPlayerTest::opensAgainWhatCannotBeSoughtIn_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<double>("length");
    QTest::addColumn<bool>("isStream");
    QByteArray segments;
    const QDir hls(QFileInfo(fixture(Fixture::Hls)).path() + u"/high"_s);
    for (const QString &name : hls.entryList({u"*.ts"_s}, QDir::Files, QDir::Name).first(2))
        segments += contentOf(hls.filePath(name));
    QTest::newRow("stream that breaks off") << QByteArray("/channel.ts") << segments << 4. << true;
    QTest::newRow("film that is served whole only")
        << QByteArray("/clip.mp4") << contentOf(fixture(Fixture::SmallClip)) << 10. << false;
}

void MpvMediaPlayerTest::opensAgainWhatCannotBeSoughtIn()
{
    QFETCH(const QByteArray, path);
    QFETCH(const QByteArray, body);
    QFETCH(const double, length);
    QFETCH(const bool, isStream);
    FaultResponse response = FaultResponse::of("application/octet-stream", body);
    if (isStream)
        response.framing = FaultResponse::Framing::UntilClose;
    response.dripSize = body.size() / 20;
    response.dripInterval = 100ms;
    m_faults->route(path, response);
    const QSignalSpy brokeOff(&player(), &MediaPlayer::itemBrokeOff);
    const QSignalSpy ends(&player(), &MediaPlayer::itemEnded);
    m_world->open(m_faults->url(path));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(becomesTrue([&] {
        return player().seekableRange().value_or(MediaPlayer::TimeRange()).end > length - 0.5;
    }));
    player().seek(length - 0.5);
    QVERIFY(becomesTrue([&] { return player().rate() == 0; }));
    QCOMPARE(ends.count(), 1);
    QCOMPARE(brokeOff.count(), isStream ? 1 : 0);
    QCOMPARE(m_faults->requestCount(path), 1);
    player().play();
    QVERIFY(becomesTrue([&] { return m_faults->requestCount(path) == 2; }));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(player().currentTime() < length - 1);
    QVERIFY(player().duration().has_value() != isStream);
    QCOMPARE(m_world->failures.size(), 0);
}

void MpvMediaPlayerTest::channelComesBack()
{
    auto feed = valueOrFail(LiveFeed::start(*m_nginx, u"channel"_s));
    QVERIFY(feed && feed->waitUntilServing(30s));
    const QSignalSpy brokeOff(&player(), &MediaPlayer::itemBrokeOff);
    m_world->open(feed->url());
    QVERIFY(m_world->playsTo(2));
    feed->remove();
    QVERIFY(becomesTrue([&] { return player().rate() == 0; }));
    QCOMPARE(brokeOff.count(), 1);
    feed.reset();
    feed = valueOrFail(LiveFeed::start(*m_nginx, u"channel"_s));
    QVERIFY(feed && feed->waitUntilServing(30s));
    player().play();
    QVERIFY(becomesTrue([&] { return player().currentTime().value_or(99) < 1; }));
    QVERIFY(m_world->playsTo(1));
    QCOMPARE(player().duration(), std::nullopt);
    QCOMPARE(m_world->failures.size(), 0);
}

void MpvMediaPlayerTest::newItemBeginsAtZero()
{
    m_world->open(file(Fixture::Movie));
    QVERIFY(m_world->playsTo(0.5));
    std::optional<double> told;
    std::optional<double> length;
    player().setPeriodicTimeObserver(1h, [&] {
        told = player().currentTime();
        length = player().duration();
    });
    m_faults->hold("/never");
    m_world->open(m_faults->url("/never"));
    QCOMPARE(told, 0);
    QVERIFY(!length);
    player().setPeriodicTimeObserver(1h, {});
}

void MpvMediaPlayerTest::lastOfManyItemsPlays()
{
    m_faults->hold("/never");
    for (int i = 0; i < 60; ++i) {
        m_world->open(i % 3 == 0       ? file(Fixture::Movie)
                          : i % 3 == 1 ? m_faults->url("/never")
                                       : QUrl(u"http://127.0.0.1:9/refused"_s));
        if (i % 7 == 0)
            player().removeItem();
        if (i % 5 == 0)
            QTest::qWait(5);
    }
    m_world->failures.clear();
    m_world->open(file(Fixture::Matroska));
    QVERIFY(m_world->playsTo(0.5));
    QVERIFY(isNear(player().duration(), 10, 0.2));
    QCOMPARE(player().presentationSize(), QSize(640, 360));
    QCOMPARE(m_world->failures, QList<Failure>());
}

void MpvMediaPlayerTest::knowsThatAPictureIsTurned()
{
    m_world->open(file(Fixture::Turned));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(becomesTrue([&] { return player().presentationSize() == QSize(360, 640); }));
    m_world->open(file(Fixture::Matroska));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(becomesTrue([&] { return player().presentationSize() == QSize(640, 360); }));
}

void MpvMediaPlayerTest::tellsCoversFromFilms()
{
    m_world->open(file(Fixture::AudioWithCover));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(becomesTrue([&] { return player().presentationSize() == QSize(300, 300); }));
    QVERIFY(becomesTrue([&] { return player().showsCover(); }));
    m_world->open(file(Fixture::Matroska));
    QVERIFY(!player().showsCover());
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(!player().showsCover());
    m_world->open(file(Fixture::AudioOnly));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(!player().showsCover());
}

void MpvMediaPlayerTest::copiesPictures()
{
    const auto before = player().addVideoOutput();
    m_world->open(file(Fixture::SolidColor));
    QVERIFY(m_world->playsTo(0.5));
    const auto output = player().addVideoOutput();
    const double time = player().currentTime().value_or(0);
    QVERIFY(output->hasNewPixelBuffer(time) && !before->hasNewPixelBuffer(time));

    std::optional<PixelBuffer> picture;
    // Waiting for libmpv is for another thread.
    std::thread([&] { picture = output->copyPixelBuffer(time); }).join();
    QVERIFY(picture);
    QCOMPARE(QSize(picture->width, picture->height), QSize(1280, 720));
    const auto part = [&](int index) {
        const qsizetype middle = 360 * picture->bytesPerLine + qsizetype(640) * 4;
        return int(uchar(picture->bytes.at(middle + index)));
    };
    const QRgb color = MediaFixtures::solidColor;
    QVERIFY(std::abs(part(0) - qBlue(color)) < 6 && std::abs(part(1) - qGreen(color)) < 6
            && std::abs(part(2) - qRed(color)) < 6);

    QVERIFY(!output->hasNewPixelBuffer(time));
    QVERIFY(output->hasNewPixelBuffer(time + 0.1));
    m_world->open(file(Fixture::Matroska));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(!output->hasNewPixelBuffer(time + 0.1));
}

void MpvMediaPlayerTest::tellsWhyItCannotPlay_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<int>("failure");
    const auto row = [](const char *name, const QUrl &url, Failure failure) {
        QTest::newRow(name) << url << int(failure);
    };
    row("404", m_nginx->url(u"/none.mp4"_s), Failure::Unreachable);
    row("refused", QUrl(u"http://127.0.0.1:9/live.m3u8"_s), Failure::Unreachable);
    row("no such file", QUrl(u"file:///nowhere/film.mp4"_s), Failure::Unreachable);
    row("noise", file(Fixture::RandomBytes), Failure::Unplayable);
    row("truncated index", file(Fixture::TruncatedIndex), Failure::Unplayable);
    const QString movie = fixture(Fixture::Movie);
    for (const char *address : {"edl://%1", "av://lavfi:testsrc", "file:edl://%1", "concat:%1",
                                "subfile,,start,0,end,0,,:%1", "data:video/mp4;base64,AAAA",
                                "memory://#EXTM3U", "fd://0", "lavf://file:%1", "%1"})
        row(address, QUrl(QString::fromLatin1(address).replace(u"%1"_s, movie)),
            Failure::Unsupported);
}

void MpvMediaPlayerTest::tellsWhyItCannotPlay()
{
    QFETCH(const QUrl, url);
    QFETCH(const int, failure);
    m_world->open(url);
    QCOMPARE(m_world->failures, QList<Failure>());
    QVERIFY(becomesTrue([&] { return !m_world->failures.isEmpty(); }));
    QCOMPARE(m_world->failures, QList<Failure>{Failure(failure)});
    QVERIFY(player().hasItem());
    QCOMPARE(player().rate(), 0);
    QCOMPARE(player().timeControlStatus(), Status::Paused);
    QCOMPARE(m_world->started, 0);

    m_world->open(file(Fixture::Movie));
    QVERIFY(m_world->playsTo(0.1));
    QCOMPARE(m_world->failures.size(), 1);
}

void MpvMediaPlayerTest::triesAgainWhatFailed()
{
    m_world->open(m_nginx->url(u"/later.mkv"_s));
    QVERIFY(becomesTrue([&] { return m_world->failures.size() == 1; }));
    QVERIFY(m_nginx->publish(fixture(Fixture::Matroska), u"later.mkv"_s));
    player().play();
    QVERIFY(m_world->playsTo(0.1));
}

void MpvMediaPlayerTest::playlistGoesOnToWhatCanBePlayed()
{
    QVERIFY(m_nginx->writeFile(u"radio.pls"_s,
                               "[playlist]\nNumberOfEntries=3\nFile1=gone.mkv\n"
                               "File2=short.mkv\nFile3=movie.mp4\n"));
    m_world->open(m_nginx->url(u"/radio.pls"_s));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(isNear(player().duration(), 10, 0.2));
    player().seek(9.8);
    QVERIFY(becomesTrue([&] { return isNear(player().duration(), 60, 0.2); }));
    QVERIFY(m_world->playsTo(0.2));
    QCOMPARE(m_world->failures, QList<Failure>());
    player().seek(59.8);
    QVERIFY(becomesTrue([&] { return player().rate() == 0; }));
    QCOMPARE(m_world->failures, QList<Failure>());
}

void MpvMediaPlayerTest::playlistsEndSomewhere_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("names itself") << QByteArray("#EXTM3U\nlist.m3u\n");
    QTest::newRow("names nothing that is there") << QByteArray("#EXTM3U\na.mp4\nb.mp4\nc.mp4\n");
    QTest::newRow("names itself among others") << QByteArray("#EXTM3U\na.mp4\nlist.m3u\nb.mp4\n");
}

void MpvMediaPlayerTest::playlistsEndSomewhere()
{
    QFETCH(const QByteArray, content);
    QVERIFY(m_nginx->writeFile(u"list.m3u"_s, content));
    m_world->open(m_nginx->url(u"/list.m3u"_s));
    QVERIFY(becomesTrue([&] { return !m_world->failures.isEmpty(); }));
    QCOMPARE(player().timeControlStatus(), Status::Paused);

    m_world->open(file(Fixture::Matroska));
    QVERIFY(m_world->playsTo(0.2));
    QCOMPARE(m_world->failures.size(), 1);
    QVERIFY(isNear(player().duration(), 10, 0.2));
}

void MpvMediaPlayerTest::mayGoWhileLoading()
{
    m_faults->hold("/never");
    const QUrl urls[] = {m_faults->url("/never"), file(Fixture::Movie),
                         m_nginx->url(u"/hls/master.m3u8"_s)};
    for (int i = 0; i < 9; ++i) {
        m_world->open(urls[i % 3]);
        if (i % 2 == 0)
            QTest::qWait(10 * i);
        // The renderer may outlive the player's last item, not the player; the item goes first.
        m_world->window.reset();
        m_world = std::make_unique<MpvWorld>();
    }
    QVERIFY(becomesTrue([&] { return m_faults->openConnections() == 0; }));
}

LUMARO_MPV_TEST_MAIN(MpvMediaPlayerTest)
#include "tst_mpvmediaplayer.moc"
