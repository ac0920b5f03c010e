#include "platform/dbus/BusKeepAwake.h"
#include "platform/dbus/MprisControls.h"
#include "platform/dbus/PortalAppearance.h"
#include "tests/e2e/servers/SessionBus.h"
#include "tests/e2e/servers/ValueOrFail.h"
#include "tests/e2e/servers/Waiting.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>

#include <limits>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

/// Keeps the screen awake as desktops do; can be told to refuse.
class ScreenSaver : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.ScreenSaver")

public:
    QStringList log;
    uint lastCookie = 40;

public Q_SLOTS:
    uint Inhibit(const QString &program, const QString &reason)
    {
        log.append(u"inhibit "_s + program + u": "_s + reason);
        return ++lastCookie;
    }
    void UnInhibit(uint cookie) { log.append(u"uninhibit %1"_s.arg(cookie)); }
};

class InhibitPortal : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Inhibit")

public:
    explicit InhibitPortal(QObject *desktop)
        : QDBusAbstractAdaptor(desktop)
    {
    }
    QStringList log;

public Q_SLOTS:
    QDBusObjectPath Inhibit(const QString &, uint flags, const QVariantMap &options)
    {
        log.append(u"inhibit %1 %2"_s.arg(flags).arg(options.value(u"reason"_s).toString()));
        return QDBusObjectPath(u"/request/1"_s);
    }
};

class PortalRequest : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Request")

public:
    int closed = 0;

public Q_SLOTS:
    void Close() { ++closed; }
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
    QVariant scheme = 0U;
    QVariant textScale = 1.0;

public Q_SLOTS:
    QDBusVariant Read(const QString &space, const QString &key)
    {
        // The portal wraps its answer twice.
        const auto answer = [](const QVariant &value) {
            return QDBusVariant(QVariant::fromValue(QDBusVariant(value)));
        };
        if (space == u"org.freedesktop.appearance" && key == u"color-scheme")
            return answer(scheme);
        if (space == u"org.gnome.desktop.interface" && key == u"text-scaling-factor")
            return answer(textScale);
        return QDBusVariant(u"?"_s);
    }

Q_SIGNALS:
    void SettingChanged(const QString &space, const QString &key, const QDBusVariant &value);
};

class Logind : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public:
    QStringList log;
    /// The end that tells when the other is closed.
    int watched = -1;

public Q_SLOTS:
    QDBusUnixFileDescriptor Inhibit(const QString &what, const QString &who, const QString &why,
                                    const QString &mode)
    {
        log.append(QStringList{what, who, why, mode}.join(u' '));
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_NONBLOCK | O_CLOEXEC) != 0)
            return {};
        watched = ends[0];
        const QDBusUnixFileDescriptor given(ends[1]);
        close(ends[1]);
        return given;
    }
};

/// A connection of another program's.
class Peer
{
public:
    explicit Peer(const QString &address)
        : m_bus(QDBusConnection::connectToBus(address, u"peer"_s))
    {
    }
    ~Peer() { QDBusConnection::disconnectFromBus(u"peer"_s); }
    Peer(const Peer &) = delete;
    Peer &operator=(const Peer &) = delete;

    QDBusConnection &bus() { return m_bus; }
    bool offer(const QString &name, const QString &path, QObject *object,
               QDBusConnection::RegisterOptions options = QDBusConnection::ExportAllSlots)
    {
        return m_bus.registerObject(path, object, options) && m_bus.registerService(name);
    }

private:
    QDBusConnection m_bus;
};

