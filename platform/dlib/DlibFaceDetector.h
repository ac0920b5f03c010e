#pragma once

#include "platform/FaceDetector.h"

#include <memory>

namespace lumaro {

/// dlib's frontal detector: histograms of gradients, of which it knows faces of 80 pixels and more.
/// Uses one thread, so that playback keeps the others.
class DlibFaceDetector final : public FaceDetector
{
public:
    /// docs/FACES.md has the measurements behind these.
    struct Options
    {
        /// How often the picture is halved before it is looked at first. Each time that nobody is
        /// found there, it is looked at twice as large; so smaller faces than those found are left
        /// out, and large faces cost little.
        int halvings = 2;
        /// What a face must score; 0 is what dlib itself takes for one.
        double threshold = -0.2;
    };

    DlibFaceDetector();
    explicit DlibFaceDetector(Options options);
    ~DlibFaceDetector() override;

    /// The first call also reads what dlib knows of faces, which takes longer.
    Result detect(const PixelBuffer &picture) override;

private:
    struct Detector;

    const Options m_options;
    std::unique_ptr<Detector> m_detector;
};

} // namespace lumaro
