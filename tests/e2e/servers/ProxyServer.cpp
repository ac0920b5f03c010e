#include "tests/e2e/servers/ProxyServer.h"

#include "tests/e2e/servers/FreePort.h"
#include "tests/e2e/servers/NginxServer.h"

#include <QFile>
#include <QNetworkProxy>
#include <QTcpSocket>
#include <qtestsupport_core.h>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

bool listens(quint16 port)
{
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    socket.connectToHost(QHostAddress::LocalHost, port);
    return socket.waitForConnected(500);
}

bool writeText(const QString &path, const QString &text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0;
}

} // namespace

std::expected<std::unique_ptr<ProxyServer>, QString>
ProxyServer::start(Protocol protocol, const std::optional<Credential> &credential)
{
    std::unique_ptr<ProxyServer> server(new ProxyServer);
    server->m_configuration = {protocol, u"127.0.0.1"_s, freePort(), credential};
    if (!writeText(server->m_folder.filePath(u"hosts"_s),
                   u"127.0.0.1 localhost "_s + siteName + u'\n'))
        return std::unexpected(u"The proxy's folder cannot be written."_s);
    QString settings = u"Port %1\nListen 127.0.0.1\nBind %2\nAllow 127.0.0.1\nTimeout 60\n"_s.arg(
        QString::number(server->m_configuration.port), QString::fromUtf16(ownAddress));
    if (credential)
        settings += u"BasicAuth "_s + credential->username + u' ' + credential->password + u'\n';
    if (!writeText(server->m_folder.filePath(u"tinyproxy.conf"_s), settings))
        return std::unexpected(u"The proxy's folder cannot be written."_s);

    // Nobody else sees these host names.
    const QStringList arguments =
        QStringList{u"--mount"_s, u"sh"_s, u"-c"_s,
                    u"mount --bind hosts /etc/hosts && exec \"$@\""_s, u"sh"_s}
        + server->command();
    const auto started =
        server->m_process.start(u"unshare"_s, arguments,
                                {.workingFolder = server->m_folder.path(),
                                 .logFile = server->m_folder.filePath(u"output.log"_s)});
    if (!started)
        return std::unexpected(started.error());
    const bool settled = QTest::qWaitFor(
        [&] { return listens(server->m_configuration.port) || !server->m_process.isRunning(); },
        5000);
    if (settled && server->m_process.isRunning())
        return server;
    return std::unexpected(u"The proxy did not start."_s);
}

QUrl ProxyServer::siteUrl(const NginxServer &site, const QString &path)
{
    QUrl url = site.url(path);
    url.setHost(QString::fromUtf16(siteName));
    return url;
}

QStringList ProxyServer::command() const
{
    if (m_configuration.protocol == Protocol::HttpConnect)
        return {u"tinyproxy"_s, u"-d"_s, u"-c"_s, u"tinyproxy.conf"_s};
    QStringList command{u"microsocks"_s,
                        u"-i"_s,
                        u"127.0.0.1"_s,
                        u"-p"_s,
                        QString::number(m_configuration.port),
                        u"-b"_s,
                        QString::fromUtf16(ownAddress)};
    if (const auto &credential = m_configuration.credential)
        command += {u"-u"_s, credential->username, u"-P"_s, credential->password};
    return command;
}

} // namespace lumaro
