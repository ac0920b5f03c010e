#pragma once

#include <QObject>
#include <QString>

namespace lumaro {

/// Where a run without windows reports to. Main thread.
class Terminal : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Somebody watches a line that changes; otherwise lines pile up in a log.
    virtual bool isInteractive() const = 0;

    /// Shows `line` in place of the one shown so before; an empty one takes it away. Only where
    /// the terminal is interactive.
    virtual void showProgress(const QString &line) = 0;
    /// Says `line` to people.
    virtual void say(const QString &line) = 0;
    /// Gives `line` to the program that reads the output.
    virtual void print(const QString &line) = 0;

Q_SIGNALS:
    /// The user wants the run to end, told by the signal of this number. A second wish ends it at
    /// once.
    void interrupted(int signalNumber);
};

} // namespace lumaro
