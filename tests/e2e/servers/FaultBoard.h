#pragma once

#include "tests/e2e/servers/FaultServer.h"

#include <QMutex>
#include <QSet>

namespace lumaro {

/// What the test's thread and the server's thread share. All members are for both.
class FaultBoard
{
public:
    void route(const QByteArray &path, const FaultResponse &response);
    FaultResponse response(const QByteArray &path) const;

    void hold(const QByteArray &path);
    void release(const QByteArray &path);
    bool isHeld(const QByteArray &path) const;

    void record(const FaultRequest &request);
    QList<FaultRequest> requests() const;
    void forgetRequests();

    void addToConnections(int difference);
    int connections() const;

private:
    mutable QMutex m_mutex;
    QMap<QByteArray, FaultResponse> m_routes;
    QSet<QByteArray> m_held;
    QList<FaultRequest> m_requests;
    int m_connections = 0;
};

} // namespace lumaro
