#include "app/MenuCommands.h"
#include "tests/app/ShellWorld.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>

#include <algorithm>
#include <functional>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

using Section = MainWindowModel::PlayerSidebarSection;

namespace {

/// A window as far as the pointer's hiding is concerned.
class FakeWindow : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool active MEMBER active)

public:
    bool active = true;
};

} // namespace

Q_DECLARE_METATYPE(std::function<void(ShellWorld &)>)

class MainWindowModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_world = std::make_unique<ShellWorld>(); }
    void cleanup() { m_world.reset(); }

    void opensTypedAddressAfterAPause();
    void neverOpensWithoutAScheme();
    void enterOpensAtOnce();
    void passesTheOptionalName_data();
    void passesTheOptionalName();
    void namesTheAddressAfterwards();
    void clearForgetsThePendingOpen();
    void clearsWhatThereIs_data();
    void clearsWhatThereIs();

    void controlsHideAfterTheLastShow();
    void controlsStay_data();
    void controlsStay();
    void pointerHidesInFullScreen();

    void opensWhatItIsGiven_data();
    void opensWhatItIsGiven();
    void dropsPreferFiles();
    void opensSeveral_data();
    void opensSeveral();
    void filesOpenedTogetherFollowEachOther();
    void filesGoOnAfterBrokenOnes_data();
    void filesGoOnAfterBrokenOnes();
    void playingOnGivesWayToWhatTheUserOpens();
    void playsAChannel();
    void replayIsTheSameChannel_data();
    void replayIsTheSameChannel();
    void onlyOwnPlaylistsOpenFiles();

    void sidebarFollowsEvents();
    void fullScreenHidesNothing();
    void remembersTheSidebar();
    void remembersTheDisplayMode();
    void displayModesAreAChoice();
    void olderWishesDoNotComeBack();
    void desktopHasTheLastWord();
    void remembersThatItWasMaximized();
    void explainsMissingPictures_data();
    void explainsMissingPictures();
    void noticeGoesWithItsCause();
    void errorsLeaveThePicture();
    void errorsAreToldOnce_data();
    void errorsAreToldOnce();
    void tellsWhenAStreamBreaksOff();
    void saysWhenOpeningTakesLong();
    void menusFollowTheState();

private:
    void post(const char16_t *name, QObject *object = nullptr)
    {
        m_world->notifications.post(QString::fromUtf16(name), object);
    }
    QStringList opened() const { return m_world->mediaPlayer.log.filter(u"load"_s); }

    std::unique_ptr<ShellWorld> m_world;
};

void MainWindowModelTest::opensTypedAddressAfterAPause()
{
    const QString address = u"https://host/a.m3u8"_s;
    for (qsizetype length = 1; length <= address.size(); ++length) {
        m_world->shell.setAddressText(address.first(length));
        m_world->scheduler.advance(449ms);
    }
    QCOMPARE(opened(), QStringList());
    m_world->scheduler.advance(1ms);
    QCOMPARE(opened(), QStringList{u"load https://host/a.m3u8"_s});
    QVERIFY(m_world->player.isLiveStream());
    m_world->scheduler.advance(10s);
    QCOMPARE(opened().size(), 1);
}

void MainWindowModelTest::neverOpensWithoutAScheme()
{
    m_world->shell.setAddressText(u"https://host/a.m3u8"_s);
    // The edit replaces the address that was about to open.
    m_world->shell.setAddressText(u"host/a.m3u8"_s);
    m_world->scheduler.advance(10s);
    QCOMPARE(opened(), QStringList());
    QCOMPARE(m_world->player.errorMessage(), QString());
}

void MainWindowModelTest::enterOpensAtOnce()
{
    m_world->shell.setAddressText(u"http://host/a.mp4"_s);
    QVERIFY(m_world->shell.openTypedAddress());
    QCOMPARE(opened().size(), 1);
    m_world->scheduler.advance(10s);
    QCOMPARE(opened().size(), 1);

    m_world->shell.setAddressText(u"nonsense"_s);
    QVERIFY(!m_world->shell.openTypedAddress());
    QCOMPARE(m_world->player.errorMessage(), u"Enter a valid HTTP or HTTPS address."_s);
    m_world->shell.setAddressText(u" "_s);
    QVERIFY(m_world->shell.openTypedAddress());
}

void MainWindowModelTest::passesTheOptionalName_data()
{
    QTest::addColumn<bool>("shown");
    QTest::addColumn<QString>("title");
    QTest::newRow("shown") << true << u"My film"_s;
    QTest::newRow("hidden") << false << u"Lumaro"_s;
}

void MainWindowModelTest::passesTheOptionalName()
{
    QFETCH(const bool, shown);
    m_world->shell.setDisplayNameShown(shown);
    m_world->shell.setAddressText(u"http://host/a.mp4"_s);
    // Typed while the address already waits.
    m_world->shell.setDisplayName(u" My film "_s);
    m_world->scheduler.advance(450ms);
    QTEST(m_world->player.title(), "title");
}

