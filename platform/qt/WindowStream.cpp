#include "platform/qt/WindowStream.h"

#include "platform/AudioFeed.h"
#include "platform/qt/FrameGrabber.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QQuickItem>
#include <QRunnable>
#include <QScreen>

#include <atomic>
#include <cstring>

namespace lumaro {

Q_LOGGING_CATEGORY(captureLog, "lumaro.capture", QtWarningMsg)

namespace {

using namespace std::chrono_literals;

constexpr auto pulse = 100ms;
/// After as long without a new picture, the last one is repeated.
constexpr auto longestStill = 400ms;
/// A window that is not shown does no work for anybody.
constexpr auto longestStop = 1s;
/// For the pictures of a window that goes; a disk may stand still.
constexpr auto longestUse = 5s;

/// Work on the render thread; `done` is called on the main thread even if the work never is.
class RenderJob final : public QRunnable
{
public:
    RenderJob(std::function<void()> work, std::function<void()> done)
        : m_work(std::move(work))
        , m_done(std::move(done))
    {
    }
    ~RenderJob() override
    {
        if (m_done && qApp)
            QMetaObject::invokeMethod(qApp, m_done, Qt::QueuedConnection);
    }
    RenderJob(const RenderJob &) = delete;
    RenderJob &operator=(const RenderJob &) = delete;

    void run() override { m_work(); }

private:
    std::function<void()> m_work;
    std::function<void()> m_done;
};

/// Has the grabber give back what is the context's: now if the window is shown, else when it is
/// drawn again; what is still in use then, a little later.
void releaseInTime(const QPointer<QQuickWindow> &window,
                   const std::shared_ptr<FrameGrabber> &grabber)
{
    if (!window || grabber->isReleased())
        return;
    window->scheduleRenderJob(
        // Qt takes it over. Without memory the program ends anyway.
        // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new)
        new RenderJob([grabber] { grabber->release(0ms); },
                      [window, grabber] {
                          QTimer::singleShot(pulse, qApp,
                                             [window, grabber] { releaseInTime(window, grabber); });
                      }),
        window->isExposed() ? QQuickWindow::NoStage : QQuickWindow::AfterRenderingStage);
}

VideoSample deepCopy(const VideoSample &sample)
{
    const qsizetype stride = std::abs(sample.bytesPerLine);
    const auto pixels = std::make_shared<std::vector<uchar>>(size_t(stride * sample.size.height()));
    for (int row = 0; row < sample.size.height(); ++row)
        std::memcpy(pixels->data() + row * stride, sample.topRow + row * sample.bytesPerLine,
                    size_t(stride));
    return {.presentationTime = sample.presentationTime,
            .size = sample.size,
            .topRow = pixels->data(),
            .bytesPerLine = stride,
            .owner = pixels};
}

} // namespace

namespace windowspace {

QRectF frame(const QQuickWindow &window)
{
    QRectF frame = window.geometry();
    // Wayland tells nobody where a window is.
    if (QGuiApplication::platformName().startsWith(u"wayland") && window.screen())
        frame.moveTopLeft(window.screen()->geometry().topLeft());
    return frame;
}

QRectF display(quint32 identifier)
{
    const QScreen *screen = QGuiApplication::screens().value(qsizetype(identifier) - 1);
    return screen ? screen->geometry() : QRectF();
}

} // namespace windowspace

/// Puts the pictures on the queue in the order of their times. On any thread.
class WindowStream::Feed
{
public:
    explicit Feed(CaptureOutput output)
        : m_output(std::move(output))
    {
    }

    void deliver(const VideoSample &sample)
    {
        const std::scoped_lock lock(m_mutex);
        if (m_ended || (m_last.isDataReady() && sample.presentationTime <= m_last.presentationTime))
            return;
        m_last = sample;
        m_output.queue->post([sample, screen = m_output.screen, isDropped = m_isDropped] {
            if (!*isDropped)
                screen(sample);
        });
    }

    /// Shows the last picture once more, as of now.
    void repeat()
    {
        VideoSample again = last();
        again.presentationTime = mediaTimeNow();
        if (again.isDataReady())
            deliver(again);
    }

    /// From now on the last picture is nobody else's.
    void detachLast()
    {
        const std::scoped_lock lock(m_mutex);
        if (m_last.isDataReady())
            m_last = deepCopy(m_last);
    }

    void end()
    {
        const std::scoped_lock lock(m_mutex);
        m_ended = true;
    }

    /// The pixels of what is on the queue are gone. What is being written was read before.
    void dropWaiting()
    {
        end();
        *m_isDropped = true;
    }

