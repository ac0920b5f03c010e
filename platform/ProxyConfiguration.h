#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace lumaro {

/// A proxy and how to talk to it.
struct ProxyConfiguration
{
    enum class Protocol {
        Socks5, ///< RFC 1928
        HttpConnect, ///< RFC 9110, section 9.3.6, without TLS to the proxy
    };
    struct Credential
    {
        QString username;
        QString password;

        bool operator==(const Credential &) const = default;
    };

    Protocol protocol = Protocol::Socks5;
    /// A name or an address, the latter without brackets.
    QString host;
    quint16 port = 0;
    std::optional<Credential> credential;

    bool operator==(const ProxyConfiguration &) const = default;
};

/// What all web views share to reach the network. Main thread.
class ProxyConfigurationTarget
{
public:
    ProxyConfigurationTarget() = default;
    ProxyConfigurationTarget(const ProxyConfigurationTarget &) = delete;
    ProxyConfigurationTarget &operator=(const ProxyConfigurationTarget &) = delete;
    virtual ~ProxyConfigurationTarget() = default;

    /// In place of those before; with none, connections are direct.
    virtual void setProxyConfigurations(const QList<ProxyConfiguration> &configurations) = 0;
};

} // namespace lumaro
