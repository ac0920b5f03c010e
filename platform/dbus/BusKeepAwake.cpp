#include "platform/dbus/BusKeepAwake.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>

namespace lumaro {

namespace {

QString programName()
{
    return QStringLiteral("Lumaro");
}

QDBusMessage screenSaverCall(const QString &method)
{
    const QString name = QStringLiteral("org.freedesktop.ScreenSaver");
    return QDBusMessage::createMethodCall(name, QStringLiteral("/org/freedesktop/ScreenSaver"),
                                          name, method);
}

QString portalName()
{
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

} // namespace

BusKeepAwake::BusKeepAwake(QObject *parent)
    : QObject(parent)
{
}

BusKeepAwake::~BusKeepAwake()
{
    release();
}

void BusKeepAwake::keepAwake(const QString &reason)
{
    m_isWanted = true;
    m_reason = reason;
    if (!m_isAsking && !m_letGo)
        askScreenSaver();
}

void BusKeepAwake::release()
{
    m_isWanted = false;
    if (const auto letGo = std::exchange(m_letGo, {}))
        letGo();
}

void BusKeepAwake::askScreenSaver()
{
    QDBusMessage question = screenSaverCall(QStringLiteral("Inhibit"));
    question << programName() << m_reason;
    ask(QDBusConnection::sessionBus(), question, [this](const QDBusPendingCallWatcher &answer) {
        const QDBusPendingReply<uint> reply = answer;
        if (reply.isError()) {
            refused(&BusKeepAwake::askPortal);
            return;
        }
        granted([cookie = reply.value()] {
            QDBusMessage end = screenSaverCall(QStringLiteral("UnInhibit"));
            end << cookie;
            QDBusConnection::sessionBus().send(end);
        });
    });
}

void BusKeepAwake::askPortal()
{
    constexpr uint idle = 8;
    QDBusMessage question = QDBusMessage::createMethodCall(
        portalName(), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Inhibit"), QStringLiteral("Inhibit"));
    const QString noWindow;
    question << noWindow << idle << QVariantMap{{QStringLiteral("reason"), m_reason}};
    ask(QDBusConnection::sessionBus(), question, [this](const QDBusPendingCallWatcher &answer) {
        const QDBusPendingReply<QDBusObjectPath> reply = answer;
        if (reply.isError()) {
            refused(&BusKeepAwake::askLogind);
            return;
        }
        granted([request = reply.value().path()] {
            QDBusConnection::sessionBus().send(QDBusMessage::createMethodCall(
                portalName(), request, QStringLiteral("org.freedesktop.portal.Request"),
                QStringLiteral("Close")));
        });
    });
}

void BusKeepAwake::askLogind()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    question << QStringLiteral("idle") << programName() << m_reason << QStringLiteral("block");
    ask(QDBusConnection::systemBus(), question, [this](const QDBusPendingCallWatcher &answer) {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = answer;
        if (reply.isError()) {
            refused(nullptr);
            return;
        }
        // It holds for as long as the descriptor is open.
        granted([descriptor = reply.value()] { Q_UNUSED(descriptor) });
    });
}

void BusKeepAwake::ask(const QDBusConnection &bus, const QDBusMessage &question, Answered answered)
{
    m_isAsking = true;
    auto *const watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, answered = std::move(answered)](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                m_isAsking = false;
                answered(*finished);
            });
}

void BusKeepAwake::granted(std::function<void()> letGo)
{
    m_letGo = std::move(letGo);
    // The film may have ended meanwhile.
    if (!m_isWanted)
        release();
}

void BusKeepAwake::refused(void (BusKeepAwake::*askNext)())
{
    if (askNext && m_isWanted)
        (this->*askNext)();
}

} // namespace lumaro
