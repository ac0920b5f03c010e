#include "app/RemoteControl.h"
#include "tests/app/ShellWorld.h"
#include "tests/fakes/FakeMediaControls.h"

#include <QSignalSpy>
#include <QTemporaryFile>
#include <QTest>

#include <cmath>
#include <limits>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

using Playback = MediaControlsState::Playback;

namespace {

const QUrl film = QUrl::fromLocalFile(u"/films/a film.mp4"_s);
constexpr auto largest = std::chrono::microseconds::max();
constexpr auto smallest = std::chrono::microseconds::min();

struct World : ShellWorld
{
    FakeMediaControls controls;
    RemoteControl remote{player, shell, scheduler, controls};

    World() { remote.start(); }

    void play(double seconds, std::optional<double> length)
    {
        player.playFile(film);
        playing(seconds, length);
        settle();
        controls.seeks.clear();
        mediaPlayer.log.clear();
    }
    /// Makes the playlist one of three channels.
    void loadChannels()
    {
        const QUrl list(u"http://h/list.m3u"_s);
        player.openRemote(list.toString(), {});
        http.respond(list, 200,
                     "#EXTM3U\n#EXTINF:-1,One\nhttp://h/1\n#EXTINF:-1,Two\nhttp://h/2\n"
                     "#EXTINF:-1,Three\nhttp://h/3\n");
        scheduler.runBackground();
    }
    /// The error; empty when it opens.
    QString open(const QString &uri)
    {
        QString error = u"no answer"_s;
        controls.commands->openUri(uri).then([&error](const std::expected<void, QString> &opened) {
            error = opened ? QString() : opened.error();
        });
        scheduler.runBackground();
        return error;
    }
    void settle() { scheduler.advance(0ms); }
    const MediaControlsState &state()
    {
        settle();
        return controls.states.last();
    }
    QStringList seeks() const { return mediaPlayer.log.filter(u"seek"_s); }
};

} // namespace

class RemoteControlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_world = std::make_unique<World>(); }
    void cleanup() { m_world.reset(); }

    void tellsWhatPlays();
    void tellsMuchAsOnePieceOfNews();
    void keepsNamesAndPasswords_data();
    void keepsNamesAndPasswords();
    void keepsLongTextsShort();
    void eachOpeningIsAnotherTrack();
    void playsAndPauses();
    void playsTheLastThingAgain();
    void seeksWithinTheFilm_data();
    void seeksWithinTheFilm();
    void goesToPositions_data();
    void goesToPositions();
    void staleTracksMoveNothing();
    void cannotSeekWhereThereIsNothing();
    void announcesJumps();
    void takesSaneVolumes_data();
    void takesSaneVolumes();
    void changesChannels();
    void passesOverWhatMayNotBeOpened();
    void seekingPastTheEndGoesToTheNextChannel();
    void cannotPlayWhatIsForgotten();
    void opensWhatCanBeOpened_data();
    void opensWhatCanBeOpened();
    void opensFiles();
    void refusesWhatComesTooLate();
    void namesWhatPlaysAndNoList();
    void passesOnWhatTheWindowDoes();

private:
    MediaCommands &commands() { return *m_world->controls.commands; }

    std::unique_ptr<World> m_world;
};