void MainWindowModelTest::namesTheAddressAfterwards()
{
    MainWindowModel &shell = m_world->shell;
    shell.setAddressText(u"http://host/live.m3u8"_s);
    m_world->scheduler.advance(450ms);
    shell.setDisplayName(u"News"_s);
    QCOMPARE(m_world->player.title(), u"Lumaro"_s);
    shell.setDisplayNameShown(true);
    QCOMPARE(m_world->player.title(), u"News"_s);
    shell.setDisplayName(u" Sport "_s);
    QCOMPARE(m_world->player.title(), u"Sport"_s);
    QCOMPARE(opened().size(), 1);

    // The name is for what the address field opens, now the next.
    shell.setAddressText(u"http://host/next.m3u8"_s);
    shell.setDisplayName(u"Film"_s);
    QCOMPARE(m_world->player.title(), u"Sport"_s);
    m_world->player.play(QUrl(u"http://h/1.m3u8"_s), u"Channel"_s, true);
    shell.setDisplayName(u"Films"_s);
    QCOMPARE(m_world->player.title(), u"Channel"_s);
    m_world->scheduler.advance(450ms);
    QCOMPARE(m_world->player.title(), u"Films"_s);
}

void MainWindowModelTest::clearForgetsThePendingOpen()
{
    m_world->shell.setAddressText(u"http://host/a.mp4"_s);
    m_world->shell.clearNetwork();
    m_world->scheduler.advance(10s);
    QCOMPARE(opened(), QStringList());
    QCOMPARE(m_world->shell.addressText(), QString());
}

void MainWindowModelTest::clearsWhatThereIs_data()
{
    QTest::addColumn<std::function<void(ShellWorld &)>>("fill");
    const auto row = [](const char *name, std::function<void(ShellWorld &)> fill) {
        QTest::newRow(name) << fill;
    };
    row("address", [](ShellWorld &world) { world.shell.setAddressText(u"h"_s); });
    row("film", [](ShellWorld &world) { world.player.playFile(QUrl(u"file:///a.mp4"_s)); });
    row("list on a dead disk",
        [](ShellWorld &world) { world.player.importM3UFile(QUrl(u"file:///list.m3u"_s), {}); });
    row("list on a dead server",
        [](ShellWorld &world) { world.shell.openDropped({QUrl(u"http://h/list.m3u"_s)}, {}); });
    row("video of a site",
        [](ShellWorld &world) { world.shell.openDropped({QUrl(u"https://youtu.be/v"_s)}, {}); });
    row("error", [](ShellWorld &world) { world.shell.openDropped({}, u"nonsense"_s); });
    row("channels", [](ShellWorld &world) {
        const QUrl list(u"http://h/list.m3u"_s);
        world.player.openRemote(list.toString(), {});
        world.http.respond(list, 200, "http://h/1.ts\n");
        world.scheduler.runBackground();
    });
}

void MainWindowModelTest::clearsWhatThereIs()
{
    QFETCH(const std::function<void(ShellWorld &)>, fill);
    MainWindowModel &shell = m_world->shell;
    const PlayerModel &player = m_world->player;
    QVERIFY(!shell.canClearNetwork());
    const QSignalSpy changes(&shell, &MainWindowModel::canClearNetworkChanged);
    fill(*m_world);
    QVERIFY(shell.canClearNetwork());
    QCOMPARE(changes.count(), 1);
    shell.clearNetwork();
    QVERIFY(!shell.canClearNetwork());
    QCOMPARE(changes.count(), 2);
    QVERIFY(!player.isLoading() && !player.showsWebContent() && player.playlist().isEmpty());
    m_world->scheduler.runBackground();
    QVERIFY(!shell.canClearNetwork());
}

void MainWindowModelTest::controlsHideAfterTheLastShow()
{
    m_world->player.playFile(QUrl::fromLocalFile(u"/a.mp4"_s));
    m_world->scheduler.advance(2s);
    m_world->shell.showFullScreenControls();
    m_world->scheduler.advance(2499ms);
    QVERIFY(m_world->shell.controlsVisible());
    m_world->scheduler.advance(1ms);
    QVERIFY(!m_world->shell.controlsVisible());

    for (const char16_t *event :
         {notification::playerMouseMoved, notification::playerSurfaceClicked}) {
        post(event);
        QVERIFY(m_world->shell.controlsVisible());
        m_world->scheduler.advance(2500ms);
        QVERIFY(!m_world->shell.controlsVisible());
    }
}

void MainWindowModelTest::controlsStay_data()
{
    QTest::addColumn<bool>("inUse");
    QTest::addColumn<bool>("paused");
    QTest::newRow("in use") << true << false;
    QTest::newRow("nothing plays") << false << true;
}

void MainWindowModelTest::controlsStay()
{
    QFETCH(const bool, inUse);
    QFETCH(const bool, paused);
    m_world->player.playFile(QUrl::fromLocalFile(u"/a.mp4"_s));
    m_world->shell.setControlsInUse(inUse);
    if (paused)
        m_world->player.togglePlayback();
    m_world->scheduler.advance(1min);
    QVERIFY(m_world->shell.controlsVisible());

    m_world->shell.setControlsInUse(false);
    if (paused)
        m_world->player.togglePlayback();
    m_world->scheduler.advance(2500ms);
    QVERIFY(!m_world->shell.controlsVisible());
}

