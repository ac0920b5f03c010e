#pragma once

#include "platform/ProxyConfiguration.h"

#include <QByteArray>

namespace lumaro {

/// What a client says to a SOCKS5 proxy (RFC 1928) before the bytes are the server's, with a user
/// name and a password (RFC 1929) where there are any. Qt's own client cannot be slowed down by
/// whoever reads from it. Any thread.
class Socks5Handshake
{
public:
    enum class State {
        Continues,
        Done,
        /// The proxy does as it should, but cannot reach the host.
        Unreachable,
        Failed,
    };

    /// Asks for `host`, a name or an address, as it is.
    Socks5Handshake(const QString &host, quint16 port,
                    std::optional<ProxyConfiguration::Credential> credential);

    State state() const { return m_state; }
    /// What is to be sent next; empty for nothing.
    QByteArray takeOutput() { return std::exchange(m_output, {}); }
    /// Reads what the proxy has answered so far; returns how many bytes of it that has used up.
    qsizetype read(QByteArrayView answer);

private:
    enum class Step { Method, Authentication, Reply };

    qsizetype readMethod(QByteArrayView answer);
    qsizetype readAuthentication(QByteArrayView answer);
    qsizetype readReply(QByteArrayView answer);
    void authenticate();
    void request();
    qsizetype fail(State state = State::Failed);

    QString m_host;
    quint16 m_port;
    std::optional<ProxyConfiguration::Credential> m_credential;
    QByteArray m_output;
    Step m_step = Step::Method;
    State m_state = State::Continues;
};

} // namespace lumaro
