#include "app/RemoteControl.h"

#include "app/MainWindowModel.h"
#include "player/PlayerModel.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace lumaro {

namespace {

/// Seconds by which the position may be somewhere else than expected without having jumped.
constexpr double jumpTolerance = 1;

double secondsOf(MediaCommands::Microseconds time)
{
    return double(time.count()) / 1e6;
}

MediaCommands::Microseconds microseconds(double seconds)
{
    // A broken file may tell any time; this is more than any film's, and still a number.
    constexpr double most = 1e9;
    return MediaCommands::Microseconds(std::llround(std::clamp(seconds, -most, most) * 1e6));
}

/// Of a server no more than its name: passwords and tokens stand in paths and queries too, and
/// every program of the session can read what is told here.
QUrl publicAddress(const QUrl &url)
{
    if (url.isLocalFile())
        return url;
    return url.adjusted(QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery
                        | QUrl::RemoveFragment);
}

/// Why the file at `path` cannot be opened; empty when it can.
QString problemWith(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return RemoteControl::tr("The file does not exist.");
    if (!info.isFile())
        return RemoteControl::tr("It is not a file.");
    return info.isReadable() ? QString() : RemoteControl::tr("The file could not be read.");
}

} // namespace

RemoteControl::RemoteControl(PlayerModel &player, MainWindowModel &window, Scheduler &scheduler,
                             MediaControls &controls, QObject *parent)
    : QObject(parent)
    , m_player(player)
    , m_window(window)
    , m_scheduler(scheduler)
    , m_controls(controls)
    , m_publishTask(scheduler)
{
    for (const auto changed :
         {&PlayerModel::titleChanged, &PlayerModel::itemTitleChanged,
          &PlayerModel::isPlayingChanged, &PlayerModel::durationChanged,
          &PlayerModel::currentTimeChanged, &PlayerModel::volumeChanged,
          &PlayerModel::isMutedChanged, &PlayerModel::currentURLChanged,
          &PlayerModel::playlistChanged, &PlayerModel::lastPlayableSourceChanged})
        connect(&player, changed, this, &RemoteControl::publishSoon);
    for (const auto changed :
         {&MainWindowModel::currentChannelChanged, &MainWindowModel::isFullScreenChanged})
        connect(&window, changed, this, &RemoteControl::publishSoon);
    for (const auto begun : {&PlayerModel::mediaLoadIDChanged, &PlayerModel::youtubeContentChanged,
                             &PlayerModel::okVideoContentChanged})
        connect(&player, begun, this, &RemoteControl::beginTrack);
    connect(&player, &PlayerModel::currentTimeChanged, this, &RemoteControl::followPosition);
    connect(&player, &PlayerModel::isPlayingChanged, this,
            [this] { expectPosition(m_player.currentTime()); });
}

RemoteControl::~RemoteControl()
{
    m_lifetime.request_stop();
    m_controls.setCommands(nullptr);
}

void RemoteControl::start()
{
    m_controls.publish(state());
    m_controls.setCommands(this);
}

// What plays

bool RemoteControl::isActive() const
{
    return !m_player.currentURL().isEmpty() || m_player.showsWebContent();
}

bool RemoteControl::canSeek() const
{
    return m_player.seekableRange().has_value();
}

MediaControlsState RemoteControl::state() const
{
    using Playback = MediaControlsState::Playback;
    const bool active = isActive();
    MediaControlsState state{
        .playback = !active        ? Playback::Stopped
            : m_player.isPlaying() ? Playback::Playing
                                   : Playback::Paused,
        .track = active ? m_track : 0,
        .title = (active ? m_player.itemTitle() : m_player.title()).left(maximumTitleLength),
        .url = publicAddress(m_player.currentURL()),
        .length = {},
        .volume = m_player.isMuted() ? 0 : m_player.volume(),
        .canPlay = active || m_player.lastPlayableSource(),
        .canSeek = canSeek(),
        .canGoNext = m_window.channelBeside(+1) >= 0,
        .canGoPrevious = m_window.channelBeside(-1) >= 0,
        .isFullScreen = m_window.isFullScreen(),
    };
    if (state.url.toEncoded().size() > maximumUriLength)
        state.url.clear();
    if (m_player.duration() > 0)
        state.length = microseconds(m_player.duration());
    return state;
}

