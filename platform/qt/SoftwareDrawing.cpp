#include "platform/qt/SoftwareDrawing.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQuickWindow>

#include <memory>
#include <mutex>

namespace lumaro {

namespace {

bool rendersInSoftware()
{
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    if (!context.create() || !context.makeCurrent(&surface))
        return false;
    const auto *const name =
        reinterpret_cast<const char *>(context.functions()->glGetString(GL_RENDERER));
    const QByteArray renderer = QByteArray(name).toLower();
    return renderer.contains("llvmpipe") || renderer.contains("softpipe")
        || renderer.contains("swrast") || renderer.contains("software");
}

} // namespace

bool isDrawnInSoftware()
{
    static const bool answer = rendersInSoftware();
    return answer;
}

void drawInTurns(QQuickWindow &window)
{
    static std::mutex drawing;
    // Locked and unlocked on the window's render thread, which may be within a frame by now.
    const auto turn = std::make_shared<std::unique_lock<std::mutex>>(drawing, std::defer_lock);
    QObject::connect(
        &window, &QQuickWindow::beforeFrameBegin, &window, [turn] { turn->lock(); },
        Qt::DirectConnection);
    QObject::connect(
        &window, &QQuickWindow::afterFrameEnd, &window,
        [turn] {
            if (turn->owns_lock())
                turn->unlock();
        },
        Qt::DirectConnection);
}

} // namespace lumaro
