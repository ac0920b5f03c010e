#include "platform/qt/QtHttpClient.h"

#include <QNetworkReply>
#include <QNetworkRequest>

#include <memory>

namespace lumaro {

namespace {

constexpr int maximumRedirects = 10;

/// How much a reply may hold back unread, so that a fast server cannot outrun the bound.
constexpr qint64 readBufferSize = 4 * 1024 * 1024;

bool isHttp(const QUrl &url)
{
    return url.scheme() == u"http" || url.scheme() == u"https";
}

HttpError::Kind errorKind(QNetworkReply::NetworkError error)
{
    switch (error) {
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::SslHandshakeFailedError:
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyNotFoundError:
        return HttpError::Kind::Unreachable;
    // The transfer timeout aborts the reply; the caller's own stop never gets here.
    case QNetworkReply::OperationCanceledError:
    case QNetworkReply::TimeoutError:
    case QNetworkReply::ProxyTimeoutError:
        return HttpError::Kind::TimedOut;
    case QNetworkReply::TooManyRedirectsError:
        return HttpError::Kind::TooManyRedirects;
    case QNetworkReply::InsecureRedirectError:
    case QNetworkReply::ProtocolUnknownError:
        return HttpError::Kind::UnsupportedAddress;
    default:
        return HttpError::Kind::Broken;
    }
}

} // namespace

QtHttpClient::QtHttpClient(std::chrono::milliseconds patience)
    : m_patience(patience)
{
    m_network.setAutoDeleteReplies(false);
    m_network.setTransferTimeout(int(m_patience.count()));
}

Task<std::expected<HttpResponse, HttpError>> QtHttpClient::get(HttpRequest request,
                                                               std::stop_token stop)
{
    using Outcome = std::expected<HttpResponse, HttpError>;
    const auto failure = [](HttpError::Kind kind) {
        return Outcome(std::unexpected(HttpError{kind}));
    };
    if (stop.stop_requested())
        co_return failure(HttpError::Kind::Cancelled);
    if (!isHttp(request.url))
        co_return failure(HttpError::Kind::UnsupportedAddress);

    QNetworkRequest networkRequest(request.url);
    networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                                QNetworkRequest::NoLessSafeRedirectPolicy);
    networkRequest.setMaximumRedirectsAllowed(maximumRedirects);
    const auto deleteLater = [](QNetworkReply *reply) { reply->deleteLater(); };
    const std::unique_ptr<QNetworkReply, decltype(deleteLater)> reply(m_network.get(networkRequest),
                                                                      deleteLater);
    reply->setReadBufferSize(readBufferSize);

    QByteArray body;
    const OneShot<std::optional<HttpError>> ended;
    const auto readMore = [&body, &request, ended, source = reply.get()] {
        body += source->readAll();
        if (body.size() > request.maximumBodySize)
            ended.complete(HttpError{HttpError::Kind::TooLarge});
    };
    QObject::connect(reply.get(), &QNetworkReply::readyRead, reply.get(), readMore);
    QObject::connect(reply.get(), &QNetworkReply::finished, reply.get(), [ended, readMore] {
        if (!ended.isCompleted())
            readMore();
        ended.complete(std::nullopt);
    });
    const std::stop_callback whenStopped(
        stop, [ended] { ended.complete(HttpError{HttpError::Kind::Cancelled}); });

    const std::optional<HttpError> endedEarly = co_await ended;
    reply->disconnect();
    if (endedEarly) {
        reply->abort();
        co_return std::unexpected(*endedEarly);
    }
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    // A status of 400 and above is an error to Qt, but an answer to the caller.
    const bool answered = reply->error() == QNetworkReply::NoError || status >= 400;
    if (!answered)
        co_return failure(errorKind(reply->error()));
    co_return HttpResponse{status, reply->url(), std::move(body)};
}

} // namespace lumaro
