#include "platform/NotificationCenter.h"
#include "player/PlayerModel.h"
#include "player/WebPlayers.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/fakes/FakeInputMonitor.h"
#include "tests/fakes/FakeMediaPlayer.h"
#include "tests/fakes/FakePlayerPage.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeScriptRunner.h"
#include "tests/fakes/FakeWorkspace.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

using Target = NavigationAction::Target;
Q_DECLARE_METATYPE(lumaro::NavigationAction::Target)

namespace {

const QString clip = u"https://youtu.be/clip"_s;
const QString otherClip = u"https://youtu.be/other"_s;
const QString okVideo = u"https://ok.ru/video/12345"_s;
const QVariantList playing{2, 1.5, 60, 1, 0};
const QVariantList paused{2, 1.5, 60, 2, 0};

class Surface : public QObject, public PlayerRecordingSurface
{
public:
    QQuickItem *recordingView() override { return nullptr; }
    QRectF recordingRectInView() const override { return {}; }
};

struct World
{
    FakeMediaPlayer mediaPlayer;
    FakeHttpClient http;
    FakeFilePanels panels;
    FakeScheduler scheduler;
    FakeInputMonitor input;
    FakeWorkspace workspace;
    NotificationCenter notifications;
    PlayerSurfaceRegistry surfaces;
    YouTubePlayerRegistry youTube;
    OKVideoPlayerRegistry okVideo;
    PlayerModel model{
        {mediaPlayer, http, panels, scheduler, scheduler, input, notifications, youTube, okVideo}};
    int engineRequests = 0;
    bool engineLoads = true;
    WebPlayers players{{model, scheduler, workspace, notifications, surfaces, WebServices()},
                       youTube,
                       okVideo,
                       [this] {
                           ++engineRequests;
                           return engineLoads;
                       }};
    Surface surface;
    FakePlayerPage page;

    void open(const QString &address) { model.openRemote(address, u"Clip"_s); }
    /// Opens `address` and shows its page, as the views do.
    WebPlayerView &show(const QString &address)
    {
        open(address);
        WebPlayerView &view = model.youtubeContent() ? *players.youTube() : *players.okVideo();
        view.attach(&page, &surface);
        return view;
    }
    /// The page answers the next question.
    bool tell(const QVariant &answer)
    {
        scheduler.advance(WebPlayerView::pollInterval);
        return page.answer(answer);
    }
    /// It gives the same answer for as long as that takes.
    void goOnTelling(const QVariant &answer, std::chrono::milliseconds time)
    {
        for (auto passed = 0ms; passed < time; passed += WebPlayerView::pollInterval)
            tell(answer);
    }
};

} // namespace

class WebPlayersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_world = std::make_unique<World>(); }
    void cleanup() { m_world.reset(); }

    void loadsWhatIsNew();
    void loadsTheEmbedPage();
    void registersOnEachUpdate();
    void dismantles_data();
    void dismantles();
    void leavesItsSuccessorAlone();
    void registryHoldsWeakly();
    void commandsNeedAView();
    void commandsFromOtherThreadsMove();

    void followsThePage();
    void oldStateDoesNotUndoCommands();
    void staleAnswersAreDropped();
    void asksOneQuestionAtATime();
    void asksTheNewDocumentAnew();
    void isLoadingWhileItIsBlank_data();
    void isLoadingWhileItIsBlank();
    void beginsPausedIfPausedBefore_data();
    void beginsPausedIfPausedBefore();
    void countsAsPlayingForAWhile();
    void volumeHoldsForTheNextPage_data();
    void volumeHoldsForTheNextPage();
    void seeksWithinTheLength();

    void saysWhyItDoesNotPlay_data();
    void saysWhyItDoesNotPlay();
    void waitsWhileTheUserClicks();
    void waitsForTheUserToPlay();
    void passingErrorsPass();
    void triesAgain_data();
    void triesAgain();
    void newContentForgetsTheFailure();

    void engineIsLoadedOnce();
    void engineMayBeMissing();
    void viewsMayBeMissing();

    void clicksAreTold();
    void staysOnThePlayersPage_data();
    void staysOnThePlayersPage();
    void oneClickOpensOnePage();

