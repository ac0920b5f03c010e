#pragma once

#include "tests/e2e/servers/ChildProcess.h"

#include <functional>
#include <memory>

namespace lumaro {

/// A display of its own for a test process: an X server that draws into memory. With
/// LUMARO_E2E_USE_DISPLAY=1 the caller's display is used instead, to watch a test. Make it before
/// the application object and keep it until after that.
class VirtualDisplay
{
public:
    static constexpr int width = 1280;
    static constexpr int height = 800;

    /// Starts the server and points DISPLAY and QT_QPA_PLATFORM at it. The error is an English
    /// sentence.
    static std::expected<std::unique_ptr<VirtualDisplay>, QString> start();

    /// As in DISPLAY, such as ":1".
    QString name() const { return m_name; }

private:
    VirtualDisplay() = default;

    std::expected<void, QString> startServer();

    ChildProcess m_server;
    QString m_name;
};

/// Runs `program` in a display of its own and returns its result; 1 without a display, said on the
/// standard error.
int runInDisplay(const std::function<int()> &program);

} // namespace lumaro
