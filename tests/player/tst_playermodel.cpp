#include "platform/NotificationCenter.h"
#include "player/PlayerModel.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/fakes/FakeInputMonitor.h"
#include "tests/fakes/FakeMediaPlayer.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeScriptRunner.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QUrl listA(u"http://h/a.m3u"_s);
const QUrl listB(u"http://h/b.m3u"_s);
const QUrl liveStream(u"http://h/live.m3u8"_s);
const QString noMedia = u"No media or URL is available. Open a file or enter a stream URL."_s;

QByteArray playlistText(const char *name)
{
    return QByteArray("#EXTM3U\n#EXTINF:-1,") + name + "\nhttp://h/" + name + ".ts\n";
}

struct World
{
    QTemporaryDir folder;
    FakeMediaPlayer player;
    FakeHttpClient http;
    FakeFilePanels panels;
    FakeScheduler scheduler;
    FakeInputMonitor input;
    NotificationCenter notifications;
    YouTubePlayerRegistry youTube;
    OKVideoPlayerRegistry okVideo;
    std::unique_ptr<PlayerModel> model = std::make_unique<PlayerModel>(PlayerPlatform{
        player, http, panels, scheduler, scheduler, input, notifications, youTube, okVideo});

    void open(const QUrl &url, const QString &name = {})
    {
        model->openRemote(url.toString(), name);
    }
    void import(const QString &name, const char *channel = "imported")
    {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("No file for the test.");
        file.write(playlistText(channel));
        file.close();
        model->importM3UFile(QUrl::fromLocalFile(file.fileName()), {});
    }
    QStringList channels() const
    {
        QStringList names;
        for (const PlaylistEntry &entry : model->playlist().toList())
            names.append(entry.name);
        return names;
    }
    bool press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}, bool repeat = false)
    {
        return input.keyDown({.key = key,
                              .modifiers = modifiers,
                              .isRepeat = repeat,
                              .inPanel = false,
                              .windowTitle = {},
                              .inTextView = false});
    }
    void playing(double time, double length)
    {
        player.time = time;
        player.length = length;
        player.tick();
    }
};

} // namespace

class PlayerModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_world = std::make_unique<World>(); }
    void cleanup() { m_world.reset(); }

    void opensAddressAsItsKind_data();
    void opensAddressAsItsKind();
    void invalidAddressOnlySetsTheError();
    void playTakesItsTitleFromTheAddress_data();
    void playTakesItsTitleFromTheAddress();

    void newestPlaylistWins_data();
    void newestPlaylistWins();
    void listsGiveWayToWhatIsOpenedLater_data();
    void listsGiveWayToWhatIsOpenedLater();
    void lookUpsGiveWay_data();
    void lookUpsGiveWay();
    void clearDropsThePendingPlaylist_data();
    void clearDropsThePendingPlaylist();
    void clearDropsTheRunningImport();
    void loadingEndsWhenAStreamReplacesThePlaylist();
    void playlistFailureKeepsWhatThereIs_data();
    void playlistFailureKeepsWhatThereIs();
    void parsedTooLateIsDropped();
    void modelMayGoWhileItLoads();

    void importsAFile();
    void importFailureEmptiesThePlaylist_data();
    void importFailureEmptiesThePlaylist();
    void cancelledPanelsChangeNothing();
    void opensAFile();

    void togglesAndReplays();
    void clearForgetsRemoteSourcesOnly();
    void webContentReplacesTheItemAndBack();
    void writesNumbersForScripts_data();
    void writesNumbersForScripts();

    void skips_data();
    void skips();
    void adjustsVolume_data();
    void adjustsVolume();
    void muteIsSeparateFromVolume();
    void toastIsReplacedAndGetsItsFullTime();

    void showsBufferingForLiveStreamsOnly_data();
    void showsBufferingForLiveStreamsOnly();
    void shortWaitShowsNoBuffering();
    void observesTheItem();
    void renamesLiveStreamsOnly();
    void listsDoNotRenameWhatPlays();

    void keys_data();
    void keys();
    void keysPassThrough_data();
    void keysPassThrough();
    void postsMouseMovement();

private:
    std::unique_ptr<World> m_world;
};

void PlayerModelTest::opensAddressAsItsKind_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("outcome");
    QTest::newRow("live") << u" <http://h/a.M3U8> "_s << u"live http://h/a.M3U8"_s;
    QTest::newRow("film") << u"http://h/a.mp4"_s << u"media http://h/a.mp4"_s;
    QTest::newRow("no extension") << u"http://h/stream"_s << u"media http://h/stream"_s;
    QTest::newRow("playlist") << u"http://h/a.m3u8?type=m3u8"_s
                              << u"playlist http://h/a.m3u8?type=m3u8"_s;
    QTest::newRow("YouTube before playlist") << u"https://youtu.be/v?type=m3u"_s << u"YouTube v|"_s;
    QTest::newRow("OK.ru before playlist") << u"https://ok.ru/video/1?type=m3u"_s << u"OK.ru 1"_s;
}

