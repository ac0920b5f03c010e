#include "player/PlayerModel.h"

#include "platform/FilePanels.h"
#include "platform/HttpClient.h"
#include "platform/NotificationCenter.h"
#include "player/PlaylistFile.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace lumaro {

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds timeObserverInterval = 250ms;
constexpr std::chrono::milliseconds bufferingIndicatorDelay = 450ms;

/// Seconds by which the data of a film may begin late and end early.
constexpr double reachTolerance = 1;

/// `text` trimmed, or `fallback` when it is absent or blank.
QString trimmedOr(const std::optional<QString> &text, const QString &fallback)
{
    const QString trimmed = text.value_or(QString()).trimmed();
    return trimmed.isEmpty() ? fallback : trimmed;
}

} // namespace

QString productName()
{
    return QStringLiteral("Lumaro");
}

PlayerModel::PlayerModel(const PlayerPlatform &platform, QObject *parent)
    : QObject(parent)
    , m_platform(platform)
    , m_title(productName())
    , m_itemTitle(productName())
    , m_mediaLoadID(QUuid::createUuid())
    , m_remoteRequestID(QUuid::createUuid())
    , m_bufferingIndicatorTask(platform.scheduler)
    , m_toastTask(platform.scheduler)
{
    MediaPlayer *player = &m_platform.player;
    player->setPeriodicTimeObserver(timeObserverInterval, [this] { observeTime(); });
    connect(player, &MediaPlayer::timeControlStatusChanged, this,
            &PlayerModel::refreshBufferingState);
    connect(player, &MediaPlayer::playbackBufferEmptyChanged, this,
            &PlayerModel::refreshBufferingState);
    connect(player, &MediaPlayer::playbackLikelyToKeepUpChanged, this,
            &PlayerModel::refreshBufferingState);
}

PlayerModel::~PlayerModel()
{
    m_platform.player.setPeriodicTimeObserver(timeObserverInterval, {});
    if (m_monitorsInstalled) {
        m_platform.input.setKeyDownHandler({});
        m_platform.input.setMouseMovedHandler({});
    }
    m_remoteLoad.request_stop();
    m_import.request_stop();
    m_lookUp.request_stop();
    m_lifetime.request_stop();
}

std::optional<MediaPlayer::TimeRange> PlayerModel::seekableRange() const
{
    if (showsWebContent())
        return m_duration > 0 ? std::optional(MediaPlayer::TimeRange{0, m_duration}) : std::nullopt;
    return m_platform.player.hasItem() ? m_platform.player.seekableRange() : std::nullopt;
}

// Opening

Task<> PlayerModel::openRemote(QString address, std::optional<QString> displayName)
{
    cancelLoads();
    const QUuid requestID = m_remoteRequestID;
    const std::optional<QUrl> url = remoteUrl(normalizedRemoteAddress(address));
    if (!url) {
        publish(m_errorMessage, tr("Enter a valid HTTP or HTTPS address."),
                &PlayerModel::errorMessageChanged);
        co_return;
    }
    publish(m_errorMessage, QString(), &PlayerModel::errorMessageChanged);
    const QString shownTitle = trimmedOr(displayName, productName());

    if (const auto youTube = YouTubeContent::fromUrl(*url)) {
        openWebContent(YouTubeSource{*youTube, shownTitle});
    } else if (const auto okVideo = OKVideoContent::fromUrl(*url)) {
        openWebContent(OKVideoSource{*okVideo, shownTitle});
    } else if (isIPTVPlaylistURL(*url)) {
        co_await loadM3U(*url, std::move(displayName), requestID);
        co_return;
    } else {
        play(*url, shownTitle, pathExtension(*url) == u"m3u8");
    }
    Q_EMIT sourceOpened(*url, displayName.value_or(QString()).trimmed());
}

void PlayerModel::play(const QUrl &url, const std::optional<QString> &displayName,
                       bool isLiveStream)
{
    m_lookUp.request_stop();
    playOn(url, displayName, isLiveStream);
}

