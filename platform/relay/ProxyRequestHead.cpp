#include "platform/relay/ProxyRequestHead.h"

#include <QUrl>

#include <algorithm>
#include <array>

namespace lumaro {

namespace {

constexpr QByteArrayView lineEnd = "\r\n";
/// What follows on the same connection might be for another server.
constexpr char closing[] = "Connection: close";

/// Meant for whoever receives it, not for the server (RFC 9110, section 7.6.1).
bool isHopByHop(const QByteArray &header)
{
    static constexpr std::array<QByteArrayView, 4> names = {
        "connection", "keep-alive", "proxy-connection", "proxy-authorization"};
    const QByteArray name = header.left(header.indexOf(':')).trimmed().toLower();
    return std::ranges::find(names, QByteArrayView(name)) != names.end();
}

bool hasControlCharacter(QByteArrayView line)
{
    return std::ranges::any_of(line, [](char c) { return uchar(c) < 0x20 && c != '\t'; });
}

QByteArray basicAuthentication(const ProxyConfiguration::Credential &credential)
{
    return "Basic " + (credential.username + u':' + credential.password).toUtf8().toBase64();
}

} // namespace

std::optional<ProxyRequestHead> ProxyRequestHead::read(QByteArrayView head)
{
    if (!head.endsWith("\r\n\r\n"))
        return std::nullopt;
    QByteArrayList lines;
    for (QByteArrayView rest = head.chopped(2); !rest.isEmpty();) {
        const qsizetype end = rest.indexOf(lineEnd);
        lines.append(rest.first(end).toByteArray());
        rest = rest.sliced(end + lineEnd.size());
    }
    if (std::ranges::any_of(lines, hasControlCharacter))
        return std::nullopt;

    const QByteArrayList words = lines.takeFirst().split(' ');
    if (words.size() != 3 || words[0].isEmpty() || !words[2].startsWith("HTTP/1."))
        return std::nullopt;
    ProxyRequestHead request;
    request.m_method = words[0];
    request.m_target = words[1];
    request.m_version = words[2];

    const QUrl url = QUrl::fromEncoded(
        request.isTunnel() ? "http://" + request.m_target : request.m_target, QUrl::StrictMode);
    constexpr int httpPort = 80;
    const int port = url.port(request.isTunnel() ? 0 : httpPort);
    const bool isOnlyAuthority =
        url.path().isEmpty() && !url.hasQuery() && !url.hasFragment() && url.userInfo().isEmpty();
    if (!url.isValid() || url.scheme() != u"http" || url.host().isEmpty() || port < 1
        || (request.isTunnel() && !isOnlyAuthority))
        return std::nullopt;
    request.m_host = url.host();
    request.m_port = quint16(port);
    const QByteArray path = url.path(QUrl::FullyEncoded).toUtf8();
    request.m_pathAndQuery = path.isEmpty() ? QByteArray("/") : path;
    if (url.hasQuery())
        request.m_pathAndQuery += '?' + url.query(QUrl::FullyEncoded).toUtf8();

    std::ranges::remove_copy_if(lines, std::back_inserter(request.m_headers), isHopByHop);
    return request;
}

QByteArray ProxyRequestHead::written(const QByteArray &target, const QByteArrayList &more) const
{
    const QByteArrayList lines =
        QByteArrayList{m_method + ' ' + target + ' ' + m_version} + m_headers + more;
    return lines.join(lineEnd.toByteArray()) + "\r\n\r\n";
}

QByteArray ProxyRequestHead::forServer() const
{
    return written(m_pathAndQuery, {closing});
}

QByteArray
ProxyRequestHead::forProxy(const std::optional<ProxyConfiguration::Credential> &credential) const
{
    QByteArrayList more;
    if (!isTunnel())
        more += closing;
    if (credential)
        more += "Proxy-Authorization: " + basicAuthentication(*credential);
    return written(m_target, more);
}

} // namespace lumaro
