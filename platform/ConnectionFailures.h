#pragma once

#include <QHash>
#include <QMutex>
#include <QUrl>

#include <optional>

namespace lumaro {

/// Why no connection to a server came about.
enum class ConnectionFailure {
    /// This computer is in no network.
    Offline,
    NoSuchServer,
    Unreachable,
    TooSlow,
    /// The proxy between could not be reached, or refused.
    Proxy,
};

/// Why the last connection to each server failed, for libraries that only hear from a proxy of this
/// process that it did. Any thread.
class ConnectionFailures
{
public:
    ConnectionFailures() = default;
    ~ConnectionFailures() = default;
    ConnectionFailures(const ConnectionFailures &) = delete;
    ConnectionFailures &operator=(const ConnectionFailures &) = delete;

    /// Those of whoever is the proxy of the whole process (QNetworkProxy::applicationProxy); null
    /// for nobody. Main thread.
    static const ConnectionFailures *ofApplicationProxy();
    /// `failures` is replaced before it goes.
    static void setOfApplicationProxy(const ConnectionFailures *failures);

    /// `host` as QUrl tells it.
    void note(const QString &host, quint16 port, ConnectionFailure failure);
    /// A connection stands.
    void forget(const QString &host, quint16 port);
    /// Empty when the last connection to the server of `url` stood, or there was none.
    std::optional<ConnectionFailure> of(const QUrl &url) const;

private:
    using Server = std::pair<QString, quint16>;

    mutable QMutex m_mutex;
    QHash<Server, ConnectionFailure> m_failures;
};

} // namespace lumaro