void PlayerModel::playOn(const QUrl &url, const std::optional<QString> &displayName,
                         bool isLiveStream)
{
    publish(m_currentURL, url, &PlayerModel::currentURLChanged);
    publish(m_videoAspectRatio, 0.0, &PlayerModel::videoAspectRatioChanged);
    publish(m_showsCover, false, &PlayerModel::showsCoverChanged);
    publish(m_videoAspectMediaLoadID, QUuid(), &PlayerModel::videoAspectMediaLoadIDChanged);
    publish(m_mediaLoadID, QUuid::createUuid(), &PlayerModel::mediaLoadIDChanged);

    setWebContent(std::nullopt, std::nullopt);
    publish(m_errorMessage, QString(), &PlayerModel::errorMessageChanged);

    QString shownTitle = displayName.value_or(lastPathComponent(url));
    if (!displayName && shownTitle.isEmpty())
        shownTitle = url.toString(QUrl::FullyEncoded);
    nameItem(shownTitle);

    publish(m_lastPlayableSource, MediaSource{url, m_title, isLiveStream},
            &PlayerModel::lastPlayableSourceChanged);
    publish(m_isLiveStream, isLiveStream, &PlayerModel::isLiveStreamChanged);
    hideBufferingIndicator();

    // A web player may have had the controls meanwhile.
    m_platform.player.setVolume(m_volume);
    m_platform.player.setMuted(m_isMuted);
    m_platform.player.replaceItem(url);
    m_platform.player.play();
    publish(m_isPlaying, true, &PlayerModel::isPlayingChanged);
    refreshBufferingState();
}

void PlayerModel::nameItem(const QString &name)
{
    publish(m_title, name, &PlayerModel::titleChanged);
    publish(m_itemTitle, name, &PlayerModel::itemTitleChanged);
}

void PlayerModel::playFile(const QUrl &url)
{
    cancelLoads();
    play(url, url.fileName(), false);
    Q_EMIT sourceOpened(url, QString());
}

void PlayerModel::playFiles(const QList<QUrl> &files)
{
    cancelLoads();
    QList<PlaylistEntry> entries;
    for (const QUrl &file : files)
        entries.append({.id = QUuid::createUuid(),
                        .name = file.fileName(),
                        .url = file,
                        .logoURL = {},
                        .groupTitle = {},
                        .countryCode = {}});
    m_playlist = PlaylistEntries::fromList(entries);
    m_isPlaylistRemote = false;
    Q_EMIT playlistChanged();
    playFile(files.first());
}

Task<> PlayerModel::openFile()
{
    const OpenPanelRequest request{
        .title = tr("Choose Media to Play"),
        .prompt = {},
        .typeDescription = tr("Media files"),
        .extensions = supportedMediaExtensions(),
    };
    const std::stop_token stop = m_lifetime.get_token();
    const std::optional<QUrl> file = co_await m_platform.panels.chooseFile(request, stop);
    if (file && !stop.stop_requested())
        playFile(*file);
}

// Playlists

std::stop_token PlayerModel::beginLookUp()
{
    std::exchange(m_lookUp, std::stop_source()).request_stop();
    return m_lookUp.get_token();
}

void PlayerModel::cancelLoads()
{
    m_lookUp.request_stop();
    m_remoteRequestID = QUuid::createUuid();
    std::exchange(m_remoteLoad, std::stop_source()).request_stop();
    std::exchange(m_import, std::stop_source()).request_stop();
    m_isLoadingRemotePlaylist = false;
    m_isImporting = false;
    updateIsLoading();
}

void PlayerModel::updateIsLoading()
{
    publish(m_isLoading, m_isLoadingRemotePlaylist || m_isImporting,
            &PlayerModel::isLoadingChanged);
}

Task<> PlayerModel::loadM3U(QUrl url, std::optional<QString> displayName, QUuid requestID)
{
    m_isLoadingRemotePlaylist = true;
    updateIsLoading();

    const std::stop_token stop = m_remoteLoad.get_token();
    const PlaylistResult result = co_await fetchPlaylist(url, stop);
    if (stop.stop_requested() || m_remoteRequestID != requestID)
        co_return;

    m_isLoadingRemotePlaylist = false;
    if (result) {
        m_playlist = *result;
        m_isPlaylistRemote = true;
        Q_EMIT playlistChanged();
        publish(m_title, trimmedOr(displayName, PlayerModel::tr("IPTV Playlist")),
                &PlayerModel::titleChanged);
        Q_EMIT sourceOpened(url, displayName.value_or(QString()).trimmed());
    } else {
        publish(m_errorMessage, tr("Could not open playlist: %1").arg(result.error()),
                &PlayerModel::errorMessageChanged);
    }
    updateIsLoading();
}