void RemoteControlTest::tellsWhatPlays()
{
    QCOMPARE(m_world->state(), MediaControlsState{.title = u"Lumaro"_s});

    m_world->play(3, 60);
    MediaControlsState expected{.playback = Playback::Playing,
                                .track = 1,
                                .title = u"a film.mp4"_s,
                                .url = film,
                                .length = 60s,
                                .volume = 1,
                                .canPlay = true,
                                .canSeek = true};
    QCOMPARE(m_world->state(), expected);
    QCOMPARE(commands().position(), 3s);

    m_world->player.togglePlayback();
    expected.playback = Playback::Paused;
    QCOMPARE(m_world->state(), expected);
    m_world->player.setVolume(0.5);
    expected.volume = 0.5;
    QCOMPARE(m_world->state(), expected);
    m_world->player.toggleMute();
    expected.volume = 0;
    QCOMPARE(m_world->state(), expected);

    m_world->player.stop();
    QCOMPARE(m_world->state().playback, Playback::Stopped);
    QCOMPARE(m_world->state().track, 0);
    QCOMPARE(m_world->state().length, std::nullopt);
    QVERIFY(m_world->state().canPlay);

    // A stream without an end has no length.
    m_world->player.openRemote(u"http://h/live.m3u8"_s, u"News"_s);
    m_world->playing(100, std::nullopt);
    QCOMPARE(m_world->state().length, std::nullopt);
    QCOMPARE(m_world->state().title, u"News"_s);
    QVERIFY(!m_world->state().canSeek);
}

void RemoteControlTest::tellsMuchAsOnePieceOfNews()
{
    const qsizetype before = m_world->controls.states.size();
    m_world->player.playFile(film);
    QCOMPARE(m_world->controls.states.size(), before);
    m_world->settle();
    QCOMPARE(m_world->controls.states.size(), before + 1);
}

void RemoteControlTest::keepsNamesAndPasswords_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("told");
    QTest::newRow("user") << u"http://me:secret@h/a.mp4"_s << u"http://h"_s;
    QTest::newRow("query") << u"https://h:8443/a.m3u8?token=secret"_s << u"https://h:8443"_s;
    QTest::newRow("path") << u"http://h/live/me/secret/1.ts"_s << u"http://h"_s;
    QTest::newRow("fragment") << u"http://h/#secret"_s << u"http://h"_s;
    QTest::newRow("file") << u"file:///films/a%20film.mp4"_s << u"file:///films/a%20film.mp4"_s;
}

void RemoteControlTest::keepsNamesAndPasswords()
{
    QFETCH(const QString, address);
    QFETCH(const QString, told);
    m_world->player.play(QUrl(address), u"News"_s, false);
    QCOMPARE(m_world->state().url, QUrl(told));
}

void RemoteControlTest::keepsLongTextsShort()
{
    const QString long_ = QString(1'000'000, u'a');
    m_world->player.play(QUrl(u"file:///"_s + long_), long_, false);
    QCOMPARE(m_world->state().title.size(), RemoteControl::maximumTitleLength);
    QCOMPARE(m_world->state().url, QUrl());
}

void RemoteControlTest::eachOpeningIsAnotherTrack()
{
    m_world->play(0, 60);
    const quint64 first = m_world->state().track;
    m_world->player.playFile(film);
    const quint64 second = m_world->state().track;
    QVERIFY(second > first);
    m_world->player.openRemote(u"https://youtu.be/v"_s, u"Clip"_s);
    QVERIFY(m_world->state().track > second);
    QCOMPARE(m_world->state().playback, Playback::Playing);
    QCOMPARE(m_world->state().title, u"Clip"_s);
}

void RemoteControlTest::playsAndPauses()
{
    // Nothing to play: no toast that nobody asked for either.
    commands().play();
    commands().pause();
    commands().playPause();
    commands().stop();
    QCOMPARE(m_world->mediaPlayer.log, QStringList());
    QCOMPARE(m_world->player.toastMessage(), QString());

    m_world->play(3, 60);
    commands().play();
    QVERIFY2(m_world->mediaPlayer.log.isEmpty(), "played what plays");
    commands().pause();
    commands().pause();
    QVERIFY(!m_world->player.isPlaying());
    commands().playPause();
    QVERIFY(m_world->player.isPlaying());
    commands().playPause();
    QVERIFY(!m_world->player.isPlaying());
    commands().play();
    QCOMPARE(m_world->mediaPlayer.log, QStringList({u"pause"_s, u"play"_s, u"pause"_s, u"play"_s}));
}

void RemoteControlTest::playsTheLastThingAgain()
{
    m_world->play(3, 60);
    commands().stop();
    QVERIFY(m_world->player.currentURL().isEmpty());
    commands().play();
    QCOMPARE(m_world->player.currentURL(), film);
}

