#include "tests/e2e/app/AppWorld.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusVariant>
#include <QSignalSpy>

#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

/// What keeps the screen awake on a desktop.
class ScreenSaver : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

public:
    QList<uint> inhibitions;

public Q_SLOTS:
    uint Inhibit(const QString &, const QString &)
    {
        inhibitions.append(++m_last);
        return m_last;
    }
    void UnInhibit(uint cookie) { inhibitions.removeAll(cookie); }

private:
    uint m_last = 0;
};

class SettingsPortal : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit SettingsPortal(QObject *desktop)
        : QDBusAbstractAdaptor(desktop)
    {
    }
    uint scheme = 2;

public Q_SLOTS:
    QDBusVariant Read(const QString &, const QString &)
    {
        return QDBusVariant(QVariant::fromValue(QDBusVariant(scheme)));
    }

Q_SIGNALS:
    void SettingChanged(const QString &space, const QString &key, const QDBusVariant &value);
};

/// What other programs offer on the bus, gone at the end of a test.
class Peer
{
public:
    Peer()
        : m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"peer"_s))
    {
    }
    ~Peer() { QDBusConnection::disconnectFromBus(u"peer"_s); }
    Peer(const Peer &) = delete;
    Peer &operator=(const Peer &) = delete;

    bool offer(const QString &name, const QString &path, QObject *object)
    {
        return m_bus.registerObject(
                   path, object, QDBusConnection::ExportAllSlots | QDBusConnection::ExportAdaptors)
            && m_bus.registerService(name);
    }

private:
    QDBusConnection m_bus;
};

} // namespace

/// The application among a desktop's other programs.
class AppDesktopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_world = std::make_unique<AppWorld>(); }
    void cleanup() { m_world.reset(); }

    void playerctlDrivesThePlayer();
    void playerctlOpensAndIsRefused();
    void playerctlChangesChannels();
    void mediaKeysDriveThePlayer();
    void screenStaysAwakeWhilePlaying();
    void followsDarkAndLight();
    void windowAndVolumeComeBack();
    void resumesALongFile();
    void opensRecentItems();
    void asksAboutMissingRecentItems();
    void showsKeysAndLicences();

private:
    /// What playerctl prints, while the application goes on; its error otherwise.
    QString playerctl(const QStringList &arguments)
    {
        const QTemporaryDir folder;
        const QString log = folder.filePath(u"log"_s);
        ChildProcess process;
        QFile output(log);
        if (!process.start(u"playerctl"_s, QStringList{u"--player=lumaro"_s} + arguments,
                           {.logFile = log}))
            return u"playerctl is missing"_s;
        if (!becomesTrue([&] { return !process.isRunning(); }) || !output.open(QIODevice::ReadOnly))
            return u"playerctl does not end"_s;
        return QString::fromUtf8(output.readAll()).trimmed();
    }
    /// The window system has moved the window.
    bool moveWindow(const QRect &place)
    {
        const QSignalSpy resized(&m_world->window(), &QWindow::heightChanged);
        m_world->window().setGeometry(place);
        return becomesTrue([&] { return !resized.isEmpty(); });
    }
    bool hasRecentItems(qsizetype count)
    {
        return becomesTrue([&] { return m_world->recent().items().size() == count; });
    }
    /// Such a key types nothing.
    void pressMediaKey(Qt::Key key)
    {
        QTest::sendKeyEvent(QTest::Click, &m_world->window(), key, QString(), {});
    }

    MediaFixtures m_media{QStringLiteral(LUMARO_FIXTURE_FOLDER)};
    std::unique_ptr<NginxServer> m_nginx;
    QString m_movie;
    std::unique_ptr<AppWorld> m_world;
};

void AppDesktopTest::initTestCase()
{
    m_nginx = valueOrFail(NginxServer::start());
    QVERIFY(m_nginx);
    m_movie = valueOrFail(m_media.path(Fixture::Movie));
    QVERIFY(m_nginx->publish(m_movie, u"movie.mp4"_s));
    QVERIFY(m_nginx->writeFile(u"list.m3u"_s,
                               "#EXTINF:-1,One\nmovie.mp4?1\n#EXTINF:-1,Two\nmovie.mp4?2\n"));
}

