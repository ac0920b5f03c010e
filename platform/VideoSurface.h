#pragma once

#include <QObject>
#include <QPointF>

namespace lumaro {

/// How a picture lies on the surface that draws it; what lies beyond the surface is not drawn.
struct VideoPlacement
{
    /// What a zoom of 1 means: the picture just covers the surface, or all of it just fits.
    bool fills = false;
    /// 2 makes it twice as wide and high.
    double zoom = 1;
    /// How far its centre is from the surface's, in widths and heights of the picture; y downwards.
    QPointF offset;

    bool operator==(const VideoPlacement &) const = default;
};

/// Draws a media player's picture, in its own shape, with as many pixels as the surface has on the
/// screen. Main thread.
class VideoSurface
{
public:
    VideoSurface() = default;
    VideoSurface(const VideoSurface &) = delete;
    VideoSurface &operator=(const VideoSurface &) = delete;
    virtual ~VideoSurface() = default;

    virtual void setPlacement(const VideoPlacement &placement) = 0;
};

} // namespace lumaro

Q_DECLARE_INTERFACE(lumaro::VideoSurface, "lumaro.VideoSurface")
