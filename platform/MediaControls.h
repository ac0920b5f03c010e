#pragma once

#include "platform/Async.h"

#include <QString>
#include <QUrl>

#include <chrono>
#include <expected>
#include <optional>

namespace lumaro {

/// What remote controls show of the player.
struct MediaControlsState
{
    enum class Playback { Stopped, Paused, Playing };

    Playback playback = Playback::Stopped;
    /// Tells what plays from what played before; 0 while there is nothing.
    quint64 track = 0;
    QString title{};
    QUrl url{};
    /// Absent while unknown and for a stream without an end.
    std::optional<std::chrono::microseconds> length{};
    /// 0 to 1, as it is heard.
    double volume = 1;
    bool canPlay = false;
    bool canSeek = false;
    bool canGoNext = false;
    bool canGoPrevious = false;
    bool isFullScreen = false;

    bool operator==(const MediaControlsState &) const = default;
};

/// What remote controls can ask for. Their values come from other programs: whoever carries them
/// out checks them. Main thread.
class MediaCommands
{
public:
    using Microseconds = std::chrono::microseconds;

    MediaCommands() = default;
    MediaCommands(const MediaCommands &) = delete;
    MediaCommands &operator=(const MediaCommands &) = delete;
    virtual ~MediaCommands() = default;

    virtual void raise() = 0;
    virtual void quit() = 0;
    virtual void setFullScreen(bool fullScreen) = 0;

    virtual void play() = 0;
    virtual void pause() = 0;
    virtual void playPause() = 0;
    virtual void stop() = 0;
    virtual void next() = 0;
    virtual void previous() = 0;
    /// Goes on or back by `offset`.
    virtual void seek(Microseconds offset) = 0;
    /// Goes to `position`, unless another track plays by now.
    virtual void setPosition(quint64 track, Microseconds position) = 0;
    virtual void setVolume(double volume) = 0;
    /// The error is a sentence; nothing has changed then.
    virtual Task<std::expected<void, QString>> openUri(QString uri) = 0;

    virtual Microseconds position() const = 0;
};

/// The desktop's controls for whatever plays media: its media keys, its panels, other programs.
/// Main thread.
class MediaControls
{
public:
    MediaControls() = default;
    MediaControls(const MediaControls &) = delete;
    MediaControls &operator=(const MediaControls &) = delete;
    virtual ~MediaControls() = default;

    /// Who carries out what is asked for, until it is replaced; null for nobody.
    virtual void setCommands(MediaCommands *commands) = 0;
    virtual void publish(const MediaControlsState &state) = 0;
    /// The position has jumped.
    virtual void announceSeek(std::chrono::microseconds position) = 0;
};

} // namespace lumaro
