#pragma once

class QQuickWindow;

namespace lumaro {

/// Whether the processor draws here what is a graphics card's elsewhere. Asks an OpenGL context of
/// its own at the first call, which takes some milliseconds. Main thread.
bool isDrawnInSoftware();

/// Lets one of the windows given here draw at a time. Mesa's llvmpipe, at least up to 22.3, looks
/// for the readers of a texture in all contexts' frames, also in those that another thread is
/// ending (llvmpipe_flush_resource), and crashes at times. Main thread; other windows are left
/// alone.
void drawInTurns(QQuickWindow &window);

} // namespace lumaro
