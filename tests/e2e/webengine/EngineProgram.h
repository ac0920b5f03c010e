#pragma once

#include "tests/e2e/servers/VirtualDisplay.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QtWebEngineQuick>

#include <functional>

#include <unistd.h>

namespace lumaro {

/// Runs `program` with the browser's engine in a display of its own, and returns its result.
inline int runWithEngine(int argc, char *argv[], const std::function<int()> &program)
{
    return runInDisplay([&] {
        // The engine's sandbox does not work for root.
        if (geteuid() == 0)
            qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
        QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
        QtWebEngineQuick::initialize();
        const QGuiApplication qt(argc, argv);
        QGuiApplication::setQuitOnLastWindowClosed(false);
        return program();
    });
}

} // namespace lumaro