private:
    std::unique_ptr<World> m_world;
};

void WebPlayersTest::loadsWhatIsNew()
{
    World &world = *m_world;
    WebPlayerView &view = world.show(clip);
    QCOMPARE(view.loadedContentID(), u"clip|"_s);
    QCOMPARE(world.page.loads, QStringList{WebServices().product.toString()});
    QVERIFY(world.page.page.contains(u"var videoID = \"clip\""_s));
    world.open(clip);
    QCOMPARE(world.page.loads.size(), 1);
    world.open(otherClip);
    QCOMPARE(world.page.loads.size(), 2);
    QCOMPARE(view.loadedContentID(), u"other|"_s);
    world.open(otherClip + u"?list=PL1"_s);
    QCOMPARE(world.page.loads.size(), 3);
    QVERIFY(world.page.page.contains(u"var playlistID = \"PL1\""_s));
}

void WebPlayersTest::loadsTheEmbedPage()
{
    WebPlayerView &view = m_world->show(okVideo);
    QCOMPARE(view.loadedContentID(), u"12345"_s);
    QCOMPARE(m_world->page.loads,
             QStringList{u"https://ok.ru/videoembed/12345?autoplay=1&nochat=1"_s});
    QVERIFY(!m_world->players.youTube()->wantsPage());
}

void WebPlayersTest::registersOnEachUpdate()
{
    World &world = *m_world;
    world.show(clip);
    QCOMPARE(world.youTube.currentView(), &world.page);
    QCOMPARE(world.okVideo.currentView(), nullptr);
    QCOMPARE(world.surfaces.currentSurface(), &world.surface);
    FakeScriptRunner other;
    Surface otherSurface;
    world.youTube.setCurrentView(&other);
    world.surfaces.setCurrentSurface(&otherSurface);
    world.open(otherClip);
    QCOMPARE(world.youTube.currentView(), &world.page);
    QCOMPARE(world.surfaces.currentSurface(), &world.surface);
}

void WebPlayersTest::dismantles_data()
{
    QTest::addColumn<std::function<void(World &)>>("end");
    using End = std::function<void(World &)>;
    QTest::newRow("stop") << End([](World &w) { w.model.stop(); });
    QTest::newRow("file") << End(
        [](World &w) { w.model.playFile(QUrl::fromLocalFile(u"/a.mp4"_s)); });
    QTest::newRow("other site") << End([](World &w) { w.open(okVideo); });
    QTest::newRow("the view goes") << End([](World &w) { w.players.youTube()->detach(&w.page); });
}

void WebPlayersTest::dismantles()
{
    QFETCH(const std::function<void(World &)>, end);
    World &world = *m_world;
    WebPlayerView &view = world.show(clip);
    end(world);
    QCOMPARE(world.youTube.currentView(), nullptr);
    QCOMPARE(world.surfaces.currentSurface(), nullptr);
    QCOMPARE(view.loadedContentID(), QString());
    world.scheduler.advance(1min);
    QVERIFY(!world.page.answer(playing));
    QCOMPARE(view.failure(), QString());
    QVERIFY(!world.page.policy);
}

void WebPlayersTest::leavesItsSuccessorAlone()
{
    World &world = *m_world;
    WebPlayerView &view = world.show(clip);
    FakePlayerPage next;
    Surface nextSurface;
    view.attach(&next, &nextSurface);
    QCOMPARE(next.loads.size(), 1);
    view.detach(&world.page);
    QCOMPARE(world.youTube.currentView(), &next);
    QCOMPARE(world.surfaces.currentSurface(), &nextSurface);
}

