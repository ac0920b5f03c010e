#pragma once

#include "platform/KeepAwake.h"

#include <QObject>

#include <functional>

class QDBusConnection;
class QDBusMessage;
class QDBusPendingCallWatcher;

namespace lumaro {

/// Asks, of those that there are, the first that agrees: org.freedesktop.ScreenSaver (Idle
/// Inhibition Service), the inhibit portal (org.freedesktop.portal.Inhibit), logind
/// (org.freedesktop.login1.Manager). All of them forget a program that ends.
class BusKeepAwake final : public QObject, public KeepAwake
{
    Q_OBJECT

public:
    explicit BusKeepAwake(QObject *parent = nullptr);
    ~BusKeepAwake() override;

    void keepAwake(const QString &reason) override;
    void release() override;

private:
    using Answered = std::function<void(const QDBusPendingCallWatcher &)>;

    void askScreenSaver();
    void askPortal();
    void askLogind();
    void ask(const QDBusConnection &bus, const QDBusMessage &question, Answered answered);
    void granted(std::function<void()> letGo);
    /// Whoever was asked does not agree.
    void refused(void (BusKeepAwake::*askNext)());

    bool m_isWanted = false;
    bool m_isAsking = false;
    QString m_reason;
    /// Gives back what was granted; empty while nothing is.
    std::function<void()> m_letGo;
};

} // namespace lumaro
