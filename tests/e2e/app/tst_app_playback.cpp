#include "platform/mpv/MpvVideoItem.h"
#include "tests/e2e/app/AppWorld.h"

#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

Q_DECLARE_METATYPE(lumaro::Fixture)

/// The whole application plays real media from real servers.
class AppPlaybackTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_world = std::make_unique<AppWorld>(); }
    void cleanup() { m_world.reset(); }

    void playsFiles_data();
    void playsFiles();
    void playsAddresses_data();
    void playsAddresses();
    void playsOddNames_data();
    void playsOddNames();
    void playsALiveStream();
    void liveStreamStallsAndRecovers();
    void stoppingLeavesNoPicture();
    void fadedControlsDrawNothing();
    void calmlyShowsWhatCannotBePlayed_data();
    void calmlyShowsWhatCannotBePlayed();
    void skipsFilesThatCannotBePlayed();
    void truncatedFilmPlaysUntilItEnds();

private:
    QString fixture(Fixture fixture) const { return valueOrFail(m_media.path(fixture)); }

    MediaFixtures m_media{QStringLiteral(LUMARO_FIXTURE_FOLDER)};
    std::unique_ptr<NginxServer> m_nginx;
    std::unique_ptr<FaultServer> m_faults;
    std::unique_ptr<AppWorld> m_world;
};

void AppPlaybackTest::initTestCase()
{
    m_nginx = valueOrFail(NginxServer::start());
    m_faults = valueOrFail(FaultServer::start());
    QVERIFY(m_nginx && m_faults);
    QVERIFY(m_nginx->publish(fixture(Fixture::Movie), u"movie.mp4"_s));
    QVERIFY(m_nginx->publish(QFileInfo(fixture(Fixture::Hls)).path(), u"hls"_s));
    QVERIFY(m_nginx->publish(QFileInfo(fixture(Fixture::FragmentedHls)).path(), u"fmp4"_s));
}

void AppPlaybackTest::playsFiles_data()
{
    QTest::addColumn<Fixture>("file");
    QTest::addColumn<double>("duration");
    QTest::addColumn<bool>("hasPicture");
    QTest::newRow("MP4") << Fixture::Movie << 60.0 << true;
    QTest::newRow("Matroska") << Fixture::Matroska << 10.0 << true;
    QTest::newRow("sound only") << Fixture::AudioOnly << 10.0 << false;
}

void AppPlaybackTest::playsFiles()
{
    QFETCH(const Fixture, file);
    QFETCH(const double, duration);
    QFETCH(const bool, hasPicture);
    const QString path = fixture(file);
    m_world->open(path);
    QVERIFY(m_world->playsTo(0.5));
    QCOMPARE(m_world->player().title(), QFileInfo(path).fileName());
    QCOMPARE(m_world->window().title(), QFileInfo(path).fileName());
    QVERIFY(std::abs(m_world->player().duration() - duration) < 0.2);
    QCOMPARE(m_world->player().videoAspectRatio() > 0, hasPicture);
    if (hasPicture)
        QVERIFY(m_world->pictureChanges());
}

void AppPlaybackTest::playsAddresses_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<double>("duration");
    QTest::newRow("film") << u"/movie.mp4"_s << 60.0;
    QTest::newRow("finished HLS") << u"/hls/master.m3u8"_s << 20.0;
    QTest::newRow("HLS in fragmented MP4") << u"/fmp4/master.m3u8"_s << 20.0;
    QTest::newRow("redirected") << u"/redirect/302/movie.mp4"_s << 60.0;
    QTest::newRow("film from a server that sends no parts") << u"/whole/400000/movie.mp4"_s << 60.0;
}

void AppPlaybackTest::playsAddresses()
{
    QFETCH(const QString, path);
    QFETCH(const double, duration);
    m_world->open(m_nginx->url(path).toString());
    QVERIFY(m_world->playsTo(0.5));
    QVERIFY2(std::abs(m_world->player().duration() - duration) < 0.5,
             qPrintable(QString::number(m_world->player().duration())));
    QVERIFY(std::abs(m_world->player().videoAspectRatio() - 16.0 / 9) < 0.01);
    QVERIFY(m_world->pictureChanges());
    QCOMPARE(m_world->player().errorMessage(), QString());
}

void AppPlaybackTest::playsOddNames_data()
{
    QTest::addColumn<QString>("what");
    const QString odd = u"/odd/ a b ü #1 100% ?.mkv"_s;
    QVERIFY(m_nginx->publish(fixture(Fixture::Matroska), odd));
    QVERIFY(m_nginx->publish(fixture(Fixture::Matroska), u"/odd/film ü 100%.mkv"_s));
    QVERIFY(m_nginx->publish(fixture(Fixture::Matroska), u"/odd/edl:\\n%s.mkv"_s));
    const QString server = m_nginx->url(QString()).toString();
    QTest::newRow("file") << m_nginx->documentRoot() + odd;
    QTest::newRow("file that looks like something else")
        << m_nginx->documentRoot() + u"/odd/edl:\\n%s.mkv"_s;
    QTest::newRow("as read, escape broken") << server + u"/odd/film ü 100%.mkv"_s;
    QTest::newRow("escaped") << server + u"/odd/film%20%C3%BC%20100%25.mkv"_s;
    QTest::newRow("in brackets") << u" <"_s + server + u"/odd/film%20%C3%BC%20100%25.mkv> "_s;
}

void AppPlaybackTest::playsOddNames()
{
    QFETCH(const QString, what);
    m_world->open(what);
    QVERIFY(m_world->playsTo(0.2));
    QCOMPARE(m_world->player().errorMessage(), QString());
}

