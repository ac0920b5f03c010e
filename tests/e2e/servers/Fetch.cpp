#include "tests/e2e/servers/Fetch.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkRequest>
#include <QTimer>

#include <memory>

namespace lumaro {

Fetched fetch(const QUrl &url, std::chrono::milliseconds timeout)
{
    QNetworkAccessManager network;
    network.setProxy(QNetworkProxy::NoProxy);
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    request.setRawHeader("Accept-Encoding", "identity");

    const std::unique_ptr<QNetworkReply> reply(network.get(request));
    Fetched fetched;
    QEventLoop loop;
    QObject::connect(reply.get(), &QIODevice::readyRead, reply.get(),
                     [&] { fetched.body += reply->readAll(); });
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(timeout, reply.get(), &QNetworkReply::abort);
    if (!reply->isFinished())
        loop.exec();

    fetched.error = reply->error();
    fetched.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->isOpen())
        fetched.body += reply->readAll();
    return fetched;
}

} // namespace lumaro
