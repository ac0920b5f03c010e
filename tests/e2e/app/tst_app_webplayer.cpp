#include "tests/e2e/app/AppWorld.h"
#include "tests/e2e/app/VideoSites.h"
#include "tests/e2e/servers/Fetch.h"

#include <QAccessible>
#include <QDesktopServices>
#include <QDirIterator>
#include <QQuickItem>

#include <chrono>
#include <csignal>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

QString youTube(const QString &video, const QString &list = {})
{
    const QString base = u"https://www.youtube.com/"_s;
    if (video.isEmpty())
        return base + u"playlist?list="_s + list;
    return base + u"watch?v="_s + video + (list.isEmpty() ? list : QString(u"&list="_s + list));
}

QString okVideo(const QString &name)
{
    return u"https://ok.ru/video/"_s + name;
}

/// What would be the user's browser.
class Browser : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }
};

} // namespace

/// The sites' own players in the real window, on stand-ins for the sites. All tests share one
/// program: the browser serves only one.
class AppWebPlayerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void engineComesWithTheFirstPage();
    void playsAndObeys_data();
    void playsAndObeys();
    void tellsYouTubeWhoEmbedsIt();
    void switchesVideos();
    void playsPlaylists();
    void givesWayToFilesAndBack();
    void controlsSayWhatTheyCannot();
    void clicksShowTheControls();
    void pageMayFillTheScreen();
    void pointerHidesOverThePage();
    void canBeRecorded();
    void nothingIsLeftOfThePageBefore();
    void pagesCannotStay();
    void pausesBeforeItBegins();

    void triesAgain();
    void crashIsMended();
    void linksOpenInTheBrowser_data();
    void linksOpenInTheBrowser();
    void doesNotLeaveByItself_data();
    void doesNotLeaveByItself();
    void refusesWhatPagesGrab();

private:
    PlayerModel &player() { return m_world->player(); }
    /// Plays on until `seconds` and shows it.
    bool plays(double seconds = 0.3) { return m_world->playsTo(seconds); }
    bool wasTold(const QString &what)
    {
        return becomesTrue([&] { return m_sites->wasTold(what); });
    }
    QPoint at(double x, double y)
    {
        QQuickItem *const item = page();
        return item ? item->mapToScene({item->width() * x, item->height() * y}).toPoint()
                    : QPoint();
    }
    QQuickItem *page();
    void shoot(const QString &name, std::chrono::milliseconds comesAfter = {});

    QTemporaryDir m_home;
    Browser m_browser;
    std::unique_ptr<VideoSites> m_sites;
    std::unique_ptr<AppWorld> m_world;
};

void AppWebPlayerTest::initTestCase()
{
    qputenv("HOME", m_home.path().toUtf8());
    // Without a microphone there would be nothing to refuse.
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--use-fake-device-for-media-stream");
    m_sites = VideoSites::start();
    QVERIFY(m_sites);
    QDesktopServices::setUrlHandler(u"http"_s, &m_browser, "open");
    m_world = std::make_unique<AppWorld>(m_sites->services());
}

void AppWebPlayerTest::init()
{
    m_browser.opened.clear();
    m_sites->forget();
    player().setVolume(1);
    if (player().isMuted())
        player().toggleMute();
}

void AppWebPlayerTest::cleanup()
{
    m_world->shell().setIsFullScreen(false);
    player().stop();
    QVERIFY(becomesTrue([&] { return !page(); }));
}

void AppWebPlayerTest::cleanupTestCase()
{
    QDesktopServices::unsetUrlHandler(u"http"_s);
    m_world.reset();
    if (QTest::currentTestFailed() || qEnvironmentVariableIsSet("LUMARO_LOG"))
        qInfo().noquote() << m_sites->server().accessLog().join(u'\n');
}

QQuickItem *AppWebPlayerTest::page()
{
    PlayerRecordingSurface *const surface = m_world->surfaces().currentSurface();
    QQuickItem *const view = surface ? surface->recordingView() : nullptr;
    return view && view->inherits("lumaro::YouTubeHostingView") ? view : nullptr;
}

/// For whoever wants to see it.
void AppWebPlayerTest::shoot(const QString &name, std::chrono::milliseconds comesAfter)
{
    if (qEnvironmentVariableIsEmpty("LUMARO_SCREENSHOTS"))
        return;
    QTest::qWait(int(comesAfter.count()));
    keepPicture(m_world->window(), name);
}

