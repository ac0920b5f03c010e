#include "tests/e2e/servers/FaultBoard.h"

#include <QMutexLocker>

namespace lumaro {

void FaultBoard::route(const QByteArray &path, const FaultResponse &response)
{
    const QMutexLocker locker(&m_mutex);
    m_routes.insert(path, response);
}

FaultResponse FaultBoard::response(const QByteArray &path) const
{
    const QMutexLocker locker(&m_mutex);
    FaultResponse missing = FaultResponse::of("text/html", "<h1>Not Found</h1>");
    missing.status = 404;
    return m_routes.value(path, missing);
}

void FaultBoard::hold(const QByteArray &path)
{
    const QMutexLocker locker(&m_mutex);
    m_held.insert(path);
}

void FaultBoard::release(const QByteArray &path)
{
    const QMutexLocker locker(&m_mutex);
    m_held.remove(path);
}

bool FaultBoard::isHeld(const QByteArray &path) const
{
    const QMutexLocker locker(&m_mutex);
    return m_held.contains(path);
}

void FaultBoard::record(const FaultRequest &request)
{
    const QMutexLocker locker(&m_mutex);
    m_requests.append(request);
}

QList<FaultRequest> FaultBoard::requests() const
{
    const QMutexLocker locker(&m_mutex);
    return m_requests;
}

void FaultBoard::forgetRequests()
{
    const QMutexLocker locker(&m_mutex);
    m_requests.clear();
}

void FaultBoard::addToConnections(int difference)
{
    const QMutexLocker locker(&m_mutex);
    m_connections += difference;
}

int FaultBoard::connections() const
{
    const QMutexLocker locker(&m_mutex);
    return m_connections;
}

} // namespace lumaro