void WebPlayersTest::registryHoldsWeakly()
{
    World &world = *m_world;
    world.open(clip);
    auto page = std::make_unique<FakePlayerPage>();
    world.players.youTube()->attach(page.get(), &world.surface);
    QCOMPARE(world.youTube.currentView(), page.get());
    page.reset();
    QCOMPARE(world.youTube.currentView(), nullptr);
    world.model.togglePlayback();
    world.open(otherClip);
    world.scheduler.advance(1min);
    QCOMPARE(world.players.failure(), QString());
}

void WebPlayersTest::commandsNeedAView()
{
    FakeScriptRunner page;
    YouTubePlayerRegistry registry;
    registry.setMuted(true);
    registry.setCurrentView(&page);
    registry.setMuted(true);
    registry.evaluate(u"1"_s);
    registry.clear(nullptr);
    registry.evaluate(u"2"_s);
    registry.clear(&page);
    registry.setMuted(false);
    QCOMPARE(page.scripts, (QStringList{u"varnSetMuted(true);"_s, u"1"_s, u"2"_s}));
}

void WebPlayersTest::commandsFromOtherThreadsMove()
{
    class Page : public ScriptRunner
    {
    public:
        void evaluate(const QString &) override { threads.append(QThread::currentThread()); }
        QList<QThread *> threads;
    } page;
    OKVideoPlayerRegistry registry;
    registry.setCurrentView(&page);
    const std::unique_ptr<QThread> other(QThread::create([&registry] {
        registry.setMuted(true);
        registry.skip(5);
    }));
    other->start();
    QVERIFY(other->wait());
    QCOMPARE(page.threads.size(), 0);
    QCoreApplication::sendPostedEvents();
    QCOMPARE(page.threads, QList<QThread *>(2, thread()));
}

void WebPlayersTest::followsThePage()
{
    World &world = *m_world;
    WebPlayerView &view = world.show(clip);
    QVERIFY(view.isLoading());
    QCOMPARE(world.page.world, PlayerPage::World::Page);
    QVERIFY(world.tell(playing));
    QVERIFY(!view.isLoading());
    QCOMPARE(world.page.question, youTubePlaybackScript());
    QCOMPARE(world.model.currentTime(), 1.5);
    QCOMPARE(world.model.duration(), 60.0);
    QVERIFY(world.model.isPlaying());
    // The user pauses in the page itself.
    QVERIFY(world.tell(paused));
    QVERIFY(!world.model.isPlaying());
    QVERIFY(world.tell(u"nonsense"_s));
    QCOMPARE(world.model.currentTime(), 1.5);
    // Another video begins anew.
    world.open(otherClip);
    QCOMPARE(world.model.currentTime(), 0.0);
    QCOMPARE(world.model.duration(), 0.0);
    QVERIFY(view.isLoading());
}

void WebPlayersTest::oldStateDoesNotUndoCommands()
{
    World &world = *m_world;
    world.show(clip);
    QVERIFY(world.tell(playing));
    world.model.togglePlayback();
    world.model.seek(30);
    for (auto passed = 0ms; passed < PlayerModel::webCommandDuration;
         passed += WebPlayerView::pollInterval) {
        QVERIFY(!world.model.isPlaying());
        QCOMPARE(world.model.currentTime(), 30.0);
        QVERIFY(world.tell(playing));
    }
    // In the end, what the page says counts.
    QVERIFY(world.model.isPlaying());
    QCOMPARE(world.model.currentTime(), 1.5);
}

void WebPlayersTest::staleAnswersAreDropped()
{
    World &world = *m_world;
    world.show(clip);
    world.scheduler.advance(WebPlayerView::pollInterval);
    world.open(otherClip);
    QVERIFY(world.page.answer(playing));
    QCOMPARE(world.model.currentTime(), 0.0);
    QVERIFY(world.tell(playing));
    QCOMPARE(world.model.currentTime(), 1.5);
}