void RemoteControlTest::seeksWithinTheFilm_data()
{
    QTest::addColumn<std::chrono::microseconds>("offset");
    QTest::addColumn<QStringList>("seeks");
    QTest::newRow("on") << std::chrono::microseconds(10s) << QStringList{u"seek 30"_s};
    QTest::newRow("a fraction") << std::chrono::microseconds(250ms) << QStringList{u"seek 20.25"_s};
    QTest::newRow("back") << std::chrono::microseconds(-5s) << QStringList{u"seek 15"_s};
    QTest::newRow("before the beginning")
        << std::chrono::microseconds(-21s) << QStringList{u"seek 0"_s};
    QTest::newRow("back as far as can be") << smallest << QStringList{u"seek 0"_s};
    QTest::newRow("beyond the end") << std::chrono::microseconds(41s) << QStringList();
    QTest::newRow("on as far as can be") << largest << QStringList();
}

void RemoteControlTest::seeksWithinTheFilm()
{
    QFETCH(const std::chrono::microseconds, offset);
    m_world->play(20, 60);
    commands().seek(offset);
    QTEST(m_world->seeks(), "seeks");
    QCOMPARE(m_world->controls.seeks.size(), m_world->seeks().size());
    QVERIFY(m_world->player.isPlaying());
}

void RemoteControlTest::goesToPositions_data()
{
    QTest::addColumn<std::chrono::microseconds>("position");
    QTest::addColumn<QStringList>("seeks");
    QTest::newRow("inside") << std::chrono::microseconds(30s) << QStringList{u"seek 30"_s};
    QTest::newRow("beginning") << 0us << QStringList{u"seek 0"_s};
    QTest::newRow("end") << std::chrono::microseconds(60s) << QStringList{u"seek 60"_s};
    QTest::newRow("before") << -1us << QStringList();
    QTest::newRow("beyond") << std::chrono::microseconds(60'000'001us) << QStringList();
    QTest::newRow("as far as can be") << largest << QStringList();
    QTest::newRow("as far back as can be") << smallest << QStringList();
}

void RemoteControlTest::goesToPositions()
{
    QFETCH(const std::chrono::microseconds, position);
    m_world->play(20, 60);
    commands().setPosition(m_world->state().track, position);
    QTEST(m_world->seeks(), "seeks");
}

void RemoteControlTest::staleTracksMoveNothing()
{
    m_world->play(20, 60);
    const quint64 track = m_world->state().track;
    m_world->play(20, 60);
    commands().setPosition(track, 30s);
    QCOMPARE(m_world->seeks(), QStringList());
    m_world->player.stop();
    commands().setPosition(track + 1, 30s);
    QCOMPARE(m_world->seeks(), QStringList());
}

void RemoteControlTest::cannotSeekWhereThereIsNothing()
{
    commands().seek(10s);
    m_world->player.openRemote(u"http://h/live.m3u8"_s, {});
    m_world->playing(5, std::nullopt);
    m_world->controls.seeks.clear();
    commands().seek(10s);
    commands().setPosition(m_world->state().track, 3s);
    QCOMPARE(m_world->seeks(), QStringList());
    QCOMPARE(m_world->controls.seeks, QList<double>());
}

