#pragma once

#include "platform/MediaSamples.h"

#include <QString>
#include <QUrl>

#include <expected>
#include <functional>

namespace lumaro {

/// H.264 High at the level that the size needs, from pictures that arrive in real time.
struct VideoInputSettings
{
    int width = 0;
    int height = 0;
    /// Bits per second.
    int averageBitRate = 0;
    int expectedFrameRate = 0;
    /// In frames.
    int maximumKeyFrameInterval = 0;
    bool operator==(const VideoInputSettings &) const = default;
};

/// MPEG-4 AAC from sound that arrives in real time.
struct AudioInputSettings
{
    int channels = 0;
    int sampleRate = 0;
    /// Bits per second.
    int bitRate = 0;
    bool operator==(const AudioInputSettings &) const = default;
};

/// Writes one MPEG-4 file with one video and one audio input. Made and set up on one thread, then
/// used on one other; status(), error() and hurry() on any. Nothing is lost by a process that dies:
/// what has been written up to then plays, but for the last two seconds.
class AssetWriter
{
public:
    enum class Status { Unknown, Writing, Completed, Failed, Cancelled };

    AssetWriter() = default;
    AssetWriter(const AssetWriter &) = delete;
    AssetWriter &operator=(const AssetWriter &) = delete;
    /// Leaves a file that is being written as it is.
    virtual ~AssetWriter() = default;

    virtual bool canAdd(const VideoInputSettings &settings) const = 0;
    virtual bool canAdd(const AudioInputSettings &settings) const = 0;
    virtual void add(const VideoInputSettings &settings) = 0;
    virtual void add(const AudioInputSettings &settings) = 0;

    virtual bool startWriting() = 0;
    /// `time` becomes the file's zero.
    virtual void startSession(MediaTime time) = 0;

    virtual bool isVideoReadyForMoreData() const = 0;
    virtual bool isAudioReadyForMoreData() const = 0;
    virtual void append(const VideoSample &sample) = 0;
    virtual void append(const AudioSample &sample) = 0;
    virtual void markVideoAsFinished() = 0;
    virtual void markAudioAsFinished() = 0;

    /// From now on finishing takes no longer than it must to have a file that plays, even if that
    /// costs the file's final form. On any thread.
    virtual void hurry() = 0;
    /// Calls `done`, on whatever thread, when the file is complete or has failed.
    virtual void finishWriting(std::function<void()> done) = 0;
    /// Removes the file.
    virtual void cancelWriting() = 0;

    virtual Status status() const = 0;
    /// An English sentence; empty when there is nothing to say.
    virtual QString error() const = 0;
};

/// Begins a file; the error is an English sentence.
using AssetWriterFactory =
    std::function<std::expected<std::unique_ptr<AssetWriter>, QString>(const QUrl &file)>;

} // namespace lumaro
