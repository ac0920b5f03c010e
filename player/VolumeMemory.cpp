#include "player/VolumeMemory.h"

#include "player/PlayerModel.h"

#include <QJsonObject>

namespace lumaro {

VolumeMemory::VolumeMemory(PlayerModel &player, UserDefaults &defaults, Scheduler &scheduler,
                           QObject *parent)
    : QObject(parent)
    , m_player(player)
    , m_stored(defaults, scheduler, QStringLiteral("Lumaro.Player.Volume"))
{
    recall();
    for (const auto changed : {&PlayerModel::volumeChanged, &PlayerModel::isMutedChanged})
        connect(&player, changed, this, &VolumeMemory::store);
}

void VolumeMemory::recall()
{
    const QJsonObject stored = m_stored.read().toObject();
    const QJsonValue volume = stored.value(u"volume");
    if (!volume.isDouble())
        return;
    m_player.setVolume(volume.toDouble());
    // Unmuted at no volume is a state too.
    if (m_player.isMuted() != stored.value(u"muted").toBool(m_player.isMuted()))
        m_player.toggleMute();
}

void VolumeMemory::store()
{
    m_stored.write(QJsonObject{{QStringLiteral("volume"), m_player.volume()},
                               {QStringLiteral("muted"), m_player.isMuted()}});
}

} // namespace lumaro