Task<PlayerModel::PlaylistResult> PlayerModel::fetchPlaylist(QUrl url, std::stop_token stop)
{
    Scheduler &scheduler = m_platform.scheduler;
    const HttpRequest request{url, maximumPlaylistSize};
    auto response = co_await m_platform.http.get(request, stop);
    if (!response)
        co_return std::unexpected(response.error().description());
    if (response->status < 200 || response->status > 299)
        co_return std::unexpected(tr("The server answered with status %1.").arg(response->status));
    if (stop.stop_requested())
        co_return std::unexpected(QString());
    const auto parsing = scheduler.inBackground(
        [bytes = std::move(response->body), url] { return readPlaylist(bytes, url); });
    co_return co_await parsing;
}

Task<std::optional<PlaylistEntries>> PlayerModel::importLocalM3U(std::optional<QString> displayName)
{
    const std::optional<QUrl> file = co_await chooseM3UFile();
    if (!file)
        co_return std::nullopt;
    const PlaylistResult result = co_await importM3UFile(*file, std::move(displayName));
    co_return result ? std::optional(*result) : std::nullopt;
}

Task<std::optional<QUrl>> PlayerModel::chooseM3UFile()
{
    const OpenPanelRequest request{
        .title = tr("Import M3U Playlist"),
        .prompt = tr("Import"),
        .typeDescription = tr("M3U playlists and plain text"),
        .extensions = {QStringLiteral("m3u"), QStringLiteral("txt")},
    };
    const std::stop_token stop = m_lifetime.get_token();
    const std::optional<QUrl> file = co_await m_platform.panels.chooseFile(request, stop);
    co_return stop.stop_requested() ? std::nullopt : file;
}

Task<PlayerModel::PlaylistResult> PlayerModel::importM3UFile(QUrl file,
                                                             std::optional<QString> displayName)
{
    cancelLoads();
    publish(m_errorMessage, QString(), &PlayerModel::errorMessageChanged);
    m_isImporting = true;
    updateIsLoading();

    const std::stop_token stop = m_import.get_token();
    const auto reading = m_platform.files.inBackground(
        [file] { return readPlaylistFile(file, maximumPlaylistSize); });
    PlaylistResult result = co_await reading;
    if (!result)
        result = std::unexpected(tr("Could not import playlist: %1").arg(result.error()));
    if (stop.stop_requested())
        co_return result;

    m_playlist = result.value_or(PlaylistEntries());
    m_isPlaylistRemote = false;
    Q_EMIT playlistChanged();
    if (result) {
        publish(m_title, trimmedOr(displayName, QFileInfo(file.toLocalFile()).completeBaseName()),
                &PlayerModel::titleChanged);
        Q_EMIT sourceOpened(file, displayName.value_or(QString()).trimmed());
    } else {
        publish(m_errorMessage, result.error(), &PlayerModel::errorMessageChanged);
    }
    m_isImporting = false;
    updateIsLoading();
    co_return result;
}

void PlayerModel::clearNetworkStream()
{
    cancelLoads();
    if (!m_playlist.isEmpty()) {
        m_playlist = {};
        Q_EMIT playlistChanged();
    }
    publish(m_errorMessage, QString(), &PlayerModel::errorMessageChanged);
    discardLastRemoteSource();
    stop();
}

// Transport

const WebPlayerRegistry *PlayerModel::activeWebPlayer() const
{
    if (m_youtubeContent)
        return &m_platform.youTube;
    if (m_okVideoContent)
        return &m_platform.okVideo;
    return nullptr;
}

void PlayerModel::togglePlayback()
{
    if (const WebPlayerRegistry *web = activeWebPlayer()) {
        web->togglePlayback();
        m_webPlayStateIsOldUntil = m_platform.scheduler.now() + webCommandDuration;
        publish(m_isPlaying, !m_isPlaying, &PlayerModel::isPlayingChanged);
        m_webPauseIsDue = !m_webPlayerHasBegun && !m_isPlaying;
        return;
    }
    MediaPlayer &player = m_platform.player;
    if (!player.hasItem()) {
        replayLastSourceOrShowToast();
        return;
    }
    if (player.rate() > 0)
        player.pause();
    else
        player.play();
    publish(m_isPlaying, player.rate() > 0, &PlayerModel::isPlayingChanged);
}

