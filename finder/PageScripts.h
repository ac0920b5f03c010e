#pragma once

#include <QString>

namespace lumaro {

/// Posts the address of every HLS playlist that its frame loads, as ResourceMessageReader reads
/// them. For every frame, at document start.
QString resourceReporterScript();

} // namespace lumaro
