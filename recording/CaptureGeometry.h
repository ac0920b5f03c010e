#pragma once

#include "platform/ScreenCapture.h"
#include "recording/RecorderError.h"

namespace lumaro {

enum class PlayerRecordingQuality {
    normal, ///< the screen's own pixels
    hd, ///< fitted into 1920x1080, or 1080x1920 where the picture is upright
};

/// In pixels, both even; `size` is in points.
QSize outputDimensions(const QSizeF &size, double scale, PlayerRecordingQuality quality);

/// Where a rectangle of a window lies: chooses the display that holds the larger part of the window
/// numbered `window`, the first one on a tie, and clips to it `rect`, which is in the window's
/// points with the origin at its lower left.
std::expected<CaptureArea, RecorderError> captureArea(const ShareableContent &content,
                                                      quint32 window, const QRectF &rect);

} // namespace lumaro
