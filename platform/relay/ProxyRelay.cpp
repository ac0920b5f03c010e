#include "platform/relay/ProxyRelay.h"

#include "platform/relay/RelayServer.h"

namespace lumaro {

ProxyRelay::ProxyRelay(IsOwnPeer isOwnPeer)
    : m_server(std::make_unique<RelayServer>(std::move(isOwnPeer), m_failures))
{
    m_thread.setObjectName(QStringLiteral("proxy relay"));
    m_server->moveToThread(&m_thread);
    m_thread.start();
    QMetaObject::invokeMethod(
        m_server.get(), [this] { m_port = m_server->listen(); }, Qt::BlockingQueuedConnection);
}

ProxyRelay::~ProxyRelay()
{
    QMetaObject::invokeMethod(
        m_server.get(), [this] { m_server.reset(); }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

void ProxyRelay::setUpstream(const std::optional<ProxyConfiguration> &upstream)
{
    QMetaObject::invokeMethod(
        m_server.get(), [this, &upstream] { m_server->setUpstream(upstream); },
        Qt::BlockingQueuedConnection);
}

} // namespace lumaro