void PlayerModelTest::opensAddressAsItsKind()
{
    QFETCH(const QString, address);
    PlayerModel &model = *m_world->model;
    model.openRemote(address, u"  "_s);

    QString outcome;
    if (model.youtubeContent())
        outcome = u"YouTube "_s + model.youtubeContent()->id();
    else if (model.okVideoContent())
        outcome = u"OK.ru "_s + model.okVideoContent()->id();
    else if (model.isLoading())
        outcome = u"playlist "_s + m_world->http.requests().value(0).toString();
    else
        outcome = (model.isLiveStream() ? u"live "_s : u"media "_s) + model.currentURL().toString();
    QTEST(outcome, "outcome");
    QCOMPARE(model.title(), u"Lumaro"_s);
    QCOMPARE(model.isPlaying(), !model.isLoading());
}

void PlayerModelTest::invalidAddressOnlySetsTheError()
{
    PlayerModel &model = *m_world->model;
    m_world->open(liveStream, u"News"_s);
    m_world->open(listA);
    const auto source = model.lastPlayableSource();
    const qsizetype calls = m_world->player.log.size();

    model.openRemote(u"ftp://h/x"_s, u"Other"_s);

    QCOMPARE(model.errorMessage(), u"Enter a valid HTTP or HTTPS address."_s);
    QCOMPARE(model.title(), u"News"_s);
    QVERIFY(model.lastPlayableSource() == source);
    QCOMPARE(m_world->player.log.size(), calls);
    QVERIFY2(!model.isLoading(), "the superseded playlist still counts as loading");
    QCOMPARE(m_world->http.pendingRequests(), 0);
}

void PlayerModelTest::playTakesItsTitleFromTheAddress_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<QString>("title");
    QTest::newRow("decoded") << QUrl(u"http://h/a%20b.mp4"_s) << u"a b.mp4"_s;
    QTest::newRow("undecodable") << QUrl(u"http://h/%FF.mp4"_s) << u"http://h/%FF.mp4"_s;
    QTest::newRow("nothing there") << QUrl(u"http://h"_s) << u"http://h"_s;
}

void PlayerModelTest::playTakesItsTitleFromTheAddress()
{
    QFETCH(const QUrl, url);
    m_world->model->play(url, std::nullopt, false);
    QTEST(m_world->model->title(), "title");
}

void PlayerModelTest::newestPlaylistWins_data()
{
    QTest::addColumn<bool>("newestAnswersFirst");
    QTest::newRow("newest answers first") << true;
    QTest::newRow("newest answers last") << false;
}

void PlayerModelTest::newestPlaylistWins()
{
    QFETCH(const bool, newestAnswersFirst);
    m_world->open(listA, u"A"_s);
    // A's body has arrived and waits to be parsed, so that it can no longer be cancelled.
    if (!newestAnswersFirst)
        m_world->http.respond(listA, 200, playlistText("a"));
    m_world->open(listB, u"B"_s);
    m_world->http.respond(listB, 200, playlistText("b"));
    m_world->scheduler.runBackground();

    QCOMPARE(m_world->channels(), QStringList{u"b"_s});
    QCOMPARE(m_world->model->title(), u"B"_s);
    QVERIFY(!m_world->model->isLoading());
}

void PlayerModelTest::listsGiveWayToWhatIsOpenedLater_data()
{
    QTest::addColumn<std::function<void(World &)>>("later");
    QTest::addColumn<QStringList>("channels");
    QTest::addColumn<QString>("title");
    const auto row = [](const char *name, std::function<void(World &)> later,
                        const QStringList &channels, const QString &title) {
        QTest::newRow(name) << later << channels << title;
    };
    const QUrl film = QUrl::fromLocalFile(u"/film.mp4"_s);
    row("stream", [](World &w) { w.open(liveStream, u"News"_s); }, {}, u"News"_s);
    row(
        "site's player", [](World &w) { w.open(QUrl(u"https://youtu.be/v"_s), u"V"_s); }, {},
        u"V"_s);
    row("imported list", [](World &w) { w.import(u"Mine.m3u"_s); }, {u"imported"_s}, u"Mine"_s);
    row("file", [film](World &w) { w.model->playFile(film); }, {}, u"film.mp4"_s);
    row(
        "files", [film](World &w) { w.model->playFiles({film, film}); },
        {u"film.mp4"_s, u"film.mp4"_s}, u"film.mp4"_s);
    // What is picked out of a list beside it, or stopped, is no reason to lose it.
    row(
        "channel", [](World &w) { w.model->play(liveStream, u"News"_s, true); }, {u"first"_s},
        u"First"_s);
    row("stop", [](World &w) { w.model->stop(); }, {u"first"_s}, u"First"_s);
}