void MainWindowModelTest::pointerHidesInFullScreen()
{
    FakeWindow window;
    post(notification::playerMouseMoved, &window);
    m_world->scheduler.advance(1min);
    QVERIFY2(!m_world->shell.cursorHidden(), "hidden outside full screen");

    m_world->shell.setIsFullScreen(true);
    m_world->shell.windowFillsScreen(true);
    post(notification::playerMouseMoved, &window);
    m_world->scheduler.advance(1999ms);
    post(notification::playerMouseMoved, &window);
    m_world->scheduler.advance(1999ms);
    QVERIFY(!m_world->shell.cursorHidden());
    m_world->scheduler.advance(1ms);
    QVERIFY(m_world->shell.cursorHidden());
    post(notification::playerMouseMoved, &window);
    QVERIFY(!m_world->shell.cursorHidden());

    window.active = false;
    m_world->scheduler.advance(1min);
    QVERIFY2(!m_world->shell.cursorHidden(), "hidden over another window");

    window.active = true;
    post(notification::playerMouseMoved, &window);
    m_world->scheduler.advance(2s);
    m_world->shell.setIsFullScreen(false);
    QVERIFY(!m_world->shell.cursorHidden());
}

void MainWindowModelTest::opensWhatItIsGiven_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QByteArray>("content"); // of the file named by the argument, if any
    QTest::addColumn<QString>("outcome");
    const QByteArray channels("#EXTM3U\n#EXTINF:-1,One\nhttp://h/1.ts\n");
    const QByteArray stream("#EXTM3U\n#EXT-X-TARGETDURATION:2\n#EXTINF:2,\na.ts\n");
    QTest::newRow("film") << u"a film.mp4"_s << QByteArray("x") << u"play a film.mp4"_s;
    QTest::newRow("channel list") << u"list.M3U"_s << channels << u"import"_s;
    QTest::newRow("channel list as m3u8") << u"list.m3u8"_s << channels << u"import"_s;
    QTest::newRow("stream from disk") << u"hls.m3u8"_s << stream << u"play hls.m3u8"_s;
    QTest::newRow("missing file") << u"gone.mp4"_s << QByteArray() << u"play gone.mp4"_s;
    QTest::newRow("address") << u"http://h/live.m3u8"_s << QByteArray() << u"play Lumaro"_s;
    QTest::newRow("address in brackets")
        << u"<http://h/live.m3u8>"_s << QByteArray() << u"play Lumaro"_s;
    QTest::newRow("address of another kind")
        << u"ftp://h/a.mp4"_s << QByteArray() << u"Enter a valid HTTP or HTTPS address."_s;
}

void MainWindowModelTest::opensWhatItIsGiven()
{
    QFETCH(const QString, argument);
    QFETCH(const QByteArray, content);
    const QTemporaryDir folder;
    if (!content.isEmpty()) {
        QFile file(folder.filePath(argument));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    m_world->shell.open({argument}, folder.path());

    PlayerModel &player = m_world->player;
    QString outcome = player.errorMessage();
    if (player.isLoading())
        outcome = u"import"_s;
    else if (!player.currentURL().isEmpty())
        outcome = u"play "_s + player.title();
    QTEST(outcome, "outcome");
}

void MainWindowModelTest::dropsPreferFiles()
{
    QVERIFY(m_world->shell.openDropped({QUrl::fromLocalFile(u"/a.mp4"_s)}, u"file:///a.mp4"_s));
    QCOMPARE(m_world->player.title(), u"a.mp4"_s);
    QVERIFY(m_world->shell.openDropped({}, u" https://h/live.m3u8 "_s));
    QVERIFY(m_world->player.isLiveStream());
    QVERIFY(m_world->shell.openDropped({QUrl(u"https://h/b.mp4"_s)}, {}));
    QVERIFY(!m_world->player.isLiveStream());
    QVERIFY(!m_world->shell.openDropped({}, u" \n"_s));
}

void MainWindowModelTest::opensSeveral_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("list");
    QTest::addColumn<QString>("opened");
    QTest::addColumn<QString>("toast");
    const QString web = u"http://h/c.mp4"_s;
    QTest::newRow("files") << QStringList{u"a.mp4"_s, u"/films/b.mkv"_s}
                           << QStringList{u"a.mp4"_s, u"b.mkv"_s} << u"file:///home/a.mp4"_s
                           << QString();
    QTest::newRow("one of them is none") << QStringList{u"a.mp4"_s, web, u"list.m3u"_s, u"b.mkv"_s}
                                         << QStringList{u"a.mp4"_s, u"b.mkv"_s}
                                         << u"file:///home/a.mp4"_s << u"Opened 2 of 4 items."_s;
    QTest::newRow("one file") << QStringList{u"a.mp4"_s, web} << QStringList()
                              << u"file:///home/a.mp4"_s << u"Opened 1 of 2 items."_s;
    QTest::newRow("an address in brackets")
        << QStringList{u"a.mp4"_s, u"<http://h/c.mp4>"_s} << QStringList()
        << u"file:///home/a.mp4"_s << u"Opened 1 of 2 items."_s;
    QTest::newRow("an address first") << QStringList{web, u"a.mp4"_s, u"b.mkv"_s} << QStringList()
                                      << web << u"Opened 1 of 3 items."_s;
    QTest::newRow("a channel list first")
        << QStringList{u"list.m3u"_s, u"a.mp4"_s, u"b.mkv"_s} << QStringList() << QString()
        << u"Opened 1 of 3 items."_s;
}

