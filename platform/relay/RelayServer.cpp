#include "platform/relay/RelayServer.h"

#include "platform/relay/RelayConnection.h"

#include <QNetworkProxy>

namespace lumaro {

RelayServer::RelayServer(ProxyRelay::IsOwnPeer isOwnPeer, ConnectionFailures &failures)
    : m_isOwnPeer(std::move(isOwnPeer))
    , m_failures(failures)
{
    // Not through itself.
    m_listener.setProxy(QNetworkProxy::NoProxy);
    connect(&m_listener, &QTcpServer::newConnection, this, &RelayServer::accept);
}

quint16 RelayServer::listen()
{
    return m_listener.listen(QHostAddress::LocalHost) ? m_listener.serverPort() : 0;
}

void RelayServer::setUpstream(const std::optional<ProxyConfiguration> &upstream)
{
    if (m_upstream == upstream)
        return;
    m_upstream = upstream;
    qDeleteAll(findChildren<RelayConnection *>(Qt::FindDirectChildrenOnly));
}

void RelayServer::accept()
{
    while (QTcpSocket *client = m_listener.nextPendingConnection()) {
        if (m_isOwnPeer(m_listener.serverPort(), client->peerPort())) {
            new RelayConnection(client, m_upstream, m_failures, this);
        } else {
            client->abort();
            client->deleteLater();
        }
    }
}

} // namespace lumaro
