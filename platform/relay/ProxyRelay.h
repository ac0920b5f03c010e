#pragma once

#include "platform/ConnectionFailures.h"
#include "platform/ProxyConfiguration.h"

#include <QThread>

#include <functional>
#include <memory>
#include <optional>

namespace lumaro {

class RelayServer;

/// An HTTP proxy on 127.0.0.1 that hands everything on to the user's proxy, for libraries in this
/// process that do not speak its language. Names go to the user's proxy as they are; servers on
/// this machine are reached directly. Runs in a thread of its own.
class ProxyRelay
{
public:
    /// Tells which connections are this process's own, by the relay's port and the peer's; no
    /// others are served. Called in the relay's thread.
    using IsOwnPeer = std::function<bool(quint16 port, quint16 peerPort)>;

    explicit ProxyRelay(IsOwnPeer isOwnPeer);
    /// Breaks off what still runs.
    ~ProxyRelay();
    ProxyRelay(const ProxyRelay &) = delete;
    ProxyRelay &operator=(const ProxyRelay &) = delete;

    /// Where it listens; 0 when the system does not let it.
    quint16 port() const { return m_port; }
    /// Why clients got an error in place of a connection.
    const ConnectionFailures &failures() const { return m_failures; }
    /// The user's proxy from now on; with none, connections are direct. Connections made through
    /// another one break off.
    void setUpstream(const std::optional<ProxyConfiguration> &upstream);

private:
    ConnectionFailures m_failures;
    QThread m_thread;
    std::unique_ptr<RelayServer> m_server;
    quint16 m_port = 0;
};

} // namespace lumaro
