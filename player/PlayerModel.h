#pragma once

#include "platform/DelayedTask.h"
#include "platform/InputMonitor.h"
#include "platform/MediaPlayer.h"
#include "player/MediaSources.h"
#include "player/WebPlayback.h"
#include "player/WebPlayerRegistry.h"
#include "playlist/PlaylistEntries.h"

#include <QObject>
#include <QUuid>

#include <expected>
#include <optional>
#include <stop_token>

namespace lumaro {

class FilePanels;
class HttpClient;
class NotificationCenter;

/// The title while nothing better is known.
QString productName();

/// What a player model works with. All of it outlives the model.
struct PlayerPlatform
{
    MediaPlayer &player;
    HttpClient &http;
    FilePanels &panels;
    Scheduler &scheduler;
    /// Its background work may wait for a file system.
    Scheduler &files;
    InputMonitor &input;
    NotificationCenter &notifications;
    YouTubePlayerRegistry &youTube;
    OKVideoPlayerRegistry &okVideo;
};

/// Opens and controls every source of the main window, and publishes what its views draw. At most
/// one of a platform item, youtubeContent and okVideoContent is active at a time. Main thread.
class PlayerModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    /// What plays is called so, also where the title is that of a list which was opened since.
    Q_PROPERTY(QString itemTitle READ itemTitle NOTIFY itemTitleChanged)
    /// The last error's sentence; empty for none.
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(bool isPlaying READ isPlaying NOTIFY isPlayingChanged)
    /// Seconds.
    Q_PROPERTY(double currentTime READ currentTime NOTIFY currentTimeChanged)
    /// Seconds; 0 while unknown and for a stream without an end.
    Q_PROPERTY(double duration READ duration NOTIFY durationChanged)
    /// 0 to 1.
    Q_PROPERTY(double volume READ volume NOTIFY volumeChanged)
    Q_PROPERTY(bool isMuted READ isMuted NOTIFY isMutedChanged)
    /// Width by height; 0 while unknown.
    Q_PROPERTY(double videoAspectRatio READ videoAspectRatio NOTIFY videoAspectRatioChanged)
    Q_PROPERTY(bool isLiveStream READ isLiveStream NOTIFY isLiveStreamChanged)
    Q_PROPERTY(bool isBuffering READ isBuffering NOTIFY isBufferingChanged)
    /// The passing notice over the picture; empty for none.
    Q_PROPERTY(QString toastMessage READ toastMessage NOTIFY toastMessageChanged)
    Q_PROPERTY(QUrl currentURL READ currentURL NOTIFY currentURLChanged)
    Q_PROPERTY(lumaro::PlaylistEntries playlist READ playlist NOTIFY playlistChanged)
    /// Renewed on every load of a platform item.
    Q_PROPERTY(QUuid mediaLoadID READ mediaLoadID NOTIFY mediaLoadIDChanged)
    /// The load for which videoAspectRatio was measured; null for none.
    Q_PROPERTY(QUuid videoAspectMediaLoadID READ videoAspectMediaLoadID NOTIFY
                   videoAspectMediaLoadIDChanged)
    Q_PROPERTY(std::optional<lumaro::YouTubeContent> youtubeContent READ youtubeContent NOTIFY
                   youtubeContentChanged)
    Q_PROPERTY(std::optional<lumaro::OKVideoContent> okVideoContent READ okVideoContent NOTIFY
                   okVideoContentChanged)
    /// One of the two is active.
    Q_PROPERTY(bool showsWebContent READ showsWebContent NOTIFY showsWebContentChanged)

public:
    /// The error is a sentence.
    using PlaylistResult = std::expected<PlaylistEntries, QString>;

    /// The longest playlist that is read, in bytes; a longer one is refused.
    static constexpr qint64 maximumPlaylistSize = 256 * 1024 * 1024;
    static constexpr std::chrono::milliseconds volumeToastDuration{1200};
    static constexpr std::chrono::milliseconds toastDuration{2800};
    /// How long a web player may take to do what it was told; until then, what it tells is old.
    static constexpr std::chrono::milliseconds webCommandDuration{1000};

    explicit PlayerModel(const PlayerPlatform &platform, QObject *parent = nullptr);
    ~PlayerModel() override;

