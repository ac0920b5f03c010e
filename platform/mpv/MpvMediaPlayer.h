#pragma once

#include "platform/MediaPlayer.h"
#include "platform/VideoSurface.h"
#include "platform/mpv/MpvCore.h"

#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <atomic>

namespace lumaro {

/// What an asynchronous call or an observed property is about.
enum class MpvTopic : quint64 {
    None,
    Load,
    Seek,
    Time,
    Duration,
    Seekable,
    PartiallySeekable,
    CacheState,
    CoreIdle,
    PausedForCache,
    EofReached,
    Width,
    Height,
    Rotation,
    Cover,
};

/// libmpv as the media player. Its picture appears in an MpvVideoItem; an item is opened as soon
/// as one is on screen. Every call to libmpv is asynchronous; state is what libmpv last reported.
class MpvMediaPlayer : public MediaPlayer
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the composition root.")

public:
    explicit MpvMediaPlayer(QObject *parent = nullptr);
    ~MpvMediaPlayer() override;

    /// Shared with the renderer, which may outlive the player. Null when libmpv is unusable; then
    /// every item fails.
    const std::shared_ptr<MpvCore> &core() const { return m_core; }
    /// Told by the video item, before its first frame: pictures have somewhere to go.
    void setRendererReady();
    /// Told instead when nothing can be drawn here; every item fails.
    void setRendererFailed();
    /// Told by libmpv on one of its threads.
    void notifyFrame();

    /// The HTTP proxy for items opened from now on; empty for the one that the environment names.
    void setHttpProxy(const QUrl &proxy);
    /// Whether the position is where a seek is going rather than where the picture is.
    bool isSeeking() const { return m_state.pendingSeek.has_value(); }
    /// Takes effect within the next picture or two.
    void setPlacement(const VideoPlacement &placement);

    void replaceItem(const QUrl &url) override;
    void removeItem() override;
    bool hasItem() const override { return !m_item.isEmpty(); }
    quint64 currentItem() const override { return hasItem() ? m_itemNumber : 0; }
    std::shared_ptr<VideoOutput> addVideoOutput() override;

    void play() override;
    void pause() override;
    double rate() const override;
    TimeControlStatus timeControlStatus() const override { return m_status; }

    std::optional<double> currentTime() const override;
    std::optional<double> duration() const override;
    std::optional<TimeRange> seekableRange() const override;
    QSize presentationSize() const override { return m_pictureSize; }
    bool showsCover() const override { return m_state.showsCover; }

    void seek(double seconds) override;
    void setVolume(double gain) override;
    void setMuted(bool muted) override;
    void setPeriodicTimeObserver(std::chrono::milliseconds interval,
                                 std::function<void()> observer) override;

Q_SIGNALS:
    /// There is a new picture to draw, or none any more.
    void frameReady();

private:
    /// What libmpv last said of the current item.
    struct ItemState
    {
        std::optional<double> time;
        std::optional<double> duration;
        std::optional<double> firstDuration;
        std::optional<double> pendingSeek;
        int seeksUnderWay = 0;
        QList<TimeRange> cachedRanges;
        bool seekable = false;
        bool onlyCacheSeekable = false;
        /// By the file itself.
        bool lengthIsTold = false;
        bool allHasArrived = false;
        bool lengthGrows = false;
        bool coreIdle = true;
        bool waitsForCache = false;
        bool ended = false;
        bool failed = false;
        bool loaded = false;
        bool started = false;
        bool showsCover = false;

        bool canSeekEverywhere() const { return seekable && !onlyCacheSeekable; }
        bool hasLength() const { return canSeekEverywhere() || lengthIsTold || allHasArrived; }
        /// Nobody knew where the end would be before it came.
        bool isWithoutEnd() const;
    };

    /// The item as libmpv's playlist numbers it; it may turn out to be a playlist itself, whose
    /// entries take its place.
    struct PlaylistState
    {
        std::optional<qint64> entryId;
        int entriesAhead = 0;
        int playlistsRead = 0;
        /// libmpv begins another of its entries by itself.
        bool goesOn = false;
    };

    void openPendingItem();
    void sendSeek(double seconds);
    void fail(ItemFailure failure);
    void drainEvents();
    void handle(const mpv_event &event);
    void handleProperty(MpvTopic topic, const mpv_event_property &property);
    void handleEndOfFile(const mpv_event_end_file &end);
    void goOn(ItemFailure failureOtherwise);
    void handleCommandReply(const mpv_event &event);
    void updateDuration(std::optional<double> duration);
    void updateCacheState(const mpv_node &state);
    void updateStatus();
    void updateClock();
    void requestTime();
    void requestProperties();
    void notifyTimeObserver();
    void updatePictureSize();
    void forgetPictureSize();

    static void wakeUp(void *player);

    std::shared_ptr<MpvCore> m_core;
    std::atomic<bool> m_eventsPending = false;
    bool m_rendererReady = false;
    bool m_rendererFailed = false;

    QUrl m_item;
    bool m_itemIsPending = false;
    /// Increases with each item; replies that carry an older number are of an older item.
    quint64 m_itemNumber = 0;
    PlaylistState m_playlist;
    std::optional<qint64> m_startedEntryId;
    ItemState m_state;
    QSize m_unturnedSize;
    /// Degrees, by which libmpv turns the picture as its file says.
    int m_rotation = 0;
    QSize m_pictureSize;
    bool m_paused = true;
    TimeControlStatus m_status = TimeControlStatus::Paused;
    std::function<void()> m_timeObserver;
    QTimer m_clock;
};

} // namespace lumaro