    VideoSample last() const
    {
        const std::scoped_lock lock(m_mutex);
        return m_last;
    }

private:
    const CaptureOutput m_output;
    mutable std::mutex m_mutex;
    VideoSample m_last;
    bool m_ended = false;
    /// Shared with the work on the queue.
    const std::shared_ptr<std::atomic<bool>> m_isDropped =
        std::make_shared<std::atomic<bool>>(false);
};

WindowStream::WindowStream(QQuickWindow *window, SystemAudio audio,
                           CaptureConfiguration configuration, CaptureOutput output)
    : m_window(window)
    , m_makeAudio(std::move(audio))
    , m_configuration(configuration)
    , m_output(std::move(output))
    , m_feed(std::make_shared<Feed>(m_output))
    , m_grabber(std::make_shared<FrameGrabber>(FrameGrabber::Settings{
          .outputSize = m_configuration.outputSize,
          .minimumInterval = m_configuration.minimumFrameInterval,
          .depth = m_configuration.queueDepth,
          .deliver = [feed = m_feed](const VideoSample &sample) { feed->deliver(sample); }}))
{
    m_pulse.setInterval(pulse);
    m_pulse.callOnTimeout(this, &WindowStream::keepGoing);
}

WindowStream::~WindowStream()
{
    m_lifetime.request_stop();
    m_audio.reset();
    m_feed->end();
    detach();
    m_feed->detachLast();
    releaseInTime(m_window, m_grabber);
}

Task<std::expected<void, QString>> WindowStream::startCapture(std::stop_token)
{
    if (!m_window)
        co_return std::unexpected(
            QCoreApplication::translate("WindowStream", "The window to capture is gone."));
    updateSource();
    QQuickWindow *const window = m_window;
    connect(window, &QQuickWindow::afterAnimating, this, [this] {
        m_output.pictureIsDue();
        // The window itself may have moved below a part of the display that has not.
        updateSource();
    });
    const auto size = std::make_shared<QSize>();
    // Both on the render thread; in the first one the main thread waits.
    connect(
        window, &QQuickWindow::afterSynchronizing, this,
        [window, size, source = m_source, grabber = m_grabber] {
            *size = window->size();
            // While a window is resized, its content may not have followed yet: no whole picture.
            const bool isWhole = window->contentItem()->size() == QSizeF(*size);
            const QSizeF pixels = QSizeF(*size) * window->effectiveDevicePixelRatio();
            grabber->setFrame(pixels.toSize(), isWhole ? *source : QRect());
        },
        Qt::DirectConnection);
    connect(
        window, &QQuickWindow::afterRendering, this,
        [window, size, grabber = m_grabber] {
            // Resized since then, and perhaps before it was drawn. Qt itself looks from here.
            if (window->size() != *size)
                grabber->setFrame({}, {});
            window->beginExternalCommands();
            grabber->frameRendered();
            window->endExternalCommands();
        },
        Qt::DirectConnection);
    // What is the context's goes with it, even after this stream.
    connect(
        window, &QQuickWindow::sceneGraphInvalidated, window,
        [grabber = std::weak_ptr(m_grabber), feed = std::weak_ptr(m_feed)] {
            if (const auto fed = feed.lock())
                fed->detachLast();
            const auto grabbing = grabber.lock();
            if (!grabbing)
                return;
            grabbing->release(longestUse);
            if (const auto fed = feed.lock(); fed && !grabbing->isReleased())
                fed->dropWaiting();
        },
        Qt::DirectConnection);
    connect(
        window, &QQuickWindow::sceneGraphInvalidated, this,
        [failed = m_output.didStopWithError] {
            failed(QCoreApplication::translate("WindowStream", "The window is no longer drawn."));
        },
        Qt::DirectConnection);
    if (m_configuration.capturesAudio) {
        const auto feed = std::make_shared<AudioFeed>(m_output.queue, m_output.audio,
                                                      m_configuration.audioSampleRate);
        m_audio =
            m_makeAudio({.sampleRate = m_configuration.audioSampleRate,
                         .channels = m_configuration.audioChannels,
                         .sample = [feed](AudioSample sample) { feed->deliver(std::move(sample)); },
                         .becameUnavailable = m_output.audioBecameUnavailable});
    }
    // A picture that stands still is a picture too.
    m_window->update();
    m_pulse.start();
    co_return {};
}

void WindowStream::setSource(const CaptureArea &source)
{
    m_configuration.source = source;
    updateSource();
}

void WindowStream::updateSource()
{
    if (!m_window)
        return;
    const auto &[display, rect] = m_configuration.source;
    const QPointF inWindow =
        windowspace::display(display).topLeft() - windowspace::frame(*m_window).topLeft();
    const double scale = m_window->effectiveDevicePixelRatio();
    const QRectF source = rect.translated(inWindow);
    const QRect pixels = QRectF(source.topLeft() * scale, source.size() * scale).toRect();
    if (std::exchange(*m_source, pixels) != pixels)
        m_window->update();
}

void WindowStream::keepGoing()
{
    if (!m_window)
        return;
    const auto still = mediaTimeNow() - m_feed->last().presentationTime;
    // Of a window that is hidden nothing arrives before it is shown again.
    if (m_window->isExposed() && m_grabber->isReading() && still > pulse)
        m_window->scheduleRenderJob(
            new RenderJob([grabber = m_grabber] { grabber->collect(false); }, {}),
            QQuickWindow::NoStage);
    else if (still > longestStill)
        m_feed->repeat();
}

Task<> WindowStream::stopCapture()
{
    const MediaTime end = mediaTimeNow();
    detach();
    const std::stop_token gone = m_lifetime.get_token();
    const OneShot<bool> stopped;
    const std::stop_callback whenGone(gone, [stopped] { stopped.complete(false); });
    if (m_window) {
        m_window->scheduleRenderJob(new RenderJob(
                                        [grabber = m_grabber, feed = m_feed] {
                                            grabber->collect(true);
                                            feed->detachLast();
                                        },
                                        [stopped] { stopped.complete(true); }),
                                    QQuickWindow::NoStage);
        QTimer::singleShot(longestStop, qApp, [stopped] { stopped.complete(false); });
        co_await stopped;
    }
    if (gone.stop_requested())
        co_return;
    VideoSample last = m_feed->last();
    last.presentationTime = end;
    if (last.isDataReady())
        m_feed->deliver(last);
    m_feed->end();
    m_audio.reset();
    const FrameGrabber::Statistics seen = m_grabber->statistics();
    qCDebug(captureLog, "drawn %d grabbed %d left out %d render thread us per grabbed %.1f",
            seen.rendered, seen.grabbed, seen.leftOut,
            double(seen.time.count()) / 1000 / std::max(seen.grabbed, 1));
}

void WindowStream::detach()
{
    m_pulse.stop();
    if (m_window)
        m_window->disconnect(this);
}

} // namespace lumaro