class FakeCommands final : public MediaCommands
{
public:
    void raise() override { log.append(u"raise"_s); }
    void quit() override { log.append(u"quit"_s); }
    void setFullScreen(bool on) override { log.append(u"full screen %1"_s.arg(on)); }
    void play() override { log.append(u"play"_s); }
    void pause() override { log.append(u"pause"_s); }
    void playPause() override { log.append(u"play-pause"_s); }
    void stop() override { log.append(u"stop"_s); }
    void next() override { log.append(u"next"_s); }
    void previous() override { log.append(u"previous"_s); }
    void seek(Microseconds offset) override { log.append(u"seek %1"_s.arg(offset.count())); }
    void setPosition(quint64 track, Microseconds time) override
    {
        log.append(u"position %1 %2"_s.arg(track).arg(time.count()));
    }
    void setVolume(double volume) override { log.append(u"volume %1"_s.arg(volume)); }
    Task<std::expected<void, QString>> openUri(QString uri) override
    {
        log.append(u"open "_s + uri);
        if (uri.startsWith(u"bad"))
            co_return std::unexpected(u"It is bad."_s);
        co_return {};
    }
    Microseconds position() const override { return Microseconds(1'500'000); }

    QStringList log;
};

const QString mprisPath = u"/org/mpris/MediaPlayer2"_s;
const QString mprisName = u"org.mpris.MediaPlayer2.lumaro"_s;
const QString playerInterface = u"org.mpris.MediaPlayer2.Player"_s;

/// Takes signals of properties as other programs do.
class Listener : public QObject
{
    Q_OBJECT

public:
    QList<QVariantMap> changes;
    QStringList interfaces;
    QList<qlonglong> seeks;

public Q_SLOTS:
    void propertiesChanged(const QString &interface, const QVariantMap &changed,
                           const QStringList &)
    {
        interfaces.append(interface);
        changes.append(changed);
    }
    void seeked(qlonglong position) { seeks.append(position); }
};

} // namespace

/// The adapters of the bus, each against stand-ins on a bus of the test's own.
class BusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_peer = std::make_unique<Peer>(m_bus->address()); }
    void cleanup() { m_peer.reset(); }

    void screenSaverIsAskedFirst();
    void releasedBeforeTheAnswer();
    void portalIsAskedSecond();
    void logindIsAskedLast();
    void nobodyThereIsNoTrouble();

    void followsTheColorScheme_data();
    void followsTheColorScheme();
    void followsTheSizeOfText_data();
    void followsTheSizeOfText();
    void noPortalIsNoPreference();

    void playerIsThereWhileSomebodyObeys();
    void secondPlayerHasAnotherName();
    void tellsItsProperties();
    void announcesOnlyWhatChanges();
    void carriesOutCommands_data();
    void carriesOutCommands();
    void refusesBadUris();

private:
    /// What the bus had to say before has arrived afterwards.
    static void roundTrip()
    {
        const QDBusPendingCall ping = QDBusConnection::sessionBus().asyncCall(
            QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                           u"org.freedesktop.DBus"_s, u"GetId"_s));
        becomesTrue([&] { return ping.isFinished(); });
    }
    /// Another program's call, answered while this one goes on.
    QDBusMessage call(const QString &interface, const QString &method,
                      const QVariantList &arguments)
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall(mprisName, mprisPath, interface, method);
        message.setArguments(arguments);
        const QDBusPendingCall pending = m_peer->bus().asyncCall(message);
        becomesTrue([&] { return pending.isFinished(); });
        return pending.reply();
    }
    QVariant property(const QString &interface, const QString &name)
    {
        const QDBusMessage reply =
            call(u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {interface, name});
        return reply.arguments().value(0).value<QDBusVariant>().variant();
    }

    std::unique_ptr<SessionBus> m_bus;
    std::unique_ptr<Peer> m_peer;
};

void BusTest::initTestCase()
{
    m_bus = valueOrFail(SessionBus::start());
    QVERIFY(m_bus);
    QVERIFY(QDBusConnection::sessionBus().isConnected());
}

// The screen

