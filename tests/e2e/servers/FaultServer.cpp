#include "tests/e2e/servers/FaultServer.h"

#include "tests/e2e/servers/FaultConnection.h"
#include "tests/e2e/servers/FaultListener.h"

#include <QSemaphore>

#include <algorithm>

namespace lumaro {

FaultListener::FaultListener(const std::shared_ptr<FaultBoard> &board)
    : m_board(board)
{
    connect(this, &FaultListener::released, this, &FaultListener::release, Qt::QueuedConnection);
}

void FaultListener::incomingConnection(qintptr descriptor)
{
    new FaultConnection(m_board, descriptor, this);
}

void FaultListener::release(const QByteArray &path)
{
    const auto connections = findChildren<FaultConnection *>(Qt::FindDirectChildrenOnly);
    for (FaultConnection *connection : connections)
        connection->release(path);
}

FaultServer::FaultServer()
    : m_board(std::make_shared<FaultBoard>())
{
}

std::expected<std::unique_ptr<FaultServer>, QString> FaultServer::start()
{
    std::unique_ptr<FaultServer> server(new FaultServer);
    server->m_listener = new FaultListener(server->m_board);
    FaultListener *listener = server->m_listener;
    listener->moveToThread(&server->m_thread);
    QObject::connect(&server->m_thread, &QThread::finished, listener, &QObject::deleteLater);
    QSemaphore started;
    QObject::connect(&server->m_thread, &QThread::started, listener, [&] {
        if (listener->listen(QHostAddress::LocalHost))
            server->m_port = listener->serverPort();
        started.release();
    });
    server->m_thread.start();
    started.acquire();
    if (server->m_port == 0)
        return std::unexpected(listener->errorString());
    return server;
}

FaultServer::~FaultServer()
{
    m_thread.quit();
    m_thread.wait();
}

void FaultServer::route(const QByteArray &path, const FaultResponse &response)
{
    m_board->route(path, response);
}

void FaultServer::hold(const QByteArray &path)
{
    m_board->hold(path);
}

void FaultServer::release(const QByteArray &path)
{
    m_board->release(path);
    Q_EMIT m_listener->released(path);
}

QUrl FaultServer::url(const QByteArray &target) const
{
    return QUrl::fromEncoded("http://127.0.0.1:" + QByteArray::number(m_port) + target);
}

QList<FaultRequest> FaultServer::requests() const
{
    return m_board->requests();
}

qsizetype FaultServer::requestCount(const QByteArray &target) const
{
    return std::ranges::count(m_board->requests(), target, &FaultRequest::target);
}

void FaultServer::forgetRequests()
{
    m_board->forgetRequests();
}

int FaultServer::openConnections() const
{
    return m_board->connections();
}

} // namespace lumaro
