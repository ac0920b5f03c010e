#pragma once

#include "platform/Terminal.h"

#include <QSocketNotifier>

#include <memory>

namespace lumaro {

/// The process's own standard streams and signals; one at a time.
class PosixTerminal final : public Terminal
{
    Q_OBJECT

public:
    explicit PosixTerminal(QObject *parent = nullptr);
    ~PosixTerminal() override;

    bool isInteractive() const override { return m_isInteractive; }
    void showProgress(const QString &line) override;
    void say(const QString &line) override;
    void print(const QString &line) override;

private:
    void receiveSignal();

    bool m_isInteractive;
    bool m_showsProgress = false;
    std::unique_ptr<QSocketNotifier> m_signals;
};

} // namespace lumaro