void MainWindowModelTest::opensSeveral()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QStringList, list);
    QFETCH(const QString, opened);
    QFETCH(const QString, toast);
    QList<QUrl> urls;
    for (const QString &argument : arguments)
        urls.append(argument.startsWith(u'<')
                        ? QUrl(argument)
                        : QUrl::fromUserInput(argument, u"/home"_s, QUrl::AssumeLocalFile));
    for (const bool isDropped : {false, true}) {
        m_world = std::make_unique<ShellWorld>();
        if (isDropped)
            QVERIFY(m_world->shell.openDropped(urls, {}));
        else
            m_world->shell.open(arguments, u"/home"_s);
        QStringList names;
        for (qsizetype i = 0; i < m_world->player.playlist().size(); ++i)
            names.append(m_world->player.playlist().name(i).toString());
        QCOMPARE(names, list);
        QCOMPARE(m_world->player.currentURL(), QUrl(opened));
        QCOMPARE(m_world->shell.currentChannel(), list.isEmpty() ? -1 : 0);
        QCOMPARE(m_world->player.toastMessage(), toast);
        QCOMPARE(m_world->player.isLoading(), opened.isEmpty());
    }
}

void MainWindowModelTest::filesOpenedTogetherFollowEachOther()
{
    PlayerModel &player = m_world->player;
    const auto end = [this] { Q_EMIT m_world->mediaPlayer.itemEnded(); };
    // A list that still loads does not take their place.
    const QUrl list(u"http://h/list.m3u"_s);
    player.openRemote(list.toString(), {});
    m_world->shell.open({u"/a.mp4"_s, u"/b.mp4"_s}, {});
    QVERIFY(!player.isLoading());
    end();
    QCOMPARE(player.title(), u"b.mp4"_s);
    QVERIFY(player.isPlaying());
    end();
    QCOMPARE(player.title(), u"b.mp4"_s);
    // Something else that was opened is not one of them.
    player.playFile(QUrl(u"file:///c.mp4"_s));
    end();
    QCOMPARE(player.title(), u"c.mp4"_s);

    // Channels wait for the user.
    player.openRemote(list.toString(), {});
    m_world->http.respond(list, 200, "#EXTINF:-1,One\na.ts\n#EXTINF:-1,Two\nb.ts\n");
    m_world->scheduler.runBackground();
    m_world->shell.playChannel(0);
    end();
    QCOMPARE(player.title(), u"One"_s);
}

void MainWindowModelTest::filesGoOnAfterBrokenOnes_data()
{
    QTest::addColumn<int>("broken");
    QTest::addColumn<MediaPlayer::ItemFailure>("failure");
    QTest::addColumn<int>("loads");
    QTest::addColumn<QString>("playing");
    QTest::addColumn<QString>("toast");
    QTest::addColumn<bool>("hasNotice");
    using Failure = MediaPlayer::ItemFailure;
    QTest::newRow("none") << 0 << Failure::Unplayable << 1 << u"a.mp4"_s << QString() << false;
    QTest::newRow("one") << 1 << Failure::Unplayable << 2 << u"b.mp4"_s
                         << u"Skipped a.mp4, which cannot be played."_s << false;
    QTest::newRow("two") << 2 << Failure::Unreachable << 3 << u"c.mp4"_s
                         << u"Skipped 2 files that cannot be played."_s << false;
    QTest::newRow("all") << 3 << Failure::Unplayable << 3 << u"c.mp4"_s
                         << u"Skipped 2 files that cannot be played."_s << true;
    QTest::newRow("nothing can be drawn")
        << 1 << Failure::NoPicture << 1 << u"a.mp4"_s << QString() << true;
}

void MainWindowModelTest::filesGoOnAfterBrokenOnes()
{
    QFETCH(const int, broken);
    QFETCH(const MediaPlayer::ItemFailure, failure);
    QFETCH(const QString, toast);
    QFETCH(const bool, hasNotice);
    m_world->shell.open({u"/a.mp4"_s, u"/b.mp4"_s, u"/c.mp4"_s}, {});
    for (int i = 0; i < broken; ++i)
        Q_EMIT m_world->mediaPlayer.itemFailed(failure);
    QTEST(m_world->player.title(), "playing");
    QCOMPARE(m_world->player.toastMessage(), toast);
    QCOMPARE(m_world->shell.pictureNotice().isEmpty(), !hasNotice);
    QTEST(int(opened().size()), "loads");
    if (hasNotice)
        return;
    // Those before it have been told.
    Q_EMIT m_world->mediaPlayer.itemStarted();
    const QString name = m_world->player.title();
    Q_EMIT m_world->mediaPlayer.itemFailed(failure);
    if (name != u"c.mp4")
        QCOMPARE(m_world->player.toastMessage(),
                 u"Skipped "_s + name + u", which cannot be played."_s);

    // A channel that fails waits for the user.
    const QUrl list(u"http://h/list.m3u"_s);
    m_world->player.openRemote(list.toString(), {});
    m_world->http.respond(list, 200, "#EXTINF:-1,One\na.ts\n#EXTINF:-1,Two\nb.ts\n");
    m_world->scheduler.runBackground();
    m_world->shell.playChannel(0);
    Q_EMIT m_world->mediaPlayer.itemFailed(failure);
    QCOMPARE(m_world->player.title(), u"One"_s);
    QVERIFY(!m_world->shell.pictureNotice().isEmpty());
}

void MainWindowModelTest::playingOnGivesWayToWhatTheUserOpens()
{
    QTemporaryFile film;
    QVERIFY(film.open());
    m_world->shell.open({u"/a.mp4"_s, u"/b.mp4"_s}, {});
    m_world->recent.open({QUrl::fromLocalFile(film.fileName()), {}});
    // The disk still looks for it.
    Q_EMIT m_world->mediaPlayer.itemEnded();
    QCOMPARE(m_world->player.title(), u"b.mp4"_s);
    m_world->scheduler.runBackground();
    QCOMPARE(m_world->player.currentURL(), QUrl::fromLocalFile(film.fileName()));
}

