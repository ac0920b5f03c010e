#pragma once

#include "platform/HttpClient.h"
#include "platform/ProxyConfiguration.h"

#include <curl/curl.h>

#include <memory>
#include <optional>

namespace lumaro {

/// One request on its way through redirects to its answer. Belongs to the thread that makes it
/// happen.
class CurlTransfer
{
public:
    using Clock = std::chrono::steady_clock;

    /// Without a sink the body becomes part of the response.
    CurlTransfer(quint64 id, HttpRequest request, HttpBodySink sink,
                 std::optional<ProxyConfiguration> proxy);
    CurlTransfer(const CurlTransfer &) = delete;
    CurlTransfer &operator=(const CurlTransfer &) = delete;
    ~CurlTransfer() = default;

    CURL *easy() const { return m_easy.get(); }
    static quint64 idOf(CURL *easy);

    /// Fails for an address that is not http or https.
    std::expected<void, HttpError> prepare();

    /// When the server has been silent for too long, or the rest of a redirect.
    Clock::time_point deadline() const;

    /// The answer points somewhere else (RFC 9110, section 15.4).
    bool isRedirect() const;
    /// Prepares the request to where the answer points.
    std::expected<void, HttpError> follow();

    /// What came of it, when libcurl has ended it with `code`.
    std::expected<HttpResponse, HttpError> result(CURLcode code);

private:
    static size_t onBody(char *bytes, size_t size, size_t count, void *transfer);
    static size_t onHeader(char *bytes, size_t size, size_t count, void *transfer);
    void setProxy();
    bool take(QByteArrayView bytes);
    /// The answer's body is not what the sink is for; it may have no end.
    bool isUnwanted() const;
    int status() const;
    std::optional<QByteArray> location() const;

    quint64 m_id = 0;
    HttpRequest m_request;
    HttpBodySink m_sink;
    std::optional<ProxyConfiguration> m_proxy;
    std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> m_easy;
    Clock::time_point m_lastSign;
    QByteArray m_body;
    qint64 m_received = 0;
    int m_redirects = 0;
    /// Why the body was refused here.
    std::optional<HttpError::Kind> m_refusal;
};

} // namespace lumaro
