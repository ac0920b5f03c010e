#pragma once

#include "platform/FaceDetector.h"

#include <memory>

namespace lumaro {

/// OpenCV's cascades, to compare with, on a picture made small first.
class CascadeFaceDetector final : public FaceDetector
{
public:
    struct Options
    {
        /// The picture is made no higher than this, in pixels; 0 leaves it as it is.
        int height = 480;
        /// Of the picture's height: smaller faces are not looked for.
        double smallestFace = 0.05;
        QString frontalCascade = QStringLiteral("haarcascades/haarcascade_frontalface_alt2.xml");
        /// Finds left profiles, and in the mirrored picture right ones; empty for none.
        QString profileCascade = QStringLiteral("haarcascades/haarcascade_profileface.xml");
        double scaleStep = 1.15;
        int frontalNeighbours = 3;
        int profileNeighbours = 4;
    };

    CascadeFaceDetector();
    explicit CascadeFaceDetector(Options options);
    ~CascadeFaceDetector() override;

    /// The first call also reads the cascades, which takes longer.
    Result detect(const PixelBuffer &picture) override;

private:
    struct Cascades;

    const Options m_options;
    std::unique_ptr<Cascades> m_cascades;
};

} // namespace lumaro