void AppDesktopTest::playerctlDrivesThePlayer()
{
    PlayerModel &player = m_world->player();
    QCOMPARE(playerctl({u"status"_s}), u"Stopped"_s);
    m_world->open(m_movie);
    QVERIFY(m_world->playsTo(0.3));
    QCOMPARE(playerctl({u"status"_s}), u"Playing"_s);
    QCOMPARE(playerctl({u"metadata"_s, u"xesam:title"_s}), QFileInfo(m_movie).fileName());
    QCOMPARE(playerctl({u"metadata"_s, u"xesam:url"_s}),
             QUrl::fromLocalFile(m_movie).toString(QUrl::FullyEncoded));
    const double length = playerctl({u"metadata"_s, u"mpris:length"_s}).toDouble() / 1e6;
    QVERIFY(std::abs(length - 60) < 0.2);

    playerctl({u"pause"_s});
    QVERIFY(!player.isPlaying());
    QCOMPARE(playerctl({u"status"_s}), u"Paused"_s);
    playerctl({u"position"_s, u"30"_s});
    QCOMPARE(player.currentTime(), 30);
    QCOMPARE(playerctl({u"position"_s}), u"30.000000"_s);
    playerctl({u"position"_s, u"5-"_s});
    QCOMPARE(player.currentTime(), 25);
    playerctl({u"position"_s, u"-100"_s});
    QVERIFY(player.currentTime() >= 0);
    playerctl({u"play-pause"_s});
    QVERIFY(player.isPlaying());

    playerctl({u"volume"_s, u"0.4"_s});
    QCOMPARE(player.volume(), 0.4);
    QCOMPARE(playerctl({u"volume"_s}), u"0.400000"_s);
    playerctl({u"volume"_s, u"7"_s});
    QCOMPARE(player.volume(), 1);

    playerctl({u"stop"_s});
    QVERIFY(player.currentURL().isEmpty());
    QCOMPARE(playerctl({u"status"_s}), u"Stopped"_s);
    playerctl({u"play"_s});
    QVERIFY(m_world->playsTo(0.2));
}

void AppDesktopTest::playerctlOpensAndIsRefused()
{
    playerctl({u"open"_s, m_nginx->url(u"/movie.mp4"_s).toString()});
    QVERIFY(m_world->playsTo(0.3));
    for (const QString &bad : {u"ftp://h/a.mp4"_s, u"file:///no/such/film.mp4"_s, u"file:///tmp"_s,
                               u"http://"_s, u"av://lavfi:testsrc"_s}) {
        QVERIFY2(!playerctl({u"open"_s, bad}).isEmpty(), qPrintable(bad));
        QCOMPARE(m_world->player().currentURL(), m_nginx->url(u"/movie.mp4"_s));
    }
    playerctl({u"open"_s, m_movie});
    QVERIFY(becomesTrue(
        [&] { return m_world->player().currentURL() == QUrl::fromLocalFile(m_movie); }));
}

void AppDesktopTest::playerctlChangesChannels()
{
    m_world->open(m_nginx->url(u"/list.m3u"_s).toString());
    QVERIFY(becomesTrue([&] { return m_world->channels().count() == 2; }));
    m_world->shell().playChannel(0);
    QVERIFY(m_world->playsTo(0.1));
    playerctl({u"next"_s});
    QCOMPARE(m_world->player().title(), u"Two"_s);
    QVERIFY(m_world->playsTo(0.1));
    playerctl({u"next"_s});
    QCOMPARE(m_world->player().title(), u"Two"_s);
    playerctl({u"previous"_s});
    QCOMPARE(m_world->player().title(), u"One"_s);
}

void AppDesktopTest::mediaKeysDriveThePlayer()
{
    PlayerModel &player = m_world->player();
    m_world->open(m_nginx->url(u"/list.m3u"_s).toString());
    QVERIFY(becomesTrue([&] { return m_world->channels().count() == 2; }));
    m_world->shell().playChannel(0);
    QVERIFY(m_world->playsTo(0.1));
    // While somebody types, too.
    m_world->press(Qt::Key_L, Qt::ControlModifier);
    pressMediaKey(Qt::Key_MediaPause);
    QVERIFY(!player.isPlaying());
    pressMediaKey(Qt::Key_MediaPlay);
    QVERIFY(player.isPlaying());
    pressMediaKey(Qt::Key_MediaTogglePlayPause);
    QVERIFY(!player.isPlaying());
    pressMediaKey(Qt::Key_MediaNext);
    QCOMPARE(player.title(), u"Two"_s);
    pressMediaKey(Qt::Key_MediaPrevious);
    QCOMPARE(player.title(), u"One"_s);
    pressMediaKey(Qt::Key_MediaStop);
    QVERIFY(player.currentURL().isEmpty());
}

void AppDesktopTest::screenStaysAwakeWhilePlaying()
{
    Peer peer;
    ScreenSaver saver;
    QVERIFY(
        peer.offer(u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s, &saver));
    const auto inhibits = [&saver](qsizetype count) {
        return becomesTrue([&] { return saver.inhibitions.size() == count; });
    };
    m_world->open(m_movie);
    QVERIFY(inhibits(1));
    m_world->press(Qt::Key_Space);
    QVERIFY(inhibits(0));
    m_world->press(Qt::Key_Space);
    QVERIFY(inhibits(1));
    m_world->player().stop();
    QVERIFY(inhibits(0));
    // Sound alone needs no screen.
    m_world->open(valueOrFail(m_media.path(Fixture::AudioOnly)));
    QVERIFY(m_world->playsTo(0.5));
    QVERIFY(saver.inhibitions.isEmpty());
}

void AppDesktopTest::followsDarkAndLight()
{
    qunsetenv("LUMARO_THEME");
    Peer peer;
    QObject desktop;
    auto *const portal = new SettingsPortal(&desktop);
    QVERIFY(peer.offer(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
                       &desktop));
    m_world->restart();
    const auto sidebarIsLight = [this] {
        return m_world->screen().pixelColor(8, 400).lightnessF() > 0.5;
    };
    QVERIFY(becomesTrue(sidebarIsLight));
    Q_EMIT portal->SettingChanged(u"org.freedesktop.appearance"_s, u"color-scheme"_s,
                                  QDBusVariant(1U));
    QVERIFY(becomesTrue([&] { return !sidebarIsLight(); }));
}

