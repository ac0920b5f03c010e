#pragma once

namespace lumaro {

/// Gives the application its typeface and its way of drawing text. Call it once, after the
/// application object is made and before the first QML is loaded.
void applyStyle();

} // namespace lumaro
