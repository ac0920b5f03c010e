#include "app/ProxyRoute.h"

#include "platform/curl/CurlHttpClient.h"
#include "platform/mpv/MpvMediaPlayer.h"
#include "platform/posix/LoopbackPeer.h"

#include <QNetworkProxy>
#include <QUrl>

namespace lumaro {

ProxyRoute::ProxyRoute(CurlHttpClient &http, MpvMediaPlayer &player)
    : m_http(http)
    , m_player(player)
    , m_relay(&isOwnLoopbackPeer)
{
    // The browser's engine hears of another one only after its next request.
    QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, relayHost(), m_relay.port()});
    ConnectionFailures::setOfApplicationProxy(&m_relay.failures());
}

ProxyRoute::~ProxyRoute()
{
    ConnectionFailures::setOfApplicationProxy(nullptr);
}

QString ProxyRoute::relayHost()
{
    return QStringLiteral("127.0.0.1");
}

void ProxyRoute::setProxyConfigurations(const QList<ProxyConfiguration> &configurations)
{
    const auto proxy =
        configurations.isEmpty() ? std::nullopt : std::optional(configurations.first());
    m_http.setProxy(proxy);
    m_relay.setUpstream(proxy);
    QUrl address;
    if (proxy) {
        address.setScheme(QStringLiteral("http"));
        address.setHost(relayHost());
        address.setPort(m_relay.port());
    }
    m_player.setHttpProxy(address);
}

} // namespace lumaro