void PlayerModelTest::listsGiveWayToWhatIsOpenedLater()
{
    QFETCH(const std::function<void(World &)>, later);
    for (const bool isImport : {false, true}) {
        m_world = std::make_unique<World>();
        if (isImport)
            m_world->import(u"First.m3u"_s, "first");
        else
            m_world->open(listA, u"First"_s);
        later(*m_world);
        if (m_world->http.pendingRequests() > 0)
            m_world->http.respond(listA, 200, playlistText("first"));
        m_world->scheduler.runNewestBackground();
        QTEST(m_world->channels(), "channels");
        QTEST(m_world->model->title(), "title");
        QVERIFY(!m_world->model->isLoading());
        QCOMPARE(m_world->model->errorMessage(), QString());
    }
}

void PlayerModelTest::lookUpsGiveWay_data()
{
    QTest::addColumn<std::function<void(World &)>>("later");
    QTest::addColumn<bool>("overtaken");
    const auto row = [](const char *name, std::function<void(World &)> later,
                        bool overtaken = true) { QTest::newRow(name) << later << overtaken; };
    row("nothing", [](World &) { }, false);
    row("another", [](World &w) { w.model->beginLookUp(); });
    row("stream", [](World &w) { w.open(liveStream); });
    row("list", [](World &w) { w.open(listA); });
    row("imported list", [](World &w) { w.import(u"list.m3u"_s); });
    row("site's player", [](World &w) { w.open(QUrl(u"https://youtu.be/v"_s)); });
    row("channel", [](World &w) { w.model->play(liveStream, u"News"_s, true); });
    row("file", [](World &w) { w.model->playFile(QUrl::fromLocalFile(u"/film.mp4"_s)); });
    row("replay", [](World &w) { w.model->togglePlayback(); });
    row("stop", [](World &w) { w.model->stop(); });
    row("clear", [](World &w) { w.model->clearNetworkStream(); });
    row(
        "going on by itself", [](World &w) { w.model->playOn(liveStream, u"News"_s, true); },
        false);
    row("skip", [](World &w) { w.model->skip(5); }, false);
    row("the program's end", [](World &w) { w.model.reset(); });
}

void PlayerModelTest::lookUpsGiveWay()
{
    QFETCH(const std::function<void(World &)>, later);
    for (const QUrl &before : {liveStream, QUrl(u"https://youtu.be/w"_s)}) {
        m_world = std::make_unique<World>();
        m_world->open(before);
        m_world->model->stop();
        const std::stop_token token = m_world->model->beginLookUp();
        later(*m_world);
        QTEST(token.stop_requested(), "overtaken");
    }
}

void PlayerModelTest::clearDropsThePendingPlaylist_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("result") << playlistText("a");
    QTest::newRow("error") << QByteArray("#EXTM3U\n");
}

void PlayerModelTest::clearDropsThePendingPlaylist()
{
    QFETCH(const QByteArray, body);
    m_world->open(listA);
    m_world->http.respond(listA, 200, body);
    m_world->model->clearNetworkStream();
    QVERIFY(!m_world->model->isLoading());
    m_world->scheduler.runBackground();

    QVERIFY(m_world->model->playlist().isEmpty());
    QCOMPARE(m_world->model->errorMessage(), QString());
    QCOMPARE(m_world->model->title(), u"Lumaro"_s);
}

void PlayerModelTest::clearDropsTheRunningImport()
{
    m_world->import(u"list.m3u"_s);
    QVERIFY(m_world->model->isLoading());
    m_world->model->clearNetworkStream();
    QVERIFY(!m_world->model->isLoading());
    m_world->scheduler.runBackground();
    QVERIFY(m_world->model->playlist().isEmpty());
    QVERIFY(!m_world->model->isLoading());
}

void PlayerModelTest::loadingEndsWhenAStreamReplacesThePlaylist()
{
    m_world->open(listA);
    QVERIFY(m_world->model->isLoading());
    m_world->open(liveStream);
    QVERIFY(!m_world->model->isLoading());
    QCOMPARE(m_world->http.pendingRequests(), 0);
}

void PlayerModelTest::playlistFailureKeepsWhatThereIs_data()
{
    QTest::addColumn<std::function<void(World &)>>("answer");
    QTest::addColumn<QString>("message");
    using Answer = std::function<void(World &)>;
    QTest::newRow("status") << Answer([](World &w) { w.http.respond(listB, 404, "x"); })
                            << u"The server answered with status 404."_s;
    QTest::newRow("not modified is no success")
        << Answer([](World &w) { w.http.respond(listB, 304, playlistText("b")); })
        << u"The server answered with status 304."_s;
    QTest::newRow("empty body") << Answer([](World &w) { w.http.respond(listB, 200, ""); })
                                << u"No playable address was found in the playlist."_s;
    QTest::newRow("unreachable") << Answer([](World &w) {
        w.http.fail(listB, HttpError::Kind::Unreachable);
    }) << u"The server could not be reached."_s;
    QTest::newRow("too large") << Answer([](World &w) {
        w.http.fail(listB, HttpError::Kind::TooLarge);
    }) << u"The server's answer is too large."_s;
}