void AppWebPlayerTest::engineComesWithTheFirstPage()
{
    m_world->open(m_sites->server().url(u"/clip1.mp4"_s).toString());
    QVERIFY(plays());
    QVERIFY(!hasLoadedBrowser());
    m_world->open(youTube(u"clip1"_s));
    QVERIFY(m_world->webPlayers().isLoading());
    shoot(u"opening"_s);
    QVERIFY(plays());
    QVERIFY(hasLoadedBrowser());
    QVERIFY(!m_world->webPlayers().isLoading());
}

void AppWebPlayerTest::playsAndObeys_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("name");
    QTest::newRow("YouTube") << youTube(u"clip1"_s) << u"youtube/clip1/"_s;
    QTest::newRow("OK.ru") << okVideo(u"12345"_s) << u"ok/12345/"_s;
}

void AppWebPlayerTest::playsAndObeys()
{
    QFETCH(const QString, address);
    QFETCH(const QString, name);
    m_world->open(address);
    QVERIFY(plays(1));
    QVERIFY(std::abs(player().duration() - 60) < 0.5);
    QVERIFY(m_world->pictureChanges());
    QVERIFY(page());
    shoot(name.section(u'/', 0, 0) + u"-playing"_s);

    m_world->press(Qt::Key_Space);
    QVERIFY(!player().isPlaying());
    QVERIFY(wasTold(name + u"pause"_s));
    const double pausedAt = player().currentTime();
    m_world->press(Qt::Key_Right, Qt::AltModifier);
    QVERIFY(becomesTrue([&] { return std::abs(player().currentTime() - pausedAt - 20) < 1; }));
    m_world->press(Qt::Key_Left, Qt::ControlModifier);
    QVERIFY(becomesTrue([&] { return player().currentTime() == 0; }));
    player().seek(42);
    QVERIFY(wasTold(name + u"at-42"_s));
    QVERIFY(becomesTrue([&] { return std::abs(player().currentTime() - 42) < 0.5; }));
    QVERIFY(!player().isPlaying());
    m_world->press(Qt::Key_Space);
    QVERIFY(plays(42.5));

    m_world->press(Qt::Key_Down, Qt::ControlModifier);
    QVERIFY(wasTold(name + u"volume-80"_s));
    m_world->press(Qt::Key_M, Qt::ControlModifier);
    QVERIFY(wasTold(name + u"volume-80-muted"_s));
    QVERIFY(player().isMuted());
    const auto unmuted = [&] {
        const QString line = u"GET /told/"_s + name + u"volume-80 "_s;
        return m_sites->requests().filter(line).size();
    };
    const qsizetype before = unmuted();
    m_world->press(Qt::Key_M, Qt::ControlModifier);
    QVERIFY(becomesTrue([&] { return unmuted() > before; }));

    m_world->press(Qt::Key_K, Qt::ControlModifier);
    QVERIFY(becomesTrue([&] { return !page(); }));
    QCOMPARE(player().duration(), 0.0);
}

void AppWebPlayerTest::tellsYouTubeWhoEmbedsIt()
{
    m_world->open(youTube(u"clip1"_s, u"PL1"_s));
    const QByteArray origin =
        QUrl::toPercentEncoding(m_sites->services().product.toString() + u'/');
    QVERIFY(wasTold(u"embedded-in/"_s + QString::fromLatin1(origin) + u"/PL1"_s));
}

void AppWebPlayerTest::switchesVideos()
{
    m_world->open(youTube(u"clip1"_s));
    QVERIFY(plays(0.5));
    QQuickItem *const view = page();
    m_world->open(youTube(u"clip2"_s));
    QVERIFY(becomesTrue([&] { return std::abs(player().duration() - 10) < 0.5; }));
    QVERIFY(plays());
    // The page is another, its view the same.
    QCOMPARE(page(), view);
    QVERIFY(m_sites->fallSilent(u"youtube/clip1"_s));
    m_world->open(okVideo(u"12345"_s));
    QVERIFY(becomesTrue([&] { return std::abs(player().duration() - 60) < 0.5; }));
    QVERIFY(m_sites->fallSilent(u"youtube/"_s));
    m_world->open(okVideo(u"67890"_s));
    QVERIFY(becomesTrue([&] { return m_sites->beats(u"ok/67890"_s) > 0; }));
    QVERIFY(plays());
}

