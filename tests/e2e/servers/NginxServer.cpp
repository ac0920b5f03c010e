#include "tests/e2e/servers/NginxServer.h"

#include "tests/e2e/servers/Fetch.h"
#include "tests/e2e/servers/FreePort.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <qtestsupport_core.h>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

constexpr int startAttempts = 10;

// One process and no account change, so that it runs for any user and nothing is left behind.
const QString configuration = uR"(daemon off;
master_process off;
pid nginx.pid;
error_log error.log;
events { worker_connections 256; }
http {
    client_body_temp_path temporary/body;
    proxy_temp_path temporary/proxy;
    fastcgi_temp_path temporary/fastcgi;
    uwsgi_temp_path temporary/uwsgi;
    scgi_temp_path temporary/scgi;
    log_format line '$request_method $request_uri $status';
    access_log access.log line;
    log_format source '$remote_addr $request_uri';
    access_log sources.log source;
    limit_req_zone $uri zone=late:1m rate=30r/m;
    absolute_redirect off;
    default_type application/octet-stream;
    types {
        text/html html;
        text/plain txt;
        image/png png;
        image/svg+xml svg;
        application/vnd.apple.mpegurl m3u8;
        audio/x-mpegurl m3u;
        video/mp2t ts;
        video/mp4 mp4 m4s;
        audio/mp4 m4a;
        video/x-matroska mkv;
    }
    server {
        listen 127.0.0.1:%PORT%;
        root root;
        location = /server-folder { default_type text/plain; return 200 "%FOLDER%"; }
        location /videoembed/ { default_type text/html; }
        location = /videoembed/late { default_type text/html; limit_req zone=late burst=9; }
        location = /videoembed/elsewhere { return 302 http://localhost:%PORT%/outside.html; }
        location = /iframe_api { expires -1; }
        location = /redirect { return 302 $arg_to; }
        location = /redirect-loop/a { return 302 /redirect-loop/b; }
        location = /redirect-loop/b { return 302 /redirect-loop/a; }
        location ~ ^/slow/(?<rate>[0-9]+)/(?<target>.+)$ {
            limit_rate $rate;
            alias "%FOLDER%/root/$target";
        }
        location ~ ^/whole/(?<rate>[0-9]+)/(?<target>.+)$ {
            max_ranges 0;
            limit_rate $rate;
            alias "%FOLDER%/root/$target";
        }
%LOCATIONS%    }
}
)"_s;

QString codeLocations()
{
    QString locations;
    for (const int code : {400, 401, 403, 404, 410, 429, 500, 502, 503})
        locations += u"        location = /status/%1 { default_type text/html; return %1 "
                     "\"<!DOCTYPE html><title>%1</title><h1>Error %1</h1>\"; }\n"_s.arg(code);
    for (const int code : {301, 302, 303, 307, 308})
        locations += u"        location ~ ^/redirect/%1/(?<target>.+)$ { return %1 "
                     "/$target$is_args$args; }\n"_s.arg(code);
    return locations;
}

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool writeWhole(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

} // namespace

std::expected<std::unique_ptr<NginxServer>, QString> NginxServer::start()
{
    std::unique_ptr<NginxServer> server(new NginxServer);
    if (!server->m_folder.isValid() || !QDir().mkpath(server->documentRoot())
        || !QDir().mkpath(server->m_folder.filePath(u"temporary"_s)))
        return std::unexpected(server->m_folder.errorString());

    // Somebody else may take the free port before the server does.
    std::expected<void, QString> started;
    for (int attempt = 0; attempt < startAttempts; ++attempt) {
        started = server->startOnce();
        if (started)
            return server;
    }
    return std::unexpected(started.error());
}

std::expected<void, QString> NginxServer::startOnce()
{
    m_port = freePort();
    QString text = configuration;
    text.replace(u"%PORT%"_s, QString::number(m_port));
    text.replace(u"%FOLDER%"_s, m_folder.path());
    text.replace(u"%LOCATIONS%"_s, codeLocations());
    if (!writeWhole(m_folder.filePath(u"nginx.conf"_s), text.toUtf8()))
        return std::unexpected(u"The web server's configuration cannot be written."_s);

    const auto started = m_nginx.start(
        u"nginx"_s, {u"-p"_s, m_folder.path(), u"-c"_s, u"nginx.conf"_s, u"-e"_s, u"error.log"_s},
        {.workingFolder = m_folder.path(), .logFile = m_folder.filePath(u"output.log"_s)});
    if (!started)
        return started;
    const bool settled =
        QTest::qWaitFor([this] { return answers() || !m_nginx.isRunning(); }, 5000);
    if (settled && m_nginx.isRunning())
        return {};
    m_nginx.stop();
    return std::unexpected(QString(u"nginx did not start: "_s + errorLog()));
}

bool NginxServer::answers()
{
    // Another server could be listening there instead.
    const Fetched fetched = fetch(url(u"/server-folder"_s), 1s);
    return fetched.status == 200 && fetched.body == m_folder.path().toUtf8();
}

QString NginxServer::errorLog() const
{
    return readText(m_folder.filePath(u"error.log"_s));
}

QUrl NginxServer::url(const QString &pathAndQuery) const
{
    return QUrl(u"http://127.0.0.1:%1"_s.arg(m_port) + pathAndQuery);
}

bool NginxServer::writeFile(const QString &path, const QByteArray &content) const
{
    const QString file = documentRoot() + u'/' + path;
    return QDir().mkpath(QFileInfo(file).path()) && writeWhole(file, content);
}

bool NginxServer::publish(const QString &source, const QString &path) const
{
    const QString link = documentRoot() + u'/' + path;
    return QFileInfo::exists(source) && QDir().mkpath(QFileInfo(link).path())
        && QFile::link(QFileInfo(source).absoluteFilePath(), link);
}

QStringList NginxServer::accessLog() const
{
    QFile file(m_folder.filePath(u"access.log"_s));
    if (!file.open(QIODevice::ReadOnly) || !file.seek(m_accessLogEnd))
        return m_accessLog;
    for (;;) {
        const QByteArray line = file.readLine();
        if (!line.endsWith('\n'))
            return m_accessLog;
        m_accessLogEnd += line.size();
        if (!line.startsWith("GET /server-folder "))
            m_accessLog.append(QString::fromUtf8(line).chopped(1));
    }
}

QStringList NginxServer::sources() const
{
    QStringList lines =
        readText(m_folder.filePath(u"sources.log"_s)).split(u'\n', Qt::SkipEmptyParts);
    lines.removeIf([](const QString &line) { return line.endsWith(u" /server-folder"); });
    return lines;
}

} // namespace lumaro
