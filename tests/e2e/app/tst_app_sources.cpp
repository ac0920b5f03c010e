#include "tests/e2e/app/AppWorld.h"
#include "tests/e2e/app/VideoSites.h"

#include <QFileInfo>
#include <QMimeData>
#include <QTimer>

#include <functional>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

/// The road of every kind of source, one after another in one window.
class AppSourcesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindReplacesTheOneBefore();

private:
    void watch();
    /// Opens what takes the place of a site's page, which is silent within a second: it has told
    /// five times a second that it plays.
    bool silences(const QString &site, const std::function<void()> &open);

    std::unique_ptr<VideoSites> m_sites;
    std::unique_ptr<AppWorld> m_world;
    qsizetype m_looks = 0;
    QStringList m_together;
};

/// Looks for moments in which more than one kind plays, or is about to.
void AppSourcesTest::watch()
{
    const PlayerModel &player = m_world->player();
    const auto *const media =
        qobject_cast<MediaPlayer *>(m_world->window().property("mediaPlayer").value<QObject *>());
    QVERIFY(media);
    const auto look = [this, &player, media] {
        QStringList active;
        if (!player.currentURL().isEmpty())
            active << player.currentURL().toString();
        else if (media->hasItem() || media->rate() > 0)
            active << u"still the media player's"_s;
        if (player.youtubeContent())
            active << player.youtubeContent()->id();
        if (player.okVideoContent())
            active << player.okVideoContent()->id();
        for (WebPlayerView *const view :
             {m_world->webPlayers().youTube(), m_world->webPlayers().okVideo()}) {
            if (!view->loadedContentID().isEmpty() && !view->isShown())
                active << u"still loaded: "_s + view->loadedContentID();
        }
        ++m_looks;
        if (active.size() > 1)
            m_together << active.join(u" and "_s);
    };
    for (const auto signal :
         {&PlayerModel::youtubeContentChanged, &PlayerModel::okVideoContentChanged,
          &PlayerModel::isPlayingChanged, &PlayerModel::titleChanged,
          &PlayerModel::currentTimeChanged, &PlayerModel::showsWebContentChanged})
        connect(&player, signal, this, look);
    auto *const timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, look);
    timer->start(10ms);
}

bool AppSourcesTest::silences(const QString &site, const std::function<void()> &open)
{
    const qsizetype before = m_sites->beats(site);
    open();
    return m_sites->fallSilent(site) && before > 0 && m_sites->beats(site) - before <= 5;
}

void AppSourcesTest::everyKindReplacesTheOneBefore()
{
    m_sites = VideoSites::start();
    QVERIFY(m_sites);
    const NginxServer &server = m_sites->server();
    const MediaFixtures media(QStringLiteral(LUMARO_FIXTURE_FOLDER));
    const QString film = valueOrFail(media.path(Fixture::Matroska));
    QVERIFY(server.publish(QFileInfo(valueOrFail(media.path(Fixture::Hls))).path(), u"hls"_s));
    QVERIFY(server.writeFile(u"list.m3u"_s,
                             "#EXTM3U\n#EXTINF:-1,News\nhls/master.m3u8\n"
                             "#EXTINF:-1,Sport\nhls/master.m3u8?2\n"));
    const auto feed = valueOrFail(LiveFeed::start(server, u"live"_s));
    QVERIFY(feed && feed->waitUntilServing(30s));
    m_world = std::make_unique<AppWorld>(m_sites->services());
    PlayerModel &player = m_world->player();
    watch();

    // A file.
    m_world->open(film);
    QVERIFY(m_world->playsTo(0.5));
    QVERIFY(std::abs(player.duration() - 10) < 0.2);
    QVERIFY(m_world->pictureChanges());

    // A live stream.
    m_world->open(feed->url().toString());
    QVERIFY(becomesTrue([&] { return player.isLiveStream() && player.currentTime() > 0; }));
    QVERIFY(m_world->pictureChanges());

    // A list of channels, which lets the stream play on, and one of its channels.
    m_world->open(server.url(u"/list.m3u"_s).toString());
    QVERIFY(
        becomesTrue([&] { return channelNames(player) == QStringList({u"News"_s, u"Sport"_s}); }));
    QCOMPARE(player.currentURL(), feed->url());
    m_world->shell().playChannel(1);
    QCOMPARE(player.title(), u"Sport"_s);
    QVERIFY(becomesTrue([&] { return std::abs(player.duration() - 20) < 0.5; }));
    QVERIFY(m_world->playsTo(0.5));
    QVERIFY(m_world->pictureChanges());

    // A video on each of the sites.
    m_world->open(u"https://youtu.be/clip1"_s);
    QVERIFY(player.currentURL().isEmpty());
    QVERIFY(becomesTrue([&] { return m_sites->beats(u"youtube/clip1"_s) > 0; }));
    QVERIFY(becomesTrue([&] { return std::abs(player.duration() - 60) < 0.5; }));
    QVERIFY(m_world->playsTo(0.5));
    QVERIFY(m_world->pictureChanges());

    QVERIFY(silences(u"youtube/"_s, [&] { m_world->open(u"https://ok.ru/video/12345"_s); }));
    QVERIFY(becomesTrue([&] { return m_sites->beats(u"ok/12345"_s) > 0; }));
    QVERIFY(m_world->playsTo(0.5));
    QVERIFY(m_world->pictureChanges());

    // A dropped file.
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(film)});
    QVERIFY(silences(u"ok/"_s, [&] { QVERIFY(m_world->drop(data)); }));
    QVERIFY(becomesTrue([&] { return std::abs(player.duration() - 10) < 0.2; }));
    QVERIFY(m_world->playsTo(0.5));
    QVERIFY(m_world->pictureChanges());

    // And back again.
    m_world->open(u"https://ok.ru/video/12345"_s);
    QVERIFY(becomesTrue([&] { return player.duration() > 59; }));
    QVERIFY(m_world->playsTo(0.5));
    QVERIFY(silences(u"ok/"_s, [&] { m_world->shell().playChannel(0); }));
    QVERIFY(becomesTrue([&] { return std::abs(player.duration() - 20) < 0.5; }));
    QVERIFY(m_world->playsTo(0.5));

    player.stop();
    QVERIFY(m_looks > 100);
    QVERIFY2(m_together.isEmpty(), qPrintable(m_together.join(u'\n')));
}

LUMARO_APP_TEST_MAIN(AppSourcesTest)
#include "tst_app_sources.moc"