void AppPlaybackTest::playsALiveStream()
{
    const auto feed = valueOrFail(LiveFeed::start(*m_nginx, u"live"_s));
    QVERIFY(feed && feed->waitUntilServing(30s));
    PlayerModel &player = m_world->player();
    m_world->open(feed->url().toString());
    QVERIFY(becomesTrue([&] { return player.isPlaying() && player.currentTime() > 0; }));
    QVERIFY(player.isLiveStream());
    QVERIFY(m_world->pictureChanges());
    QCOMPARE(player.duration(), 0.0);

    // A skip stays within what can be reached, far from the stream's beginning.
    QVERIFY(becomesTrue([&] { return player.seekableRange().has_value(); }));
    const double before = player.currentTime();
    player.skip(-3600);
    QVERIFY(player.currentTime() >= player.seekableRange()->start - 1);
    QVERIFY(player.currentTime() <= before + 1);
    QVERIFY(m_world->pictureChanges());
}

void AppPlaybackTest::liveStreamStallsAndRecovers()
{
    const auto feed = valueOrFail(LiveFeed::start(*m_nginx, u"stall"_s));
    QVERIFY(feed && feed->waitUntilServing(30s));
    PlayerModel &player = m_world->player();
    m_world->open(feed->url().toString());
    QVERIFY(becomesTrue([&] { return player.currentTime() > 0; }));
    feed->stall();
    QVERIFY(becomesTrue([&] { return player.isBuffering(); }));
    feed->resume();
    QVERIFY(becomesTrue([&] { return !player.isBuffering(); }));
    QVERIFY(m_world->pictureChanges());
}

void AppPlaybackTest::stoppingLeavesNoPicture()
{
    // Beside what is written where nothing plays.
    const auto isDark = [this] {
        const QImage screen = m_world->screen();
        const int x = screen.width() * 9 / 10;
        for (int y = screen.height() / 4; y < screen.height() / 2; ++y) {
            if (qGray(screen.pixel(x, y)) > 16)
                return false;
        }
        return true;
    };
    m_world->open(fixture(Fixture::Movie));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(becomesTrue([&] { return !isDark(); }));
    m_world->player().stop();
    QVERIFY(becomesTrue(isDark));
}

void AppPlaybackTest::fadedControlsDrawNothing()
{
    m_world->open(fixture(Fixture::Movie));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(becomesTrue([&] { return !m_world->shell().controlsVisible(); }));
    letPass(500ms); // while they fade
    const auto items = m_world->window().findChildren<MpvVideoItem *>();
    QCOMPARE(items.size(), 1);
    int pictures = 0;
    std::atomic<int> drawn = 0;
    QObject owner;
    connect(items.first()->player(), &MpvMediaPlayer::frameReady, &owner, [&] { ++pictures; });
    connect(
        &m_world->window(), &QQuickWindow::frameSwapped, &owner, [&] { ++drawn; },
        Qt::DirectConnection);
    letPass(4s);
    QVERIFY(pictures > 10);
    // One may have been on its way at either end.
    QVERIFY2(drawn <= pictures + 3, qPrintable(u"%1 for %2"_s.arg(drawn).arg(pictures)));
}

void AppPlaybackTest::calmlyShowsWhatCannotBePlayed_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QString>("notice");
    const QString silent = u"This address does not answer. It may be offline or out of date."_s;
    const QString unplayable = u"There is nothing here that Lumaro can play."_s;
    QTest::newRow("404") << m_nginx->url(u"/none.mp4"_s).toString() << silent;
    QTest::newRow("refused") << u"http://127.0.0.1:9/live.m3u8"_s << silent;
    QTest::newRow("noise") << fixture(Fixture::RandomBytes) << unplayable;
    QTest::newRow("truncated index") << fixture(Fixture::TruncatedIndex) << unplayable;
    QTest::newRow("no such file")
        << u"/nowhere/film.mp4"_s
        << u"This file cannot be opened. It may have been moved or deleted."_s;
}

void AppPlaybackTest::calmlyShowsWhatCannotBePlayed()
{
    QFETCH(const QString, what);
    m_world->open(what);
    QVERIFY(becomesTrue([&] { return !m_world->shell().pictureNotice().isEmpty(); }));
    QTEST(m_world->shell().pictureNotice(), "notice");
    QCOMPARE(m_world->player().errorMessage(), QString());
    QVERIFY(!m_world->player().isPlaying());

    m_world->open(fixture(Fixture::Movie));
    QVERIFY(m_world->playsTo(0.2));
    QCOMPARE(m_world->shell().pictureNotice(), QString());
}

void AppPlaybackTest::skipsFilesThatCannotBePlayed()
{
    m_world->shell().open(
        {fixture(Fixture::RandomBytes), fixture(Fixture::TruncatedIndex), fixture(Fixture::Movie)},
        {});
    QVERIFY(m_world->playsTo(0.2));
    QCOMPARE(m_world->shell().currentChannel(), 2);
    QCOMPARE(m_world->player().toastMessage(), u"Skipped 2 files that cannot be played."_s);
    QCOMPARE(m_world->shell().pictureNotice(), QString());
}

void AppPlaybackTest::truncatedFilmPlaysUntilItEnds()
{
    m_world->open(fixture(Fixture::TruncatedMovie));
    QVERIFY(m_world->playsTo(0.5));
    m_world->player().seek(m_world->player().duration() - 1);
    QVERIFY(becomesTrue([&] { return !m_world->player().isPlaying(); }));
}

LUMARO_APP_TEST_MAIN(AppPlaybackTest)
#include "tst_app_playback.moc"
