#pragma once

#include "platform/Async.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <expected>

namespace lumaro {

/// Why a request brought no response.
struct HttpError
{
    enum class Kind {
        Cancelled, ///< the caller's stop token was stopped
        TooLarge, ///< the body exceeded the request's bound
        TimedOut, ///< the server sent nothing for the request's patience
        Unreachable, ///< no connection: unknown host, refused, no network, TLS failure
        TooManyRedirects,
        Broken, ///< the connection ended in the middle, or the answer was not HTTP
        UnsupportedAddress, ///< neither http nor https, or a redirect to such an address
    };

    Kind kind = Kind::Broken;

    /// An English sentence for the user.
    QString description() const;

    bool operator==(const HttpError &) const = default;
};

struct HttpRequest
{
    QUrl url;
    /// The longest body that is accepted, in bytes after decompression.
    qint64 maximumBodySize = 0;
};

struct HttpResponse
{
    int status = 0;
    /// Where the body came from, after redirects.
    QUrl url;
    QByteArray body;
};

/// Fetches http and https addresses. Follows redirects, never from https to http nor to any other
/// scheme. Main thread; nothing blocks.
class HttpClient
{
public:
    HttpClient() = default;
    HttpClient(const HttpClient &) = delete;
    HttpClient &operator=(const HttpClient &) = delete;
    virtual ~HttpClient() = default;

    /// Fetches the whole body, whatever the status.
    virtual Task<std::expected<HttpResponse, HttpError>> get(HttpRequest request,
                                                             std::stop_token stop) = 0;
};

} // namespace lumaro
