#pragma once

#include "tests/e2e/servers/FaultResponse.h"

#include <QMap>
#include <QThread>
#include <QUrl>

#include <expected>
#include <memory>

namespace lumaro {

class FaultBoard;
class FaultListener;

struct FaultRequest
{
    QByteArray method;
    /// Path and query as sent.
    QByteArray target;
    /// By lower-case name.
    QMap<QByteArray, QByteArray> headers;

    bool operator==(const FaultRequest &) const = default;
};

/// An HTTP/1.1 server for everything that a good server does not do. It runs in a thread of its
/// own, so it answers while the test waits; all members may be called from any one thread. One
/// request for each connection. Paths without a route answer 404.
class FaultServer
{
public:
    /// The error is an English sentence.
    static std::expected<std::unique_ptr<FaultServer>, QString> start();
    ~FaultServer();
    FaultServer(const FaultServer &) = delete;
    FaultServer &operator=(const FaultServer &) = delete;

    /// From now on `path` answers `response`, whatever the query. Requests being answered are not
    /// affected.
    void route(const QByteArray &path, const FaultResponse &response);

    /// Requests for `path` get no answer at all until release(), which also ends the stalls of
    /// FaultResponse::stallAfter. With two paths held, the test decides which answers first.
    void hold(const QByteArray &path);
    void release(const QByteArray &path);

    QUrl url(const QByteArray &target) const;

    /// Every request received whole so far, oldest first, held ones among them.
    QList<FaultRequest> requests() const;
    qsizetype requestCount(const QByteArray &target) const;
    /// Makes requests() begin anew.
    void forgetRequests();
    /// Connections that are open now.
    int openConnections() const;

private:
    FaultServer();

    std::shared_ptr<FaultBoard> m_board;
    QThread m_thread;
    FaultListener *m_listener = nullptr; ///< lives in m_thread and dies with it
    quint16 m_port = 0;
};

} // namespace lumaro
