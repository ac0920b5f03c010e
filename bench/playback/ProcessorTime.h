#pragma once

#include "bench/report/Report.h"

namespace lumaro {

/// Processor time of playing a film of 1920x1080, Lumaro, mpv and a bare libmpv window by turns in
/// windows of the same size. Needs a display; blocks.
QList<Row> measureProcessorTime(int rounds);

} // namespace lumaro
