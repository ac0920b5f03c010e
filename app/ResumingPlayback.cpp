#include "app/ResumingPlayback.h"

#include "app/TransportModel.h"
#include "player/PlayerModel.h"

#include <cmath>

#include <QCoreApplication>

namespace lumaro {

ResumingPlayback::ResumingPlayback(PlayerModel &player, MediaPlayer &mediaPlayer,
                                   ResumePositions &positions, QObject *parent)
    : QObject(parent)
    , m_player(player)
    , m_mediaPlayer(mediaPlayer)
    , m_positions(positions)
{
    // Each of these comes before the position becomes that of something else.
    connect(&player, &PlayerModel::currentURLChanged, this, &ResumingPlayback::end);
    connect(&player, &PlayerModel::mediaLoadIDChanged, this, &ResumingPlayback::begin);
    connect(&mediaPlayer, &MediaPlayer::currentItemChanged, this, &ResumingPlayback::resume);
    connect(&mediaPlayer, &MediaPlayer::itemStarted, this, &ResumingPlayback::announce);
    connect(&player, &PlayerModel::currentTimeChanged, this, &ResumingPlayback::follow);
    connect(&player, &PlayerModel::durationChanged, this, &ResumingPlayback::follow);
}

ResumingPlayback::~ResumingPlayback()
{
    end();
}

void ResumingPlayback::begin()
{
    end();
    const auto file = FileIdentity::of(m_player.currentURL());
    if (!file)
        return;
    m_viewing = Viewing{.file = *file, .resumeAt = m_positions.position(*file)};
}

void ResumingPlayback::resume()
{
    if (!m_mediaPlayer.hasItem())
        end();
    else if (m_viewing && m_viewing->resumeAt && !m_viewing->hasStarted)
        m_mediaPlayer.seek(*m_viewing->resumeAt);
}

void ResumingPlayback::announce()
{
    if (!m_viewing || std::exchange(m_viewing->hasStarted, true) || !m_viewing->resumeAt)
        return;
    m_player.showToast(ResumingPlayback::tr("Resumed at %1 · Home plays from the beginning")
                           .arg(formatTime(*m_viewing->resumeAt)),
                       PlayerModel::toastDuration);
}

void ResumingPlayback::follow()
{
    if (!m_viewing || !m_viewing->hasStarted)
        return;
    m_viewing->position = m_player.currentTime();
    m_duration = m_player.duration();
    if (std::abs(m_viewing->position - m_viewing->storedPosition) >= storeInterval)
        keepPosition();
}

void ResumingPlayback::keepPosition()
{
    // A file whose length never became known was never seen.
    if (m_duration <= 0)
        return;
    Viewing &viewing = *m_viewing;
    viewing.storedPosition = viewing.position;
    const bool isUnderWay = viewing.position >= earliest && viewing.position <= latest * m_duration;
    if (m_duration > shortest && isUnderWay)
        m_positions.remember(viewing.file, viewing.position);
    else
        m_positions.forget(viewing.file);
}

void ResumingPlayback::end()
{
    if (m_viewing && m_viewing->hasStarted)
        keepPosition();
    m_viewing.reset();
    m_duration = 0;
}

} // namespace lumaro
