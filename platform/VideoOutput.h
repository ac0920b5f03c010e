#pragma once

#include "platform/PixelBuffer.h"

#include <optional>

namespace lumaro {

/// A tap on the pictures of one item of a media player; it gives none when the item is gone.
class VideoOutput
{
public:
    VideoOutput() = default;
    VideoOutput(const VideoOutput &) = delete;
    VideoOutput &operator=(const VideoOutput &) = delete;
    virtual ~VideoOutput() = default;

    /// Whether there is a picture for `itemTime`, in seconds, other than the one last copied.
    /// Main thread.
    virtual bool hasNewPixelBuffer(double itemTime) const = 0;

    /// The picture that is shown now, taken for the one of `itemTime`; empty when there is none.
    /// May take as long as a frame. Any thread, one call at a time; the output may outlive the
    /// player.
    virtual std::optional<PixelBuffer> copyPixelBuffer(double itemTime) = 0;
};

} // namespace lumaro
