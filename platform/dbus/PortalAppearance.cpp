#include "platform/dbus/PortalAppearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace lumaro {

namespace {

QString service()
{
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

QString path()
{
    return QStringLiteral("/org/freedesktop/portal/desktop");
}

QString interface()
{
    return QStringLiteral("org.freedesktop.portal.Settings");
}

QString appearance()
{
    return QStringLiteral("org.freedesktop.appearance");
}

QString colorSchemeKey()
{
    return QStringLiteral("color-scheme");
}

DesktopAppearance::ColorScheme schemeOf(const QVariant &value)
{
    switch (value.typeId() == QMetaType::UInt ? value.toUInt() : 0) {
    case 1:
        return DesktopAppearance::ColorScheme::Dark;
    case 2:
        return DesktopAppearance::ColorScheme::Light;
    default:
        return DesktopAppearance::ColorScheme::NoPreference;
    }
}

} // namespace

PortalAppearance::PortalAppearance(QObject *parent)
    : DesktopAppearance(parent)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(service(), path(), interface(), QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    ask();
}

void PortalAppearance::ask()
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(service(), path(), interface(), QStringLiteral("Read"));
    question << appearance() << colorSchemeKey();
    const auto *const watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                const QDBusPendingReply<QDBusVariant> reply = *finished;
                if (!reply.isError())
                    setColorScheme(reply.value().variant());
            });
}

void PortalAppearance::settingChanged(const QString &space, const QString &key,
                                      const QDBusVariant &value)
{
    if (space == appearance() && key == colorSchemeKey())
        setColorScheme(value.variant());
}

void PortalAppearance::setColorScheme(const QVariant &value)
{
    // Read wraps the value once more than the signal does.
    const bool isWrapped = value.userType() == qMetaTypeId<QDBusVariant>();
    const ColorScheme scheme = schemeOf(isWrapped ? value.value<QDBusVariant>().variant() : value);
    if (m_colorScheme == scheme)
        return;
    m_colorScheme = scheme;
    Q_EMIT colorSchemeChanged();
}

} // namespace lumaro
