#include "platform/relay/Socks5Handshake.h"

#include <QHostAddress>
#include <QUrl>
#include <QtEndian>

namespace lumaro {

namespace {

constexpr char version = 5;
constexpr char authenticationVersion = 1;
constexpr char withoutAuthentication = 0;
constexpr char withPassword = 2;
constexpr char success = 0;
constexpr qsizetype longestText = 255;

enum AddressType : char { IPv4 = 1, DomainName = 3, IPv6 = 4 };

/// Network unreachable, host unreachable, connection refused, TTL expired.
bool isAboutTheHost(char reply)
{
    return reply >= 3 && reply <= 6;
}

QByteArray bigEndian(auto value)
{
    QByteArray number(sizeof value, Qt::Uninitialized);
    qToBigEndian(value, number.data());
    return number;
}

QByteArray bytes(std::initializer_list<char> list)
{
    return {list.begin(), qsizetype(list.size())};
}

/// With its length in front; empty for what is too long.
QByteArray counted(const QByteArray &text)
{
    return text.size() > longestText ? QByteArray() : char(text.size()) + text;
}

/// With its type in front; empty for what cannot be said.
QByteArray encodedAddress(const QString &host)
{
    const QHostAddress address(host);
    if (address.protocol() == QAbstractSocket::IPv4Protocol)
        return char(IPv4) + bigEndian(address.toIPv4Address());
    if (address.protocol() == QAbstractSocket::IPv6Protocol) {
        const Q_IPV6ADDR number = address.toIPv6Address();
        return char(IPv6) + QByteArray(reinterpret_cast<const char *>(number.c), sizeof number.c);
    }
    const QByteArray name = counted(QUrl::toAce(host));
    return name.size() > 1 ? char(DomainName) + name : QByteArray();
}

} // namespace

Socks5Handshake::Socks5Handshake(const QString &host, quint16 port,
                                 std::optional<ProxyConfiguration::Credential> credential)
    : m_host(host)
    , m_port(port)
    , m_credential(std::move(credential))
{
    const QByteArray methods = m_credential ? bytes({withoutAuthentication, withPassword})
                                            : bytes({withoutAuthentication});
    m_output = version + counted(methods);
}

qsizetype Socks5Handshake::read(QByteArrayView answer)
{
    qsizetype used = 0;
    while (m_state == State::Continues) {
        const QByteArrayView rest = answer.sliced(used);
        const qsizetype step = m_step == Step::Method ? readMethod(rest)
            : m_step == Step::Authentication          ? readAuthentication(rest)
                                                      : readReply(rest);
        if (step == 0)
            break;
        used += step;
    }
    return used;
}

qsizetype Socks5Handshake::fail(State state)
{
    m_state = state;
    return 0;
}

qsizetype Socks5Handshake::readMethod(QByteArrayView answer)
{
    constexpr qsizetype size = 2;
    if (answer.size() < size)
        return 0;
    if (answer[0] != version)
        return fail();
    if (answer[1] == withoutAuthentication)
        request();
    else if (answer[1] == withPassword && m_credential)
        authenticate();
    else
        return fail();
    return size;
}

void Socks5Handshake::authenticate()
{
    const QByteArray username = counted(m_credential->username.toUtf8());
    const QByteArray password = counted(m_credential->password.toUtf8());
    if (username.isEmpty() || password.isEmpty()) {
        fail();
        return;
    }
    m_output += authenticationVersion + username + password;
    m_step = Step::Authentication;
}

qsizetype Socks5Handshake::readAuthentication(QByteArrayView answer)
{
    constexpr qsizetype size = 2;
    if (answer.size() < size)
        return 0;
    if (answer[1] != success)
        return fail();
    request();
    return size;
}

void Socks5Handshake::request()
{
    constexpr char connect = 1;
    constexpr char reserved = 0;
    const QByteArray address = encodedAddress(m_host);
    if (address.isEmpty()) {
        fail();
        return;
    }
    m_output += bytes({version, connect, reserved}) + address + bigEndian(m_port);
    m_step = Step::Reply;
}

qsizetype Socks5Handshake::readReply(QByteArrayView answer)
{
    constexpr qsizetype fixedSize = 4;
    constexpr qsizetype portSize = 2;
    if (answer.size() >= 2 && answer[0] == version && isAboutTheHost(answer[1]))
        return fail(State::Unreachable);
    if (answer.size() >= 2 && (answer[0] != version || answer[1] != success))
        return fail();
    // The address's first byte may be its length.
    if (answer.size() <= fixedSize)
        return 0;
    qsizetype addressSize = 0;
    switch (answer[3]) {
    case IPv4:
        addressSize = 4;
        break;
    case IPv6:
        addressSize = 16;
        break;
    case DomainName:
        addressSize = 1 + uchar(answer[fixedSize]);
        break;
    default:
        return fail();
    }
    const qsizetype size = fixedSize + addressSize + portSize;
    if (answer.size() < size)
        return 0;
    m_state = State::Done;
    return size;
}

} // namespace lumaro
