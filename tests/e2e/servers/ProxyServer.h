#pragma once

#include "platform/ProxyConfiguration.h"
#include "tests/e2e/servers/ChildProcess.h"

#include <QTemporaryDir>
#include <QUrl>

#include <memory>

namespace lumaro {

class NginxServer;

/// A real proxy of the test's own on the loopback interface: microsocks for SOCKS5, tinyproxy for
/// HTTP. Its connections come from 127.0.0.2, and it alone knows the host `siteName`, which is
/// this machine. Needs an application object, and the right to mount.
class ProxyServer
{
public:
    using Protocol = ProxyConfiguration::Protocol;
    using Credential = ProxyConfiguration::Credential;

    static constexpr char16_t siteName[] = u"site.lumaro.test";
    static constexpr char16_t ownAddress[] = u"127.0.0.2";

    /// Returns when the proxy answers. The error is an English sentence.
    static std::expected<std::unique_ptr<ProxyServer>, QString>
    start(Protocol protocol, const std::optional<Credential> &credential = std::nullopt);

    /// `path` of `site` by the name that only proxies know; it begins with a slash.
    static QUrl siteUrl(const NginxServer &site, const QString &path);

    /// How to talk to it, with its credential.
    const ProxyConfiguration &configuration() const { return m_configuration; }
    void stop() { m_process.stop(); }

private:
    ProxyServer() = default;

    QStringList command() const;

    QTemporaryDir m_folder;
    ProxyConfiguration m_configuration;
    ChildProcess m_process;
};

} // namespace lumaro
