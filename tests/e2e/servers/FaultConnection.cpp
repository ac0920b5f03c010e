#include "tests/e2e/servers/FaultConnection.h"

#include <algorithm>
#include <limits>

#include <sys/socket.h>

namespace lumaro {

namespace {

constexpr qsizetype longestRequest = 1 << 16;
/// As much as may wait in the socket, so that endless bodies take no memory.
constexpr qint64 sendBuffer = 1 << 18;

std::optional<FaultRequest> parseRequest(const QByteArray &text)
{
    QList<QByteArray> lines = text.split('\n');
    const QList<QByteArray> words = lines.takeFirst().trimmed().split(' ');
    if (words.size() != 3)
        return std::nullopt;
    FaultRequest request{.method = words.at(0), .target = words.at(1), .headers = {}};
    for (const QByteArray &line : lines) {
        if (const qsizetype colon = line.indexOf(':'); colon > 0)
            request.headers.insert(line.first(colon).trimmed().toLower(),
                                   line.sliced(colon + 1).trimmed());
    }
    return request;
}

qint64 limit(const std::optional<qint64> &bound)
{
    return bound.value_or(std::numeric_limits<qint64>::max());
}

} // namespace

FaultConnection::FaultConnection(const std::shared_ptr<FaultBoard> &board, qintptr descriptor,
                                 QObject *parent)
    : QObject(parent)
    , m_board(board)
{
    m_board->addToConnections(1);
    m_timer.setSingleShot(true);
    connect(&m_socket, &QTcpSocket::readyRead, this, &FaultConnection::readRequest);
    connect(&m_socket, &QTcpSocket::disconnected, this, &QObject::deleteLater);
    connect(&m_socket, &QTcpSocket::bytesWritten, this, &FaultConnection::sendBody);
    if (!m_socket.setSocketDescriptor(descriptor))
        deleteLater();
}

FaultConnection::~FaultConnection()
{
    m_socket.disconnect(this);
    m_board->addToConnections(-1);
}

void FaultConnection::readRequest()
{
    const QByteArray bytes = m_socket.readAll();
    if (m_state != State::Reading)
        return;
    m_received += bytes;
    const qsizetype end = m_received.indexOf("\r\n\r\n");
    if (end < 0) {
        if (m_received.size() > longestRequest)
            reset();
        return;
    }
    const auto request = parseRequest(m_received.first(end));
    if (!request) {
        reset();
        return;
    }
    m_method = request->method;
    m_path = request->target.split('?').first();
    m_state = State::Held;
    // Recorded before the gate is looked at: a test that has seen the request and then releases
    // its path must not be missed.
    m_board->record(*request);
    if (!m_board->isHeld(m_path))
        beginAnswer();
}

void FaultConnection::release(const QByteArray &path)
{
    if (path != m_path)
        return;
    if (m_state == State::Held) {
        beginAnswer();
    } else if (m_state == State::Stalled) {
        m_response.stallAfter.reset();
        m_state = State::Sending;
        sendBody();
    }
}

void FaultConnection::beginAnswer()
{
    m_response = m_board->response(m_path);
    m_state = State::Delayed;
    m_timer.callOnTimeout(this, &FaultConnection::sendHeader);
    m_timer.start(m_response.delay);
}

void FaultConnection::sendHeader()
{
    m_timer.disconnect(this);
    QByteArray header = "HTTP/1.1 " + QByteArray::number(m_response.status) + " Answer\r\n";
    const auto add = [&header](const QByteArray &name, const QByteArray &value) {
        header += name + ": " + value + "\r\n";
    };
    add("Content-Type", m_response.contentType);
    add("Connection", "close");
    for (const auto &[name, value] : m_response.headers)
        add(name, value);
    const qint64 length = m_response.claimedLength.value_or(m_response.body.size());
    if (m_response.framing == FaultResponse::Framing::Chunked)
        add("Transfer-Encoding", "chunked");
    else if (m_response.framing == FaultResponse::Framing::ContentLength
             && length != RepeatedBody::endless)
        add("Content-Length", QByteArray::number(length));

    m_state = State::Sending;
    m_socket.write(header + "\r\n");
    if (m_method == "HEAD") {
        finish();
        return;
    }
    m_timer.callOnTimeout(this, &FaultConnection::sendBody);
    sendBody();
}

qint64 FaultConnection::sendable() const
{
    const qint64 room = m_response.dripInterval.count() > 0 ? m_response.dripSize
                                                            : sendBuffer - m_socket.bytesToWrite();
    const qint64 untilFault = std::min({limit(m_response.stallAfter), limit(m_response.resetAfter),
                                        limit(m_response.closeAfter)})
        - m_sent;
    return std::min(room, untilFault);
}

void FaultConnection::sendBody()
{
    // Also called when the socket has sent something, which is no reason to drip faster.
    if (m_state != State::Sending || m_timer.isActive())
        return;
    while (m_socket.bytesToWrite() < sendBuffer) {
        if (reachedFault())
            return;
        const QByteArray piece = m_response.body.read(m_sent, sendable());
        if (piece.isEmpty()) {
            finish();
            return;
        }
        sendPiece(piece);
        if (m_response.dripInterval.count() > 0) {
            m_timer.start(m_response.dripInterval);
            return;
        }
    }
}

bool FaultConnection::reachedFault()
{
    const auto reached = [this](const std::optional<qint64> &bound) {
        return m_sent >= limit(bound);
    };
    if (reached(m_response.resetAfter)) {
        reset();
    } else if (reached(m_response.closeAfter)) {
        m_state = State::Ended;
        m_socket.disconnectFromHost();
    } else if (reached(m_response.stallAfter)) {
        m_state = State::Stalled;
    } else {
        return false;
    }
    return true;
}

void FaultConnection::sendPiece(const QByteArray &piece)
{
    const bool chunked = m_response.framing == FaultResponse::Framing::Chunked;
    m_socket.write(chunked ? QByteArray::number(piece.size(), 16) + "\r\n" + piece + "\r\n"
                           : piece);
    m_sent += piece.size();
}

void FaultConnection::finish()
{
    m_state = State::Ended;
    if (m_response.framing == FaultResponse::Framing::Chunked && m_method != "HEAD")
        m_socket.write("0\r\n\r\n");
    m_socket.disconnectFromHost();
}

void FaultConnection::reset()
{
    m_state = State::Ended;
    m_socket.flush();
    // Closing a socket that lingers for no time makes the kernel send a reset.
    const linger none{.l_onoff = 1, .l_linger = 0};
    setsockopt(int(m_socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &none, sizeof none);
    m_socket.abort();
    deleteLater();
}

} // namespace lumaro