void AppWebPlayerTest::playsPlaylists()
{
    m_world->open(youTube({}, u"PL1"_s));
    QVERIFY(becomesTrue([&] { return std::abs(player().duration() - 10) < 0.5; }));
    QVERIFY(plays());
    // The next one follows by itself.
    player().seek(9.5);
    QVERIFY(becomesTrue([&] { return std::abs(player().duration() - 60) < 0.5; }));
    QVERIFY(plays());
    // A video within it, where nothing follows.
    m_world->open(youTube(u"clip1"_s, u"PL1"_s));
    QVERIFY(becomesTrue([&] { return std::abs(player().duration() - 60) < 0.5; }));
    QVERIFY(plays());
    player().seek(59.5);
    QVERIFY(becomesTrue([&] { return !player().isPlaying(); }));
    QVERIFY(player().currentTime() > 59);
}

void AppWebPlayerTest::givesWayToFilesAndBack()
{
    const QString movie = m_sites->server().documentRoot() + u"/clip1.mp4"_s;
    for (const QString &address : {youTube(u"clip1"_s), okVideo(u"12345"_s)}) {
        m_world->open(address);
        QVERIFY(plays());
        m_world->open(movie);
        QVERIFY(!page());
        QVERIFY(becomesTrue([&] { return player().duration() > 59; }));
        QVERIFY(plays());
        QVERIFY(m_sites->fallSilent({}));
        QVERIFY(m_world->surfaces().currentSurface());
    }
    m_world->open(youTube(u"clip1"_s));
    QVERIFY(player().currentURL().isEmpty());
    QVERIFY(plays());
    QVERIFY(page());
}

void AppWebPlayerTest::controlsSayWhatTheyCannot()
{
    m_world->open(okVideo(u"12345"_s));
    QVERIFY(plays());
    const auto find = [this](const QString &name) {
        return m_world->window().findChild<QQuickItem *>(name);
    };
    QQuickItem *const modes = find(u"displayModeButton"_s);
    QVERIFY(modes);
    QVERIFY(!modes->property("obstacle").toString().isEmpty());
    const QPoint middle = modes->mapToScene({modes->width() / 2, modes->height() / 2}).toPoint();
    QTest::mouseMove(&m_world->window(), middle);
    QTest::mouseClick(&m_world->window(), Qt::LeftButton, {}, middle);
    QVERIFY(!modes->property("opened").toBool());
    // The tool tip comes after a while.
    shoot(u"controls"_s, 1500ms);
    m_world->open(m_sites->server().documentRoot() + u"/clip1.mp4"_s);
    QVERIFY(modes->property("obstacle").toString().isEmpty());
}

void AppWebPlayerTest::clicksShowTheControls()
{
    m_world->open(okVideo(u"12345"_s));
    QVERIFY(plays());
    m_world->press(Qt::Key_L, Qt::ControlModifier);
    QTest::mouseMove(&m_world->window(), at(0.5, 0.1));
    QVERIFY(becomesTrue([&] { return !m_world->shell().controlsVisible(); }));
    QTest::mouseClick(&m_world->window(), Qt::LeftButton, {}, at(0.5, 0.5));
    QVERIFY(m_world->shell().controlsVisible());
    // The address field has lost the keys to the player.
    m_world->press(Qt::Key_Space);
    QVERIFY(!player().isPlaying());
    QCOMPARE(m_world->shell().addressText(), QString());
}

void AppWebPlayerTest::pageMayFillTheScreen()
{
    m_world->open(okVideo(u"full"_s));
    QVERIFY(plays(1));
    const auto click = [this] {
        QTest::mouseClick(&m_world->window(), Qt::LeftButton, {}, at(0.75, 0.25));
    };
    click();
    QVERIFY(becomesTrue([&] { return m_world->window().visibility() == QWindow::FullScreen; }));
    QVERIFY(wasTold(u"full/on"_s));
    m_world->press(Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return m_world->window().visibility() == QWindow::Windowed; }));
    QVERIFY(wasTold(u"full/off"_s));
    QVERIFY(!m_world->shell().isFullScreen());
    click();
    QVERIFY(becomesTrue([&] { return m_world->shell().isFullScreen(); }));
    // Whoever opens something else is back in the window.
    player().stop();
    QVERIFY(becomesTrue([&] { return !m_world->shell().isFullScreen(); }));
}

