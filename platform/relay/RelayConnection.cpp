#include "platform/relay/RelayConnection.h"

#include <QHostAddress>
#include <QNetworkInterface>
#include <QNetworkProxy>

#include <algorithm>
#include <chrono>

namespace lumaro {

namespace {

using namespace std::chrono_literals;

/// For the head to come and the connection onwards to stand.
constexpr std::chrono::milliseconds patience = 30s;
/// What may wait in each direction, in bytes.
constexpr qint64 bufferSize = 256 * 1024;

bool isLocalName(const QString &host)
{
    return host.endsWith(u".localhost");
}

bool isThisMachine(const QString &host)
{
    return host == u"localhost" || isLocalName(host) || QHostAddress(host).isLoopback();
}

/// What the desktop goes through, as Qt can tell.
std::optional<ProxyConfiguration> systemProxy(const ProxyRequestHead &request)
{
    using Protocol = ProxyConfiguration::Protocol;

    QUrl url;
    url.setScheme(request.isTunnel() ? QStringLiteral("https") : QStringLiteral("http"));
    url.setHost(request.host());
    url.setPort(request.port());
    for (const QNetworkProxy &proxy :
         QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url))) {
        const bool isHttp = proxy.type() == QNetworkProxy::HttpProxy;
        if (!isHttp && proxy.type() != QNetworkProxy::Socks5Proxy)
            continue;
        ProxyConfiguration configuration{isHttp ? Protocol::HttpConnect : Protocol::Socks5,
                                         proxy.hostName(), proxy.port(), std::nullopt};
        if (!proxy.user().isEmpty())
            configuration.credential = {proxy.user(), proxy.password()};
        return configuration;
    }
    return std::nullopt;
}

bool isOffline()
{
    const auto leadsOut = [](const QNetworkInterface &interface) {
        return interface.flags().testFlag(QNetworkInterface::IsRunning)
            && !interface.flags().testFlag(QNetworkInterface::IsLoopBack)
            && !interface.addressEntries().isEmpty();
    };
    return std::ranges::none_of(QNetworkInterface::allInterfaces(), leadsOut);
}

/// Why a server could not be connected to.
ConnectionFailure failureOf(QAbstractSocket::SocketError error)
{
    using enum ConnectionFailure;
    if (error == QAbstractSocket::ConnectionRefusedError)
        return Unreachable;
    if (error == QAbstractSocket::SocketTimeoutError)
        return TooSlow;
    if (isOffline())
        return Offline;
    return error == QAbstractSocket::HostNotFoundError ? NoSuchServer : Unreachable;
}

} // namespace

RelayConnection::RelayConnection(QTcpSocket *client, std::optional<ProxyConfiguration> upstream,
                                 ConnectionFailures &failures, QObject *parent)
    : QObject(parent)
    , m_client(*client)
    , m_upstream(std::move(upstream))
    , m_failures(failures)
{
    client->setParent(this);
    m_client.setReadBufferSize(bufferSize);
    m_onward.setReadBufferSize(bufferSize);
    m_patience.setSingleShot(true);
    m_patience.callOnTimeout(this, [this] {
        fail(m_upstream ? ConnectionFailure::Proxy : ConnectionFailure::TooSlow,
             "504 Gateway Timeout");
    });
    m_patience.start(patience);

    connect(&m_client, &QTcpSocket::readyRead, this, &RelayConnection::readHead);
    connect(&m_client, &QTcpSocket::disconnected, this, &QObject::deleteLater);
    connect(&m_onward, &QTcpSocket::connected, this, &RelayConnection::greet);
    connect(&m_onward, &QTcpSocket::readyRead, this, &RelayConnection::shakeHands);
    connect(&m_onward, &QTcpSocket::errorOccurred, this,
            [this](QAbstractSocket::SocketError error) {
                if (!m_passes)
                    fail(m_upstream ? ConnectionFailure::Proxy : failureOf(error));
            });
    for (QTcpSocket *socket : {&m_client, &m_onward}) {
        connect(socket, &QTcpSocket::readyRead, this, &RelayConnection::passAll);
        connect(socket, &QTcpSocket::bytesWritten, this, &RelayConnection::passAll);
    }
    connect(&m_onward, &QTcpSocket::disconnected, this, &RelayConnection::passAll);
    readHead();
}

void RelayConnection::readHead()
{
    if (m_request)
        return;
    m_received += m_client.readAll();
    const qsizetype end = m_received.indexOf("\r\n\r\n");
    if (end < 0) {
        if (m_received.size() > ProxyRequestHead::maximumSize)
            refuse("431 Request Header Fields Too Large");
        return;
    }
    const qsizetype size = end + 4;
    m_request = ProxyRequestHead::read(QByteArrayView(m_received).first(size));
    m_received.remove(0, size);
    if (m_request)
        connectOnwards();
    else
        refuse("400 Bad Request");
}

