#include "platform/curl/CurlHttpClient.h"

#include "platform/curl/CurlThread.h"

#include <utility>

namespace lumaro {

CurlHttpClient::CurlHttpClient(QByteArray userAgent)
    : m_userAgent(std::move(userAgent))
    , m_thread(std::make_unique<CurlThread>([this](quint64 id, Result result) {
        QMetaObject::invokeMethod(
            m_mainThread.get(),
            [this, id, result = std::move(result)]() mutable { finish(id, std::move(result)); },
            Qt::QueuedConnection);
    }))
{
}

CurlHttpClient::~CurlHttpClient()
{
    m_thread.reset();
    m_mainThread.reset();
    while (!m_waiting.empty())
        finish(m_waiting.begin()->first, std::unexpected(HttpError{HttpError::Kind::Cancelled}));
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
    const Result cancelled = std::unexpected(HttpError{HttpError::Kind::Cancelled});
    if (stop.stop_requested())
        co_return cancelled;

    if (request.userAgent.isEmpty())
        request.userAgent = m_userAgent;
    const quint64 id = ++m_lastId;
    const OneShot<Result> finished;
    m_waiting.emplace(id, finished);
    m_thread->start(id, std::move(request), std::move(sink), m_proxy);
    const std::stop_callback whenStopped(stop, [this, id] { m_thread->cancel(id); });

    Result result = co_await finished;
    // It may have ended in the other thread just before it was stopped here.
    if (stop.stop_requested())
        co_return cancelled;
    co_return result;
}

void CurlHttpClient::finish(quint64 id, Result result)
{
    if (const auto waiting = m_waiting.extract(id))
        waiting.mapped().complete(std::move(result));
}

} // namespace lumaro
