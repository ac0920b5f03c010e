#pragma once

#include "platform/qt/FramePacer.h"

#include <QRectF>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

class QOpenGLExtraFunctions;

namespace lumaro {

/// Takes pictures out of a window's rendered frames: scaled by the graphics card, and read back
/// while the next frames are drawn, so that drawing never waits for them. Everything but
/// setSource() and isReading() happens on the render thread with its OpenGL context.
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

    /// In the frame's pixels, with the origin at its top left.
    void setSource(const QRect &source);
    /// A picture is on its way. On any thread.
    bool isReading() const;

    /// To be called when a frame of this size has been drawn, before it is shown.
    void frameRendered(int frameHeight);
    /// Delivers what has arrived; waits for the rest if `waits`.
    void collect(bool waits);
    /// Gives back what belongs to the context. Waits a moment for pictures still in use.
    void release();

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
    mutable std::mutex m_mutex;
    QRect m_source;
    Statistics m_statistics;
    int m_reading = 0;
};

} // namespace lumaro
