#include "tests/e2e/soak/SoakWorld.h"

#include <QDir>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace lumaro {

std::unique_ptr<SoakWorld> SoakWorld::start(unsigned seed)
{
    std::unique_ptr<SoakWorld> world(new SoakWorld(seed));
    if (!world->startServers() || !world->startSound())
        return nullptr;
    world->m_app = std::make_unique<AppWorld>(world->m_sites->services());
    world->m_tally = std::make_unique<SoakTally>(*world->m_app);
    return world;
}

SoakWorld::~SoakWorld() = default;

bool SoakWorld::startSound()
{
    const QString socket = m_home.filePath(u"pulse"_s);
    for (const char *name : {"HOME", "XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"})
        qputenv(name, m_home.path().toLocal8Bit());
    qputenv("PULSE_SERVER", "unix:" + socket.toLocal8Bit());
    return m_pulse
               .start(
                   u"pulseaudio"_s,
                   {u"-n"_s, u"--daemonize=no"_s, u"--exit-idle-time=-1"_s, u"--use-pid-file=no"_s,
                    u"--load=module-null-sink"_s,
                    u"--load=module-native-protocol-unix auth-anonymous=1 socket=%1"_s.arg(socket)},
                   {})
               .has_value()
        && becomesTrue([&] { return QFileInfo::exists(socket); });
}

bool SoakWorld::startServers()
{
    const MediaFixtures media(QStringLiteral(LUMARO_FIXTURE_FOLDER));
    m_sites = VideoSites::start();
    m_moody = MoodyServer::start(media);
    if (!m_sites || !m_moody || !publish())
        return false;
    for (const Fixture fixture :
         {Fixture::Movie, Fixture::Matroska, Fixture::AudioOnly, Fixture::Turned,
          Fixture::TruncatedMovie, Fixture::TruncatedIndex, Fixture::RandomBytes})
        m_files << valueOrFail(media.path(fixture));
    m_files << u"/nowhere/film.mp4"_s;
    return true;
}

