#include "display/DisplayGeometry.h"

#include <algorithm>

namespace lumaro {

namespace {

/// Against a picture without a shape.
constexpr double leastAspect = 0.01;
/// The subtraction, not the nearest double to 0.13, is what other versions of Lumaro have.
constexpr double zoom = 1.13 - 1.0;
/// Of the view's width: what a drag from the centre to the picture's edge takes.
constexpr double dragShare = 0.35;

QRectF column(QSizeF view)
{
    const double width = view.height() * 9 * 0.0625;
    const double height = view.height();
    return {(view.width() - width) * 0.5, (view.height() - height) * 0.5, width, height};
}

/// The whole picture, as tall or as wide as the column.
QRectF reframed(QSizeF column, double horizontalPan, QSizeF presentationSize)
{
    const double aspect = presentationSize.width() / presentationSize.height();
    const double columnAspect =
        column.height() > 1 ? column.width() / column.height() : column.width();
    if (columnAspect < aspect) {
        const double width = aspect * column.height();
        const double overflow = std::max(width - column.width(), 0.0);
        return {horizontalPan * overflow * 0.5 - overflow * 0.5, 0, width, column.height()};
    }
    const double height = column.width() / std::max(aspect, leastAspect);
    return {0, (height - column.height()) * -0.5, column.width(), height};
}

QRectF zoomed(const QRectF &frame)
{
    return {frame.x() - frame.width() * zoom * 0.5, frame.y() - frame.height() * zoom * 0.5,
            frame.width() + frame.width() * zoom, frame.height() + frame.height() * zoom};
}

} // namespace

DisplayGeometry displayGeometry(PortraitDisplayMode mode, QSizeF size, double horizontalPan,
                                QSizeF presentationSize)
{
    using enum PortraitDisplayMode;
    DisplayGeometry geometry;
    geometry.cropFrame = mode == normal ? QRectF({0, 0}, size) : column(size);
    geometry.cropMasksToBounds = mode != normal;
    const QSizeF crop = geometry.cropFrame.size();
    geometry.playerFrame = QRectF({0, 0}, crop);
    switch (mode) {
    case normal:
        break;
    case rotate:
        geometry.playerFrame = {crop.width() * 0.5 - crop.height() * 0.5,
                                crop.height() * 0.5 - crop.width() * 0.5, crop.height(),
                                crop.width()};
        geometry.playerRotation = 90;
        break;
    case manual:
    case smart:
        if (presentationSize.width() > 0 && presentationSize.height() > 0)
            geometry.playerFrame = reframed(crop, horizontalPan, presentationSize);
        [[fallthrough]];
    case fill:
        geometry.playerFrame = zoomed(geometry.playerFrame);
        break;
    }
    return geometry;
}

VideoGravity videoGravity(PortraitDisplayMode mode)
{
    return mode == PortraitDisplayMode::normal ? VideoGravity::resizeAspect
                                               : VideoGravity::resizeAspectFill;
}

QRectF pictureRect(const QRectF &layer, VideoGravity gravity, QSizeF presentationSize)
{
    if (presentationSize.isEmpty() || layer.isEmpty())
        return layer;
    const QSizeF size = presentationSize.scaled(layer.size(),
                                                gravity == VideoGravity::resizeAspect
                                                    ? Qt::KeepAspectRatio
                                                    : Qt::KeepAspectRatioByExpanding);
    QRectF picture({0, 0}, size);
    picture.moveCenter(layer.center());
    return picture;
}

VideoPlacement fillingPlacement(const QRectF &picture, const QRectF &surface)
{
    if (picture.isEmpty() || surface.isEmpty())
        return {.fills = true, .zoom = 1, .offset = {}};
    const double filling =
        std::max(surface.width() / picture.width(), surface.height() / picture.height());
    const QPointF distance = picture.center() - surface.center();
    return {.fills = true,
            .zoom = 1 / filling,
            .offset = {distance.x() / picture.width(), distance.y() / picture.height()}};
}

double draggedPan(double panAtPress, double distance, double viewWidth)
{
    return std::clamp(panAtPress + distance / std::max(viewWidth * dragShare, 1.0), -1.0, 1.0);
}

} // namespace lumaro
