#pragma once

#include "bench/report/Report.h"

namespace lumaro {

/// The memory of a player that nothing was opened in, Lumaro and mpv. Needs a display; blocks.
Row measureIdling();

} // namespace lumaro
