#pragma once

#include "platform/PixelBuffer.h"

#include <QList>
#include <QRectF>
#include <QString>

#include <expected>

namespace lumaro {

/// A frame of 1920x1080 with at most one face that somebody has marked.
struct FaceFrame
{
    PixelBuffer picture;
    /// In pixels; empty when there is no face.
    QRectF face;
};

/// Which faces to compose frames of.
enum class FaceKind { Frontal, Turned, None };

/// Faces from photographs in Debian's packages opencv-doc and python3-skimage, as high as
/// `faceHeight` of the picture, before other photographs from there. The error is an English
/// sentence.
std::expected<QList<FaceFrame>, QString> faceFrames(FaceKind kind, double faceHeight);

} // namespace lumaro