void PlayerModelTest::playlistFailureKeepsWhatThereIs()
{
    QFETCH(const std::function<void(World &)>, answer);
    QFETCH(const QString, message);
    m_world->open(listA, u"Mine"_s);
    m_world->http.respond(listA, 200, playlistText("a"));
    m_world->scheduler.runBackground();
    m_world->open(liveStream, u"News"_s);

    m_world->open(listB);
    answer(*m_world);
    m_world->scheduler.runBackground();

    PlayerModel &model = *m_world->model;
    QCOMPARE(model.errorMessage(), u"Could not open playlist: "_s + message);
    QCOMPARE(m_world->channels(), QStringList{u"a"_s});
    QCOMPARE(model.currentURL(), liveStream);
    QCOMPARE(model.title(), u"News"_s);
    QVERIFY(!model.isLoading());
    QCOMPARE(m_world->http.lastRequest().maximumBodySize, PlayerModel::maximumPlaylistSize);
}

void PlayerModelTest::parsedTooLateIsDropped()
{
    m_world->open(listA);
    m_world->http.respond(listA, 200, playlistText("a"));
    m_world->model->openRemote(u"nonsense"_s, {});
    m_world->scheduler.runBackground();
    QVERIFY(m_world->model->playlist().isEmpty());
}

void PlayerModelTest::modelMayGoWhileItLoads()
{
    m_world->open(listA);
    m_world->http.respond(listA, 200, playlistText("a"));
    m_world->open(listB);
    m_world->model.reset();
    QCOMPARE(m_world->http.pendingRequests(), 0);
    m_world->scheduler.runBackground();
}

void PlayerModelTest::importsAFile()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"My list.m3u"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    // Latin-1, which is not UTF-8.
    file.write("#EXTINF:-1,Caf\xe9\r\nchannels/a.ts\r\n");
    file.close();
    m_world->panels.choice = QUrl::fromLocalFile(file.fileName());

    std::optional<PlaylistEntries> imported;
    m_world->model->importLocalM3U(u" "_s).then(
        [&](std::optional<PlaylistEntries> entries) { imported = std::move(entries); });
    QVERIFY(m_world->model->isLoading());
    m_world->scheduler.runBackground();

    QVERIFY(imported);
    QCOMPARE(m_world->channels(), QStringList{u"Caf\u00e9"_s});
    QCOMPARE(imported->at(0).url, QUrl::fromLocalFile(folder.filePath(u"channels/a.ts"_s)));
    QCOMPARE(m_world->model->title(), u"My list"_s);
    QVERIFY(!m_world->model->isLoading());
    QCOMPARE(m_world->panels.requests.value(0).title, u"Import M3U Playlist"_s);
    QCOMPARE(m_world->panels.requests.value(0).prompt, u"Import"_s);
}

void PlayerModelTest::importFailureEmptiesThePlaylist_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QString>("message");
    QTest::newRow("no addresses") << QByteArray("#EXTM3U\n\n") << true
                                  << u"No playable address was found in the playlist."_s;
    QTest::newRow("gone") << QByteArray() << false << u"The file does not exist."_s;
}