void WebPlayersTest::asksOneQuestionAtATime()
{
    World &world = *m_world;
    world.show(clip);
    world.scheduler.advance(10s);
    QCOMPARE(world.page.questions.size(), 1);
    world.page.answer(playing);
    world.scheduler.advance(WebPlayerView::pollInterval);
    QCOMPARE(world.page.questions.size(), 1);
}

void WebPlayersTest::asksTheNewDocumentAnew()
{
    World &world = *m_world;
    WebPlayerView &view = world.show(clip);
    // What the document before was asked may be lost with it.
    world.scheduler.advance(WebPlayerView::pollInterval);
    world.page.questions.clear();
    Q_EMIT world.page.loadFinished();
    world.goOnTelling(playing, 20s);
    QCOMPARE(view.failure(), QString());
    QCOMPARE(world.model.currentTime(), 1.5);
}

void WebPlayersTest::isLoadingWhileItIsBlank_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("pageIsBlank");
    QTest::newRow("YouTube") << clip << true;
    QTest::newRow("OK.ru") << okVideo << false;
}

void WebPlayersTest::isLoadingWhileItIsBlank()
{
    QFETCH(const QString, address);
    World &world = *m_world;
    WebPlayerView &view = world.show(address);
    world.tell(QVariantList{1, 0, 0, -1, 0});
    QVERIFY(view.isLoading());
    const QSignalSpy changed(&world.players, &WebPlayers::changed);
    Q_EMIT world.page.loadFinished();
    QTEST(view.isLoading(), "pageIsBlank");
    world.tell(QVariantList{2, 0, 0, -1, 0});
    QVERIFY(!view.isLoading());
    QCOMPARE(changed.count(), 2);
}

void WebPlayersTest::beginsPausedIfPausedBefore_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("presses");
    QTest::addColumn<bool>("begins");
    QTest::addColumn<QString>("pause");
    const QString youTube = u"if(player&&player.pauseVideo){player.pauseVideo();}"_s;
    const QString ok = u"var v=document.querySelector('video'); if(v){v.pause();}"_s;
    QTest::newRow("YouTube") << clip << 1 << false << youTube;
    QTest::newRow("OK.ru") << okVideo << 1 << false << ok;
    QTest::newRow("paused and played") << clip << 2 << true << youTube;
    QTest::newRow("not paused") << okVideo << 0 << true << ok;
}

void WebPlayersTest::beginsPausedIfPausedBefore()
{
    QFETCH(const QString, address);
    QFETCH(const int, presses);
    QFETCH(const bool, begins);
    QFETCH(const QString, pause);
    World &world = *m_world;
    world.open(okVideo + u"6"_s);
    world.model.togglePlayback();
    world.show(address);
    QVERIFY(world.model.isPlaying());
    for (int i = 0; i < presses; ++i)
        world.model.togglePlayback();
    // A video element that has yet to begin is paused.
    world.goOnTelling(QVariantList{2, 0, 60, address == clip ? -1 : 2, 0}, 2s);
    for (int i = 0; i < 4; ++i) {
        world.tell(playing);
        if (!begins)
            QVERIFY(!world.model.isPlaying());
    }
    QCOMPARE(world.page.scripts.count(pause), begins ? 0 : 1);
    // Later on it is the page that says.
    world.goOnTelling(playing, 2s);
    QVERIFY(world.model.isPlaying());
    QCOMPARE(world.page.scripts.count(pause), begins ? 0 : 1);
}