bool SoakWorld::publish()
{
    const MediaFixtures media(QStringLiteral(LUMARO_FIXTURE_FOLDER));
    const NginxServer &server = m_sites->server();
    m_feed = valueOrFail(LiveFeed::start(server, u"live"_s));
    const QByteArray channel = "#EXTINF:-1 group-title=\"Group\",News\n"
        + server.url(u"/hls/master.m3u8"_s).toEncoded() + '\n';
    const bool isThere = m_feed && m_feed->waitUntilServing(30s)
        && server.publish(valueOrFail(media.path(Fixture::Movie)), u"movie.mp4"_s)
        && server.publish(QFileInfo(valueOrFail(media.path(Fixture::Hls))).path(), u"hls"_s)
        && server.publish(QFileInfo(valueOrFail(media.path(Fixture::FragmentedHls))).path(),
                          u"fmp4"_s)
        && server.writeFile(u"big.m3u"_s, "#EXTM3U\n" + channel.repeated(200'000))
        && server.writeFile(u"small.m3u"_s, "#EXTM3U\n" + channel.repeated(3))
        && server.writeFile(u"plain.html"_s, "<!doctype html><title>Plain</title>Plain")
        && server.writeFile(u"media.html"_s,
                            "<!doctype html><title>Media</title><video src=/movie.mp4 muted "
                            "autoplay loop></video>"
                            "<script>fetch('/hls/master.m3u8')</script>")
        && server.writeFile(u"embeds.html"_s,
                            "<!doctype html><title>Embeds</title><iframe src=/media.html></iframe>"
                            "<iframe src='"
                                + m_moody->url("/page.html").toEncoded() + "'></iframe>");
    m_streams = {m_feed->url(), server.url(u"/hls/master.m3u8"_s),
                 server.url(u"/fmp4/master.m3u8"_s), m_moody->url("/index.m3u8"),
                 server.url(u"/status/503"_s)};
    m_lists = {server.url(u"/big.m3u"_s).toString(), server.url(u"/small.m3u"_s).toString(),
               m_moody->url("/list.m3u").toString()};
    for (const QString &path :
         {u"/movie.mp4"_s, u"/hls/master.m3u8"_s, u"/fmp4/master.m3u8"_s, u"/redirect-loop/a"_s,
          u"/whole/400000/movie.mp4"_s, u"/status/404"_s, u"/status/500"_s, u"/file.zip"_s})
        m_addresses << server.url(path).toString();
    m_addresses << m_moody->url("/film.mp4").toString() << m_moody->url("/index.m3u8").toString()
                << u"http://127.0.0.1:9/live.m3u8"_s << u"not an address"_s
                << u"https://youtu.be/clip1"_s << u"https://youtu.be/gone"_s
                << u"https://ok.ru/video/12345"_s << u"https://ok.ru/video/broken"_s;
    for (const QString &path :
         {u"/plain.html"_s, u"/media.html"_s, u"/embeds.html"_s, u"/status/404"_s,
          u"/redirect-loop/a"_s, u"/redirect/302/plain.html"_s})
        m_pages << server.url(path);
    m_pages << m_moody->url("/page.html") << QUrl(u"http://127.0.0.1:9/"_s);
    return isThere;
}

QString SoakWorld::contradiction()
{
    const PlayerModel &player = m_app->player();
    QStringList kinds;
    if (!player.currentURL().isEmpty())
        kinds << player.currentURL().toString();
    if (player.youtubeContent())
        kinds << player.youtubeContent()->id();
    if (player.okVideoContent())
        kinds << player.okVideoContent()->id();
    for (WebPlayerView *const view : {m_app->webPlayers().youTube(), m_app->webPlayers().okVideo()})
        if (!view->loadedContentID().isEmpty() && !view->isShown())
            kinds << u"still loaded: "_s + view->loadedContentID();
    if (kinds.size() > 1)
        return u"More than one kind plays: "_s + kinds.join(u", "_s);
    if (player.isPlaying() && kinds.isEmpty())
        return u"Nothing is there that could play."_s;
    if (!settles([&] { return m_app->channels().count() == player.playlist().size(); }))
        return u"The list shows %1 of %2 channels."_s.arg(m_app->channels().count())
            .arg(player.playlist().size());
    if (m_app->channels().matchCount() > m_app->channels().count())
        return u"More channels match than there are."_s;
    if (tabs().count() < 1 || !tabs().selectedTab())
        return u"No tab is selected."_s;
    if (m_app->librarySection().list()->count() != m_app->library().entries().size())
        return u"The library's list is not the library."_s;
    return {};
}

QString SoakWorld::closeEverything()
{
    m_moody->calmDown();
    m_feed->resume();
    QStringList open;
    const auto end = [&](const QString &what, const std::function<bool()> &hasEnded) {
        if (!settles(hasEnded))
            open << what;
    };
    RecordingModel &recording = m_app->recording();
    recording.stop();
    end(u"the recording"_s,
        [&] { return recording.controller()->state() == PlayerRecordingState::idle; });
    recording.dismissNotice();

    m_app->shell().setIsFullScreen(false);
    m_app->channels().setFilterText({});
    m_app->player().stop();
    m_app->shell().clearNetwork();
    end(u"the player"_s, [&] {
        return !m_app->player().isPlaying() && !m_app->player().isLoading()
            && !m_app->player().showsWebContent() && m_app->channels().count() == 0;
    });

    for (const QUrl &url : m_streams)
        downloads().stop(url);
    const QStringList jobs = downloads().jobs().keys();
    for (const QString &key : jobs)
        downloads().stop(QUrl(key));
    end(u"the downloads"_s, [&] { return m_app->downloads().list()->activeCount() == 0; });
    m_app->downloads().setPanelShown(false);
    downloads().dismissError();

    while (tabs().count() > 1)
        tabs().closeRow(tabs().count() - 1);
    tabs().closeRow(0);
    m_app->finderController().windowShouldClose();
    end(u"the stream finder"_s, [&] { return !m_app->finderController().isShown(); });

    if (m_app->librarySection().list()->count() > 0) {
        m_app->librarySection().removeAll();
        m_app->librarySection().agree();
    }
    end(u"the servers' connections"_s, [&] { return m_moody->openConnections() == 0; });
    const QDir folder(m_app->folder());
    for (const QString &file : folder.entryList({u"*.ts"_s, u"*.mp4"_s}, QDir::Files))
        QFile::remove(folder.filePath(file));
    return open.join(u", "_s);
}

} // namespace lumaro