void PlayerModelTest::importFailureEmptiesThePlaylist()
{
    QFETCH(const QByteArray, content);
    QFETCH(const bool, exists);
    QFETCH(const QString, message);
    m_world->open(listA);
    m_world->http.respond(listA, 200, playlistText("a"));
    m_world->scheduler.runBackground();

    const QTemporaryDir folder;
    QFile file(folder.filePath(u"list.m3u"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    m_world->model->importM3UFile(QUrl::fromLocalFile(file.fileName()), {});
    if (!exists)
        QVERIFY(file.remove()); // before the background work reads it
    m_world->scheduler.runBackground();

    QVERIFY(m_world->model->playlist().isEmpty());
    QCOMPARE(m_world->model->errorMessage(), u"Could not import playlist: "_s + message);
    QVERIFY(!m_world->model->isLoading());
}

void PlayerModelTest::cancelledPanelsChangeNothing()
{
    m_world->open(liveStream, u"News"_s);
    m_world->model->openFile();
    m_world->model->importLocalM3U({});
    QCOMPARE(m_world->model->currentURL(), liveStream);
    QCOMPARE(m_world->model->title(), u"News"_s);
    QVERIFY(!m_world->model->isLoading());
}

void PlayerModelTest::opensAFile()
{
    m_world->panels.choice = QUrl::fromLocalFile(u"/films/My film #1.mp4"_s);
    m_world->model->openFile();
    QCOMPARE(m_world->model->title(), u"My film #1.mp4"_s);
    QVERIFY(!m_world->model->isLiveStream());
    QCOMPARE(m_world->panels.requests.value(0).title, u"Choose Media to Play"_s);
    QCOMPARE(m_world->panels.requests.value(0).extensions.join(u' '),
             u"mp4 mov mkv avi webm m4v mpeg mpg ts m2ts 3gp 3g2 mp3 m4a aac wav aiff caf"_s);
}

void PlayerModelTest::togglesAndReplays()
{
    PlayerModel &model = *m_world->model;
    model.togglePlayback();
    QCOMPARE(model.toastMessage(), noMedia);

    model.playFile(QUrl::fromLocalFile(u"/a.mp4"_s));
    QVERIFY(model.isPlaying());
    model.togglePlayback();
    QVERIFY(!model.isPlaying());
    QCOMPARE(m_world->player.log.last(), u"pause"_s);
    model.togglePlayback();
    QVERIFY(model.isPlaying());

    m_world->playing(12, 60);
    model.stop();
    QCOMPARE(model.title(), u"Lumaro"_s);
    QCOMPARE(model.currentTime(), 0.0);
    QCOMPARE(model.duration(), 0.0);
    QVERIFY(model.currentURL().isEmpty());
    QVERIFY(!model.isPlaying());

    const QUuid load = model.mediaLoadID();
    model.togglePlayback();
    QCOMPARE(model.currentURL(), QUrl::fromLocalFile(u"/a.mp4"_s));
    QCOMPARE(model.title(), u"a.mp4"_s);
    QVERIFY(model.mediaLoadID() != load);
}

void PlayerModelTest::clearForgetsRemoteSourcesOnly()
{
    PlayerModel &model = *m_world->model;
    m_world->open(liveStream);
    model.clearNetworkStream();
    QVERIFY(!m_world->player.hasItem());
    model.togglePlayback();
    QCOMPARE(model.toastMessage(), noMedia);

    model.playFile(QUrl::fromLocalFile(u"/a.mp4"_s));
    model.clearNetworkStream();
    model.togglePlayback();
    QCOMPARE(model.currentURL(), QUrl::fromLocalFile(u"/a.mp4"_s));
}

void PlayerModelTest::webContentReplacesTheItemAndBack()
{
    PlayerModel &model = *m_world->model;
    bool sawBoth = false;
    const auto look = [&] {
        sawBoth = sawBoth || (model.youtubeContent() && model.okVideoContent())
            || (model.showsWebContent() && m_world->player.hasItem());
    };
    connect(&model, &PlayerModel::youtubeContentChanged, &model, look);
    connect(&model, &PlayerModel::okVideoContentChanged, &model, look);
    connect(&m_world->player, &MediaPlayer::currentItemChanged, &model, look);
    const QSignalSpy shows(&model, &PlayerModel::showsWebContentChanged);
    m_world->open(liveStream);
    m_world->playing(3, 60);
    model.openRemote(u"https://youtu.be/v"_s, u"Clip"_s);
    QVERIFY(!m_world->player.hasItem());
    QVERIFY(!model.isLiveStream());
    QCOMPARE(model.currentTime(), 0.0);
    QCOMPARE(model.duration(), 0.0);
    QCOMPARE(model.title(), u"Clip"_s);

    model.openRemote(u"https://ok.ru/video/1"_s, {});
    QVERIFY(!model.youtubeContent());
    QVERIFY(model.okVideoContent());
    model.openRemote(u"https://youtu.be/v"_s, {});
    model.openRemote(u"https://ok.ru/video/1"_s, {});
    QCOMPARE(shows.count(), 1);

    model.stop();
    QVERIFY(!model.okVideoContent());
    model.togglePlayback();
    QVERIFY(model.okVideoContent());

    // What the web player was told meanwhile holds for what comes after it.
    model.setVolume(0.5);
    m_world->player.log.clear();
    m_world->open(liveStream);
    QVERIFY(!model.okVideoContent());
    QVERIFY(m_world->player.log.contains(u"volume 0.5"_s));
    QVERIFY(!sawBoth);
}

void PlayerModelTest::writesNumbersForScripts_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<QString>("text");
    QTest::newRow("whole") << 5.0 << u"5.0"_s;
    QTest::newRow("hundreds") << 300.0 << u"300.0"_s;
    QTest::newRow("a day") << 100000.0 << u"100000.0"_s;
    QTest::newRow("negative") << -20.0 << u"-20.0"_s;
    QTest::newRow("zero") << 0.0 << u"0.0"_s;
    QTest::newRow("shortest that is exact") << 0.1 << u"0.1"_s;
    QTest::newRow("not exact") << 0.1 + 0.2 << u"0.30000000000000004"_s;
    QTest::newRow("small") << 0.0001 << u"0.0001"_s;
    QTest::newRow("very small") << 0.00001 << u"1e-05"_s;
    QTest::newRow("very large") << 1e20 << u"1e+20"_s;
}

void PlayerModelTest::writesNumbersForScripts()
{
    QFETCH(const double, number);
    QFETCH(const QString, text);
    FakeScriptRunner page;
    m_world->youTube.setCurrentView(&page);
    m_world->youTube.skip(number);
    QCOMPARE(page.scripts, QStringList{u"varnSkip("_s + text + u");"});
}

void PlayerModelTest::skips_data()
{
    using Range = std::optional<MediaPlayer::TimeRange>;
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("length"); // 0: unknown
    QTest::addColumn<std::optional<MediaPlayer::TimeRange>>("seekable");
    QTest::addColumn<double>("by");
    QTest::addColumn<QString>("call"); // empty: none
    QTest::newRow("inside") << 10. << 60. << Range() << 5. << u"seek 15"_s;
    QTest::newRow("past the end") << 50. << 60. << Range() << 20. << u"seek 60"_s;
    QTest::newRow("before the start") << 3. << 60. << Range() << -5. << u"seek 0"_s;
    QTest::newRow("film, within what has arrived")
        << 10. << 60. << Range({0, 20}) << 5. << u"seek 15"_s;
    QTest::newRow("film, to its beginning, where data begins late")
        << 3. << 60. << Range({0.1, 20}) << -5. << u"seek 0.1"_s;
    QTest::newRow("film, beyond what has arrived")
        << 10. << 60. << Range({0, 20}) << 20. << QString();
    QTest::newRow("film, before what is kept")
        << 30. << 60. << Range({20, 40}) << -20. << QString();
    QTest::newRow("live, nowhere to go") << 100. << 0. << Range() << -5. << QString();
    QTest::newRow("live, within the window")
        << 100. << 0. << Range({80, 110}) << -5. << u"seek 95"_s;
    QTest::newRow("live, before the window")
        << 100. << 0. << Range({80, 110}) << -60. << u"seek 80"_s;
    QTest::newRow("live, past the edge") << 100. << 0. << Range({80, 110}) << 60. << u"seek 110"_s;
}

void PlayerModelTest::skips()
{
    QFETCH(const double, from);
    QFETCH(const double, length);
    QFETCH(const std::optional<MediaPlayer::TimeRange>, seekable);
    QFETCH(const double, by);
    QFETCH(const QString, call);
    m_world->open(liveStream);
    m_world->player.time = from;
    m_world->player.length = length > 0 ? std::optional(length) : std::nullopt;
    m_world->player.seekable = seekable;
    m_world->player.tick();
    m_world->player.log.clear();

    m_world->model->skip(by);
    QCOMPARE(m_world->player.log, call.isEmpty() ? QStringList() : QStringList{call});
}

void PlayerModelTest::adjustsVolume_data()
{
    QTest::addColumn<double>("from");
    QTest::addColumn<double>("by");
    QTest::addColumn<double>("to");
    QTest::addColumn<QString>("toast");
    QTest::newRow("up to the top") << 0.98 << 0.05 << 1.0 << u"Volume: 100%"_s;
    QTest::newRow("down to silence") << 0.03 << -0.05 << 0.0 << u"Volume: 0% (Muted)"_s;
    QTest::newRow("rounded to whole percents") << 0.333 << 0.01 << 0.34 << u"Volume: 34%"_s;
    QTest::newRow("decimals that are not exact") << 0.57 << 0.01 << 0.58 << u"Volume: 58%"_s;
}

void PlayerModelTest::adjustsVolume()
{
    QFETCH(const double, from);
    QFETCH(const double, by);
    QFETCH(const double, to);
    PlayerModel &model = *m_world->model;
    model.setVolume(from);
    model.adjustVolume(by);
    QCOMPARE(model.volume(), to);
    QCOMPARE(model.isMuted(), to == 0);
    QTEST(model.toastMessage(), "toast");
    m_world->scheduler.advance(1199ms);
    QVERIFY(!model.toastMessage().isEmpty());
    m_world->scheduler.advance(1ms);
    QVERIFY(model.toastMessage().isEmpty());
}

void PlayerModelTest::muteIsSeparateFromVolume()
{
    PlayerModel &model = *m_world->model;
    model.toggleMute();
    QVERIFY(model.isMuted());
    QCOMPARE(model.volume(), 1.0);
    model.setVolume(7);
    QCOMPARE(model.volume(), 1.0);
    QVERIFY2(!model.isMuted(), "setting a volume must unmute");
    QCOMPARE(m_world->player.log, (QStringList{u"mute"_s, u"volume 1"_s, u"unmute"_s}));
}

void PlayerModelTest::toastIsReplacedAndGetsItsFullTime()
{
    PlayerModel &model = *m_world->model;
    model.showToast(u"first"_s, 2800ms);
    m_world->scheduler.advance(1s);
    model.showToast(u"second"_s, 2800ms);
    m_world->scheduler.advance(2799ms);
    QCOMPARE(model.toastMessage(), u"second"_s);
    m_world->scheduler.advance(1ms);
    QCOMPARE(model.toastMessage(), QString());
}

void PlayerModelTest::showsBufferingForLiveStreamsOnly_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<bool>("shown");
    QTest::newRow("live") << liveStream << true;
    QTest::newRow("film") << QUrl(u"http://h/a.mp4"_s) << false;
}

