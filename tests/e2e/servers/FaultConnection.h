#pragma once

#include "tests/e2e/servers/FaultBoard.h"

#include <QTcpSocket>
#include <QTimer>

namespace lumaro {

/// One connection of a FaultServer: reads one request, then answers it as its route says. Lives in
/// the server's thread and deletes itself when the connection has ended.
class FaultConnection : public QObject
{
    Q_OBJECT

public:
    FaultConnection(const std::shared_ptr<FaultBoard> &board, qintptr descriptor, QObject *parent);
    ~FaultConnection() override;

    /// Goes on if it waits for the release of `path`.
    void release(const QByteArray &path);

private:
    enum class State { Reading, Held, Delayed, Sending, Stalled, Ended };

    void readRequest();
    void beginAnswer();
    void sendHeader();
    void sendBody();
    qint64 sendable() const;
    bool reachedFault();
    void sendPiece(const QByteArray &piece);
    void finish();
    void reset();

    std::shared_ptr<FaultBoard> m_board;
    QTcpSocket m_socket;
    QTimer m_timer;
    State m_state = State::Reading;
    QByteArray m_received;
    QByteArray m_method;
    QByteArray m_path;
    FaultResponse m_response;
    qint64 m_sent = 0; ///< bytes of the body
};

} // namespace lumaro
