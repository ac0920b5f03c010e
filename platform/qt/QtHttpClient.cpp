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

QtHttpClient::QtHttpClient()
{
    m_network.setAutoDeleteReplies(false);
}

Task<std::expected<HttpResponse, HttpError>> QtHttpClient::get(HttpRequest request,
                                                               std::stop_token stop)
{
    const auto body = std::make_shared<QByteArray>();
    std::function<bool(int, QByteArrayView)> take = [body](int, QByteArrayView bytes) {
        body->append(bytes);
        return true;
    };
    Task<std::expected<HttpResponse, HttpError>> fetching =
        fetch(std::move(request), std::move(take), std::move(stop));
    std::expected<HttpResponse, HttpError> response = co_await fetching;
    if (response)
        response->body = std::move(*body);
    co_return response;
}

Task<std::expected<HttpResponse, HttpError>>
QtHttpClient::stream(HttpRequest request, HttpBodySink sink, std::stop_token stop)
{
    return fetch(
        std::move(request),
        [sink = std::move(sink)](int status, QByteArrayView bytes) {
            return status / 100 != 2 || sink(bytes);
        },
        std::move(stop));
}

Task<std::expected<HttpResponse, HttpError>>
QtHttpClient::fetch(HttpRequest request, std::function<bool(int, QByteArrayView)> take,
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
    networkRequest.setTransferTimeout(int(request.patience.count()));
    if (!request.userAgent.isEmpty())
        networkRequest.setRawHeader(QByteArrayLiteral("User-Agent"), request.userAgent);
    const auto deleteLater = [](QNetworkReply *reply) { reply->deleteLater(); };
    const std::unique_ptr<QNetworkReply, decltype(deleteLater)> reply(m_network.get(networkRequest),
                                                                      deleteLater);
    reply->setReadBufferSize(readBufferSize);

    qint64 received = 0;
    const OneShot<std::optional<HttpError>> ended;
    const auto readMore = [&received, &request, &take, ended, source = reply.get()] {
        const QByteArray bytes = source->readAll();
        received += bytes.size();
        const int status = source->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (received > request.maximumBodySize)
            ended.complete(HttpError{HttpError::Kind::TooLarge});
        else if (!bytes.isEmpty() && !take(status, bytes))
            ended.complete(HttpError{HttpError::Kind::NotTaken});
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
    co_return HttpResponse{status, reply->url(), {}};
}

} // namespace lumaro
