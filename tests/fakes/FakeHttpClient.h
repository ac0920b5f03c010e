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

    /// The requests so far, answered or not.
    const QList<QUrl> &requests() const { return m_requests; }
    qsizetype pendingRequests() const { return qsizetype(m_pending.size()); }
    qint64 lastMaximumBodySize() const { return m_lastMaximumBodySize; }

    /// Answers the oldest waiting request for `url`.
    void respond(const QUrl &url, int status, const QByteArray &body);
    void fail(const QUrl &url, HttpError::Kind kind);

private:
    struct Pending
    {
        QUrl url;
        OneShot<Result> answer;
    };

    void answer(const QUrl &url, Result result);

    QList<QUrl> m_requests;
    std::list<Pending> m_pending;
    qint64 m_lastMaximumBodySize = 0;
};

} // namespace lumaro