void PlayerModel::removePlatformItem()
{
    m_platform.player.pause();
    m_platform.player.removeItem();
    publish(m_currentTime, 0.0, &PlayerModel::currentTimeChanged);
    publish(m_duration, 0.0, &PlayerModel::durationChanged);
    publish(m_isLiveStream, false, &PlayerModel::isLiveStreamChanged);
    hideBufferingIndicator();
}

void PlayerModel::stop()
{
    m_lookUp.request_stop();
    publish(m_currentURL, QUrl(), &PlayerModel::currentURLChanged);
    removePlatformItem();
    publish(m_videoAspectRatio, 0.0, &PlayerModel::videoAspectRatioChanged);
    publish(m_showsCover, false, &PlayerModel::showsCoverChanged);
    publish(m_videoAspectMediaLoadID, QUuid(), &PlayerModel::videoAspectMediaLoadIDChanged);
    publish(m_isPlaying, false, &PlayerModel::isPlayingChanged);
    nameItem(productName());
    setWebContent(std::nullopt, std::nullopt);
}

void PlayerModel::skip(double seconds)
{
    if (const WebPlayerRegistry *web = activeWebPlayer())
        web->skip(seconds);
    else
        seek(m_currentTime + seconds);
}

void PlayerModel::seek(double seconds)
{
    const auto reachable = seekableRange();
    if (!reachable || !std::isfinite(seconds))
        return;
    double target = seconds;
    if (m_duration > 0) {
        target = std::clamp(seconds, 0.0, m_duration);
        // Of a film, somewhere else is no substitute; of a stream without an end, the nearest is.
        if (target < reachable->start - reachTolerance || target > reachable->end + reachTolerance)
            return;
    }
    target = std::max(reachable->start, std::min(target, reachable->end));
    if (const WebPlayerRegistry *web = activeWebPlayer()) {
        web->seek(target);
        m_webTimeIsOldUntil = m_platform.scheduler.now() + webCommandDuration;
    } else {
        m_platform.player.seek(target);
    }
    publish(m_currentTime, target, &PlayerModel::currentTimeChanged);
}

void PlayerModel::setVolume(double value)
{
    if (std::isnan(value))
        return;
    publish(m_volume, std::clamp(value, 0.0, 1.0), &PlayerModel::volumeChanged);
    publish(m_isMuted, m_volume == 0, &PlayerModel::isMutedChanged);
    if (const WebPlayerRegistry *web = activeWebPlayer()) {
        web->setVolume(m_volume);
        return;
    }
    m_platform.player.setVolume(m_volume);
    m_platform.player.setMuted(m_isMuted);
}

void PlayerModel::adjustVolume(double delta)
{
    setVolume(std::clamp(std::round((m_volume + delta) * 100) / 100, 0.0, 1.0));
    const QString text = m_volume == 0 ? tr("Volume: 0% (Muted)")
                                       : tr("Volume: %1%").arg(std::lround(m_volume * 100));
    showToast(text, volumeToastDuration);
}

void PlayerModel::toggleMute()
{
    publish(m_isMuted, !m_isMuted, &PlayerModel::isMutedChanged);
    if (const WebPlayerRegistry *web = activeWebPlayer())
        web->setMuted(m_isMuted);
    else
        m_platform.player.setMuted(m_isMuted);
}

void PlayerModel::showToast(const QString &message, Scheduler::Duration duration)
{
    publish(m_toastMessage, message, &PlayerModel::toastMessageChanged);
    m_toastTask.start(duration, [this] {
        publish(m_toastMessage, QString(), &PlayerModel::toastMessageChanged);
    });
}

// Replaying and forgetting

void PlayerModel::replayLastSourceOrShowToast()
{
    if (!m_lastPlayableSource) {
        showToast(tr("No media or URL is available. Open a file or enter a stream URL."),
                  toastDuration);
        return;
    }
    if (const auto *media = std::get_if<MediaSource>(&*m_lastPlayableSource)) {
        // play() replaces the remembered source, which must not happen to its own arguments.
        const MediaSource source = *media;
        play(source.url, source.title, source.isLiveStream);
    } else {
        showWebContent(*m_lastPlayableSource);
    }
}