void MainWindowModelTest::replayIsTheSameChannel_data()
{
    QTest::addColumn<bool>("areFiles");
    QTest::newRow("channels") << false;
    QTest::newRow("files opened together") << true;
}

void MainWindowModelTest::replayIsTheSameChannel()
{
    QFETCH(const bool, areFiles);
    PlayerModel &player = m_world->player;
    MainWindowModel &shell = m_world->shell;
    const QUrl list(u"http://h/list.m3u"_s);
    const auto load = [&] {
        player.openRemote(list.toString(), {});
        // The same address twice is two channels.
        m_world->http.respond(list, 200, "http://h/a.ts\nhttp://h/a.ts\nhttp://h/b.ts\n");
        m_world->scheduler.runBackground();
    };
    if (areFiles)
        shell.open({u"/a.mp4"_s, u"/a.mp4"_s, u"/b.mp4"_s}, {});
    else
        load();
    shell.playChannel(1);
    player.stop();
    QCOMPARE(shell.currentChannel(), -1);
    player.togglePlayback();
    QCOMPARE(shell.currentChannel(), 1);
    QCOMPARE(shell.channelBeside(+1), 2);
    Q_EMIT m_world->mediaPlayer.itemEnded();
    QCOMPARE(shell.currentChannel(), areFiles ? 2 : 1);

    // Something else has been opened since.
    player.openRemote(u"http://h/film.mp4"_s, {});
    player.stop();
    player.togglePlayback();
    QCOMPARE(shell.currentChannel(), -1);

    // In another list its place means nothing.
    shell.playChannel(1);
    player.stop();
    load();
    player.togglePlayback();
    QVERIFY(player.isPlaying());
    QCOMPARE(shell.currentChannel(), -1);
}

void MainWindowModelTest::playsAChannel()
{
    const QUrl list(u"http://h/list.m3u"_s);
    m_world->player.openRemote(list.toString(), {});
    m_world->http.respond(list, 200,
                          "#EXTINF:-1,One\nlive.m3u8\n#EXTINF:-1,Two\nhttp://h/two.ts\n");
    m_world->scheduler.runBackground();

    m_world->shell.playChannel(0);
    QCOMPARE(m_world->player.title(), u"One"_s);
    QVERIFY(m_world->player.isLiveStream());
    m_world->shell.playChannel(1);
    QCOMPARE(m_world->player.title(), u"Two"_s);
    QVERIFY(!m_world->player.isLiveStream());
    m_world->shell.playChannel(2);
    m_world->shell.playChannel(-1);
    QCOMPARE(m_world->player.title(), u"Two"_s);
    QCOMPARE(m_world->shell.currentChannel(), 1);
    m_world->player.playFile(QUrl(u"file:///a.mp4"_s));
    QCOMPARE(m_world->shell.currentChannel(), -1);
    m_world->shell.playChannel(0);
    QCOMPARE(m_world->shell.currentChannel(), 0);
    m_world->player.stop();
    QCOMPARE(m_world->shell.currentChannel(), -1);
}

void MainWindowModelTest::onlyOwnPlaylistsOpenFiles()
{
    const QByteArray text = "#EXTINF:-1,One\nfile:///home/u/one.mp4\n";
    const QUrl list(u"http://h/list.m3u"_s);
    m_world->player.openRemote(list.toString(), {});
    m_world->http.respond(list, 200, text);
    m_world->scheduler.runBackground();
    m_world->shell.playChannel(0);
    QVERIFY(m_world->player.currentURL().isEmpty());
    QCOMPARE(m_world->shell.currentChannel(), -1);
    QVERIFY(!m_world->player.toastMessage().isEmpty());

    QTemporaryFile own;
    QVERIFY(own.open() && own.write(text) == text.size() && own.flush());
    m_world->player.importM3UFile(QUrl::fromLocalFile(own.fileName()), {});
    m_world->scheduler.runBackground();
    m_world->shell.playChannel(0);
    QCOMPARE(m_world->player.currentURL(), QUrl(u"file:///home/u/one.mp4"_s));
}

void MainWindowModelTest::sidebarFollowsEvents()
{
    MainWindowModel &shell = m_world->shell;
    shell.setSidebarVisible(false);
    post(notification::openLocalM3UTab);
    QVERIFY(shell.sidebarVisible());
    QCOMPARE(shell.sidebarSection(), Section::localM3U);

    // Channels that have just arrived are worth seeing.
    shell.setSidebarVisible(false);
    const QUrl list(u"http://h/list.m3u"_s);
    m_world->player.openRemote(list.toString(), {});
    m_world->http.respond(list, 200, "http://h/1.ts\n");
    m_world->scheduler.runBackground();
    QVERIFY(shell.sidebarVisible());
    QCOMPARE(shell.sidebarSection(), Section::network);
}

