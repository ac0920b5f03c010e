#pragma once

#include "platform/MediaSamples.h"

#include <functional>

namespace lumaro {

/// Sound that is being captured. Destroying it ends that; no function is called afterwards.
class AudioCapture
{
public:
    AudioCapture() = default;
    AudioCapture(const AudioCapture &) = delete;
    AudioCapture &operator=(const AudioCapture &) = delete;
    virtual ~AudioCapture() = default;
};

/// What to capture, and where it goes; both functions are called on a thread of the platform's.
struct AudioCaptureRequest
{
    int sampleRate = 0;
    int channels = 0;
    std::function<void(AudioSample)> sample;
    /// There is no sound, or no more of it.
    std::function<void()> becameUnavailable;
};

/// Begins to capture what all programs play, without blocking.
using SystemAudio = std::function<std::unique_ptr<AudioCapture>(AudioCaptureRequest request)>;

} // namespace lumaro