void RemoteControlTest::announcesJumps()
{
    m_world->play(10, 60);
    for (int tick = 1; tick <= 8; ++tick) {
        m_world->scheduler.advance(250ms);
        m_world->playing(10 + tick * 0.25, 60);
    }
    QCOMPARE(m_world->controls.seeks, QList<double>());
    m_world->player.skip(5);
    QCOMPARE(m_world->controls.seeks, QList<double>{17});

    // A pause is no jump, and neither is going on after it.
    m_world->player.togglePlayback();
    m_world->scheduler.advance(1h);
    m_world->player.togglePlayback();
    m_world->scheduler.advance(250ms);
    m_world->playing(17.25, 60);
    QCOMPARE(m_world->controls.seeks, QList<double>{17});

    // Waiting for data is: clients have counted on.
    m_world->scheduler.advance(5s);
    m_world->playing(17.5, 60);
    QCOMPARE(m_world->controls.seeks, QList<double>({17, 17.5}));

    // Another track begins at its beginning, or is announced.
    m_world->player.playFile(film);
    m_world->playing(0, 60);
    QCOMPARE(m_world->controls.seeks.size(), 2);
    m_world->player.playFile(film);
    m_world->playing(30, 60);
    QCOMPARE(m_world->controls.seeks.last(), 30);
}

void RemoteControlTest::takesSaneVolumes_data()
{
    QTest::addColumn<double>("volume");
    QTest::addColumn<double>("outcome");
    constexpr double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("half") << 0.25 << 0.25;
    QTest::newRow("negative") << -0.5 << 0.0;
    QTest::newRow("too loud") << 3.0 << 1.0;
    QTest::newRow("no number") << std::nan("") << 0.75;
    QTest::newRow("infinite") << infinity << 0.75;
    QTest::newRow("negatively infinite") << -infinity << 0.75;
}

void RemoteControlTest::takesSaneVolumes()
{
    QFETCH(const double, volume);
    m_world->player.setVolume(0.75);
    commands().setVolume(volume);
    QTEST(m_world->player.volume(), "outcome");
    QTEST(m_world->state().volume, "outcome");
}

void RemoteControlTest::changesChannels()
{
    m_world->loadChannels();
    commands().next();
    QVERIFY2(m_world->player.currentURL().isEmpty(), "no channel plays yet");
    m_world->shell.playChannel(0);
    QVERIFY(m_world->state().canGoNext);
    QVERIFY(!m_world->state().canGoPrevious);
    commands().next();
    QCOMPARE(m_world->player.title(), u"Two"_s);
    QVERIFY(m_world->state().canGoPrevious);
    commands().next();
    QVERIFY(!m_world->state().canGoNext);
    commands().next();
    QCOMPARE(m_world->player.title(), u"Three"_s);
    commands().previous();
    QCOMPARE(m_world->player.title(), u"Two"_s);
    m_world->player.playFile(film);
    QVERIFY(!m_world->state().canGoNext);
}

void RemoteControlTest::passesOverWhatMayNotBeOpened()
{
    const QUrl list(u"http://h/list.m3u"_s);
    m_world->player.openRemote(list.toString(), {});
    m_world->http.respond(list, 200,
                          "#EXTM3U\n#EXTINF:-1,One\nhttp://h/1\n#EXTINF:-1,File\nfile:///2\n"
                          "#EXTINF:-1,Three\nhttp://h/3\n#EXTINF:-1,File\nfile:///4\n");
    m_world->scheduler.runBackground();
    m_world->shell.playChannel(0);
    commands().next();
    QCOMPARE(m_world->player.title(), u"Three"_s);
    QVERIFY(!m_world->state().canGoNext);
    QVERIFY(m_world->state().canGoPrevious);
    commands().next();
    QCOMPARE(m_world->player.title(), u"Three"_s);
    QCOMPARE(m_world->player.toastMessage(), QString());
    commands().previous();
    QCOMPARE(m_world->player.title(), u"One"_s);
}

void RemoteControlTest::cannotPlayWhatIsForgotten()
{
    m_world->player.openRemote(u"http://h/live.m3u8"_s, {});
    m_world->player.stop();
    QVERIFY(m_world->state().canPlay);
    m_world->player.clearNetworkStream();
    QVERIFY(!m_world->state().canPlay);
}

void RemoteControlTest::seekingPastTheEndGoesToTheNextChannel()
{
    m_world->loadChannels();
    m_world->shell.playChannel(0);
    m_world->playing(20, 60);
    commands().seek(41s);
    QCOMPARE(m_world->player.title(), u"Two"_s);
}