void AppWebPlayerTest::pointerHidesOverThePage()
{
    m_world->open(okVideo(u"link"_s));
    QVERIFY(plays(1));
    m_world->shell().setIsFullScreen(true);
    QVERIFY(becomesTrue([&] { return m_world->window().visibility() == QWindow::FullScreen; }));
    // The page gives it the shape for links here.
    const auto pointer = [this] { return m_world->window().cursor().shape(); };
    QTest::mouseMove(&m_world->window(), at(0.3, 0.3));
    QVERIFY(becomesTrue([&] { return pointer() == Qt::PointingHandCursor; }));
    QVERIFY(becomesTrue([&] { return m_world->shell().cursorHidden(); }));
    QVERIFY(becomesTrue([&] { return pointer() == Qt::BlankCursor; }));
    // It is out of sight, not out of order.
    QTest::mouseClick(&m_world->window(), Qt::LeftButton, {}, at(0.3, 0.3));
    QVERIFY(becomesTrue([&] { return !m_browser.opened.isEmpty(); }));
    QTest::mouseMove(&m_world->window(), at(0.35, 0.35));
    QVERIFY(becomesTrue([&] { return pointer() == Qt::PointingHandCursor; }));
}

void AppWebPlayerTest::canBeRecorded()
{
    m_world->open(youTube(u"clip1"_s));
    QVERIFY(plays());
    PlayerRecordingSurface *const surface = m_world->surfaces().currentSurface();
    QCOMPARE(surface->recordingView(), page());
    QCOMPARE(surface->recordingRectInView(), QRectF({0, 0}, page()->size()));
    // What the window captures has the page's picture, which moves.
    QVERIFY(m_world->pictureChanges());
}

void AppWebPlayerTest::nothingIsLeftOfThePageBefore()
{
    m_world->open(okVideo(u"12345"_s));
    QVERIFY(plays(1));
    player().setVolume(0.3);
    player().toggleMute();
    QVERIFY(wasTold(u"ok/12345/volume-30-muted"_s));
    // Makes the next one come after two seconds.
    QCOMPARE(fetch(m_sites->server().url(u"/videoembed/late"_s)).status, 200);
    const qsizetype before = m_sites->beats(u"ok/12345"_s);
    m_world->open(okVideo(u"late"_s));
    QVERIFY(becomesTrue([&] { return !m_world->webPlayers().isLoading(); }));
    QVERIFY(m_sites->wasAsked(u"/videoembed/late?autoplay=1&nochat=1"_s));
    // Five a second: the old one did not wait for the new one.
    QVERIFY(m_sites->beats(u"ok/12345"_s) - before < 5);
    QVERIFY(wasTold(u"ok/late/volume-30-muted"_s));
    QVERIFY(plays());
    QVERIFY(player().isMuted());
}

void AppWebPlayerTest::pagesCannotStay()
{
    m_world->open(okVideo(u"stay"_s));
    QVERIFY(plays(1));
    // Pages may ask to stay once they have been used.
    QTest::mouseClick(&m_world->window(), Qt::LeftButton, {}, at(0.5, 0.5));
    QVERIFY(plays(2));
    m_world->open(okVideo(u"67890"_s));
    QVERIFY(becomesTrue([&] { return m_sites->beats(u"ok/67890"_s) > 0; }));
    QVERIFY(m_sites->fallSilent(u"ok/stay"_s));
}

void AppWebPlayerTest::pausesBeforeItBegins()
{
    QCOMPARE(fetch(m_sites->server().url(u"/videoembed/late"_s)).status, 200);
    m_world->open(okVideo(u"late"_s));
    QVERIFY(m_world->webPlayers().isLoading());
    m_world->press(Qt::Key_Space);
    QVERIFY(!player().isPlaying());
    QVERIFY(wasTold(u"ok/late/pause"_s));
    QVERIFY(m_sites->fallSilent(u"ok/late"_s));
    QVERIFY(!player().isPlaying());
    m_world->press(Qt::Key_Space);
    QVERIFY(plays(1));
}

void AppWebPlayerTest::triesAgain()
{
    QVERIFY(m_sites->setYouTubeReachable(false));
    m_world->open(youTube(u"clip1"_s));
    QVERIFY(becomesTrue([&] { return !m_world->webPlayers().failure().isEmpty(); }));
    QCOMPARE(m_world->webPlayers().failure(),
             u"YouTube does not answer. The connection may be gone."_s);
    QVERIFY(m_sites->setYouTubeReachable(true));
    QQuickItem *const state = m_world->window().findChild<QQuickItem *>(u"webPlayerFailure"_s);
    QVERIFY(state);
    const QPointF button(state->width() / 2, state->height() - 18);
    QTest::mouseClick(&m_world->window(), Qt::LeftButton, {}, state->mapToScene(button).toPoint());
    QCOMPARE(m_world->webPlayers().failure(), QString());
    QVERIFY(plays());
}