void MainWindowModelTest::fullScreenHidesNothing()
{
    MainWindowModel &shell = m_world->shell;
    const MenuCommands commands(m_world->player, shell, m_world->downloads, m_world->recent);
    MenuCommand *const toggle = commands.view().first();
    const QUrl list(u"http://h/list.m3u"_s);
    const auto load = [&](const QByteArray &text) {
        m_world->player.openRemote(list.toString(), {});
        m_world->http.respond(list, 200, text);
        m_world->scheduler.runBackground();
        return m_world->player.toastMessage();
    };
    QCOMPARE(load("http://h/1.ts\n"), QString());
    QCOMPARE(toggle->title(), u"Hide Sidebar"_s);

    const QSignalSpy shows(&shell, &MainWindowModel::sidebarShownChanged);
    shell.setIsFullScreen(true);
    shell.windowFillsScreen(true);
    QCOMPARE(load("http://h/1.ts\n"), u"Opened a list of 1 channel."_s);
    QCOMPARE(load("http://h/1.ts\nhttp://h/2.ts\n"), u"Opened a list of 2 channels."_s);
    m_world->scheduler.advance(PlayerModel::toastDuration);
    shell.open({u"/a.mp4"_s, u"/b.mp4"_s}, {});
    QCOMPARE(m_world->player.toastMessage(), QString());
    QVERIFY(!shell.sidebarShown());
    QCOMPARE(shows.count(), 1);

    // Its switch is no switch of what nobody sees.
    QCOMPARE(toggle->title(), u"Show Sidebar"_s);
    toggle->trigger();
    QVERIFY(shell.sidebarShown() && !shell.isFullScreen());
    QCOMPARE(shows.count(), 2);
    toggle->trigger();
    QVERIFY(!shell.sidebarVisible());
    shell.setIsFullScreen(true);
    shell.windowFillsScreen(true);
    QCOMPARE(shows.count(), 3);
    toggle->trigger();
    QVERIFY(shell.sidebarShown());
}

void MainWindowModelTest::remembersTheSidebar()
{
    QVERIFY(m_world->shell.sidebarVisible());
    m_world->shell.setSidebarVisible(false);
    // A slow disk holds nothing up.
    QCOMPARE(m_world->defaults.writes, 0);
    m_world->scheduler.runBackground();
    const MainWindowModel next(m_world->player, m_world->mediaPlayer, m_world->scheduler,
                               m_world->notifications, m_world->defaults);
    QVERIFY(!next.sidebarVisible());
}

void MainWindowModelTest::remembersTheDisplayMode()
{
    const auto next = [this] {
        return MainWindowModel(m_world->player, m_world->mediaPlayer, m_world->scheduler,
                               m_world->notifications, m_world->defaults)
            .displayMode();
    };
    QCOMPARE(m_world->shell.displayMode(), PortraitDisplayMode::normal);
    for (const PortraitDisplayMode mode :
         {PortraitDisplayMode::rotate, PortraitDisplayMode::smart, PortraitDisplayMode::normal}) {
        m_world->shell.setDisplayMode(mode);
        m_world->scheduler.runBackground();
        QCOMPARE(next(), mode);
    }
    m_world->shell.setDisplayMode(PortraitDisplayMode::fill);
    m_world->scheduler.runBackground();
    for (QByteArray &value : m_world->defaults.values)
        value = "nonsense";
    QCOMPARE(next(), PortraitDisplayMode::normal);
    m_world->defaults.unreadable = true;
    QCOMPARE(next(), PortraitDisplayMode::normal);
}

void MainWindowModelTest::displayModesAreAChoice()
{
    const MenuCommands commands(m_world->player, m_world->shell, m_world->downloads,
                                m_world->recent);
    QStringList titles;
    for (MenuCommand *choice : commands.displayModes()) {
        titles << choice->title();
        const QSignalSpy changes(choice, &MenuCommand::isCheckedChanged);
        choice->trigger();
        QVERIFY(choice->isCheckable() && choice->isChecked());
        QCOMPARE(rawValue(m_world->shell.displayMode()), choice->title());
        // Even if it was made already: the item that was clicked has toggled itself.
        QVERIFY(changes.count() >= 1);
    }
    QCOMPARE(titles.size(), 5);
    QCOMPARE(std::ranges::count_if(commands.view(), &MenuCommand::isChecked), 1);
    QVERIFY(!commands.playback().first()->isCheckable());

    // A site's own player knows none of them.
    MenuCommand *const first = commands.displayModes().first();
    const QSignalSpy enabling(first, &MenuCommand::isEnabledChanged);
    const PortraitDisplayMode before = m_world->shell.displayMode();
    m_world->player.openRemote(u"https://youtu.be/v"_s, {});
    QVERIFY(!first->isEnabled());
    first->trigger();
    QCOMPARE(m_world->shell.displayMode(), before);
    m_world->player.stop();
    QVERIFY(first->isEnabled());
    QCOMPARE(enabling.count(), 2);
}

void MainWindowModelTest::olderWishesDoNotComeBack()
{
    MainWindowModel &shell = m_world->shell;
    shell.setIsFullScreen(true);
    shell.setIsFullScreen(false);
    const QSignalSpy changes(&shell, &MainWindowModel::isFullScreenChanged);
    // The desktop tells of the one, then of the other.
    m_world->scheduler.advance(100ms);
    shell.windowFillsScreen(true);
    m_world->scheduler.advance(100ms);
    shell.windowFillsScreen(false);
    m_world->scheduler.advance(10s);
    QCOMPARE(changes.count(), 0);
    QVERIFY(!shell.isFullScreen());
}

void MainWindowModelTest::desktopHasTheLastWord()
{
    MainWindowModel &shell = m_world->shell;
    shell.windowFillsScreen(true);
    QVERIFY(shell.isFullScreen());
    shell.windowFillsScreen(false);
    QVERIFY(!shell.isFullScreen());
    // One that never fills the screen.
    shell.setIsFullScreen(true);
    m_world->scheduler.advance(MainWindowModel::fullScreenPatience);
    QVERIFY(!shell.isFullScreen());
}

