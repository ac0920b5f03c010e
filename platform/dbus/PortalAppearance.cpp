#include "platform/dbus/PortalAppearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>

#include <algorithm>
#include <cmath>

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

QString gnome()
{
    return QStringLiteral("org.gnome.desktop.interface");
}

QString textScaleKey()
{
    return QStringLiteral("text-scaling-factor");
}

/// GNOME on X11 puts the size of text into the resolution of the screen, and Qt draws everything
/// for that.
bool isInResolution()
{
    return QGuiApplication::platformName() == u"xcb";
}

double scaleOf(const QVariant &value)
{
    // As GNOME bounds it.
    constexpr double smallest = 0.5;
    constexpr double largest = 3;
    const double scale = value.typeId() == QMetaType::Double ? value.toDouble() : 1;
    return std::isfinite(scale) ? std::clamp(scale, smallest, largest) : 1;
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
    ask(appearance(), colorSchemeKey());
    if (!isInResolution())
        ask(gnome(), textScaleKey());
}

void PortalAppearance::ask(const QString &space, const QString &key)
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(service(), path(), interface(), QStringLiteral("Read"));
    question << space << key;
    const auto *const watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, space, key](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                const QDBusPendingReply<QDBusVariant> reply = *finished;
                if (!reply.isError())
                    learn(space, key, reply.value().variant());
            });
}

void PortalAppearance::settingChanged(const QString &space, const QString &key,
                                      const QDBusVariant &value)
{
    learn(space, key, value.variant());
}

void PortalAppearance::learn(const QString &space, const QString &key, const QVariant &value)
{
    // Read wraps the value once more than the signal does.
    const bool isWrapped = value.userType() == qMetaTypeId<QDBusVariant>();
    const QVariant told = isWrapped ? value.value<QDBusVariant>().variant() : value;
    if (space == appearance() && key == colorSchemeKey())
        setColorScheme(schemeOf(told));
    else if (space == gnome() && key == textScaleKey() && !isInResolution())
        setTextScale(scaleOf(told));
}

void PortalAppearance::setColorScheme(ColorScheme scheme)
{
    if (m_colorScheme == scheme)
        return;
    m_colorScheme = scheme;
    Q_EMIT colorSchemeChanged();
}

void PortalAppearance::setTextScale(double scale)
{
    if (m_textScale == scale)
        return;
    m_textScale = scale;
    Q_EMIT textScaleChanged();
}

} // namespace lumaro
