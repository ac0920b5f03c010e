#pragma once

#include "platform/ScreenCapture.h"
#include "platform/SystemAudio.h"

#include <QPointer>
#include <QQuickWindow>
#include <QTimer>

namespace lumaro {

class FrameGrabber;

/// The space of all displays, as far as capturing the window needs it.
namespace windowspace {
/// Where the window's content is.
QRectF frame(const QQuickWindow &window);
/// The display numbered so.
QRectF display(quint32 identifier);
} // namespace windowspace

/// Captures a window's own frames and the system's sound.
class WindowStream final : public QObject, public CaptureStream
{
    Q_OBJECT

public:
    WindowStream(QQuickWindow *window, SystemAudio audio, CaptureConfiguration configuration,
                 CaptureOutput output);
    ~WindowStream() override;

    Task<std::expected<void, QString>> startCapture(std::stop_token stop) override;
    void setSource(const CaptureArea &source) override;
    Task<> stopCapture() override;

private:
    class Feed;

    void updateSource();
    void keepGoing();
    void detach();

    std::stop_source m_lifetime;
    QPointer<QQuickWindow> m_window;
    SystemAudio m_makeAudio;
    CaptureConfiguration m_configuration;
    CaptureOutput m_output;
    std::shared_ptr<Feed> m_feed;
    std::shared_ptr<FrameGrabber> m_grabber;
    /// In the window's pixels. The render thread reads it while the main thread waits.
    std::shared_ptr<QRect> m_source = std::make_shared<QRect>();
    std::unique_ptr<AudioCapture> m_audio;
    QTimer m_pulse;
};

} // namespace lumaro
