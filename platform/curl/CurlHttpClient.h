#pragma once

#include "platform/HttpClient.h"
#include "platform/ProxyConfiguration.h"

#include <QObject>

#include <memory>
#include <optional>
#include <unordered_map>

namespace lumaro {

class CurlThread;

/// HTTP over libcurl, which runs in a thread of its own and keeps connections open for requests
/// to come. Sinks are called on that thread.
class CurlHttpClient final : public HttpClient
{
public:
    /// `userAgent` is sent with the requests that name none.
    explicit CurlHttpClient(QByteArray userAgent);
    /// Ends what still runs as cancelled.
    ~CurlHttpClient() override;

    /// The way for requests that begin from now on, but those to this machine; with none, the one
    /// that the environment names (curl(1), "Environment").
    void setProxy(std::optional<ProxyConfiguration> proxy) { m_proxy = std::move(proxy); }

    Task<std::expected<HttpResponse, HttpError>> get(HttpRequest request,
                                                     std::stop_token stop) override;
    Task<std::expected<HttpResponse, HttpError>> stream(HttpRequest request, HttpBodySink sink,
                                                        std::stop_token stop) override;

private:
    using Result = std::expected<HttpResponse, HttpError>;

    /// Without a sink the body is collected.
    Task<Result> run(HttpRequest request, HttpBodySink sink, std::stop_token stop);
    void finish(quint64 id, Result result);

    QByteArray m_userAgent;
    std::optional<ProxyConfiguration> m_proxy;
    quint64 m_lastId = 0;
    std::unordered_map<quint64, OneShot<Result>> m_waiting;
    /// What the thread still sends is dropped when this is gone.
    std::unique_ptr<QObject> m_mainThread = std::make_unique<QObject>();
    std::unique_ptr<CurlThread> m_thread;
};

} // namespace lumaro
