#include "player/PlayerRecordingSurface.h"

namespace lumaro {

void PlayerSurfaceRegistry::setCurrentSurface(PlayerRecordingSurface *surface)
{
    m_surface = surface;
    m_object = dynamic_cast<QObject *>(surface);
}

void PlayerSurfaceRegistry::clear(const PlayerRecordingSurface *surface)
{
    if (m_surface == surface)
        setCurrentSurface(nullptr);
}

} // namespace lumaro
