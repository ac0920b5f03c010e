#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>

class QLocalServer;
class QLocalSocket;

namespace lumaro {

/// Lets the program run once for each folder of settings, since two would overwrite each other's:
/// a later start hands what it was asked to open to the one that runs. A lock tells who runs, which
/// the system gives back however the process ends; a local socket takes what others hand over.
/// Main thread.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    /// What a start was asked to do.
    struct Request
    {
        /// The command line's, as they were given.
        QStringList arguments;
        QString workingFolder;
        /// Lets the window come to the front (the desktop's XDG_ACTIVATION_TOKEN); may be empty.
        QByteArray activationToken;

        bool operator==(const Request &) const = default;
    };

    enum class Outcome {
        First, ///< nobody else runs; others' requests come by requested()
        HandedOver, ///< the one that runs has taken the request
        NoAnswer, ///< one runs but does not answer
    };

    /// Longer requests are not taken, in bytes; of more arguments than that, the first are sent.
    static constexpr qsizetype maximumRequestSize = 256 * 1024;
    /// How many may be connected at once, and how long one may take to say what it wants.
    static constexpr int maximumConnections = 16;
    static constexpr std::chrono::milliseconds patience{5000};

    /// `settingsFolder` is what must not be shared; it is made if need be, and holds the lock. The
    /// socket lies in `runtimeFolder`, or beside the lock when that is empty.
    explicit SingleInstance(const QString &settingsFolder,
                            const QString &runtimeFolder = defaultRuntimeFolder(),
                            QObject *parent = nullptr);
    ~SingleInstance() override;

    /// XDG_RUNTIME_DIR where there is one, otherwise a folder that only this user can enter; empty
    /// when there is neither.
    static QString defaultRuntimeFolder();

    /// Blocks for as long as the one that runs takes to answer, `patience` at most. When no lock
    /// can be had because the folder cannot be written to, the outcome is First.
    Outcome claim(const Request &request);

    QString socketPath() const { return m_socketPath; }

Q_SIGNALS:
    void requested(const lumaro::SingleInstance::Request &request);

private:
    class Lock;

    void listen();
    bool handOver(const QByteArray &message, std::chrono::milliseconds time) const;
    void accept();
    void read(QLocalSocket &socket);

    QString m_socketPath;
    std::unique_ptr<Lock> m_lock;
    std::unique_ptr<QLocalServer> m_server;
};

} // namespace lumaro
