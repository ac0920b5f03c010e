#include "player/WakefulPlayback.h"

#include "platform/KeepAwake.h"
#include "player/PlayerModel.h"

#include <QCoreApplication>

namespace lumaro {

WakefulPlayback::WakefulPlayback(const PlayerModel &player, KeepAwake &screen, QObject *parent)
    : QObject(parent)
    , m_player(player)
    , m_screen(screen)
{
    for (const auto changed :
         {&PlayerModel::isPlayingChanged, &PlayerModel::videoAspectRatioChanged,
          &PlayerModel::showsCoverChanged, &PlayerModel::youtubeContentChanged,
          &PlayerModel::okVideoContentChanged})
        connect(&player, changed, this, &WakefulPlayback::update);
    update();
}

WakefulPlayback::~WakefulPlayback()
{
    setAwake(false);
}

void WakefulPlayback::update()
{
    const bool pictureMoves =
        (m_player.videoAspectRatio() > 0 && !m_player.showsCover()) || m_player.showsWebContent();
    setAwake(m_player.isPlaying() && pictureMoves);
}

void WakefulPlayback::setAwake(bool awake)
{
    if (m_isAwake == awake)
        return;
    m_isAwake = awake;
    if (awake)
        m_screen.keepAwake(QCoreApplication::translate("WakefulPlayback", "Playing a video"));
    else
        m_screen.release();
}

} // namespace lumaro
