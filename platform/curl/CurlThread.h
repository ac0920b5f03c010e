#pragma once

#include "platform/HttpClient.h"
#include "platform/ProxyConfiguration.h"

#include <curl/curl.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <semaphore>
#include <thread>
#include <unordered_map>
#include <vector>

namespace lumaro {

class CurlTransfer;

/// A thread in which libcurl makes transfers side by side. A sink that does not return holds all of
/// them up.
class CurlThread
{
public:
    using Clock = std::chrono::steady_clock;
    /// Told once how each transfer ended, on this thread, after its sink's last call.
    using Finished = std::function<void(quint64 id, std::expected<HttpResponse, HttpError>)>;

    /// Whoever makes it ends it. The thread itself holds it as well.
    static std::shared_ptr<CurlThread> begin(Finished finished);
    ~CurlThread() = default;
    CurlThread(const CurlThread &) = delete;
    CurlThread &operator=(const CurlThread &) = delete;

    /// Drops what still runs without a word. From any thread.
    void quit();
    /// Waits for the thread after quit(). One that is held up until then is left to itself, and
    /// tells nobody anything any more.
    void end(Clock::time_point deadline);

    /// From any thread. Without a sink the body becomes part of the response.
    void start(quint64 id, HttpRequest request, HttpBodySink sink,
               std::optional<ProxyConfiguration> proxy);
    /// From any thread; does nothing when the transfer has ended.
    void cancel(quint64 id);

private:
    using Command = std::function<void()>;

    explicit CurlThread(Finished finished);

    void post(Command command);
    void run();
    void obeyCommands();
    void finishEnded();
    void finishSilent();
    /// Follows the redirect that the transfer ended with, or finishes it.
    void proceed(quint64 id, CURLcode code);
    void finish(quint64 id, std::expected<HttpResponse, HttpError> result);
    void report(quint64 id, std::expected<HttpResponse, HttpError> result);
    std::chrono::milliseconds untilNextDeadline() const;

    std::mutex m_finishedMutex;
    /// Empty when nobody listens any more.
    Finished m_finished;
    std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)> m_multi;
    std::unordered_map<quint64, std::unique_ptr<CurlTransfer>> m_transfers;

    std::mutex m_mutex;
    std::vector<Command> m_commands;
    std::atomic<bool> m_quit = false;
    std::binary_semaphore m_ended{0};
    std::thread m_thread;
};

} // namespace lumaro