    const QString &title() const { return m_title; }
    const QString &itemTitle() const { return m_itemTitle; }
    const QString &errorMessage() const { return m_errorMessage; }
    bool isLoading() const { return m_isLoading; }
    const PlaylistEntries &playlist() const { return m_playlist; }
    /// The playlist came from the network.
    bool isPlaylistRemote() const { return m_isPlaylistRemote; }
    bool isPlaying() const { return m_isPlaying; }
    double currentTime() const { return m_currentTime; }
    double duration() const { return m_duration; }
    double volume() const { return m_volume; }
    bool isMuted() const { return m_isMuted; }
    double videoAspectRatio() const { return m_videoAspectRatio; }
    /// The picture is the cover of music, which does not move.
    bool showsCover() const { return m_showsCover; }
    QUuid mediaLoadID() const { return m_mediaLoadID; }
    QUuid videoAspectMediaLoadID() const { return m_videoAspectMediaLoadID; }
    bool isLiveStream() const { return m_isLiveStream; }
    bool isBuffering() const { return m_isBuffering; }
    const std::optional<YouTubeContent> &youtubeContent() const { return m_youtubeContent; }
    const std::optional<OKVideoContent> &okVideoContent() const { return m_okVideoContent; }
    bool showsWebContent() const { return m_youtubeContent || m_okVideoContent; }
    const QString &toastMessage() const { return m_toastMessage; }
    const QUrl &currentURL() const { return m_currentURL; }
    const std::optional<LastPlayableSource> &lastPlayableSource() const
    {
        return m_lastPlayableSource;
    }
    /// Seconds; where the current source can be sought in.
    std::optional<MediaPlayer::TimeRange> seekableRange() const;

    /// Opens a typed or pasted address. Ends when the playlist behind it, if it is one, has been
    /// loaded, has failed or has become stale.
    Task<> openRemote(QString address, std::optional<QString> displayName);
    /// Plays `url` through the platform player; without a name, the title comes from the URL.
    void play(const QUrl &url, const std::optional<QString> &displayName, bool isLiveStream);
    /// The same, not at the user's wish: what the user is about to open still takes its place.
    void playOn(const QUrl &url, const std::optional<QString> &displayName, bool isLiveStream);
    /// Plays a local file under its own name, in place of a playlist that is still loading.
    void playFile(const QUrl &url);
    /// Makes local files the playlist and plays the first of them. There is at least one.
    void playFiles(const QList<QUrl> &files);

    /// Asks for an M3U file and makes it the playlist. The imported entries; empty when the user
    /// cancelled or the import failed.
    Task<std::optional<PlaylistEntries>> importLocalM3U(std::optional<QString> displayName);
    /// The file that the user chooses for that; empty when there is none.
    Task<std::optional<QUrl>> chooseM3UFile();
    /// The same for a file that is already chosen. The error is what the player says too. When
    /// something else was opened meanwhile, only the caller hears of it.
    Task<PlaylistResult> importM3UFile(QUrl file, std::optional<QString> displayName);
    /// Asks for a local media file and plays it.
    Task<> openFile();

    /// Begins looking at a file that is to be opened afterwards, which a slow disk may hold up. The
    /// token is stopped as soon as the user opens, plays or stops something else: then the answer
    /// comes too late.
    std::stop_token beginLookUp();

    Q_INVOKABLE void togglePlayback();
    Q_INVOKABLE void stop();
    Q_INVOKABLE void skip(double seconds);
    /// Goes to `seconds`, within what can be reached; nowhere if that part of a film cannot be.
    Q_INVOKABLE void seek(double seconds);
    Q_INVOKABLE void toggleMute();
    Q_INVOKABLE void setVolume(double value);
    Q_INVOKABLE void adjustVolume(double delta);

    void showToast(const QString &message, Scheduler::Duration duration);
    void replayLastSourceOrShowToast();
    void discardLastRemoteSource();
    Q_INVOKABLE void clearNetworkStream();
    Q_INVOKABLE void dismissError()
    {
        publish(m_errorMessage, {}, &PlayerModel::errorMessageChanged);
    }
    void updateStreamTitle(const QString &name);