void WebPlayersTest::countsAsPlayingForAWhile()
{
    World &world = *m_world;
    WebPlayerView &view = world.show(clip);
    Q_EMIT world.page.loadFinished();
    const QVariantList unstarted{2, 0, 60, -1, 0};
    world.goOnTelling(unstarted, WebPlayerView::playerPatience);
    QVERIFY(world.model.isPlaying());
    world.goOnTelling(unstarted, 1s);
    QVERIFY(!world.model.isPlaying());
    QCOMPARE(world.model.duration(), 60.0);
    QCOMPARE(view.failure(), QString());
    world.tell(playing);
    QVERIFY(world.model.isPlaying());
    // Nor does what has lost its video play.
    world.goOnTelling(QVariantList{1, 0, 0, -1, 0}, WebPlayerView::playerPatience);
    QVERIFY(world.model.isPlaying());
    world.goOnTelling(QVariantList{1, 0, 0, -1, 0}, 1s);
    QVERIFY(!world.model.isPlaying());
}

void WebPlayersTest::volumeHoldsForTheNextPage_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("muted");
    QTest::addColumn<QStringList>("scripts");
    QTest::newRow("YouTube") << clip << false << QStringList{u"varnSetVolume(0.25);"_s};
    QTest::newRow("YouTube, muted")
        << clip << true << QStringList{u"varnSetVolume(0.25);"_s, u"varnSetMuted(true);"_s};
    const QString video = u"var v=document.querySelector('video'); if(v){"_s;
    QTest::newRow("OK.ru, muted") << okVideo << true
                                  << QStringList{video + u"v.muted=false;v.volume=0.25;}"_s,
                                                 video + u"v.muted=true;}"_s};
}

void WebPlayersTest::volumeHoldsForTheNextPage()
{
    QFETCH(const QString, address);
    QFETCH(const bool, muted);
    World &world = *m_world;
    world.model.setVolume(0.25);
    if (muted)
        world.model.toggleMute();
    world.show(address);
    QVERIFY(world.tell(QVariantList{1, 0, 0, -1, 0}));
    QCOMPARE(world.page.scripts, QStringList());
    // Once when there is a player, and again when it has media.
    for (const QVariantList &answer : {QVariantList{2, 0, 0, -1, 0}, playing}) {
        QVERIFY(world.tell(answer));
        QTEST(std::exchange(world.page.scripts, {}), "scripts");
    }
    QVERIFY(world.tell(playing));
    QCOMPARE(world.page.scripts, QStringList());
}

void WebPlayersTest::seeksWithinTheLength()
{
    World &world = *m_world;
    world.show(okVideo);
    QVERIFY(world.tell(QVariantList{2, 1.5, 0, 1, 0}));
    world.page.scripts.clear();
    world.model.seek(30);
    QCOMPARE(world.page.scripts, QStringList());
    QVERIFY(world.tell(playing));
    world.model.seek(1000);
    QCOMPARE(world.page.scripts,
             QStringList{u"var v=document.querySelector('video'); if(v){v.currentTime=60.0;}"_s});
    QCOMPARE(world.mediaPlayer.log.filter(u"seek"_s), QStringList());
}

