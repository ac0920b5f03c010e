#include "bench/report/ProcessMemory.h"

#include <QByteArray>
#include <QFile>

namespace lumaro {

namespace {

/// A value that /proc counts in units of 1024 bytes.
qint64 status(pid_t process, QByteArrayView key)
{
    QFile file(QStringLiteral("/proc/%1/status").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(key))
            return line.sliced(key.size()).simplified().split(' ').first().toLongLong() * 1024;
    }
    return 0;
}

} // namespace

qint64 peakMemory(pid_t process)
{
    return status(process, "VmHWM:");
}

qint64 residentMemory(pid_t process)
{
    return status(process, "VmRSS:");
}

} // namespace lumaro