void AppWebPlayerTest::crashIsMended()
{
    m_world->open(youTube(u"clip1"_s));
    QVERIFY(plays());
    QQuickItem *const view = page()->findChild<QQuickItem *>(u"playerPageView"_s);
    QVERIFY(view);
    const auto pid = pid_t(view->property("renderProcessPid").toLongLong());
    QVERIFY(pid > 1 && pid != getpid());
    QCOMPARE(kill(pid, SIGKILL), 0);
    QVERIFY(becomesTrue([&] { return !m_world->webPlayers().failure().isEmpty(); }));
    QCOMPARE(m_world->webPlayers().failure(), u"The page with the player has crashed."_s);
    m_world->press(Qt::Key_Space);
    QVERIFY(plays());
}

void AppWebPlayerTest::linksOpenInTheBrowser_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<std::function<void(QQuickWindow &, const QPoint &)>>("press");
    using Press = std::function<void(QQuickWindow &, const QPoint &)>;
    const Press click = [](QQuickWindow &window, const QPoint &at) {
        QTest::mouseClick(&window, Qt::LeftButton, {}, at);
    };
    QTest::newRow("link") << u"link"_s << click;
    QTest::newRow("link for a window") << u"window"_s << click;
    QTest::newRow("link by key") << u"link"_s << Press([](QQuickWindow &window, const QPoint &) {
        QTest::keyClick(&window, Qt::Key_Return);
    });
    QTest::newRow("link by touch")
        << u"link"_s << Press([](QQuickWindow &window, const QPoint &at) {
               static QPointingDevice *const screen = QTest::createTouchDevice();
               QTest::touchEvent(&window, screen).press(0, at);
               QTest::touchEvent(&window, screen).release(0, at);
           });
}

void AppWebPlayerTest::linksOpenInTheBrowser()
{
    QFETCH(const QString, name);
    QFETCH(const std::function<void(QQuickWindow &, const QPoint &)>, press);
    m_world->open(okVideo(name));
    QVERIFY(plays(1));
    QQuickItem *const view = page()->findChild<QQuickItem *>(u"playerPageView"_s);
    QVERIFY(view);
    view->forceActiveFocus();
    press(m_world->window(), at(0.25, 0.25));
    QVERIFY(becomesTrue([&] { return !m_browser.opened.isEmpty(); }));
    QCOMPARE(
        m_browser.opened,
        QList{QUrl(
            u"http://localhost:%1/outside.html?%2"_s.arg(m_sites->server().port()).arg(name))});
    const double time = player().currentTime();
    QVERIFY(plays(time + 0.5));
    QVERIFY(!m_sites->wasAsked(u"/outside.html?"_s + name));
}

void AppWebPlayerTest::doesNotLeaveByItself_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("address") << u"leave"_s;
    QTest::newRow("window") << u"popup"_s;
}

void AppWebPlayerTest::doesNotLeaveByItself()
{
    QFETCH(const QString, name);
    const qsizetype windows = QGuiApplication::allWindows().size();
    m_world->open(okVideo(name));
    QVERIFY(plays(2));
    QVERIFY(m_browser.opened.isEmpty());
    QVERIFY(!m_sites->wasAsked(u"/outside.html?"_s + name));
    QCOMPARE(QGuiApplication::allWindows().size(), windows);
    QCOMPARE(m_world->webPlayers().failure(), QString());
}

void AppWebPlayerTest::refusesWhatPagesGrab()
{
    m_world->open(okVideo(u"grab"_s));
    for (const QString &answer : {u"denied/place"_s, u"denied/sound"_s, u"denied/notices"_s})
        QVERIFY2(wasTold(answer), qPrintable(answer));
    QVERIFY(wasTold(u"after/alert"_s));
    QVERIFY(becomesTrue([&] { return m_sites->wasAsked(u"/file.zip"_s); }));
    QVERIFY(plays(2));
    for (const QString &folder : {m_world->folder(), m_home.path()}) {
        QDirIterator files(folder, {u"*.zip*"_s, u"*.part"_s}, QDir::Files | QDir::Hidden,
                           QDirIterator::Subdirectories);
        QVERIFY2(!files.hasNext(), qPrintable(files.next()));
    }
    // Its cookies and storage are its own.
    QVERIFY(QDir(m_world->folder() + u"/settings/web-player"_s).exists());
    QVERIFY(!QDir(m_world->folder() + u"/settings/browser"_s).exists());
}

LUMARO_APP_TEST_MAIN(AppWebPlayerTest)
#include "tst_app_webplayer.moc"