void AppDesktopTest::windowAndVolumeComeBack()
{
    const QRect place(90, 110, 801, 503);
    QVERIFY(moveWindow(place));
    m_world->player().setVolume(0.35);
    m_world->player().toggleMute();
    m_world->restart();
    QCOMPARE(m_world->window().geometry(), place);
    QCOMPARE(m_world->player().volume(), 0.35);
    QVERIFY(m_world->player().isMuted());
    // A screen that is smaller by now.
    QVERIFY(moveWindow({1200, 700, 810, 510}));
    m_world->restart();
    QCOMPARE(m_world->window().geometry(), QRect(470, 290, 810, 510));
}

void AppDesktopTest::resumesALongFile()
{
    const QString film = valueOrFail(m_media.path(Fixture::LongMovie));
    m_world->open(film);
    QVERIFY(m_world->playsTo(0.2));
    m_world->player().seek(754);
    QVERIFY(m_world->playsTo(754.4));
    m_world->restart();
    m_world->open(film);
    QVERIFY(becomesTrue([&] { return !m_world->player().toastMessage().isEmpty(); }));
    QVERIFY(m_world->player().toastMessage().startsWith(u"Resumed at 12:34"));
    QVERIFY(m_world->playsTo(754.5));
    m_world->press(Qt::Key_Home);
    QVERIFY(m_world->player().currentTime() < 1);
    QVERIFY(m_world->playsTo(0.5));
    QVERIFY(m_world->player().currentTime() < 100);
    m_world->player().stop();
    m_world->open(film);
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(m_world->player().currentTime() < 100);
}

void AppDesktopTest::opensRecentItems()
{
    m_world->open(m_movie);
    QVERIFY(hasRecentItems(1));
    m_world->open(m_nginx->url(u"/movie.mp4"_s).toString());
    QVERIFY(hasRecentItems(2));
    m_world->restart();
    QVERIFY(hasRecentItems(2));
    const auto permissions =
        QFileInfo(m_world->folder() + u"/settings/Lumaro.RecentItems"_s).permissions();
    QVERIFY(permissions.testFlag(QFileDevice::ReadOwner));
    QVERIFY(!permissions.testAnyFlags(QFileDevice::ReadGroup | QFileDevice::ReadOther));
    // The menus stand above the picture; the way into them is the keyboard's.
    m_world->openMenu(u"File"_s);
    for (int i = 0; i < 3; ++i)
        m_world->press(Qt::Key_Down);
    m_world->press(Qt::Key_Right);
    m_world->press(Qt::Key_Down);
    m_world->press(Qt::Key_Return);
    QVERIFY(m_world->playsTo(0.1));
    QCOMPARE(m_world->player().currentURL(), QUrl::fromLocalFile(m_movie));
}

void AppDesktopTest::asksAboutMissingRecentItems()
{
    const QString film = m_world->folder() + u"/gone.mp4"_s;
    QVERIFY(QFile::copy(m_movie, film));
    m_world->open(film);
    QVERIFY(hasRecentItems(1));
    m_world->player().stop();
    QVERIFY(QFile::remove(film));
    const RecentItem item = m_world->recent().items().first();
    m_world->recent().open(item);
    QVERIFY(becomesTrue([&] { return m_world->recent().missingFile() == film; }));
    QVERIFY(becomesTrue([&] { return m_world->isPopupOpen(); }));
    m_world->press(Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return !m_world->isPopupOpen(); }));
    QCOMPARE(m_world->recent().items().size(), 1);
    m_world->recent().open(item);
    QVERIFY(becomesTrue([&] { return m_world->isPopupOpen(); }));
    m_world->press(Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return m_world->recent().items().isEmpty(); }));
}

void AppDesktopTest::showsKeysAndLicences()
{
    const auto focus = [this](const char *name) {
        const QQuickItem *item = m_world->window().activeFocusItem();
        return item ? item->property(name) : QVariant();
    };
    m_world->press(Qt::Key_F1);
    QVERIFY(becomesTrue([&] { return focus("count").toInt() > 40; }));
    m_world->press(Qt::Key_PageDown);
    QVERIFY(!focus("atYBeginning").toBool());
    m_world->press(Qt::Key_Home);
    QVERIFY(focus("atYBeginning").toBool());
    m_world->press(Qt::Key_End);
    QVERIFY(focus("atYEnd").toBool());
    m_world->press(Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return !m_world->isPopupOpen(); }));
    m_world->openMenu(u"Help"_s);
    m_world->press(Qt::Key_Down);
    m_world->press(Qt::Key_Down);
    m_world->press(Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return focus("text").toString() == u"Close"; }));
    m_world->press(Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return !m_world->isPopupOpen(); }));
}

LUMARO_APP_TEST_MAIN(AppDesktopTest)
#include "tst_app_desktop.moc"
