#include "platform/qt/SingleInstance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>
#include <QtEndian>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#else
#include <QLockFile>
#endif

namespace lumaro {

namespace {

/// Begins every message; another number means another form.
constexpr quint32 magic = 0x4c554d31;
constexpr qsizetype headSize = 2 * sizeof(quint32);
constexpr char taken = '+';

/// The magic, the number of bytes that follow, and the fields, which hold no zeros, with zeros
/// between them.
QByteArray encode(const SingleInstance::Request &request)
{
    QByteArrayList fields{request.workingFolder.toUtf8(), request.activationToken};
    for (const QString &argument : request.arguments)
        fields.append(argument.toUtf8());
    const QByteArray body = fields.join('\0');
    QByteArray message(headSize, Qt::Uninitialized);
    qToBigEndian(magic, message.data());
    qToBigEndian(quint32(body.size()), message.data() + sizeof(magic));
    return message + body;
}

enum class Progress { Incomplete, Complete, Broken };

Progress decode(const QByteArray &message, SingleInstance::Request &request)
{
    if (message.size() < headSize)
        return Progress::Incomplete;
    const qsizetype size = headSize + qFromBigEndian<quint32>(message.data() + sizeof(magic));
    if (qFromBigEndian<quint32>(message.data()) != magic || message.size() > size
        || size > SingleInstance::maximumRequestSize)
        return Progress::Broken;
    if (message.size() < size)
        return Progress::Incomplete;
    const QByteArrayList fields = message.sliced(headSize).split('\0');
    if (fields.size() < 2)
        return Progress::Broken;
    request = {.arguments = {},
               .workingFolder = QString::fromUtf8(fields[0]),
               .activationToken = fields[1]};
    for (const QByteArray &field : fields.sliced(2))
        request.arguments.append(QString::fromUtf8(field));
    return Progress::Complete;
}

} // namespace

#ifdef Q_OS_UNIX

/// Held until it is destroyed or the process ends in any way.
class SingleInstance::Lock
{
public:
    explicit Lock(const QString &folder)
        : m_descriptor(opened(folder + u"/lock", O_RDWR | O_CREAT))
    {
        // What is in the way of the file is in everyone's way, so all lock the folder then.
        if (m_descriptor < 0)
            m_descriptor = opened(folder, O_RDONLY);
    }
    ~Lock()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    Lock(const Lock &) = delete;
    Lock &operator=(const Lock &) = delete;

    /// False when another process holds it.
    bool take() { return flock(m_descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; }

private:
    static int opened(const QString &path, int flags)
    {
        return open(QFile::encodeName(path).constData(), flags | O_CLOEXEC, 0600);
    }

    int m_descriptor;
};

#else

class SingleInstance::Lock
{
public:
    explicit Lock(const QString &folder)
        : m_file(folder + u"/lock")
    {
        m_file.setStaleLockTime(0);
    }

    bool take() { return m_file.tryLock() || m_file.error() != QLockFile::LockFailedError; }

private:
    QLockFile m_file;
};

#endif

SingleInstance::SingleInstance(const QString &settingsFolder, const QString &runtimeFolder,
                               QObject *parent)
    : QObject(parent)
{
    const QDir settings(settingsFolder);
    const QString folder =
        settings.mkpath(QStringLiteral(".")) ? settings.canonicalPath() : settings.absolutePath();
    const QByteArray digest =
        QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha256).toHex().first(16);
    m_socketPath = (runtimeFolder.isEmpty() ? folder : runtimeFolder) + u"/lumaro-"
        + QString::fromLatin1(digest) + u".socket";
    m_lock = std::make_unique<Lock>(folder);
}

SingleInstance::~SingleInstance() = default;

QString SingleInstance::defaultRuntimeFolder()
{
    // Qt makes a folder below the temporary one when there is no XDG_RUNTIME_DIR, and refuses one
    // that others could enter.
    return QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
}

SingleInstance::Outcome SingleInstance::claim(const Request &request)
{
    Request sent = request;
    QByteArray message = encode(sent);
    while (message.size() > maximumRequestSize && !sent.arguments.isEmpty()) {
        sent.arguments.removeLast();
        message = encode(sent);
    }
    // The one that runs may still be starting, or just be ending.
    const QDeadlineTimer deadline(patience);
    while (true) {
        if (m_lock->take()) {
            listen();
            return Outcome::First;
        }
        if (handOver(message, std::chrono::milliseconds(deadline.remainingTime())))
            return Outcome::HandedOver;
        if (deadline.hasExpired())
            return Outcome::NoAnswer;
        QThread::msleep(20);
    }
}

bool SingleInstance::handOver(const QByteArray &message, std::chrono::milliseconds time) const
{
    const QDeadlineTimer deadline(time);
    const auto left = [&deadline] { return int(deadline.remainingTime()); };
    QLocalSocket socket;
    socket.connectToServer(m_socketPath);
    if (!socket.waitForConnected(left()))
        return false;
    socket.write(message);
    while (socket.bytesAvailable() == 0 && socket.waitForReadyRead(left())) { }
    char answer = 0;
    return socket.getChar(&answer) && answer == taken;
}

void SingleInstance::listen()
{
    // Whoever left a socket here no longer runs.
    QLocalServer::removeServer(m_socketPath);
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    m_server->setMaxPendingConnections(maximumConnections);
    connect(m_server.get(), &QLocalServer::newConnection, this, &SingleInstance::accept);
    // Without a socket later starts get no answer, but still nothing is overwritten.
    if (!m_server->listen(m_socketPath))
        qWarning("Other starts cannot be heard: %s", qPrintable(m_server->errorString()));
}

void SingleInstance::accept()
{
    while (QLocalSocket *const socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        const auto connected = m_server->findChildren<QLocalSocket *>(Qt::FindDirectChildrenOnly);
        if (connected.size() > maximumConnections) {
            socket->abort();
            continue;
        }
        socket->setReadBufferSize(maximumRequestSize + 1);
        QTimer::singleShot(patience, socket, &QLocalSocket::abort);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(*socket); });
        read(*socket);
    }
}

void SingleInstance::read(QLocalSocket &socket)
{
    Request request;
    switch (decode(socket.peek(maximumRequestSize + 1), request)) {
    case Progress::Incomplete:
        return;
    case Progress::Broken:
        socket.abort();
        return;
    case Progress::Complete:
        socket.readAll();
        socket.putChar(taken);
        socket.flush();
        socket.disconnectFromServer();
        Q_EMIT requested(request);
    }
}

} // namespace lumaro
