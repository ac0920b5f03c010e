#pragma once

#include "platform/SystemAudio.h"

#include <pulse/pulseaudio.h>

#include <string>

namespace lumaro {

/// The sound of the default output, by PulseAudio or PipeWire in its place: what a program plays,
/// with the time at which it is heard. Follows the default when it becomes another output, and
/// never turns to an input.
class PulseMonitor final : public AudioCapture
{
public:
    explicit PulseMonitor(AudioCaptureRequest request);
    ~PulseMonitor() override;

private:
    void contextChanged();
    void lookForOutput();
    void openStream(const char *output);
    void closeStream();
    void streamChanged();
    void read();
    void giveUp();

    AudioCaptureRequest m_request;
    pa_threaded_mainloop *m_loop;
    pa_context *m_context = nullptr;
    pa_stream *m_stream = nullptr;
    /// The stream has worked.
    bool m_isStreamGood = false;
    /// The default output's name.
    std::string m_output;
    bool m_gaveUp = false;
};

} // namespace lumaro