void MainWindowModelTest::remembersThatItWasMaximized()
{
    MainWindowModel &shell = m_world->shell;
    QVERIFY(!shell.wasMaximized());
    shell.windowIsMaximized(true);
    shell.windowFillsScreen(true);
    QVERIFY(shell.wasMaximized());
    // The desktop takes it out and back in.
    shell.windowIsMaximized(false);
    shell.windowFillsScreen(false);
    shell.windowFillsScreen(true);
    QVERIFY(!shell.wasMaximized());

    // What it is on its own way does not count.
    shell.windowIsMaximized(true);
    shell.windowFillsScreen(false);
    shell.setIsFullScreen(true);
    shell.windowIsMaximized(false);
    shell.windowFillsScreen(true);
    m_world->scheduler.advance(MainWindowModel::fullScreenPatience);
    QVERIFY(shell.wasMaximized());
    shell.setIsFullScreen(false);
    shell.windowIsMaximized(false);
    shell.windowFillsScreen(false);
    QVERIFY(shell.wasMaximized());
    m_world->scheduler.advance(MainWindowModel::fullScreenPatience);
    QVERIFY(!shell.wasMaximized());
}

void MainWindowModelTest::explainsMissingPictures_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<MediaPlayer::ItemFailure>("failure");
    QTest::addColumn<QString>("notice");
    const QUrl file = QUrl::fromLocalFile(u"/a.mp4"_s);
    const QUrl stream(u"http://h/a.m3u8"_s);
    using Failure = MediaPlayer::ItemFailure;
    QTest::newRow("file gone")
        << file << Failure::Unreachable
        << u"This file cannot be opened. It may have been moved or deleted."_s;
    QTest::newRow("stream gone")
        << stream << Failure::Unreachable
        << u"This address does not answer. It may be offline or out of date."_s;
    QTest::newRow("no media") << stream << Failure::Unplayable
                              << u"There is nothing here that Lumaro can play."_s;
    QTest::newRow("other scheme") << QUrl(u"edl://x"_s) << Failure::Unsupported
                                  << u"Lumaro does not open addresses of this kind."_s;
}

void MainWindowModelTest::explainsMissingPictures()
{
    QFETCH(const QUrl, url);
    QFETCH(const MediaPlayer::ItemFailure, failure);
    m_world->player.play(url, u"x"_s, false);
    Q_EMIT m_world->mediaPlayer.itemFailed(failure);
    QTEST(m_world->shell.pictureNotice(), "notice");
    QCOMPARE(m_world->player.errorMessage(), QString());
}

void MainWindowModelTest::noticeGoesWithItsCause()
{
    MainWindowModel &shell = m_world->shell;
    const QUrl stream(u"http://h/a.m3u8"_s);
    m_world->player.play(stream, u"x"_s, true);
    Q_EMIT m_world->mediaPlayer.itemFailed(MediaPlayer::ItemFailure::Unplayable);
    m_world->player.play(stream, u"x"_s, true);
    QCOMPARE(shell.pictureNotice(), QString());

    Q_EMIT m_world->mediaPlayer.itemFailed(MediaPlayer::ItemFailure::Unplayable);
    Q_EMIT m_world->mediaPlayer.itemStarted();
    QCOMPARE(shell.pictureNotice(), QString());

    Q_EMIT m_world->mediaPlayer.itemFailed(MediaPlayer::ItemFailure::Unplayable);
    m_world->player.stop();
    QCOMPARE(shell.pictureNotice(), QString());

    m_world->player.play(stream, u"x"_s, true);
    Q_EMIT m_world->mediaPlayer.itemFailed(MediaPlayer::ItemFailure::Unplayable);
    m_world->player.openRemote(u"https://youtu.be/v"_s, {});
    QCOMPARE(shell.pictureNotice(), QString());
}

void MainWindowModelTest::errorsLeaveThePicture()
{
    MainWindowModel &shell = m_world->shell;
    PlayerModel &player = m_world->player;
    const QString error = u"Enter a valid HTTP or HTTPS address."_s;
    shell.setSidebarVisible(false);
    player.playFile(QUrl(u"file:///a.mp4"_s));
    m_world->scheduler.advance(10s);
    QVERIFY(!shell.controlsVisible());
    player.openRemote(u"nonsense"_s, {});
    QCOMPARE(shell.pictureError(), error);
    m_world->scheduler.advance(MainWindowModel::errorHideDelay - 1ms);
    QCOMPARE(shell.pictureError(), error);
    m_world->scheduler.advance(1ms);
    QCOMPARE(shell.pictureError(), QString());

    // It can still be read, as long as the controls are there.
    shell.showFullScreenControls();
    QCOMPARE(shell.pictureError(), error);
    m_world->scheduler.advance(MainWindowModel::controlsHideDelay);
    QCOMPARE(shell.pictureError(), QString());
    shell.showFullScreenControls();
    const QSignalSpy changes(&shell, &MainWindowModel::pictureErrorChanged);
    player.dismissError();
    QCOMPARE(shell.pictureError(), QString());
    shell.showFullScreenControls();
    QCOMPARE(changes.count(), 1);
    QVERIFY(player.isPlaying());
}