void BusTest::screenSaverIsAskedFirst()
{
    ScreenSaver saver;
    QVERIFY(
        m_peer->offer(u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s, &saver));
    BusKeepAwake screen;
    screen.keepAwake(u"Playing a video"_s);
    screen.keepAwake(u"Playing a video"_s);
    QVERIFY(becomesTrue([&] { return saver.log.size() == 1; }));
    screen.release();
    screen.release();
    QVERIFY(becomesTrue([&] { return saver.log.size() == 2; }));
    screen.keepAwake(u"Playing a video"_s);
    QVERIFY(becomesTrue([&] { return saver.log.size() == 3; }));
    screen.release();
    QVERIFY(becomesTrue([&] { return saver.log.size() == 4; }));
    QCOMPARE(saver.log,
             QStringList({u"inhibit Lumaro: Playing a video"_s, u"uninhibit 41"_s,
                          u"inhibit Lumaro: Playing a video"_s, u"uninhibit 42"_s}));
}

void BusTest::releasedBeforeTheAnswer()
{
    ScreenSaver saver;
    QVERIFY(
        m_peer->offer(u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s, &saver));
    BusKeepAwake screen;
    screen.keepAwake(u"One"_s);
    screen.release();
    QVERIFY(becomesTrue([&] { return saver.log.size() == 2; }));
    QCOMPARE(saver.log.last(), u"uninhibit 41"_s);
    screen.keepAwake(u"Two"_s);
    screen.release();
    screen.keepAwake(u"Three"_s);
    QVERIFY(becomesTrue([&] { return saver.log.size() == 3; }));
    screen.release();
    QVERIFY(becomesTrue([&] { return saver.log.size() == 4; }));
    QCOMPARE(saver.log.last(), u"uninhibit 42"_s);
}

void BusTest::portalIsAskedSecond()
{
    QObject desktop;
    auto *const portal = new InhibitPortal(&desktop);
    PortalRequest request;
    QVERIFY(m_peer->offer(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
                          &desktop, QDBusConnection::ExportAdaptors));
    QVERIFY(
        m_peer->bus().registerObject(u"/request/1"_s, &request, QDBusConnection::ExportAllSlots));
    BusKeepAwake screen;
    screen.keepAwake(u"Playing a video"_s);
    QVERIFY(becomesTrue([&] { return portal->log.size() == 1; }));
    QCOMPARE(portal->log, QStringList{u"inhibit 8 Playing a video"_s});
    screen.release();
    QVERIFY(becomesTrue([&] { return request.closed == 1; }));
}

void BusTest::logindIsAskedLast()
{
    Logind logind;
    QVERIFY(m_peer->offer(u"org.freedesktop.login1"_s, u"/org/freedesktop/login1"_s, &logind));
    BusKeepAwake screen;
    screen.keepAwake(u"Playing a video"_s);
    QVERIFY(becomesTrue([&] { return logind.log.size() == 1; }));
    QCOMPARE(logind.log, QStringList{u"idle Lumaro Playing a video block"_s});
    screen.release();
    // There is nothing more to come as soon as nobody holds the other end.
    char byte = 0;
    QVERIFY(becomesTrue([&] { return read(logind.watched, &byte, 1) == 0; }));
    close(logind.watched);
}

void BusTest::nobodyThereIsNoTrouble()
{
    BusKeepAwake screen;
    screen.keepAwake(u"Playing a video"_s);
    roundTrip();
    // Whoever comes later is asked the next time.
    ScreenSaver saver;
    QVERIFY(
        m_peer->offer(u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s, &saver));
    QVERIFY(becomesTrue([&] {
        screen.release();
        screen.keepAwake(u"Playing a video"_s);
        return !saver.log.isEmpty();
    }));
}

// Dark and light

void BusTest::followsTheColorScheme_data()
{
    using Scheme = DesktopAppearance::ColorScheme;
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<Scheme>("scheme");
    QTest::newRow("dark") << QVariant(1U) << Scheme::Dark;
    QTest::newRow("light") << QVariant(2U) << Scheme::Light;
    QTest::newRow("no preference") << QVariant(0U) << Scheme::NoPreference;
    QTest::newRow("unheard of") << QVariant(3U) << Scheme::NoPreference;
    QTest::newRow("text") << QVariant(u"2"_s) << Scheme::NoPreference;
    QTest::newRow("list") << QVariant(QStringList{u"2"_s}) << Scheme::NoPreference;
}

