#pragma once

#include "platform/ProxyConfiguration.h"
#include "platform/relay/ProxyRelay.h"

namespace lumaro {

class CurlHttpClient;
class MpvMediaPlayer;

/// Sends whatever this process loads through one proxy: the HTTP client's requests, what the
/// player plays, and what Qt fetches.
class ProxyRoute final : public ProxyConfigurationTarget
{
public:
    /// The arguments outlive the route.
    ProxyRoute(CurlHttpClient &http, MpvMediaPlayer &player);
    ~ProxyRoute() override;

    void setProxyConfigurations(const QList<ProxyConfiguration> &configurations) override;

private:
    static QString relayHost();

    CurlHttpClient &m_http;
    MpvMediaPlayer &m_player;
    /// There with and without a proxy: for Qt and its browser, and for what still plays through it.
    ProxyRelay m_relay;
};

} // namespace lumaro