void MainWindowModelTest::errorsAreToldOnce_data()
{
    QTest::addColumn<std::function<void(ShellWorld &)>>("look");
    QTest::addColumn<bool>("isOverPicture");
    const auto row = [](const char *name, std::function<void(ShellWorld &)> look,
                        bool isOverPicture) { QTest::newRow(name) << look << isOverPicture; };
    row("sidebar", [](ShellWorld &) { }, false);
    row("no sidebar", [](ShellWorld &world) { world.shell.setSidebarVisible(false); }, true);
    row("full screen", [](ShellWorld &world) { world.shell.setIsFullScreen(true); }, true);
    row(
        "the library's section",
        [](ShellWorld &world) { world.shell.setSidebarSection(Section::localM3U); }, true);
    row(
        "the library's own",
        [](ShellWorld &world) { world.shell.setSidebarSection(Section::localM3U); }, false);
}

void MainWindowModelTest::errorsAreToldOnce()
{
    QFETCH(const std::function<void(ShellWorld &)>, look);
    QFETCH(const bool, isOverPicture);
    const bool isTheLibrarys = qstrcmp(QTest::currentDataTag(), "the library's own") == 0;
    const auto fail = [&] {
        m_world->player.importM3UFile(QUrl(u"file:///nowhere.m3u"_s), {});
        if (isTheLibrarys)
            m_world->shell.keepSectionWhileLoading();
        m_world->scheduler.runBackground();
        QVERIFY(!m_world->player.errorMessage().isEmpty());
    };
    look(*m_world);
    fail();
    QCOMPARE(!m_world->shell.pictureError().isEmpty(), isOverPicture);

    // In the other order.
    m_world = std::make_unique<ShellWorld>();
    fail();
    look(*m_world);
    QCOMPARE(!m_world->shell.pictureError().isEmpty(), isOverPicture);
}

void MainWindowModelTest::tellsWhenAStreamBreaksOff()
{
    m_world->player.play(QUrl(u"http://h/a.m3u8"_s), u"x"_s, true);
    Q_EMIT m_world->mediaPlayer.itemBrokeOff();
    Q_EMIT m_world->mediaPlayer.itemEnded();
    QCOMPARE(m_world->player.toastMessage(), u"The stream has ended. Space opens it again."_s);
}

void MainWindowModelTest::saysWhenOpeningTakesLong()
{
    MainWindowModel &shell = m_world->shell;
    const QUrl film(u"http://h/a.mp4"_s);
    m_world->player.play(film, u"x"_s, false);
    m_world->scheduler.advance(449ms);
    QVERIFY(!shell.isOpening());
    m_world->scheduler.advance(1ms);
    QVERIFY(shell.isOpening());
    Q_EMIT m_world->mediaPlayer.itemStarted();
    QVERIFY(!shell.isOpening());

    m_world->player.play(film, u"x"_s, false);
    Q_EMIT m_world->mediaPlayer.itemFailed(MediaPlayer::ItemFailure::Unreachable);
    m_world->scheduler.advance(1s);
    QVERIFY(!shell.isOpening());

    m_world->player.play(film, u"x"_s, false);
    m_world->player.stop();
    m_world->scheduler.advance(1s);
    QVERIFY(!shell.isOpening());
}

void MainWindowModelTest::menusFollowTheState()
{
    MenuCommands commands(m_world->player, m_world->shell, m_world->downloads, m_world->recent);
    const auto titles = [](const QList<MenuCommand *> &menu) {
        QStringList list;
        for (const MenuCommand *command : menu)
            list << command->title() + u" "_s + command->shortcut();
        return list;
    };
    QCOMPARE(titles(commands.playback()),
             (QStringList{u"Play "_s, u"Stop "_s, u"Back 5 Seconds "_s, u"Forward 5 Seconds "_s,
                          u"Back 20 Seconds "_s, u"Forward 20 Seconds "_s, u"Back 60 Seconds "_s,
                          u"Forward 60 Seconds "_s, u"Play from the Beginning Home"_s,
                          u"Mute Ctrl+M"_s}));
    QCOMPARE(titles(commands.file()).first(), u"Open Media… Ctrl+O"_s);

    commands.file().at(6)->trigger();
    QVERIFY(m_world->downloads.panelShown());
    commands.file().at(6)->trigger();
    QVERIFY(!m_world->downloads.panelShown());
    m_world->player.play(QUrl(u"https://h/live.m3u8"_s), u"News"_s, true);
    commands.file().at(5)->trigger();
    QCOMPARE(m_world->downloadManager.jobs().size(), 1);
    m_world->player.stop();

    MenuCommand *playPause = commands.playback().first();
    QSignalSpy changes(playPause, &MenuCommand::titleChanged);
    m_world->player.playFile(QUrl::fromLocalFile(u"/a.mp4"_s));
    QCOMPARE(playPause->title(), u"Pause"_s);
    m_world->player.stop();
    QCOMPARE(playPause->title(), u"Play"_s);
    QCOMPARE(changes.count(), 2);

    m_world->player.playFile(QUrl::fromLocalFile(u"/a.mp4"_s));
    m_world->mediaPlayer.time = 100;
    m_world->mediaPlayer.length = 1000;
    m_world->mediaPlayer.tick();
    m_world->mediaPlayer.log.clear();
    for (MenuCommand *command : commands.playback())
        command->trigger();
    QCOMPARE(m_world->mediaPlayer.log,
             (QStringList{u"pause"_s, u"pause"_s, u"remove"_s, u"mute"_s}));
    QCOMPARE(commands.playback().last()->title(), u"Unmute"_s);
}

QTEST_GUILESS_MAIN(MainWindowModelTest)
#include "tst_mainwindowmodel.moc"
