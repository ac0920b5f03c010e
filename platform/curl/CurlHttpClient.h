#pragma once

#include "platform/HttpClient.h"
#include "platform/ProxyConfiguration.h"

#include <QObject>

#include <atomic>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace lumaro {

class CurlThread;

/// HTTP over libcurl, which keeps connections open for requests to come. One thread makes all
/// requests that collect their bodies; each that streams has a thread to itself while it runs, for
/// its sink may wait for a disk.
class CurlHttpClient final : public HttpClient
{
public:
    /// `userAgent` is sent with the requests that name none.
    explicit CurlHttpClient(QByteArray userAgent);
    /// Ends what still runs as cancelled. A thread whose sink does not return in a moment is left
    /// behind.
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

    struct Waiting
    {
        OneShot<Result> outcome;
        std::shared_ptr<CurlThread> thread;
        /// Its sink is not called any more.
        std::shared_ptr<std::atomic<bool>> isOver;
    };
    struct StreamThread
    {
        std::shared_ptr<CurlThread> thread;
        /// To whom it has a connection, as a rule.
        QString lastServer;
    };

    std::shared_ptr<CurlThread> beginThread();
    /// For the request, until it has ended in it.
    std::shared_ptr<CurlThread> takeStreamThread(quint64 id, const QUrl &url);
    /// Without a sink the body is collected.
    Task<Result> run(HttpRequest request, HttpBodySink sink, std::stop_token stop);
    void stop(quint64 id);
    void finish(quint64 id, Result result);
    void threadFinished(quint64 id, Result result);

    QByteArray m_userAgent;
    std::optional<ProxyConfiguration> m_proxy;
    quint64 m_lastId = 0;
    std::unordered_map<quint64, Waiting> m_waiting;
    /// What the threads still send is dropped when this is gone.
    std::unique_ptr<QObject> m_mainThread = std::make_unique<QObject>();
    std::shared_ptr<CurlThread> m_collecting;
    /// By their requests, some of which nobody waits for any more.
    std::unordered_map<quint64, StreamThread> m_streaming;
    /// The one used last comes last.
    std::vector<StreamThread> m_idle;
};

} // namespace lumaro
