#pragma once

#include "bench/report/Report.h"

namespace lumaro {

/// From the start of the process to the first picture of a film on the screen, Lumaro and mpv by
/// turns in windows of the same size. Needs a display; blocks.
Row measureStartUp(int rounds);

} // namespace lumaro
