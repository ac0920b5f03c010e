#pragma once

#include "platform/ProxyConfiguration.h"

#include <QByteArray>
#include <QByteArrayList>

#include <optional>

namespace lumaro {

/// The head of a request that a client sends to an HTTP proxy (RFC 9112, section 3.2): what it
/// wants, and how that is said to whoever is asked next. Any thread.
class ProxyRequestHead
{
public:
    /// In bytes, with the empty line at the end.
    static constexpr qsizetype maximumSize = 64 * 1024;

    /// `head` ends with its empty line. Empty for what is no request to a proxy.
    static std::optional<ProxyRequestHead> read(QByteArrayView head);

    /// Asks for a connection to a server (CONNECT) rather than for something at a http address.
    bool isTunnel() const { return m_method == "CONNECT"; }
    const QString &host() const { return m_host; }
    quint16 port() const { return m_port; }

    /// For the server itself, which is to close the connection after its answer.
    QByteArray forServer() const;
    /// For another HTTP proxy, with Basic authentication (RFC 7617) where there is a credential.
    QByteArray forProxy(const std::optional<ProxyConfiguration::Credential> &credential) const;

private:
    QByteArray written(const QByteArray &target, const QByteArrayList &more) const;

    QByteArray m_method;
    /// As the client wrote it.
    QByteArray m_target;
    QByteArray m_pathAndQuery;
    QByteArray m_version;
    QString m_host;
    quint16 m_port = 0;
    /// Those that go on to the server.
    QByteArrayList m_headers;
};

} // namespace lumaro
