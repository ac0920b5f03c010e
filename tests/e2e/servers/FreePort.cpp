#include "tests/e2e/servers/FreePort.h"

#include <QTcpServer>

namespace lumaro {

quint16 freePort()
{
    QTcpServer probe;
    return probe.listen(QHostAddress::LocalHost) ? probe.serverPort() : 0;
}

} // namespace lumaro
