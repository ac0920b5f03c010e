#include "tests/fakes/FakeHttpClient.h"

#include <algorithm>

namespace lumaro {

Task<FakeHttpClient::Result> FakeHttpClient::get(HttpRequest request, std::stop_token stop)
{
    m_requests.append(request.url);
    m_lastMaximumBodySize = request.maximumBodySize;
    const auto pending = m_pending.insert(m_pending.end(), Pending{request.url, {}});
    const OneShot<Result> result = pending->answer;
    const std::stop_callback whenStopped(stop, [this, pending] {
        const OneShot<Result> cancelled = pending->answer;
        m_pending.erase(pending);
        cancelled.complete(std::unexpected(HttpError{HttpError::Kind::Cancelled}));
    });
    co_return co_await result;
}

void FakeHttpClient::respond(const QUrl &url, int status, const QByteArray &body)
{
    answer(url, HttpResponse{status, url, body});
}

void FakeHttpClient::fail(const QUrl &url, HttpError::Kind kind)
{
    answer(url, std::unexpected(HttpError{kind}));
}

void FakeHttpClient::answer(const QUrl &url, Result result)
{
    const auto pending =
        std::ranges::find_if(m_pending, [&](const Pending &p) { return p.url == url; });
    Q_ASSERT(pending != m_pending.end());
    const OneShot<Result> waiting = pending->answer;
    m_pending.erase(pending);
    waiting.complete(std::move(result));
}

} // namespace lumaro
