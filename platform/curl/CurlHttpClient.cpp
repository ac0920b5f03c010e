#include "platform/curl/CurlHttpClient.h"

#include "platform/curl/CurlThread.h"

#include <algorithm>
#include <utility>

namespace lumaro {

using namespace std::chrono_literals;

namespace {

/// Threads that are kept for streams to come.
constexpr size_t idleThreads = 4;

/// What a thread may take to end. One that waits for a disk takes longer, and need not be waited
/// for: whoever needs the file waits for that.
constexpr auto endPatience = 1s;

std::unexpected<HttpError> cancelled()
{
    return std::unexpected(HttpError{HttpError::Kind::Cancelled});
}

} // namespace

CurlHttpClient::CurlHttpClient(QByteArray userAgent)
    : m_userAgent(std::move(userAgent))
    , m_collecting(beginThread())
{
}

CurlHttpClient::~CurlHttpClient()
{
    std::vector<std::shared_ptr<CurlThread>> threads{m_collecting};
    for (const auto &[id, streaming] : m_streaming)
        threads.push_back(streaming.thread);
    for (const StreamThread &idle : m_idle)
        threads.push_back(idle.thread);

    for (const auto &[id, waiting] : m_waiting)
        *waiting.isOver = true;
    std::ranges::for_each(threads, &CurlThread::quit);
    const auto deadline = CurlThread::Clock::now() + endPatience;
    for (const auto &thread : threads)
        thread->end(deadline);
    m_mainThread.reset();
    while (!m_waiting.empty())
        finish(m_waiting.begin()->first, cancelled());
}

std::shared_ptr<CurlThread> CurlHttpClient::beginThread()
{
    return CurlThread::begin([this](quint64 id, Result result) {
        QMetaObject::invokeMethod(
            m_mainThread.get(),
            [this, id, result = std::move(result)]() mutable {
                threadFinished(id, std::move(result));
            },
            Qt::QueuedConnection);
    });
}

std::shared_ptr<CurlThread> CurlHttpClient::takeStreamThread(quint64 id, const QUrl &url)
{
    const QString server = url.scheme() + u"://" + url.authority();
    StreamThread taken{.thread = nullptr, .lastServer = server};
    if (m_idle.empty()) {
        taken.thread = beginThread();
    } else {
        auto idle = std::ranges::find(m_idle, server, &StreamThread::lastServer);
        if (idle == m_idle.end())
            --idle;
        taken.thread = idle->thread;
        m_idle.erase(idle);
    }
    return m_streaming.emplace(id, std::move(taken)).first->second.thread;
}

Task<std::expected<HttpResponse, HttpError>> CurlHttpClient::get(HttpRequest request,
                                                                 std::stop_token stop)
{
    return run(std::move(request), nullptr, std::move(stop));
}

Task<std::expected<HttpResponse, HttpError>>
CurlHttpClient::stream(HttpRequest request, HttpBodySink sink, std::stop_token stop)
{
    return run(std::move(request), std::move(sink), std::move(stop));
}

Task<CurlHttpClient::Result> CurlHttpClient::run(HttpRequest request, HttpBodySink sink,
                                                 std::stop_token stop)
{
    if (stop.stop_requested())
        co_return cancelled();

    if (request.userAgent.isEmpty())
        request.userAgent = m_userAgent;
    const quint64 id = ++m_lastId;
    const Waiting waiting{.outcome = {},
                          .thread = sink ? takeStreamThread(id, request.url) : m_collecting,
                          .isOver = std::make_shared<std::atomic<bool>>(false)};
    m_waiting.emplace(id, waiting);
    if (sink)
        sink = [sink, isOver = waiting.isOver](QByteArrayView bytes) {
            return !*isOver && sink(bytes);
        };
    waiting.thread->start(id, std::move(request), std::move(sink), m_proxy);
    const std::stop_callback whenStopped(stop, [this, id] { this->stop(id); });
    co_return co_await waiting.outcome;
}

/// The thread may be held up and hear of it later.
void CurlHttpClient::stop(quint64 id)
{
    const auto waiting = m_waiting.find(id);
    if (waiting == m_waiting.end())
        return;
    *waiting->second.isOver = true;
    waiting->second.thread->cancel(id);
    finish(id, cancelled());
}

void CurlHttpClient::finish(quint64 id, Result result)
{
    if (const auto waiting = m_waiting.extract(id))
        waiting.mapped().outcome.complete(std::move(result));
}

void CurlHttpClient::threadFinished(quint64 id, Result result)
{
    if (auto streaming = m_streaming.extract(id))
        m_idle.push_back(std::move(streaming.mapped()));
    if (m_idle.size() > idleThreads) {
        const auto thread = m_idle.front().thread;
        m_idle.erase(m_idle.begin());
        thread->quit();
        thread->end(CurlThread::Clock::now() + endPatience);
    }
    finish(id, std::move(result));
}

} // namespace lumaro