void RemoteControlTest::opensWhatCanBeOpened_data()
{
    QTest::addColumn<QString>("uri");
    QTest::addColumn<QString>("error"); // empty where it opens
    const QString kind = u"Lumaro opens files and HTTP or HTTPS addresses."_s;
    QTest::newRow("film") << u"http://h/a.mp4"_s << QString();
    QTest::newRow("capitals") << u"HTTPS://h/a.mp4"_s << QString();
    QTest::newRow("empty") << QString() << kind;
    QTest::newRow("other scheme") << u"ftp://h/a.mp4"_s << kind;
    QTest::newRow("engine's own scheme") << u"av://lavfi:testsrc"_s << kind;
    QTest::newRow("script") << u"javascript:alert(1)"_s << kind;
    QTest::newRow("no host") << u"http:///a.mp4"_s << kind;
    QTest::newRow("relative") << u"a.mp4"_s << kind;
    QTest::newRow("path without scheme") << u"/etc/passwd"_s << kind;
    QTest::newRow("other machine's file") << u"file://server/a.mp4"_s << kind;
    QTest::newRow("missing file") << u"file:///no/such/film.mp4"_s << u"The file does not exist."_s;
    QTest::newRow("folder") << u"file:///tmp"_s << u"It is not a file."_s;
    QTest::newRow("device") << u"file:///dev/zero"_s << u"It is not a file."_s;
    QTest::newRow("endless") << u"http://h/"_s + QString(RemoteControl::maximumUriLength, u'a')
                             << u"The address is too long."_s;
}

void RemoteControlTest::opensWhatCanBeOpened()
{
    QFETCH(const QString, uri);
    QFETCH(const QString, error);
    m_world->play(20, 60);
    QCOMPARE(m_world->open(uri), error);
    QCOMPARE(m_world->player.currentURL() == film, !error.isEmpty());
    QCOMPARE(m_world->player.errorMessage(), QString());
}

void RemoteControlTest::opensFiles()
{
    QTemporaryFile file(QDir::tempPath() + u"/100% #1 XXXXXX.mp4"_s);
    QVERIFY(file.open());
    const QUrl url = QUrl::fromLocalFile(file.fileName());
    QCOMPARE(m_world->open(url.toString(QUrl::FullyEncoded)), QString());
    QCOMPARE(m_world->player.currentURL(), url);
}

void RemoteControlTest::refusesWhatComesTooLate()
{
    QTemporaryFile file(QDir::tempPath() + u"/XXXXXX.mp4"_s);
    QVERIFY(file.open());
    QString error;
    commands().openUri(u"file://"_s + file.fileName()).then([&error](const auto &opened) {
        error = opened ? u"opened"_s : opened.error();
    });
    m_world->player.playFile(film);
    m_world->scheduler.runBackground();
    QCOMPARE(error, u"Something else was opened meanwhile."_s);
    QCOMPARE(m_world->player.currentURL(), film);
}

void RemoteControlTest::namesWhatPlaysAndNoList()
{
    m_world->play(20, 60);
    m_world->loadChannels();
    QCOMPARE(m_world->player.title(), u"IPTV Playlist"_s);
    QCOMPARE(m_world->state().title, u"a film.mp4"_s);
    m_world->player.stop();
    QCOMPARE(m_world->state().title, u"Lumaro"_s);
}

void RemoteControlTest::passesOnWhatTheWindowDoes()
{
    const QSignalSpy raised(&m_world->remote, &RemoteControl::raiseRequested);
    const QSignalSpy quit(&m_world->remote, &RemoteControl::quitRequested);
    commands().raise();
    commands().quit();
    QCOMPARE(raised.count(), 1);
    QCOMPARE(quit.count(), 1);
    commands().setFullScreen(true);
    QVERIFY(m_world->shell.isFullScreen());
    QVERIFY(m_world->state().isFullScreen);
}

QTEST_GUILESS_MAIN(RemoteControlTest)
#include "tst_remotecontrol.moc"
