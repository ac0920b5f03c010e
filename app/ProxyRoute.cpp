#include "app/ProxyRoute.h"

#include "platform/curl/CurlHttpClient.h"
#include "platform/mpv/MpvMediaPlayer.h"
#include "platform/posix/LoopbackPeer.h"

#include <QNetworkProxy>

namespace lumaro {

ProxyRoute::ProxyRoute(CurlHttpClient &http, MpvMediaPlayer &player)
    : m_http(http)
    , m_player(player)
{
}

void ProxyRoute::setProxyConfigurations(const QList<ProxyConfiguration> &configurations)
{
    const auto proxy =
        configurations.isEmpty() ? std::nullopt : std::optional(configurations.first());
    m_http.setProxy(proxy);
    if (proxy && !m_relay)
        m_relay.emplace(&isOwnLoopbackPeer);
    if (m_relay)
        m_relay->setUpstream(proxy);
    if (!proxy) {
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        m_player.setHttpProxy({});
        return;
    }
    const QString host = QStringLiteral("127.0.0.1");
    QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, host, m_relay->port()});
    QUrl address;
    address.setScheme(QStringLiteral("http"));
    address.setHost(host);
    address.setPort(m_relay->port());
    m_player.setHttpProxy(address);
}

} // namespace lumaro
