#pragma once

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
    /// Takes `client` over.
    RelayConnection(QTcpSocket *client, std::optional<ProxyConfiguration> upstream,
                    QObject *parent);

private:
    void readHead();
    void connectOnwards();
    void greet();
    void shakeHands();
    void begin();
    bool hasAnswer();
    void refuse(const QByteArray &status);
    void pass(QTcpSocket &from, QTcpSocket &to);
    void passAll();

    QTcpSocket &m_client;
    QTcpSocket m_onward{this};
    std::optional<ProxyConfiguration> m_upstream;
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
