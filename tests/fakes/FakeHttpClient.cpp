#include "tests/fakes/FakeHttpClient.h"

#include <algorithm>

namespace lumaro {

Task<FakeHttpClient::Result> FakeHttpClient::get(HttpRequest request, std::stop_token stop)
{
    return stream(std::move(request), nullptr, std::move(stop));
}

Task<FakeHttpClient::Result> FakeHttpClient::stream(HttpRequest request, HttpBodySink sink,
                                                    std::stop_token stop)
{
    m_requests.append(request.url);
    m_lastRequest = request;
    const auto pending =
        m_pending.insert(m_pending.end(), Pending{request.url, {}, std::move(sink)});
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
    const HttpBodySink sink = oldest(url)->sink;
    if (!sink)
        return answer(url, HttpResponse{status, url, body});
    if (status / 100 == 2 && !body.isEmpty() && !sink(body))
        return fail(url, HttpError::Kind::NotTaken);
    answer(url, HttpResponse{status, url, {}});
}

void FakeHttpClient::sendPiece(const QUrl &url, const QByteArray &piece)
{
    if (!oldest(url)->sink(piece))
        fail(url, HttpError::Kind::NotTaken);
}

void FakeHttpClient::fail(const QUrl &url, HttpError::Kind kind)
{
    answer(url, std::unexpected(HttpError{kind}));
}

std::list<FakeHttpClient::Pending>::iterator FakeHttpClient::oldest(const QUrl &url)
{
    const auto pending =
        std::ranges::find_if(m_pending, [&](const Pending &p) { return p.url == url; });
    Q_ASSERT(pending != m_pending.end());
    return pending;
}

void FakeHttpClient::answer(const QUrl &url, Result result)
{
    const auto pending = oldest(url);
    const OneShot<Result> waiting = pending->answer;
    m_pending.erase(pending);
    waiting.complete(std::move(result));
}

} // namespace lumaro
