#pragma once

#include "platform/qt/FramePacer.h"

#include <QRectF>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

class QOpenGLExtraFunctions;

namespace lumaro {

/// Takes pictures out of a window's rendered frames: scaled by the graphics card, and read back
/// while the next frames are drawn, so that drawing never waits for them. Everything but what is
/// said to be for any thread happens on the render thread with its OpenGL context.
class FrameGrabber
{
public:
    struct Settings
    {
        QSize outputSize;
        MediaTime minimumInterval{};
        /// Pictures that are under way or in use; when there are more, frames are left out.
        int depth = 0;
        std::function<void(const VideoSample &)> deliver;
    };
    /// What has been done so far.
    struct Statistics
    {
        int rendered = 0;
        int grabbed = 0;
        int leftOut = 0;
        /// Of the render thread.
        MediaTime time{};
    };

    explicit FrameGrabber(Settings settings);
    FrameGrabber(const FrameGrabber &) = delete;
    FrameGrabber &operator=(const FrameGrabber &) = delete;
    ~FrameGrabber();

    /// Of the frame that is drawn next, in pixels: its size, and what to take of it, with the
    /// origin at the top left. What lies outside the frame is left out.
    void setFrame(const QSize &size, const QRect &source);
    /// A picture is on its way. On any thread.
    bool isReading() const;

    /// To be called when a frame has been drawn, before it is shown.
    void frameRendered();
    /// Delivers what has arrived; waits for the rest if `waits`.
    void collect(bool waits);
    /// Gives back what belongs to the context. Pictures in use are waited for, but not longer than
    /// `patience`; those still in use then stay.
    void release(std::chrono::milliseconds patience);
    /// Nothing belongs to the context any more. On any thread.
    bool isReleased() const { return m_isReleased; }

    /// On any thread.
    Statistics statistics() const;

private:
    struct Slot;

    Slot *freeSlot(QOpenGLExtraFunctions &gl);
    void read(QOpenGLExtraFunctions &gl, Slot &slot, const QRect &source);
    void scale(QOpenGLExtraFunctions &gl, const QRect &source);
    void deliver(QOpenGLExtraFunctions &gl, Slot &slot);

    const Settings m_settings;
    FramePacer m_pacer;
    std::vector<std::shared_ptr<Slot>> m_slots;
    unsigned m_framebuffer = 0;
    unsigned m_texture = 0;
    /// With the origin at the bottom left, as OpenGL counts.
    QRect m_source;
    std::atomic<bool> m_isReleased = true;
    mutable std::mutex m_mutex;
    Statistics m_statistics;
    int m_reading = 0;
};

} // namespace lumaro
