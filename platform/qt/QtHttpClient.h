#pragma once

#include "platform/HttpClient.h"

#include <QNetworkAccessManager>

#include <functional>

namespace lumaro {

/// HTTP over QNetworkAccessManager.
class QtHttpClient final : public HttpClient
{
public:
    QtHttpClient();

    Task<std::expected<HttpResponse, HttpError>> get(HttpRequest request,
                                                     std::stop_token stop) override;
    /// Calls `sink` on the main thread.
    Task<std::expected<HttpResponse, HttpError>> stream(HttpRequest request, HttpBodySink sink,
                                                        std::stop_token stop) override;

private:
    Task<std::expected<HttpResponse, HttpError>>
    fetch(HttpRequest request, std::function<bool(int status, QByteArrayView)> take,
          std::stop_token stop);

    QNetworkAccessManager m_network;
};

} // namespace lumaro
