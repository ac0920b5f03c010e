#include "app/ResumingPlayback.h"

#include "app/TransportModel.h"
#include "player/PlayerModel.h"

#include <cmath>

#include <QCoreApplication>

namespace lumaro {

ResumingPlayback::ResumingPlayback(PlayerModel &player, MediaPlayer &mediaPlayer,
                                   ResumePositions &positions, Scheduler &scheduler,
                                   QObject *parent)
    : QObject(parent)
    , m_player(player)
    , m_mediaPlayer(mediaPlayer)
    , m_positions(positions)
    , m_scheduler(scheduler)
{
    // Each of these comes before the position becomes that of something else.
    connect(&player, &PlayerModel::currentURLChanged, this, &ResumingPlayback::end);
    connect(&player, &PlayerModel::mediaLoadIDChanged, this, &ResumingPlayback::begin);
    connect(&mediaPlayer, &MediaPlayer::currentItemChanged, this, &ResumingPlayback::resume);
    connect(&mediaPlayer, &MediaPlayer::itemStarted, this, &ResumingPlayback::start);
    connect(&player, &PlayerModel::currentTimeChanged, this, &ResumingPlayback::follow);
    connect(&player, &PlayerModel::durationChanged, this, &ResumingPlayback::follow);
}

ResumingPlayback::~ResumingPlayback()
{
    end();
}

Task<> ResumingPlayback::begin()
{
    end();
    const QUrl url = m_player.currentURL();
    if (!url.isLocalFile())
        co_return;
    const std::stop_token stop = m_looking.get_token();
    // A folder from elsewhere may take its time.
    const auto looking = m_scheduler.inBackground([url] { return FileIdentity::of(url); });
    const std::optional<FileIdentity> file = co_await looking;
    if (stop.stop_requested() || !file)
        co_return;
    m_viewing = Viewing{.file = *file, .resumeAt = m_positions.position(*file)};
    if (!m_hasStarted) {
        resume();
        co_return;
    }
    // Who has seen some of it by now does not want to be elsewhere.
    if (m_player.currentTime() > earliest)
        m_viewing->resumeAt.reset();
    if (m_viewing->resumeAt)
        m_mediaPlayer.seek(*m_viewing->resumeAt);
    announce();
}

void ResumingPlayback::resume()
{
    if (!m_mediaPlayer.hasItem())
        end();
    else if (m_viewing && m_viewing->resumeAt && !m_hasStarted)
        m_mediaPlayer.seek(*m_viewing->resumeAt);
}

void ResumingPlayback::start()
{
    if (!std::exchange(m_hasStarted, true))
        announce();
}

void ResumingPlayback::announce()
{
    if (!m_viewing || !m_viewing->resumeAt)
        return;
    m_player.showToast(ResumingPlayback::tr("Resumed at %1 · Home plays from the beginning")
                           .arg(formatTime(*m_viewing->resumeAt)),
                       PlayerModel::toastDuration);
}

void ResumingPlayback::follow()
{
    if (!m_viewing || !m_hasStarted)
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
    if (m_viewing && m_hasStarted)
        keepPosition();
    forget();
    m_hasStarted = false;
    m_duration = 0;
}

void ResumingPlayback::forget()
{
    std::exchange(m_looking, std::stop_source()).request_stop();
    m_viewing.reset();
}

} // namespace lumaro
