#pragma once

#include "platform/Terminal.h"

#include <QStringList>

namespace lumaro {

/// A terminal that remembers what it was told.
class FakeTerminal final : public Terminal
{
public:
    bool isInteractive() const override { return interactive; }
    void showProgress(const QString &line) override { progress = line; }
    void say(const QString &line) override { said.append(line); }
    void print(const QString &line) override { printed.append(line); }

    bool interactive = false;
    /// The progress line that stands there now.
    QString progress;
    QStringList said;
    QStringList printed;
};

} // namespace lumaro