void PlayerModelTest::showsBufferingForLiveStreamsOnly()
{
    QFETCH(const QUrl, url);
    QFETCH(const bool, shown);
    m_world->open(url);
    m_world->player.changeStatus(MediaPlayer::TimeControlStatus::WaitingToPlayAtSpecifiedRate);
    m_world->scheduler.advance(449ms);
    QVERIFY(!m_world->model->isBuffering());
    // Further news of the same wait must not begin the delay anew.
    Q_EMIT m_world->player.playbackBufferEmptyChanged(true);
    m_world->scheduler.advance(1ms);
    QCOMPARE(m_world->model->isBuffering(), shown);
    m_world->model->stop();
    QVERIFY(!m_world->model->isBuffering());
}

void PlayerModelTest::shortWaitShowsNoBuffering()
{
    m_world->open(liveStream);
    QSignalSpy shown(m_world->model.get(), &PlayerModel::isBufferingChanged);
    m_world->player.changeStatus(MediaPlayer::TimeControlStatus::WaitingToPlayAtSpecifiedRate);
    m_world->scheduler.advance(449ms);
    m_world->player.changeStatus(MediaPlayer::TimeControlStatus::Playing);
    m_world->scheduler.advance(10s);
    QCOMPARE(shown.count(), 0);
}

