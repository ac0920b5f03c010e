#include "platform/ConnectionFailures.h"

namespace lumaro {

namespace {

/// Pages can ask for any number of servers.
constexpr qsizetype mostRemembered = 1000;

const ConnectionFailures *applicationProxys = nullptr;

} // namespace

const ConnectionFailures *ConnectionFailures::ofApplicationProxy()
{
    return applicationProxys;
}

void ConnectionFailures::setOfApplicationProxy(const ConnectionFailures *failures)
{
    applicationProxys = failures;
}

void ConnectionFailures::note(const QString &host, quint16 port, ConnectionFailure failure)
{
    const QMutexLocker lock(&m_mutex);
    if (m_failures.size() >= mostRemembered)
        m_failures.clear();
    m_failures.insert({host, port}, failure);
}

void ConnectionFailures::forget(const QString &host, quint16 port)
{
    const QMutexLocker lock(&m_mutex);
    m_failures.remove({host, port});
}

std::optional<ConnectionFailure> ConnectionFailures::of(const QUrl &url) const
{
    constexpr int httpPort = 80;
    constexpr int httpsPort = 443;
    const int port = url.port(url.scheme() == u"https" ? httpsPort : httpPort);
    const QMutexLocker lock(&m_mutex);
    const auto found = m_failures.constFind({url.host(), quint16(port)});
    return found == m_failures.cend() ? std::nullopt : std::optional(*found);
}

} // namespace lumaro