void BusTest::followsTheColorScheme()
{
    using Scheme = DesktopAppearance::ColorScheme;
    QFETCH(const QVariant, value);
    QFETCH(const Scheme, scheme);
    QObject desktop;
    auto *const portal = new SettingsPortal(&desktop);
    portal->scheme = value;
    QVERIFY(m_peer->offer(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
                          &desktop, QDBusConnection::ExportAdaptors));
    const PortalAppearance appearance;
    const QString space = u"org.freedesktop.appearance"_s;
    const QString key = u"color-scheme"_s;
    QVERIFY(becomesTrue([&] { return appearance.colorScheme() == scheme; }));
    // First something else, so that the next change is one.
    const uint other = scheme == Scheme::Dark ? 2 : 1;
    portal->scheme = other;
    Q_EMIT portal->SettingChanged(space, key, QDBusVariant(other));
    QVERIFY(becomesTrue(
        [&] { return appearance.colorScheme() == (other == 1 ? Scheme::Dark : Scheme::Light); }));
    Q_EMIT portal->SettingChanged(space, u"accent-color"_s, QDBusVariant(0U));
    Q_EMIT portal->SettingChanged(u"org.gnome"_s, key, QDBusVariant(0U));
    Q_EMIT portal->SettingChanged(space, key, QDBusVariant(value));
    QVERIFY(becomesTrue([&] { return appearance.colorScheme() == scheme; }));
}

void BusTest::followsTheSizeOfText_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<double>("scale");
    QTest::newRow("as designed") << QVariant(1.0) << 1.0;
    QTest::newRow("larger") << QVariant(1.25) << 1.25;
    QTest::newRow("smaller") << QVariant(0.75) << 0.75;
    QTest::newRow("vast") << QVariant(1e300) << 3.0;
    QTest::newRow("none") << QVariant(0.0) << 0.5;
    QTest::newRow("no number") << QVariant(std::numeric_limits<double>::quiet_NaN()) << 1.0;
    QTest::newRow("text") << QVariant(u"2"_s) << 1.0;
    QTest::newRow("whole number") << QVariant(2U) << 1.0;
}

void BusTest::followsTheSizeOfText()
{
    QFETCH(const QVariant, value);
    QFETCH(const double, scale);
    QObject desktop;
    auto *const portal = new SettingsPortal(&desktop);
    portal->textScale = value;
    QVERIFY(m_peer->offer(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
                          &desktop, QDBusConnection::ExportAdaptors));
    const PortalAppearance appearance;
    const QSignalSpy changes(&appearance, &DesktopAppearance::textScaleChanged);
    QVERIFY(becomesTrue([&] { return appearance.textScale() == scale; }));
    const QString space = u"org.gnome.desktop.interface"_s;
    const QString key = u"text-scaling-factor"_s;
    portal->textScale = 1.5;
    Q_EMIT portal->SettingChanged(space, key, QDBusVariant(1.5));
    QVERIFY(becomesTrue([&] { return appearance.textScale() == 1.5; }));
    Q_EMIT portal->SettingChanged(space, u"cursor-size"_s, QDBusVariant(24.0));
    Q_EMIT portal->SettingChanged(space, key, QDBusVariant(value));
    QVERIFY(becomesTrue([&] { return appearance.textScale() == scale; }));
    QCOMPARE(changes.count(), scale == 1 ? 2 : 3);
}

void BusTest::noPortalIsNoPreference()
{
    const PortalAppearance appearance;
    const QSignalSpy changes(&appearance, &DesktopAppearance::colorSchemeChanged);
    roundTrip();
    QCOMPARE(changes.count(), 0);
    QCOMPARE(appearance.textScale(), 1);
}

// The player

void BusTest::playerIsThereWhileSomebodyObeys()
{
    const auto isThere = [this] {
        return m_peer->bus().interface()->isServiceRegistered(mprisName).value();
    };
    FakeCommands commands;
    MprisControls controls({});
    QVERIFY(!isThere());
    controls.setCommands(&commands);
    QVERIFY(isThere());
    controls.setCommands(nullptr);
    QVERIFY(!isThere());
}

