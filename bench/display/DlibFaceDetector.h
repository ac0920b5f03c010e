#pragma once

#include "platform/FaceDetector.h"

#include <memory>

namespace lumaro {

/// dlib's frontal detector, to compare with. It knows faces of 80 pixels and more.
class DlibFaceDetector final : public FaceDetector
{
public:
    /// The picture is made `factor` times as large first, 1 or 2.
    explicit DlibFaceDetector(int factor);
    ~DlibFaceDetector() override;

    Result detect(const PixelBuffer &picture) override;

private:
    struct Detector;

    const int m_factor;
    std::unique_ptr<Detector> m_detector;
};

} // namespace lumaro