void WebPlayersTest::saysWhyItDoesNotPlay_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<std::function<void(World &)>>("event");
    QTest::addColumn<QString>("failure");
    using Event = std::function<void(World &)>;
    const auto loaded = [](World &w) { Q_EMIT w.page.loadFinished(); };
    const QVariantList none{0, 0, 0, -1, 0};
    const QVariantList preparing{1, 0, 0, -1, 0};
    QTest::newRow("offline") << clip << Event([=](World &w) {
        loaded(w);
        w.tell(none);
    }) << u"YouTube does not answer. The connection may be gone."_s;
    QTest::newRow("offline, not told by the network")
        << clip << Event([=](World &w) { w.goOnTelling(none, 46s); })
        << u"YouTube does not answer. The connection may be gone."_s;
    QTest::newRow("no player") << clip << Event([=](World &w) {
        loaded(w);
        w.goOnTelling(preparing, 21s);
    }) << u"YouTube's player does not appear. The connection may be gone."_s;
    QTest::newRow("refused") << clip << Event([=](World &w) {
        w.goOnTelling(QVariantList{2, 0, 0, -1, 150}, 3s);
    }) << u"The owner of this video allows it on YouTube's own site only."_s;
    QTest::newRow("refused before the player is ready")
        << clip << Event([=](World &w) { w.goOnTelling(QVariantList{1, 0, 0, -1, 100}, 3s); })
        << u"This video has been removed, or is private."_s;
    QTest::newRow("page not there") << okVideo << Event([](World &w) {
        Q_EMIT w.page.loadFailed(u"There is no server of that name."_s);
    }) << u"There is no server of that name."_s;
    QTest::newRow("page without a video") << okVideo << Event([=](World &w) {
        loaded(w);
        w.goOnTelling(preparing, 21s);
    }) << u"OK.ru shows no video at this address."_s;
    QTest::newRow("page that takes its video away") << okVideo << Event([=](World &w) {
        w.tell(QVariantList{2, 0, 0, 2, 0});
        loaded(w);
        w.goOnTelling(preparing, 21s);
    }) << u"OK.ru shows no video at this address."_s;
    QTest::newRow("broken video") << okVideo << Event([=](World &w) {
        w.goOnTelling(QVariantList{2, 0, 0, 2, 4}, 3s);
    }) << u"OK.ru's player cannot play this video."_s;
    QTest::newRow("crash") << clip << Event([](World &w) {
        w.tell(playing);
        Q_EMIT w.page.crashed();
    }) << u"The page with the player has crashed."_s;
    QTest::newRow("hang") << clip << Event([](World &w) {
        w.tell(playing);
        w.scheduler.advance(16s);
    }) << u"The page with the player does not answer."_s;
}

void WebPlayersTest::saysWhyItDoesNotPlay()
{
    QFETCH(const QString, address);
    QFETCH(const std::function<void(World &)>, event);
    World &world = *m_world;
    WebPlayerView &view = world.show(address);
    event(world);
    QTEST(view.failure(), "failure");
    QCOMPARE(world.players.failure(), view.failure());
    QVERIFY(!world.players.wantsPage() && !world.players.isLoading());
    QVERIFY(!world.model.isPlaying());
    QVERIFY(world.model.showsWebContent());
    QCOMPARE(world.youTube.currentView(), nullptr);
    QCOMPARE(world.okVideo.currentView(), nullptr);
    world.model.stop();
    QCOMPARE(world.players.failure(), QString());
}

void WebPlayersTest::waitsWhileTheUserClicks()
{
    World &world = *m_world;
    WebPlayerView &view = world.show(okVideo);
    Q_EMIT world.page.loadFinished();
    for (int i = 0; i < 5; ++i) {
        world.goOnTelling(QVariantList{1, 0, 0, -1, 0}, 15s);
        QCOMPARE(view.failure(), QString());
        view.surfaceClicked(nullptr);
    }
}

void WebPlayersTest::waitsForTheUserToPlay()
{
    World &world = *m_world;
    WebPlayerView &view = world.show(okVideo);
    Q_EMIT world.page.loadFinished();
    world.goOnTelling(QVariantList{2, 0, 0, 2, 0}, 1min);
    QCOMPARE(view.failure(), QString());
    // Between two videos there may be none for a while.
    world.tell(playing);
    world.goOnTelling(QVariantList{1, 0, 0, -1, 0}, 1min);
    QCOMPARE(view.failure(), QString());
}

void WebPlayersTest::passingErrorsPass()
{
    World &world = *m_world;
    WebPlayerView &view = world.show(clip);
    for (int i = 0; i < 30; ++i) {
        world.tell(QVariantList{2, 0, 0, -1, i % 5 == 0 ? 0 : 100});
        QCOMPARE(view.failure(), QString());
    }
}