void BusTest::secondPlayerHasAnotherName()
{
    QVERIFY(m_peer->bus().registerService(mprisName));
    FakeCommands commands;
    MprisControls controls({});
    controls.setCommands(&commands);
    const QString second = mprisName + u".instance%1"_s.arg(QCoreApplication::applicationPid());
    QVERIFY(m_peer->bus().interface()->isServiceRegistered(second).value());
}

void BusTest::tellsItsProperties()
{
    FakeCommands commands;
    MprisControls controls({.uriSchemes = {u"http"_s}, .mimeTypes = {u"video/mp4"_s}});
    controls.publish({.playback = MediaControlsState::Playback::Paused,
                      .track = 7,
                      .title = u"Ü"_s,
                      .url = QUrl(u"http://h/ü"_s),
                      .length = std::chrono::seconds(90),
                      .volume = 0.5,
                      .canPlay = true});
    controls.setCommands(&commands);
    const QString root = u"org.mpris.MediaPlayer2"_s;
    QCOMPARE(property(root, u"Identity"_s), QVariant(u"Lumaro"_s));
    QCOMPARE(property(root, u"DesktopEntry"_s), QVariant(u"lumaro"_s));
    QCOMPARE(property(root, u"CanRaise"_s), QVariant(true));
    QCOMPARE(property(root, u"HasTrackList"_s), QVariant(false));
    QCOMPARE(property(root, u"SupportedUriSchemes"_s), QVariant(QStringList{u"http"_s}));
    QCOMPARE(property(root, u"SupportedMimeTypes"_s), QVariant(QStringList{u"video/mp4"_s}));
    QCOMPARE(property(playerInterface, u"PlaybackStatus"_s), QVariant(u"Paused"_s));
    QCOMPARE(property(playerInterface, u"Rate"_s), QVariant(1.0));
    QCOMPARE(property(playerInterface, u"Volume"_s), QVariant(0.5));
    QCOMPARE(property(playerInterface, u"Position"_s), QVariant(qlonglong(1'500'000)));
    QCOMPARE(property(playerInterface, u"CanSeek"_s), QVariant(false));

    const QDBusArgument argument = property(playerInterface, u"Metadata"_s).value<QDBusArgument>();
    const QVariantMap metadata = qdbus_cast<QVariantMap>(argument);
    QCOMPARE(metadata.value(u"mpris:trackid"_s).value<QDBusObjectPath>(),
             QDBusObjectPath(u"/org/lumaro/track/7"_s));
    QCOMPARE(metadata.value(u"mpris:length"_s), QVariant(qlonglong(90'000'000)));
    QCOMPARE(metadata.value(u"xesam:title"_s), QVariant(u"Ü"_s));
    QCOMPARE(metadata.value(u"xesam:url"_s), QVariant(u"http://h/%C3%BC"_s));
}

void BusTest::announcesOnlyWhatChanges()
{
    FakeCommands commands;
    MprisControls controls({});
    MediaControlsState state{.title = u"Lumaro"_s};
    controls.publish(state);
    controls.setCommands(&commands);
    Listener listener;
    const auto listen = [&](const QString &interface, const QString &signal, const char *slot) {
        return m_peer->bus().connect(mprisName, mprisPath, interface, signal, &listener, slot);
    };
    QVERIFY(listen(u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s,
                   SLOT(propertiesChanged(QString, QVariantMap, QStringList))));
    QVERIFY(listen(playerInterface, u"Seeked"_s, SLOT(seeked(qlonglong))));

    controls.publish(state);
    state.volume = 0.25;
    controls.publish(state);
    state.isFullScreen = true;
    controls.publish(state);
    controls.announceSeek(std::chrono::microseconds(42));
    QVERIFY(becomesTrue([&] { return listener.seeks == QList<qlonglong>{42}; }));
    QCOMPARE(listener.interfaces, QStringList({playerInterface, u"org.mpris.MediaPlayer2"_s}));
    QCOMPARE(listener.changes[0], (QVariantMap{{u"Volume"_s, 0.25}}));
    QCOMPARE(listener.changes[1], (QVariantMap{{u"Fullscreen"_s, true}}));
}

