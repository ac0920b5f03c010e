#pragma once

#include "platform/FaceDetector.h"

namespace lumaro {

/// Finds the faces that the test says.
class FakeFaceDetector final : public FaceDetector
{
public:
    Result detect(const PixelBuffer &) override
    {
        ++calls;
        return result;
    }

    Result result;
    int calls = 0;
};

} // namespace lumaro
