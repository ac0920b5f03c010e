#include "display/SmartReframe.h"

#include <algorithm>

namespace lumaro::smartReframe {

namespace {

constexpr double smoothingFactor = 0.35;

double area(const FaceObservation &face)
{
    return face.boundingBox.width() * face.boundingBox.height();
}

} // namespace

double targetPan(const QList<FaceObservation> &faces)
{
    const auto largest = std::ranges::max_element(faces, {}, &area);
    if (largest == faces.end())
        return 0;
    const double middle = largest->boundingBox.x() + largest->boundingBox.width() * 0.5;
    return std::clamp((0.5 - middle) * 2, -1.0, 1.0);
}

double smoothedPan(double pan, double target)
{
    return pan + (target - pan) * smoothingFactor;
}

} // namespace lumaro::smartReframe
