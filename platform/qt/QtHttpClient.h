#pragma once

#include "platform/HttpClient.h"

#include <QNetworkAccessManager>

#include <chrono>

namespace lumaro {

/// HTTP over QNetworkAccessManager.
class QtHttpClient final : public HttpClient
{
public:
    /// `patience` is how long a server may send nothing before the request fails.
    explicit QtHttpClient(std::chrono::milliseconds patience = std::chrono::seconds(30));

    Task<std::expected<HttpResponse, HttpError>> get(HttpRequest request,
                                                     std::stop_token stop) override;

private:
    std::chrono::milliseconds m_patience;
    QNetworkAccessManager m_network;
};

} // namespace lumaro
