#include "platform/posix/LoopbackPeer.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <array>

#include <unistd.h>

namespace lumaro {

namespace {

/// As the kernel writes it: the address as a number in the machine's byte order.
QByteArray loopbackEnd(quint16 port)
{
    constexpr quint32 loopback = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? 0x0100007f : 0x7f000001;
    return QByteArray::number(loopback, 16).rightJustified(8, '0').toUpper() + ':'
        + QByteArray::number(port, 16).rightJustified(4, '0').toUpper();
}

/// The inode of the socket at `local` that is connected to `remote`; empty for none.
QByteArray socketInode(const QByteArray &local, const QByteArray &remote)
{
    constexpr int localField = 1;
    constexpr int remoteField = 2;
    constexpr int inodeField = 9;
    QFile table(QStringLiteral("/proc/net/tcp"));
    if (!table.open(QIODevice::ReadOnly))
        return {};
    const QByteArrayList lines = table.readAll().split('\n');
    for (const QByteArray &line : lines) {
        const QByteArrayList fields = line.simplified().split(' ');
        if (fields.size() > inodeField && fields[localField] == local
            && fields[remoteField] == remote)
            return fields[inodeField];
    }
    return {};
}

bool isOwnSocket(const QByteArray &inode)
{
    const QByteArray wanted = "socket:[" + inode + ']';
    const QDir folder(QStringLiteral("/proc/self/fd"));
    const QStringList descriptors = folder.entryList(QDir::Files | QDir::System);
    return std::ranges::any_of(descriptors, [&](const QString &descriptor) {
        std::array<char, 64> target{};
        const ssize_t length = readlink(QFile::encodeName(folder.filePath(descriptor)).constData(),
                                        target.data(), target.size());
        return length > 0 && QByteArrayView(target.data(), length) == wanted;
    });
}

} // namespace

bool isOwnLoopbackPeer(quint16 localPort, quint16 peerPort)
{
    const QByteArray inode = socketInode(loopbackEnd(peerPort), loopbackEnd(localPort));
    return !inode.isEmpty() && isOwnSocket(inode);
}

} // namespace lumaro