void PlayerModelTest::observesTheItem()
{
    PlayerModel &model = *m_world->model;
    QCOMPARE(m_world->player.observerInterval, 250ms);
    m_world->open(liveStream);
    m_world->player.pictureSize = {1920, 1080};
    m_world->playing(4.25, 60);
    QCOMPARE(model.currentTime(), 4.25);
    QCOMPARE(model.duration(), 60.0);
    QCOMPARE(model.videoAspectRatio(), 16.0 / 9);
    QCOMPARE(model.videoAspectMediaLoadID(), model.mediaLoadID());

    m_world->playing(qQNaN(), qInf());
    QCOMPARE(model.currentTime(), 4.25);
    QCOMPARE(model.duration(), 0.0);

    m_world->player.setRate(0);
    m_world->player.tick();
    QVERIFY(!model.isPlaying());

    m_world->open(QUrl(u"http://h/next.mp4"_s));
    QCOMPARE(model.videoAspectRatio(), 0.0);
    QVERIFY(model.videoAspectMediaLoadID().isNull());
}

void PlayerModelTest::renamesLiveStreamsOnly()
{
    PlayerModel &model = *m_world->model;
    m_world->open(QUrl(u"http://h/a.mp4"_s), u"Film"_s);
    model.updateStreamTitle(u"Other"_s);
    QCOMPARE(model.title(), u"Film"_s);
    m_world->open(liveStream, u"News"_s);
    model.updateStreamTitle(u" Sport \n"_s);
    QCOMPARE(model.title(), u"Sport"_s);
    QCOMPARE(model.itemTitle(), u"Sport"_s);
    model.updateStreamTitle(u" "_s);
    QCOMPARE(model.title(), u"Lumaro"_s);
}

void PlayerModelTest::listsDoNotRenameWhatPlays()
{
    PlayerModel &model = *m_world->model;
    for (const QUrl &source : {liveStream, QUrl(u"https://youtu.be/v"_s)}) {
        m_world->open(source, u"News"_s);
        m_world->import(u"Mine.m3u"_s);
        m_world->scheduler.runBackground();
        QCOMPARE(model.title(), u"Mine"_s);
        QCOMPARE(model.itemTitle(), u"News"_s);
        model.stop();
        QCOMPARE(model.itemTitle(), u"Lumaro"_s);
        model.togglePlayback();
        QCOMPARE(model.itemTitle(), u"News"_s);
    }
}

