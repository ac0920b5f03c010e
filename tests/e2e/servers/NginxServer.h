#pragma once

#include "tests/e2e/servers/ChildProcess.h"

#include <QTemporaryDir>
#include <QUrl>

#include <memory>

namespace lumaro {

/// A real web server of the test's own on the loopback interface, with everything it writes in a
/// temporary folder. Serves documentRoot() (byte ranges included) and answers besides:
///
/// /status/N                  status N with an HTML body: 400 401 403 404 410 429 500 502 503
/// /redirect/N/PATH           status N (301 302 303 307 308) with the relative location /PATH
/// /redirect?to=LOCATION      302 to LOCATION as it stands, of any scheme; not percent-decoded
/// /redirect-loop/a, …/b      302 to each other
/// /slow/RATE/PATH            the file PATH at RATE bytes a second
/// /whole/RATE/PATH           the same without byte ranges; RATE 0 for no limit
/// /videoembed/NAME           the file videoembed/NAME as HTML
/// /videoembed/late           the same, but two seconds after it was asked for before
/// /videoembed/elsewhere      302 to outside.html under another name of this server
/// /iframe_api                the file iframe_api, not to be kept in caches
///
/// Needs an application object.
class NginxServer
{
public:
    /// Returns when the server answers. The error is an English sentence.
    static std::expected<std::unique_ptr<NginxServer>, QString> start();

    quint16 port() const { return m_port; }
    QString documentRoot() const { return m_folder.filePath(QStringLiteral("root")); }
    /// `pathAndQuery` begins with a slash and is percent-encoded where it must be.
    QUrl url(const QString &pathAndQuery) const;

    /// Makes `content` the file `path` below the document root, with the folders it needs.
    bool writeFile(const QString &path, const QByteArray &content) const;
    /// Makes the file or folder `source` appear as `path` below the document root.
    bool publish(const QString &source, const QString &path) const;

    /// One line for each answer given completely or broken off: "GET /movie.mp4?x 206". It appears
    /// when the answer has ended, so wait for it.
    QStringList accessLog() const;
    /// The same as where each request came from: "127.0.0.1 /movie.mp4?x".
    QStringList sources() const;

private:
    NginxServer() = default;

    std::expected<void, QString> startOnce();
    bool answers();
    QString errorLog() const;

    QTemporaryDir m_folder;
    /// What has been read of the access log, which grows and is looked at often.
    mutable QStringList m_accessLog;
    mutable qint64 m_accessLogEnd = 0;
    ChildProcess m_nginx;
    quint16 m_port = 0;
};

} // namespace lumaro
