#pragma once

#include "platform/HttpClient.h"

#include <QList>

#include <list>

namespace lumaro {

/// Requests that wait until the test answers them, in whatever order it likes.
class FakeHttpClient final : public HttpClient
{
public:
    using Result = std::expected<HttpResponse, HttpError>;

    Task<Result> get(HttpRequest request, std::stop_token stop) override;
    Task<Result> stream(HttpRequest request, HttpBodySink sink, std::stop_token stop) override;

    /// The requests so far, answered or not.
    const QList<QUrl> &requests() const { return m_requests; }
    qsizetype pendingRequests() const { return qsizetype(m_pending.size()); }
    /// The newest request, answered or not.
    const HttpRequest &lastRequest() const { return m_lastRequest; }

    /// Answers the oldest waiting request for `url`; a streamed body goes to its sink first.
    void respond(const QUrl &url, int status, const QByteArray &body);
    /// Gives a piece of the body to the oldest waiting streamed request for `url`.
    void sendPiece(const QUrl &url, const QByteArray &piece);
    void fail(const QUrl &url, HttpError::Kind kind);

private:
    struct Pending
    {
        QUrl url;
        OneShot<Result> answer;
        HttpBodySink sink;
    };

    std::list<Pending>::iterator oldest(const QUrl &url);
    void answer(const QUrl &url, Result result);

    QList<QUrl> m_requests;
    std::list<Pending> m_pending;
    HttpRequest m_lastRequest;
};

} // namespace lumaro