void PlayerModelTest::keys_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<bool>("repeat");
    QTest::addColumn<bool>("consumed");
    QTest::addColumn<double>("volume"); // from 0.5
    QTest::addColumn<double>("time"); // from 1000
    using M = Qt::KeyboardModifiers;
    const M none;
    const M shift = Qt::ShiftModifier;
    const M command = Qt::ControlModifier;
    const M option = Qt::AltModifier;
    const M control = Qt::MetaModifier;
    const auto row = [](const char *name, Qt::Key key, M modifiers, bool repeat, bool consumed,
                        double volume, double time) {
        QTest::newRow(name) << key << modifiers << repeat << consumed << volume << time;
    };
    const auto volume = [&](const char *name, Qt::Key key, M modifiers, double expected) {
        row(name, key, modifiers, true, true, expected, 1000);
    };
    volume("up", Qt::Key_Up, none, 0.55);
    volume("keypad up", Qt::Key_Up, Qt::KeypadModifier, 0.55);
    volume("shift up", Qt::Key_Up, shift, 0.51);
    volume("option up", Qt::Key_Up, option, 0.6);
    volume("command up", Qt::Key_Up, command, 0.7);
    volume("shift wins", Qt::Key_Up, shift | command | option, 0.51);
    volume("command wins over option", Qt::Key_Up, command | option, 0.7);
    volume("control with option", Qt::Key_Up, control | option, 0.6);
    volume("down", Qt::Key_Down, none, 0.45);
    volume("shift down", Qt::Key_Down, shift, 0.49);
    volume("option down", Qt::Key_Down, option, 0.4);
    volume("command down", Qt::Key_Down, command, 0.3);
    row("control up", Qt::Key_Up, control, false, false, 0.5, 1000);

    const auto skip = [&](const char *name, Qt::Key key, M modifiers, double expected) {
        row(name, key, modifiers, false, true, 0.5, expected);
    };
    skip("right", Qt::Key_Right, none, 1005);
    skip("option right", Qt::Key_Right, option, 1020);
    skip("option shift right", Qt::Key_Right, option | shift, 1020);
    skip("option control right", Qt::Key_Right, option | control, 1020);
    skip("command right", Qt::Key_Right, command, 1060);
    skip("command shift left", Qt::Key_Left, command | shift, 940);
    skip("command option left", Qt::Key_Left, command | option, 700);
    row("space again", Qt::Key_Space, none, true, true, 0.5, 1000);
    row("stop again", Qt::Key_K, command, true, true, 0.5, 1000);
    row("repeat", Qt::Key_Right, none, true, true, 0.5, 1000);
    row("shift right", Qt::Key_Right, shift, false, false, 0.5, 1000);
    row("control left", Qt::Key_Left, control, false, false, 0.5, 1000);
    row("shift control left", Qt::Key_Left, shift | control, true, false, 0.5, 1000);
    row("other key", Qt::Key_J, none, false, false, 0.5, 1000);
}

void PlayerModelTest::keys()
{
    QFETCH(const Qt::Key, key);
    QFETCH(const Qt::KeyboardModifiers, modifiers);
    QFETCH(const bool, repeat);
    m_world->model->installKeyboardShortcuts();
    m_world->open(QUrl(u"http://h/a.mp4"_s));
    m_world->model->setVolume(0.5);
    m_world->playing(1000, 5000);

    QTEST(m_world->press(key, modifiers, repeat), "consumed");
    QTEST(m_world->model->volume(), "volume");
    QTEST(m_world->model->currentTime(), "time");
}

void PlayerModelTest::keysPassThrough_data()
{
    QTest::addColumn<KeyDown>("where");
    QTest::addColumn<bool>("consumed");
    KeyDown window;
    window.windowTitle = u"Film"_s;
    QTest::newRow("the window") << window << true;
    KeyDown panel = window;
    panel.inPanel = true;
    QTest::newRow("a panel") << panel << false;
    KeyDown text = window;
    text.inTextView = true;
    QTest::newRow("a text view") << text << false;
    KeyDown finder = window;
    finder.windowTitle = u"M3U8 Stream Finder"_s;
    QTest::newRow("the finder") << finder << false;
}

void PlayerModelTest::keysPassThrough()
{
    QFETCH(KeyDown, where);
    QFETCH(const bool, consumed);
    m_world->model->installKeyboardShortcuts();
    m_world->open(liveStream);

    where.key = Qt::Key_Space;
    where.modifiers = Qt::ShiftModifier;
    QCOMPARE(m_world->input.keyDown(where), consumed);
    QCOMPARE(m_world->model->isPlaying(), !consumed);

    where.key = Qt::Key_K;
    QVERIFY(!m_world->input.keyDown(where));
    where.modifiers = Qt::ControlModifier;
    QCOMPARE(m_world->input.keyDown(where), consumed);
    QCOMPARE(m_world->player.hasItem(), !consumed);
}

void PlayerModelTest::postsMouseMovement()
{
    m_world->model->installKeyboardShortcuts();
    QSignalSpy posted(&m_world->notifications, &NotificationCenter::posted);
    QObject window;
    m_world->input.mouseMoved(&window);
    QCOMPARE(posted.value(0),
             (QVariantList{u"Lumaro.playerMouseMoved"_s, QVariant::fromValue<QObject *>(&window)}));
    m_world->model.reset();
    QVERIFY2(!m_world->input.keyDown && !m_world->input.mouseMoved,
             "the monitors outlive the model");
}

QTEST_GUILESS_MAIN(PlayerModelTest)
#include "tst_playermodel.moc"
