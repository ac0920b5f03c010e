#pragma once

#include "platform/PixelBuffer.h"

#include <QList>
#include <QRectF>

#include <expected>

namespace lumaro {

/// A face in a picture.
struct FaceObservation
{
    /// In parts of the picture's width and height, from its lower left corner; may reach past its
    /// edges.
    QRectF boundingBox;

    bool operator==(const FaceObservation &) const = default;
};

enum class FaceDetectorError {
    Unavailable, ///< what it knows of faces is not installed
    Failed,
};

/// Finds the faces in pictures. Any thread, one call at a time.
class FaceDetector
{
public:
    using Result = std::expected<QList<FaceObservation>, FaceDetectorError>;

    FaceDetector() = default;
    FaceDetector(const FaceDetector &) = delete;
    FaceDetector &operator=(const FaceDetector &) = delete;
    virtual ~FaceDetector() = default;

    /// Takes as long as it needs.
    virtual Result detect(const PixelBuffer &picture) = 0;
};

} // namespace lumaro