void BusTest::carriesOutCommands_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QStringList>("log");
    const QString root = u"org.mpris.MediaPlayer2"_s;
    const QString properties = u"org.freedesktop.DBus.Properties"_s;
    const auto row = [](const char *name, const QString &interface, const QString &method,
                        const QVariantList &arguments, const QStringList &log) {
        QTest::newRow(name) << interface << method << arguments << log;
    };
    const auto path = [](const QString &text) {
        return QVariant::fromValue(QDBusObjectPath(text));
    };
    const auto set = [](const QString &interface, const QString &name, const QVariant &value) {
        return QVariantList{interface, name, QVariant::fromValue(QDBusVariant(value))};
    };
    row("raise", root, u"Raise"_s, {}, {u"raise"_s});
    row("quit", root, u"Quit"_s, {}, {u"quit"_s});
    for (const auto &[method, log] : {std::pair{"Play", "play"},
                                      {"Pause", "pause"},
                                      {"PlayPause", "play-pause"},
                                      {"Stop", "stop"},
                                      {"Next", "next"},
                                      {"Previous", "previous"}})
        row(method, playerInterface, QString::fromLatin1(method), {}, {QString::fromLatin1(log)});
    row("seek", playerInterface, u"Seek"_s, {qlonglong(-5)}, {u"seek -5"_s});
    row("position", playerInterface, u"SetPosition"_s,
        {path(u"/org/lumaro/track/3"_s), qlonglong(9)}, {u"position 3 9"_s});
    row("no track", playerInterface, u"SetPosition"_s,
        {path(u"/org/mpris/MediaPlayer2/TrackList/NoTrack"_s), qlonglong(9)}, {});
    row("odd track", playerInterface, u"SetPosition"_s,
        {path(u"/org/lumaro/track/x"_s), qlonglong(9)}, {});
    row("other's track", playerInterface, u"SetPosition"_s, {path(u"/3"_s), qlonglong(9)}, {});
    row("open", playerInterface, u"OpenUri"_s, {u"http://h"_s}, {u"open http://h"_s});
    row("volume", properties, u"Set"_s, set(playerInterface, u"Volume"_s, 0.5), {u"volume 0.5"_s});
    row("no volume", properties, u"Set"_s, set(playerInterface, u"Volume"_s, u"loud"_s), {});
    row("rate", properties, u"Set"_s, set(playerInterface, u"Rate"_s, 2.0), {});
    row("rate of nothing", properties, u"Set"_s, set(playerInterface, u"Rate"_s, 0.0),
        {u"pause"_s});
    row("full screen", properties, u"Set"_s, set(root, u"Fullscreen"_s, true),
        {u"full screen 1"_s});
    row("read only", properties, u"Set"_s, set(playerInterface, u"Position"_s, qlonglong(1)), {});
    row("too few arguments", playerInterface, u"Seek"_s, {}, {});
    row("no such method", playerInterface, u"Explode"_s, {}, {});
}

void BusTest::carriesOutCommands()
{
    QFETCH(const QString, interface);
    QFETCH(const QString, method);
    QFETCH(const QVariantList, arguments);
    FakeCommands commands;
    MprisControls controls({});
    controls.setCommands(&commands);
    call(interface, method, arguments);
    QTEST(commands.log, "log");
}

void BusTest::refusesBadUris()
{
    FakeCommands commands;
    MprisControls controls({});
    controls.setCommands(&commands);
    const QDBusMessage bad = call(playerInterface, u"OpenUri"_s, {u"bad"_s});
    QCOMPARE(bad.type(), QDBusMessage::ErrorMessage);
    QCOMPARE(bad.errorMessage(), u"It is bad."_s);
    QCOMPARE(call(playerInterface, u"OpenUri"_s, {u"good"_s}).type(), QDBusMessage::ReplyMessage);
}

QTEST_GUILESS_MAIN(BusTest)
#include "tst_bus.moc"
