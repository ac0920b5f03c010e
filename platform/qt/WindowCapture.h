#pragma once

#include "platform/ScreenCapture.h"
#include "platform/SystemAudio.h"

#include <QPointer>
#include <QQuickWindow>

namespace lumaro {

/// Screen capture of the application's own window, taken from the frames that it draws: without
/// the pointer, and without whatever lies above it. Needs nobody's permission. A picture that does
/// not change is repeated at least twice a second, so that a file that is cut off misses little.
class WindowCapture final : public ScreenCapture
{
public:
    explicit WindowCapture(SystemAudio audio);

    /// The only window that can be captured.
    void setWindow(QQuickWindow *window) { m_window = window; }

    bool preflightAccess() const override { return true; }
    bool requestAccess() override { return true; }
    std::optional<KeyWindow> keyWindow() const override;
    QRectF convertToWindow(QQuickItem *view, const QRectF &rect) const override;
    Task<Result<ShareableContent>> shareableContent(std::stop_token stop) override;
    std::unique_ptr<CaptureStream> makeStream(const CaptureConfiguration &configuration,
                                              CaptureOutput output) override;

private:
    SystemAudio m_audio;
    QPointer<QQuickWindow> m_window;
};

} // namespace lumaro
