#pragma once

#include "tests/e2e/servers/ChildProcess.h"

#include <QTemporaryDir>

#include <memory>

namespace lumaro {

/// A message bus of the test process's own, in place of the user's session bus and of the system's,
/// with nobody on it. Make it before the application object.
class SessionBus
{
public:
    /// The error is an English sentence.
    static std::expected<std::unique_ptr<SessionBus>, QString> start();

    const QString &address() const { return m_address; }

private:
    SessionBus() = default;

    QTemporaryDir m_folder;
    QString m_address;
    ChildProcess m_daemon;
};

} // namespace lumaro
