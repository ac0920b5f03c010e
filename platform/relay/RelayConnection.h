#pragma once

#include "platform/ConnectionFailures.h"
#include "platform/relay/ProxyRequestHead.h"
#include "platform/relay/Socks5Handshake.h"

#include <QTcpSocket>
#include <QTimer>

namespace lumaro {

/// One client of the relay: its request's head, and then bytes both ways. Deletes itself when the
/// client is gone.
class RelayConnection : public QObject
{
    Q_OBJECT

public:
    /// Takes `client` over; `failures` outlives the connection.
    RelayConnection(QTcpSocket *client, std::optional<ProxyConfiguration> upstream,
                    ConnectionFailures &failures, QObject *parent);

private:
    void readHead();
    void connectOnwards();
    void greet();
    void shakeHands();
    void begin();
    bool hasAnswer();
    /// The other end cannot be reached, or does not hand on.
    void fail(ConnectionFailure failure, const QByteArray &status = "502 Bad Gateway");
    void refuse(const QByteArray &status);
    void pass(QTcpSocket &from, QTcpSocket &to);
    void passAll();

    QTcpSocket &m_client;
    QTcpSocket m_onward{this};
    /// What the connection goes through; empty for straight to the server.
    std::optional<ProxyConfiguration> m_upstream;
    ConnectionFailures &m_failures;
    QByteArray m_received;
    std::optional<ProxyRequestHead> m_request;
    /// The other end is another HTTP proxy.
    bool m_asksProxy = false;
    std::optional<Socks5Handshake> m_handshake;
    bool m_passes = false;
    /// Nothing of what the other HTTP proxy answers has been passed on.
    bool m_awaitsAnswer = false;
    QTimer m_patience{this};
};

} // namespace lumaro
