#pragma once

#include "platform/relay/ProxyRelay.h"

#include <QTcpServer>

namespace lumaro {

/// What ProxyRelay runs in its thread.
class RelayServer : public QObject
{
    Q_OBJECT

public:
    explicit RelayServer(ProxyRelay::IsOwnPeer isOwnPeer);

    /// The port; 0 on failure.
    quint16 listen();
    void setUpstream(const std::optional<ProxyConfiguration> &upstream);

private:
    void accept();

    ProxyRelay::IsOwnPeer m_isOwnPeer;
    std::optional<ProxyConfiguration> m_upstream;
    QTcpServer m_listener{this};
};

} // namespace lumaro