void WebPlayersTest::triesAgain_data()
{
    QTest::addColumn<std::function<void(World &)>>("wish");
    using Wish = std::function<void(World &)>;
    QTest::newRow("button") << Wish([](World &w) { w.players.retry(); });
    QTest::newRow("play") << Wish([](World &w) { w.model.togglePlayback(); });
    QTest::newRow("opened again") << Wish([](World &w) { w.open(clip); });
}

void WebPlayersTest::triesAgain()
{
    QFETCH(const std::function<void(World &)>, wish);
    World &world = *m_world;
    WebPlayerView &view = world.show(clip);
    Q_EMIT world.page.crashed();
    wish(world);
    QVERIFY(view.wantsPage());
    QVERIFY(world.model.isPlaying());
    FakePlayerPage next;
    view.attach(&next, &world.surface);
    QCOMPARE(next.loads.size(), 1);
    world.scheduler.advance(WebPlayerView::pollInterval);
    QVERIFY(next.answer(playing));
    QCOMPARE(world.model.currentTime(), 1.5);
    view.detach(&next);
}

void WebPlayersTest::newContentForgetsTheFailure()
{
    World &world = *m_world;
    world.show(clip);
    Q_EMIT world.page.crashed();
    world.open(okVideo);
    QCOMPARE(world.players.failure(), QString());
    QVERIFY(world.players.okVideo()->wantsPage());
    QVERIFY(!world.players.youTube()->wantsPage());
    QVERIFY(world.model.isPlaying());
}

void WebPlayersTest::engineIsLoadedOnce()
{
    World &world = *m_world;
    const QSignalSpy loaded(&world.players, &WebPlayers::hasEngineChanged);
    world.scheduler.advance(1s);
    QCOMPARE(world.engineRequests, 0);
    world.open(clip);
    QVERIFY(world.players.isLoading());
    world.scheduler.advance(0s);
    QVERIFY(world.players.hasEngine());
    world.open(okVideo);
    world.scheduler.advance(1s);
    QCOMPARE(world.engineRequests, 1);
    QCOMPARE(loaded.count(), 1);
}

void WebPlayersTest::engineMayBeMissing()
{
    World &world = *m_world;
    world.engineLoads = false;
    world.open(clip);
    world.scheduler.advance(0s);
    QCOMPARE(world.players.failure(), u"The web player could not be loaded."_s);
    QVERIFY(!world.model.isPlaying());
    world.engineLoads = true;
    world.players.retry();
    world.scheduler.advance(0s);
    QVERIFY(world.players.hasEngine());
    QCOMPARE(world.players.failure(), QString());
}

void WebPlayersTest::viewsMayBeMissing()
{
    World &world = *m_world;
    world.open(clip);
    world.scheduler.advance(0s);
    QVERIFY(world.players.hasEngine());
    world.players.failToShow();
    QCOMPARE(world.players.failure(), u"The web player could not be loaded."_s);
    QVERIFY(!world.players.isLoading());
    QVERIFY(!world.players.hasEngine());
    world.players.retry();
    world.scheduler.advance(0s);
    QVERIFY(world.players.hasEngine());
    QCOMPARE(world.engineRequests, 2);
}

void WebPlayersTest::clicksAreTold()
{
    World &world = *m_world;
    const QSignalSpy posted(&world.notifications, &NotificationCenter::posted);
    QObject window;
    world.show(clip).surfaceClicked(&window);
    QCOMPARE(posted.count(), 1);
    QCOMPARE(posted.first().at(0), u"Lumaro.playerSurfaceClicked"_s);
    QCOMPARE(posted.first().at(1).value<QObject *>(), &window);
}