void PlayerModel::openWebContent(const LastPlayableSource &source)
{
    publish(m_lastPlayableSource, source, &PlayerModel::lastPlayableSourceChanged);
    showWebContent(source);
}

void PlayerModel::showWebContent(const LastPlayableSource &source)
{
    const auto *youTube = std::get_if<YouTubeSource>(&source);
    const auto *okVideo = std::get_if<OKVideoSource>(&source);
    m_lookUp.request_stop();
    removePlatformItem();
    publish(m_currentURL, QUrl(), &PlayerModel::currentURLChanged);
    setWebContent(youTube ? std::optional(youTube->content) : std::nullopt,
                  okVideo ? std::optional(okVideo->content) : std::nullopt);
    nameItem(std::visit([](const auto &content) { return content.title; }, source));
    m_webPauseIsDue = false;
    publish(m_isPlaying, true, &PlayerModel::isPlayingChanged);
}

void PlayerModel::setWebContent(const std::optional<YouTubeContent> &youTube,
                                const std::optional<OKVideoContent> &okVideo)
{
    if (m_youtubeContent == youTube && m_okVideoContent == okVideo)
        return;
    const bool wasShown = showsWebContent();
    m_webPlayStateIsOldUntil = {};
    m_webTimeIsOldUntil = {};
    m_webPlayerHasBegun = false;
    // What ends goes first: nobody sees both.
    if (!youTube)
        publish(m_youtubeContent, youTube, &PlayerModel::youtubeContentChanged);
    publish(m_okVideoContent, okVideo, &PlayerModel::okVideoContentChanged);
    publish(m_youtubeContent, youTube, &PlayerModel::youtubeContentChanged);
    publish(m_currentTime, 0.0, &PlayerModel::currentTimeChanged);
    publish(m_duration, 0.0, &PlayerModel::durationChanged);
    if (showsWebContent() != wasShown)
        Q_EMIT showsWebContentChanged();
}

void PlayerModel::discardLastRemoteSource()
{
    if (!m_lastPlayableSource)
        return;
    const auto *media = std::get_if<MediaSource>(&*m_lastPlayableSource);
    if (!media || !media->url.isLocalFile())
        publish(m_lastPlayableSource, std::nullopt, &PlayerModel::lastPlayableSourceChanged);
}

void PlayerModel::updateStreamTitle(const QString &name)
{
    if (m_isLiveStream)
        nameItem(trimmedOr(name, productName()));
}

// Observing a web player

void PlayerModel::webPlayerBecameReady()
{
    const WebPlayerRegistry *web = activeWebPlayer();
    if (!web)
        return;
    web->setVolume(m_volume);
    if (m_isMuted)
        web->setMuted(true);
}

void PlayerModel::observeWebPlayback(const WebPlayback &playback)
{
    if (!showsWebContent())
        return;
    const Scheduler::TimePoint now = m_platform.scheduler.now();
    if (now >= m_webTimeIsOldUntil)
        publish(m_currentTime, playback.time, &PlayerModel::currentTimeChanged);
    publish(m_duration, playback.duration, &PlayerModel::durationChanged);
    if (playback.isPlaying.value_or(false) && !std::exchange(m_webPlayerHasBegun, true)
        && m_webPauseIsDue) {
        m_webPauseIsDue = false;
        activeWebPlayer()->pause();
        m_webPlayStateIsOldUntil = now + webCommandDuration;
    }
    if (playback.isPlaying && now >= m_webPlayStateIsOldUntil)
        publish(m_isPlaying, *playback.isPlaying, &PlayerModel::isPlayingChanged);
}

void PlayerModel::webPlaybackFailed()
{
    if (!showsWebContent())
        return;
    publish(m_currentTime, 0.0, &PlayerModel::currentTimeChanged);
    publish(m_duration, 0.0, &PlayerModel::durationChanged);
    publish(m_isPlaying, false, &PlayerModel::isPlayingChanged);
}

void PlayerModel::webPlaybackRestarted()
{
    if (!showsWebContent())
        return;
    m_webPlayerHasBegun = false;
    m_webPauseIsDue = false;
    publish(m_isPlaying, true, &PlayerModel::isPlayingChanged);
}

// Observing the platform player

