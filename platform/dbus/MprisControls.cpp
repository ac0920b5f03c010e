#include "platform/dbus/MprisControls.h"

#include "platform/dbus/MprisPlayerAdaptor.h"
#include "platform/dbus/MprisRootAdaptor.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>

namespace lumaro {

namespace {

QString objectPath()
{
    return QStringLiteral("/org/mpris/MediaPlayer2");
}

/// Adaptors announce no changes by themselves (D-Bus Specification,
/// org.freedesktop.DBus.Properties).
void announceChanges(const QString &interface, const QVariantMap &before, const QVariantMap &now)
{
    QVariantMap changed;
    for (auto property = now.cbegin(); property != now.cend(); ++property) {
        if (before.value(property.key()) != property.value())
            changed.insert(property.key(), property.value());
    }
    if (changed.isEmpty())
        return;
    QDBusMessage signal =
        QDBusMessage::createSignal(objectPath(), QStringLiteral("org.freedesktop.DBus.Properties"),
                                   QStringLiteral("PropertiesChanged"));
    signal << interface << changed << QStringList();
    QDBusConnection::sessionBus().send(signal);
}

} // namespace

MprisControls::MprisControls(const Supported &supported, QObject *parent)
    : QObject(parent)
    , m_player{.state = {},
               .commands = nullptr,
               .uriSchemes = supported.uriSchemes,
               .mimeTypes = supported.mimeTypes}
    , m_playerAdaptor(new MprisPlayerAdaptor(m_player, this))
{
    new MprisRootAdaptor(m_player, this);
}

MprisControls::~MprisControls()
{
    disappear();
}

void MprisControls::setCommands(MediaCommands *commands)
{
    m_player.commands = commands;
    if (commands && m_busName.isEmpty())
        appear();
    else if (!commands)
        disappear();
}

void MprisControls::appear()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.registerObject(objectPath(), this))
        return;
    const QString name = QStringLiteral("org.mpris.MediaPlayer2.lumaro");
    const QString second =
        name + QStringLiteral(".instance%1").arg(QCoreApplication::applicationPid());
    if (bus.registerService(name))
        m_busName = name;
    else if (bus.registerService(second))
        m_busName = second;
    else
        bus.unregisterObject(objectPath());
}

void MprisControls::disappear()
{
    if (m_busName.isEmpty())
        return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterService(std::exchange(m_busName, QString()));
    bus.unregisterObject(objectPath());
}

void MprisControls::publish(const MediaControlsState &state)
{
    const MediaControlsState before = std::exchange(m_player.state, state);
    if (m_busName.isEmpty())
        return;
    announceChanges(QStringLiteral("org.mpris.MediaPlayer2"), MprisRootAdaptor::properties(before),
                    MprisRootAdaptor::properties(state));
    announceChanges(QStringLiteral("org.mpris.MediaPlayer2.Player"),
                    MprisPlayerAdaptor::properties(before), MprisPlayerAdaptor::properties(state));
}

void MprisControls::announceSeek(std::chrono::microseconds position)
{
    if (!m_busName.isEmpty())
        Q_EMIT m_playerAdaptor->Seeked(position.count());
}

} // namespace lumaro
