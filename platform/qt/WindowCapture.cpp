#include "platform/qt/WindowCapture.h"

#include "platform/qt/WindowStream.h"

#include <QGuiApplication>
#include <QQuickItem>
#include <QScreen>

namespace lumaro {

WindowCapture::WindowCapture(SystemAudio audio)
    : m_audio(std::move(audio))
{
}

std::optional<KeyWindow> WindowCapture::keyWindow() const
{
    const QWindow *focused = QGuiApplication::focusWindow();
    // Where nobody manages windows, none has the focus.
    const QWindow *key = focused ? focused : m_window.data();
    if (!key || !m_window || !m_window->isVisible())
        return std::nullopt;
    return KeyWindow{.number = key->winId(),
                     .backingScaleFactor = m_window->effectiveDevicePixelRatio()};
}

QRectF WindowCapture::convertToWindow(QQuickItem *view, const QRectF &rect) const
{
    if (!view || !view->window())
        return {};
    QRectF inWindow = view->mapRectToScene(rect);
    inWindow.moveTop(view->window()->height() - inWindow.bottom());
    return inWindow;
}

auto WindowCapture::shareableContent(std::stop_token) -> Task<Result<ShareableContent>>
{
    ShareableContent content;
    for (const QScreen *screen : QGuiApplication::screens())
        content.displays.append({.identifier = quint32(content.displays.size() + 1),
                                 .frame = QRectF(screen->geometry())});
    if (m_window && m_window->isVisible())
        content.windows.append(
            {.identifier = quint32(m_window->winId()), .frame = windowspace::frame(*m_window)});
    co_return content;
}

std::unique_ptr<CaptureStream> WindowCapture::makeStream(const CaptureConfiguration &configuration,
                                                         CaptureOutput output)
{
    return std::make_unique<WindowStream>(m_window, m_audio, configuration, std::move(output));
}

} // namespace lumaro