void WebPlayersTest::staysOnThePlayersPage_data()
{
    QTest::addColumn<QString>("content");
    QTest::addColumn<QString>("url");
    QTest::addColumn<Target>("target");
    QTest::addColumn<bool>("isLinkClick");
    QTest::addColumn<bool>("wasClicked");
    QTest::addColumn<QString>("outcome");
    const QString page = u"https://www.youtube.com/watch?v=x"_s;
    const auto row = [](const char *name, const QString &content, const QString &url, Target target,
                        bool isLinkClick, bool wasClicked, const QString &outcome) {
        QTest::newRow(name) << content << url << target << isLinkClick << wasClicked << outcome;
    };
    const QString goes = u"goes"_s;
    const QString browser = u"browser"_s;
    const QString nowhere = u"nowhere"_s;
    row("link", clip, page, Target::MainFrame, true, true, browser);
    row("link that nobody clicked", clip, page, Target::MainFrame, true, false, nowhere);
    row("script after a click", clip, page, Target::MainFrame, false, true, nowhere);
    row("new window", clip, page, Target::NewWindow, true, true, browser);
    row("new window by itself", clip, page, Target::NewWindow, false, true, nowhere);
    row("new window that nobody clicked", clip, page, Target::NewWindow, true, false, nowhere);
    row("frame", clip, u"https://ads.example/"_s, Target::SubFrame, false, false, goes);
    row("file", clip, u"file:///etc/passwd"_s, Target::NewWindow, true, true, nowhere);
    row("mail", clip, u"mailto:a@b.c"_s, Target::NewWindow, true, true, nowhere);
    row("blob", clip, u"blob:https://x/1"_s, Target::MainFrame, true, true, nowhere);
    const QString embed = u"https://ok.ru/videoembed/12345"_s;
    row("the player's own page", okVideo, QString(embed + u"?x=1"_s), Target::MainFrame, false,
        false, goes);
    row("on another host of the site", okVideo, u"https://m.ok.ru/videoembed/12345"_s,
        Target::MainFrame, false, false, goes);
    row("another video", okVideo, u"https://ok.ru/videoembed/1"_s, Target::MainFrame, false, false,
        nowhere);
    row("look-alike", okVideo, u"https://notok.ru/videoembed/12345"_s, Target::MainFrame, false,
        false, nowhere);
    row("unprotected", okVideo, u"http://ok.ru/videoembed/12345"_s, Target::MainFrame, false, false,
        nowhere);
}

void WebPlayersTest::staysOnThePlayersPage()
{
    QFETCH(const QString, content);
    QFETCH(const QString, url);
    QFETCH(const Target, target);
    QFETCH(const bool, isLinkClick);
    QFETCH(const bool, wasClicked);
    World &world = *m_world;
    WebPlayerView &view = world.show(content);
    if (wasClicked)
        view.surfaceClicked(nullptr);
    const bool goes =
        world.page.policy({.url = QUrl(url), .target = target, .isLinkClick = isLinkClick});
    QTEST(goes                                   ? u"goes"_s
              : world.workspace.opened.isEmpty() ? u"nowhere"_s
                                                 : u"browser"_s,
          "outcome");
    if (!world.workspace.opened.isEmpty())
        QCOMPARE(world.workspace.opened, QList{QUrl(url)});
}

void WebPlayersTest::oneClickOpensOnePage()
{
    World &world = *m_world;
    WebPlayerView &view = world.show(clip);
    const NavigationAction link{
        .url = QUrl(u"https://x/"_s), .target = Target::NewWindow, .isLinkClick = true};
    view.surfaceClicked(nullptr);
    QVERIFY(!world.page.policy(link) && !world.page.policy(link));
    QCOMPARE(world.workspace.opened.size(), 1);
    view.surfaceClicked(nullptr);
    world.scheduler.advance(WebPlayerView::clickFreshness + 1ms);
    QVERIFY(!world.page.policy(link));
    QCOMPARE(world.workspace.opened.size(), 1);
    // Nor does a click hold for the next page.
    view.surfaceClicked(nullptr);
    view.attach(&world.page, &world.surface);
    QVERIFY(!world.page.policy(link));
    QCOMPARE(world.workspace.opened.size(), 1);
}

QTEST_GUILESS_MAIN(WebPlayersTest)
#include "tst_webplayers.moc"
