#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <expected>
#include <optional>

#include <sys/types.h>

namespace lumaro {

/// A program that cannot outlive whoever started it: it is ended with this object, and the kernel
/// kills it when the starting thread dies in any other way. So start it on a thread that lives as
/// long. Needs no application object and no event loop; waits block the calling thread.
class ChildProcess
{
public:
    struct Options
    {
        QString workingFolder{};
        /// Receives what the program prints, appended; otherwise that is dropped.
        QString logFile{};
        /// A descriptor that the program shall have too; -1 for none.
        int inheritedDescriptor = -1;
    };

    ChildProcess() = default;
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    /// Starts `program`, found in PATH or the system's administration folders, in place of one
    /// that ran before. The error is an English sentence.
    std::expected<void, QString> start(const QString &program, const QStringList &arguments,
                                       const Options &options);

    bool isRunning();
    pid_t processId() const { return m_pid; }

    /// True as soon as the program has ended, by itself or by a signal.
    bool waitForFinished(std::chrono::milliseconds timeout);
    /// Asks the program to end, even a suspended one, and kills it when `patience` has passed.
    void stop(std::chrono::milliseconds patience = std::chrono::seconds(3));
    void sendSignal(int number);

    /// Empty while running and when a signal ended it.
    std::optional<int> exitCode() const { return m_exitCode; }
    /// User and system time of the ended program and of the children it has waited for.
    std::chrono::microseconds processorTime() const { return m_processorTime; }

private:
    bool reap(int options);

    pid_t m_pid = -1;
    bool m_running = false;
    std::optional<int> m_exitCode;
    std::chrono::microseconds m_processorTime{};
};

} // namespace lumaro
