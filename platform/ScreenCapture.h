#pragma once

#include "platform/Async.h"
#include "platform/MediaSamples.h"
#include "platform/SerialQueue.h"

#include <QList>
#include <QRectF>

#include <expected>

class QQuickItem;

namespace lumaro {

/// The application's window that has the keyboard.
struct KeyWindow
{
    quint64 number = 0;
    /// Pixels per point.
    double backingScaleFactor = 1;
};

/// A window or a display that can be captured; its frame is in points, in the space of all
/// displays, whose origin is at the top left.
struct ShareableItem
{
    quint32 identifier = 0;
    QRectF frame;
    bool operator==(const ShareableItem &) const = default;
};

struct ShareableContent
{
    QList<ShareableItem> displays;
    QList<ShareableItem> windows;
};

/// A part of a display.
struct CaptureArea
{
    quint32 display = 0;
    /// In the display's points, with the origin at its top left.
    QRectF rect;
    bool operator==(const CaptureArea &) const = default;
};

/// What a stream captures, and how.
struct CaptureConfiguration
{
    CaptureArea source;
    /// The only window whose picture is captured.
    quint32 window = 0;
    /// In pixels.
    QSize outputSize;
    MediaTime minimumFrameInterval{};
    /// The most pictures that may wait for whoever takes them; further ones are dropped.
    int queueDepth = 0;
    bool showsCursor = true;
    bool capturesAudio = false;
    bool excludesOwnAudio = true;
    int audioSampleRate = 0;
    int audioChannels = 0;
    bool operator==(const CaptureConfiguration &) const = default;
};

/// Where a stream's samples and news go.
struct CaptureOutput
{
    /// The two functions below are called on it.
    std::shared_ptr<SerialQueue> queue;
    std::function<void(const VideoSample &)> screen;
    std::function<void(const AudioSample &)> audio;
    /// The system ended the stream; an English sentence. On any thread.
    std::function<void(const QString &error)> didStopWithError;
    /// There is no sound to capture, or no more of it; pictures go on. On any thread.
    std::function<void()> audioBecameUnavailable;
    /// A picture is about to be drawn: the last moment to say from where to take it. On the main
    /// thread.
    std::function<void()> pictureIsDue;
};

/// One capture. Main thread; errors are English sentences. Destroying it ends the capture at once,
/// and with it the tasks.
class CaptureStream
{
public:
    CaptureStream() = default;
    CaptureStream(const CaptureStream &) = delete;
    CaptureStream &operator=(const CaptureStream &) = delete;
    virtual ~CaptureStream() = default;

    /// Ends when the capture has started, or cannot.
    virtual Task<std::expected<void, QString>> startCapture(std::stop_token stop) = 0;
    /// Captures another part of a display, or of another one, from the next picture on. The
    /// output's size stays; a part of another shape is fitted into it on black.
    virtual void setSource(const CaptureArea &source) = 0;
    /// Ends the capture. Every sample has been posted to the queue when the task ends, the last
    /// picture with the time of the call.
    virtual Task<> stopCapture() = 0;
};

/// The system's screen capture. Main thread; errors are English sentences.
class ScreenCapture
{
public:
    ScreenCapture() = default;
    ScreenCapture(const ScreenCapture &) = delete;
    ScreenCapture &operator=(const ScreenCapture &) = delete;
    virtual ~ScreenCapture() = default;

    template <typename T>
    using Result = std::expected<T, QString>;

    /// Whether the user has allowed capturing.
    virtual bool preflightAccess() const = 0;
    /// Asks the user; the answer.
    virtual bool requestAccess() = 0;

    virtual std::optional<KeyWindow> keyWindow() const = 0;
    /// From `view`, y downwards, to the coordinates of its window, in points with the origin at the
    /// window's lower left.
    virtual QRectF convertToWindow(QQuickItem *view, const QRectF &rect) const = 0;

    /// What is on screen, without the desktop.
    virtual Task<Result<ShareableContent>> shareableContent(std::stop_token stop) = 0;
    virtual std::unique_ptr<CaptureStream> makeStream(const CaptureConfiguration &configuration,
                                                      CaptureOutput output) = 0;
};

} // namespace lumaro
