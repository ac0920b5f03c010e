#pragma once

#include "platform/VideoOutput.h"

#include <QObject>
#include <QSize>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace lumaro {

/// The platform's media player: holds at most one item and plays it. It answers from what it
/// already knows and never blocks. Main thread only.
class MediaPlayer : public QObject
{
    Q_OBJECT

public:
    enum class TimeControlStatus {
        Paused,
        WaitingToPlayAtSpecifiedRate, ///< asked to play, but there is nothing to play yet
        Playing,
    };
    Q_ENUM(TimeControlStatus)

    /// Why an item cannot be played.
    enum class ItemFailure {
        Unreachable, ///< the address did not answer, or refused
        Unplayable, ///< it answered, but not with media this player knows
        NoPicture, ///< pictures cannot be drawn on this machine
        Unsupported, ///< an address of a kind that is not opened at all
    };
    Q_ENUM(ItemFailure)

    /// Seconds, both ends included.
    struct TimeRange
    {
        double start = 0;
        double end = 0;
        bool operator==(const TimeRange &) const = default;
    };

    using QObject::QObject;

    /// Makes `url` the item, in place of the one before. It begins paused or playing as the
    /// player already is.
    virtual void replaceItem(const QUrl &url) = 0;
    virtual void removeItem() = 0;
    virtual bool hasItem() const = 0;
    /// Tells the items apart that have been the player's; 0 without one.
    virtual quint64 currentItem() const = 0;
    /// A tap on the current item's pictures. Whoever drops it removes it.
    virtual std::shared_ptr<VideoOutput> addVideoOutput() = 0;

    /// Begins anew at the item's end. An item that failed is opened again, and so is one that has
    /// ended and cannot be sought in as a whole, such as a stream that broke off.
    virtual void play() = 0;
    virtual void pause() = 0;
    /// The requested rate: 0 while paused, ended or failed, else positive, even while waiting for
    /// data.
    virtual double rate() const = 0;
    virtual TimeControlStatus timeControlStatus() const = 0;

    /// Seconds since the item's beginning; 0 until an item has begun, empty without one.
    virtual std::optional<double> currentTime() const = 0;
    /// Seconds; empty while unknown and for a stream without an end.
    virtual std::optional<double> duration() const = 0;
    /// Where seek() can go: everywhere, or within what has arrived of a stream without an end or
    /// from a server that sends no parts; empty when nowhere.
    virtual std::optional<TimeRange> seekableRange() const = 0;
    /// The picture's size as it should be shown, in pixels; empty without a picture.
    virtual QSize presentationSize() const = 0;
    /// The picture is the cover of music, which does not move.
    virtual bool showsCover() const = 0;

    /// Goes exactly to `seconds`, not to the nearest key frame. An item that has not begun yet
    /// begins there.
    virtual void seek(double seconds) = 0;

    /// A linear gain between 0 and 1.
    virtual void setVolume(double gain) = 0;
    virtual void setMuted(bool muted) = 0;

    /// Calls `observer` every `interval` while an item plays and whenever its position jumps or
    /// playback starts, stops or ends. Replaces the observer before it.
    virtual void setPeriodicTimeObserver(std::chrono::milliseconds interval,
                                         std::function<void()> observer) = 0;

Q_SIGNALS:
    void currentItemChanged();
    void presentationSizeChanged();
    void timeControlStatusChanged();
    void playbackBufferEmptyChanged(bool empty);
    void playbackLikelyToKeepUpChanged(bool likely);
    /// The current item failed; it stays the item until it is replaced or removed.
    void itemFailed(lumaro::MediaPlayer::ItemFailure failure);
    /// The current item's first picture is known, or its first sound when it has no picture.
    void itemStarted();
    /// The current item has been played to its end, where it pauses.
    void itemEnded();
    /// The same of a stream whose end could not be foreseen; itemEnded() follows.
    void itemBrokeOff();
};

} // namespace lumaro
