#pragma once

#include "platform/relay/ProxyRelay.h"

#include <QTcpServer>

namespace lumaro {

/// What ProxyRelay runs in its thread.
class RelayServer : public QObject
{
    Q_OBJECT

public:
    /// `failures` outlives the server.
    RelayServer(ProxyRelay::IsOwnPeer isOwnPeer, ConnectionFailures &failures);

    /// The port; 0 on failure.
    quint16 listen();
    void setUpstream(const std::optional<ProxyConfiguration> &upstream);

private:
    void accept();

    ProxyRelay::IsOwnPeer m_isOwnPeer;
    ConnectionFailures &m_failures;
    std::optional<ProxyConfiguration> m_upstream;
    QTcpServer m_listener{this};
};

} // namespace lumaro
