#include "recording/CaptureGeometry.h"

#include <algorithm>
#include <cmath>

namespace lumaro {

namespace {

/// Points; what is to be captured must be larger in both directions.
constexpr double smallestSide = 8;

int evenPixels(double pixels)
{
    const int rounded = int(std::round(pixels));
    return std::max(rounded - rounded % 2, 2);
}

double sharedArea(const QRectF &a, const QRectF &b)
{
    const QRectF shared = a.intersected(b);
    return shared.width() * shared.height();
}

} // namespace

QSize outputDimensions(const QSizeF &size, double scale, PlayerRecordingQuality quality)
{
    if (quality == PlayerRecordingQuality::normal)
        return {evenPixels(size.width() * scale), evenPixels(size.height() * scale)};
    const QSizeF box = size.width() >= size.height() ? QSizeF(1920, 1080) : QSizeF(1080, 1920);
    const double factor = std::min(box.width() / size.width(), box.height() / size.height());
    return {evenPixels(size.width() * factor), evenPixels(size.height() * factor)};
}

std::expected<CaptureArea, RecorderError> captureArea(const ShareableContent &content,
                                                      quint32 window, const QRectF &rect)
{
    const auto found = std::ranges::find(content.windows, window, &ShareableItem::identifier);
    if (found == content.windows.end())
        return std::unexpected(RecorderError::playerWindowNotFound);
    const QRectF frame = found->frame;
    const auto display =
        std::ranges::max_element(content.displays, {}, [&frame](const ShareableItem &candidate) {
            return sharedArea(candidate.frame, frame);
        });
    if (display == content.displays.end() || sharedArea(display->frame, frame) <= 0)
        return std::unexpected(RecorderError::playerDisplayNotFound);

    const QRectF on = display->frame;
    const QRectF placed(rect.left() + frame.left() - on.left(),
                        frame.top() + frame.height() - (rect.y() + rect.height()) - on.top(),
                        rect.width(), rect.height());
    const QRectF clipped = placed.intersected(QRectF(QPointF(0, 0), on.size()));
    if (clipped.width() <= smallestSide || clipped.height() <= smallestSide)
        return std::unexpected(RecorderError::invalidCaptureArea);
    return CaptureArea{.display = display->identifier, .rect = clipped};
}

} // namespace lumaro