void RelayConnection::connectOnwards()
{
    using Protocol = ProxyConfiguration::Protocol;

    // Qt would otherwise come back here.
    m_onward.setProxy(QNetworkProxy::NoProxy);
    const QString host = m_request->host();
    if (isThisMachine(host))
        m_upstream.reset();
    else if (!m_upstream)
        m_upstream = systemProxy(*m_request);
    if (!m_upstream) {
        // Not every system knows that these are this machine (RFC 6761, section 6.3).
        m_onward.connectToHost(isLocalName(host) ? QStringLiteral("localhost") : host,
                               m_request->port());
        return;
    }
    m_asksProxy = m_upstream->protocol == Protocol::HttpConnect;
    if (!m_asksProxy)
        m_handshake.emplace(host, m_request->port(), m_upstream->credential);
    m_onward.connectToHost(m_upstream->host, m_upstream->port);
}

void RelayConnection::greet()
{
    if (m_handshake)
        m_onward.write(m_handshake->takeOutput());
    else
        begin();
}

void RelayConnection::shakeHands()
{
    constexpr qint64 longestAnswer = 512;
    if (!m_handshake || m_passes)
        return;
    m_onward.skip(m_handshake->read(m_onward.peek(longestAnswer)));
    m_onward.write(m_handshake->takeOutput());
    if (m_handshake->state() == Socks5Handshake::State::Done)
        begin();
    else if (m_handshake->state() == Socks5Handshake::State::Unreachable)
        fail(ConnectionFailure::Unreachable);
    else if (m_handshake->state() == Socks5Handshake::State::Failed)
        fail(ConnectionFailure::Proxy);
}

void RelayConnection::begin()
{
    m_passes = true;
    m_failures.forget(m_request->host(), m_request->port());
    m_awaitsAnswer = m_asksProxy;
    // A server may take as long as it likes, a proxy with a tunnel not.
    if (!m_asksProxy || !m_request->isTunnel())
        m_patience.stop();
    if (m_asksProxy)
        m_onward.write(m_request->forProxy(m_upstream->credential));
    else if (m_request->isTunnel())
        m_client.write("HTTP/1.1 200 Connection established\r\n\r\n");
    else
        m_onward.write(m_request->forServer());
    m_onward.write(m_received);
    m_received.clear();
    passAll();
}

void RelayConnection::fail(ConnectionFailure failure, const QByteArray &status)
{
    if (m_request)
        m_failures.note(m_request->host(), m_request->port(), failure);
    refuse(status);
}

void RelayConnection::refuse(const QByteArray &status)
{
    m_patience.stop();
    m_passes = false;
    m_onward.disconnect(this);
    m_onward.abort();
    // Whatever else it sends, it has its answer.
    disconnect(&m_client, &QTcpSocket::readyRead, this, nullptr);
    m_client.write("HTTP/1.1 " + status + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    m_client.disconnectFromHost();
}

/// False while nothing may be passed to the client yet.
bool RelayConnection::hasAnswer()
{
    // As far as the status (RFC 9112, section 4).
    constexpr qsizetype enough = sizeof("HTTP/1.1 407") - 1;
    const QByteArray start = m_onward.peek(enough);
    if (start.size() < enough && m_onward.state() != QAbstractSocket::UnconnectedState)
        return false;
    m_patience.stop();
    m_awaitsAnswer = false;
    // Whether the proxy knows the user is not for the client to settle.
    if (start.startsWith("HTTP/") && start.endsWith(" 407")) {
        fail(ConnectionFailure::Proxy);
        return false;
    }
    return true;
}

void RelayConnection::passAll()
{
    if (!m_passes)
        return;
    pass(m_client, m_onward);
    if (m_awaitsAnswer && !hasAnswer())
        return;
    pass(m_onward, m_client);
    if (m_onward.state() == QAbstractSocket::UnconnectedState && m_onward.bytesAvailable() == 0)
        m_client.disconnectFromHost();
}

void RelayConnection::pass(QTcpSocket &from, QTcpSocket &to)
{
    constexpr qint64 pieceSize = 64 * 1024;
    if (to.state() != QAbstractSocket::ConnectedState)
        return;
    while (from.bytesAvailable() > 0 && to.bytesToWrite() < bufferSize)
        to.write(from.read(pieceSize));
}

} // namespace lumaro
