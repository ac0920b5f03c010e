#pragma once

#include "platform/FaceDetector.h"

#include <chrono>

namespace lumaro {

/// How the column follows a face.
namespace smartReframe {

inline constexpr std::chrono::milliseconds tickInterval{450};

/// The pan that centres the largest face, of equal ones the first; the picture's centre without
/// faces.
double targetPan(const QList<FaceObservation> &faces);

/// The pan one tick later: a part of the way to `target`.
double smoothedPan(double pan, double target);

} // namespace smartReframe

} // namespace lumaro
