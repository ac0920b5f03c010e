#pragma once

#include "platform/Async.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>
#include <expected>
#include <functional>
#include <limits>

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
        NotTaken, ///< the caller's own HttpBodySink refused the body
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
    qint64 maximumBodySize = std::numeric_limits<qint64>::max();
    /// How long the server may send nothing before the request fails.
    std::chrono::milliseconds patience = std::chrono::seconds(30);
    /// The User-Agent header (RFC 9110, section 10.1.5); empty for the client's own.
    QByteArray userAgent = {};
};

struct HttpResponse
{
    int status = 0;
    /// Where the body came from, after redirects.
    QUrl url;
    QByteArray body;
};

/// Takes a body piece by piece as it arrives, in order. It is called on a thread of the client's
/// own and may take its time, as for a disk: only its own request waits. No call follows the end of
/// its request, but when that was stopped, one may still be under way. False refuses the rest.
using HttpBodySink = std::function<bool(QByteArrayView bytes)>;

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

    /// Fetches the body into `sink` when the status is a success (200 to 299); the response then
    /// holds no body. A request that fails may have given a part of it.
    virtual Task<std::expected<HttpResponse, HttpError>>
    stream(HttpRequest request, HttpBodySink sink, std::stop_token stop) = 0;
};

} // namespace lumaro