void PlayerModel::observeTime()
{
    const MediaPlayer &player = m_platform.player;
    if (!player.hasItem())
        return;
    if (const auto time = player.currentTime(); time && std::isfinite(*time))
        publish(m_currentTime, *time, &PlayerModel::currentTimeChanged);

    const double duration = player.duration().value_or(0);
    publish(m_duration, std::isfinite(duration) ? duration : 0, &PlayerModel::durationChanged);

    // Before its size, which makes it a picture.
    publish(m_showsCover, player.showsCover(), &PlayerModel::showsCoverChanged);
    if (const QSize size = player.presentationSize(); !size.isEmpty()) {
        publish(m_videoAspectRatio, double(size.width()) / size.height(),
                &PlayerModel::videoAspectRatioChanged);
        publish(m_videoAspectMediaLoadID, m_mediaLoadID,
                &PlayerModel::videoAspectMediaLoadIDChanged);
    }
    publish(m_isPlaying, player.rate() > 0, &PlayerModel::isPlayingChanged);
}

bool PlayerModel::isWaitingForLiveData() const
{
    return m_isLiveStream && m_platform.player.hasItem()
        && m_platform.player.timeControlStatus()
        == MediaPlayer::TimeControlStatus::WaitingToPlayAtSpecifiedRate;
}

void PlayerModel::refreshBufferingState()
{
    if (isWaitingForLiveData())
        showBufferingIndicatorAfterDelay();
    else
        hideBufferingIndicator();
}

void PlayerModel::showBufferingIndicatorAfterDelay()
{
    if (m_isBuffering || m_bufferingIndicatorTask.isPending())
        return;
    m_bufferingIndicatorTask.start(bufferingIndicatorDelay, [this] {
        publish(m_isBuffering, isWaitingForLiveData(), &PlayerModel::isBufferingChanged);
    });
}

void PlayerModel::hideBufferingIndicator()
{
    m_bufferingIndicatorTask.cancel();
    publish(m_isBuffering, false, &PlayerModel::isBufferingChanged);
}

// Keyboard

void PlayerModel::installKeyboardShortcuts()
{
    m_monitorsInstalled = true;
    m_platform.input.setKeyDownHandler(
        [this](const KeyDown &event) { return handleKeyDown(event); });
    m_platform.input.setMouseMovedHandler([this](QObject *window) {
        m_platform.notifications.post(QString::fromUtf16(notification::playerMouseMoved), window);
    });
}

bool PlayerModel::handleKeyDown(const KeyDown &event)
{
    if (event.inPanel || event.inTextView || event.windowTitle == u"M3U8 Stream Finder")
        return false;
    switch (event.key) {
    case Qt::Key_Up:
        return handleVolumeKey(+1, event.modifiers);
    case Qt::Key_Down:
        return handleVolumeKey(-1, event.modifiers);
    case Qt::Key_Right:
        return handleSkipKey(+1, event);
    case Qt::Key_Left:
        return handleSkipKey(-1, event);
    case Qt::Key_Space:
        if (!event.isRepeat)
            togglePlayback();
        return true;
    case Qt::Key_K:
        if (!event.modifiers.testFlag(Qt::ControlModifier))
            return false;
        if (!event.isRepeat)
            stop();
        return true;
    default:
        return false;
    }
}

bool PlayerModel::handleVolumeKey(double direction, Qt::KeyboardModifiers modifiers)
{
    constexpr Qt::KeyboardModifiers all =
        Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if ((modifiers & all) == Qt::MetaModifier)
        return false;
    double step = 0.05;
    if (modifiers.testFlag(Qt::ShiftModifier))
        step = 0.01;
    else if (modifiers.testFlag(Qt::ControlModifier))
        step = 0.2;
    else if (modifiers.testFlag(Qt::AltModifier))
        step = 0.1;
    adjustVolume(direction * step);
    return true;
}

bool PlayerModel::handleSkipKey(double direction, const KeyDown &event)
{
    const bool command = event.modifiers.testFlag(Qt::ControlModifier);
    const bool option = event.modifiers.testFlag(Qt::AltModifier);
    const bool shiftOrControl = event.modifiers.testAnyFlags(Qt::ShiftModifier | Qt::MetaModifier);
    if (shiftOrControl && !command && !option)
        return false;
    double seconds = 5;
    if (command && option)
        seconds = 300;
    else if (command)
        seconds = 60;
    else if (option)
        seconds = 20;
    if (!event.isRepeat)
        skip(direction * seconds);
    return true;
}

} // namespace lumaro
