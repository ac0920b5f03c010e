#pragma once

#include "display/PortraitDisplayMode.h"
#include "platform/VideoSurface.h"

#include <QRectF>

namespace lumaro {

/// Where the layers of the picture's view lie, in the view's points, y downwards.
struct DisplayGeometry
{
    /// The visible column, in the view; wider than a view that is narrower than 9:16.
    QRectF cropFrame;
    /// Nothing of the picture shows outside the column.
    bool cropMasksToBounds = false;
    /// The player's layer, in the column; before it is turned about its centre.
    QRectF playerFrame;
    /// Degrees, clockwise on the screen.
    double playerRotation = 0;

    bool operator==(const DisplayGeometry &) const = default;
};

/// How a picture is fitted into its layer, its own shape kept.
enum class VideoGravity {
    resizeAspect, ///< all of it is seen
    resizeAspectFill, ///< all of the layer is covered
};

/// The geometry in `mode` for a view of `size`. `horizontalPan` is from -1, the picture's right
/// edge, to +1, its left edge. `presentationSize` is the picture's own size; empty while unknown.
DisplayGeometry displayGeometry(PortraitDisplayMode mode, QSizeF size, double horizontalPan,
                                QSizeF presentationSize);

VideoGravity videoGravity(PortraitDisplayMode mode);

/// Where a picture of `presentationSize` lies in `layer`, or beyond it.
QRectF pictureRect(const QRectF &layer, VideoGravity gravity, QSizeF presentationSize);

/// How to draw `picture` on `surface`, both in the same coordinates.
VideoPlacement fillingPlacement(const QRectF &picture, const QRectF &surface);

/// The pan after the pointer has moved by `distance` points, to the right where positive, in a view
/// of `viewWidth` points.
double draggedPan(double panAtPress, double distance, double viewWidth);

} // namespace lumaro