void RemoteControl::publishSoon()
{
    // Much changes at once when something is opened; it is one piece of news.
    if (!m_publishTask.isPending())
        m_publishTask.start(Scheduler::Duration::zero(), [this] { m_controls.publish(state()); });
}

void RemoteControl::beginTrack()
{
    ++m_track;
    expectPosition(0);
    publishSoon();
}

void RemoteControl::expectPosition(double seconds)
{
    m_position = seconds;
    m_positionTime = m_scheduler.now();
}

void RemoteControl::followPosition()
{
    const std::chrono::duration<double> passed = m_scheduler.now() - m_positionTime;
    const double expected = m_position + (m_player.isPlaying() ? passed.count() : 0);
    expectPosition(m_player.currentTime());
    if (std::abs(m_player.currentTime() - expected) > jumpTolerance)
        m_controls.announceSeek(position());
}

MediaCommands::Microseconds RemoteControl::position() const
{
    return microseconds(m_player.currentTime());
}

// Commands

void RemoteControl::setFullScreen(bool fullScreen)
{
    m_window.setIsFullScreen(fullScreen);
}

void RemoteControl::play()
{
    if (!m_player.isPlaying() && (isActive() || m_player.lastPlayableSource()))
        m_player.togglePlayback();
}

void RemoteControl::pause()
{
    if (m_player.isPlaying())
        m_player.togglePlayback();
}

void RemoteControl::playPause()
{
    if (m_player.isPlaying())
        pause();
    else
        play();
}

void RemoteControl::stop()
{
    if (isActive())
        m_player.stop();
}

void RemoteControl::goToChannel(int step)
{
    m_window.playChannel(m_window.channelBeside(step));
}

void RemoteControl::seek(Microseconds offset)
{
    if (!canSeek())
        return;
    const double target = m_player.currentTime() + secondsOf(offset);
    if (m_player.duration() > 0 && target > m_player.duration())
        next();
    else
        jumpTo(std::max(target, 0.0));
}

void RemoteControl::setPosition(quint64 track, Microseconds position)
{
    const double target = secondsOf(position);
    const bool isBeyond = m_player.duration() > 0 && target > m_player.duration();
    // The client may not have heard yet that something else plays.
    if (track == m_track && isActive() && canSeek() && target >= 0 && !isBeyond)
        jumpTo(target);
}

void RemoteControl::jumpTo(double seconds)
{
    expectPosition(seconds);
    m_player.seek(seconds);
    expectPosition(m_player.currentTime());
    m_controls.announceSeek(position());
}

void RemoteControl::setVolume(double volume)
{
    if (std::isfinite(volume))
        m_player.setVolume(volume);
}

Task<std::expected<void, QString>> RemoteControl::openUri(QString uri)
{
    if (uri.size() > maximumUriLength)
        co_return std::unexpected(RemoteControl::tr("The address is too long."));
    const QString address = normalizedRemoteAddress(uri);
    if (remoteUrl(address)) {
        m_player.openRemote(address, std::nullopt);
        co_return {};
    }
    const QUrl file(uri);
    if (!file.isLocalFile() || !file.host().isEmpty())
        co_return std::unexpected(
            RemoteControl::tr("Lumaro opens files and HTTP or HTTPS addresses."));

    // A folder from elsewhere may take its time, and another program names any it likes.
    const std::stop_token stop = m_lifetime.get_token();
    const std::stop_token overtaken = m_player.beginLookUp();
    const auto looking =
        m_scheduler.inBackground([path = file.toLocalFile()] { return problemWith(path); });
    const QString problem = co_await looking;
    if (stop.stop_requested())
        co_return std::unexpected(RemoteControl::tr("Lumaro has been closed."));
    if (overtaken.stop_requested())
        co_return std::unexpected(RemoteControl::tr("Something else was opened meanwhile."));
    if (!problem.isEmpty())
        co_return std::unexpected(problem);
    m_window.openDropped({file}, QString());
    co_return {};
}

} // namespace lumaro