    /// A web player takes commands from now on; what has been told to the one before holds for it.
    void webPlayerBecameReady();
    /// What the web player tells of itself, again and again.
    void observeWebPlayback(const WebPlayback &playback);
    /// There is nothing to be seen or heard of the web player any more.
    void webPlaybackFailed();
    /// It is being loaded again.
    void webPlaybackRestarted();

    /// Installs the key-down and the mouse monitor; called once.
    void installKeyboardShortcuts();

Q_SIGNALS:
    void titleChanged();
    void itemTitleChanged();
    void errorMessageChanged();
    void isLoadingChanged();
    void playlistChanged();
    void isPlayingChanged();
    void currentTimeChanged();
    void durationChanged();
    void volumeChanged();
    void isMutedChanged();
    void videoAspectRatioChanged();
    void showsCoverChanged();
    void mediaLoadIDChanged();
    void videoAspectMediaLoadIDChanged();
    void isLiveStreamChanged();
    void isBufferingChanged();
    void youtubeContentChanged();
    void okVideoContentChanged();
    void showsWebContentChanged();
    void toastMessageChanged();
    void currentURLChanged();
    void lastPlayableSourceChanged();
    /// The user has opened a file, an address or a playlist that could be read, under the name that
    /// the user gave it, or none. What is picked out of a list is not announced.
    void sourceOpened(const QUrl &source, const QString &name);

private:
    using ChangeSignal = void (PlayerModel::*)();

    template <typename T>
    void publish(T &member, const std::type_identity_t<T> &value, ChangeSignal changed)
    {
        if (member == value)
            return;
        member = value;
        Q_EMIT(this->*changed)();
    }

    Task<> loadM3U(QUrl url, std::optional<QString> displayName, QUuid requestID);
    Task<PlaylistResult> fetchPlaylist(QUrl url, std::stop_token stop);
    void updateIsLoading();
    /// Whatever is still on its way gives way to what is opened now.
    void cancelLoads();
    void nameItem(const QString &name);

    void openWebContent(const LastPlayableSource &source);
    void showWebContent(const LastPlayableSource &source);
    void setWebContent(const std::optional<YouTubeContent> &youTube,
                       const std::optional<OKVideoContent> &okVideo);
    void removePlatformItem();
    const WebPlayerRegistry *activeWebPlayer() const;

    void observeTime();
    void refreshBufferingState();
    bool isWaitingForLiveData() const;
    void showBufferingIndicatorAfterDelay();
    void hideBufferingIndicator();

    bool handleKeyDown(const KeyDown &event);
    bool handleVolumeKey(double direction, Qt::KeyboardModifiers modifiers);
    bool handleSkipKey(double direction, const KeyDown &event);

    PlayerPlatform m_platform;
    std::stop_source m_lifetime;
    std::stop_source m_import;
    std::stop_source m_lookUp;

    QString m_title;
    QString m_itemTitle;
    QString m_errorMessage;
    bool m_isLoading = false;
    PlaylistEntries m_playlist;
    bool m_isPlaylistRemote = false;
    bool m_isPlaying = false;
    double m_currentTime = 0;
    double m_duration = 0;
    double m_volume = 1;
    bool m_isMuted = false;
    double m_videoAspectRatio = 0;
    bool m_showsCover = false;
    QUuid m_mediaLoadID;
    QUuid m_videoAspectMediaLoadID;
    bool m_isLiveStream = false;
    bool m_isBuffering = false;
    std::optional<YouTubeContent> m_youtubeContent;
    std::optional<OKVideoContent> m_okVideoContent;
    /// Until then, the web player's play state and its position may be from before a command.
    Scheduler::TimePoint m_webPlayStateIsOldUntil;
    Scheduler::TimePoint m_webTimeIsOldUntil;
    /// The web player has played; before that, the user may have paused it in vain.
    bool m_webPlayerHasBegun = false;
    bool m_webPauseIsDue = false;
    QString m_toastMessage;
    QUrl m_currentURL;

    QUuid m_remoteRequestID;
    std::stop_source m_remoteLoad;
    bool m_isLoadingRemotePlaylist = false;
    bool m_isImporting = false;
    std::optional<LastPlayableSource> m_lastPlayableSource;
    DelayedTask m_bufferingIndicatorTask;
    DelayedTask m_toastTask;
    bool m_monitorsInstalled = false;
};

} // namespace lumaro
