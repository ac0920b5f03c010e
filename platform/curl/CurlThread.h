#pragma once

#include "platform/HttpClient.h"
#include "platform/ProxyConfiguration.h"

#include <curl/curl.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>
#include <vector>

namespace lumaro {

class CurlTransfer;

/// The thread in which libcurl makes all transfers of one client side by side.
class CurlThread
{
public:
    /// Told once how each transfer ended, on this thread, after its sink's last call.
    using Finished = std::function<void(quint64 id, std::expected<HttpResponse, HttpError>)>;

    explicit CurlThread(Finished finished);
    /// Waits for the thread; what still runs is dropped without a word.
    ~CurlThread();
    CurlThread(const CurlThread &) = delete;
    CurlThread &operator=(const CurlThread &) = delete;

    /// From any thread. Without a sink the body becomes part of the response.
    void start(quint64 id, HttpRequest request, HttpBodySink sink,
               std::optional<ProxyConfiguration> proxy);
    /// From any thread; does nothing when the transfer has ended.
    void cancel(quint64 id);

private:
    using Command = std::function<void()>;

    void post(Command command);
    void run();
    void obeyCommands();
    void finishEnded();
    void finishSilent();
    /// Follows the redirect that the transfer ended with, or finishes it.
    void proceed(quint64 id, CURLcode code);
    void finish(quint64 id, std::expected<HttpResponse, HttpError> result);
    std::chrono::milliseconds untilNextDeadline() const;

    Finished m_finished;
    std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> m_multi;
    std::unordered_map<quint64, std::unique_ptr<CurlTransfer>> m_transfers;

    std::mutex m_mutex;
    std::vector<Command> m_commands;
    std::atomic<bool> m_quit = false;
    std::thread m_thread;
};

} // namespace lumaro
