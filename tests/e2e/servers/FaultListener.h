#pragma once

#include "tests/e2e/servers/FaultBoard.h"

#include <QTcpServer>

namespace lumaro {

/// The part of a FaultServer that lives in its thread and accepts the connections.
class FaultListener : public QTcpServer
{
    Q_OBJECT

public:
    explicit FaultListener(const std::shared_ptr<FaultBoard> &board);

Q_SIGNALS:
    /// For the test's thread to emit: connections waiting for `path` go on.
    void released(const QByteArray &path);

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void release(const QByteArray &path);

    std::shared_ptr<FaultBoard> m_board;
};

} // namespace lumaro
