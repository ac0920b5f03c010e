#pragma once

#include "platform/SystemAudio.h"

#include <pulse/pulseaudio.h>

namespace lumaro {

/// The sound of the default output, by PulseAudio or PipeWire in its place: what a program plays,
/// with the time at which it is heard.
class PulseMonitor final : public AudioCapture
{
public:
    explicit PulseMonitor(AudioCaptureRequest request);
    ~PulseMonitor() override;

private:
    void contextChanged();
    void openStream();
    void streamChanged();
    void read();
    void giveUp();

    AudioCaptureRequest m_request;
    pa_threaded_mainloop *m_loop;
    pa_context *m_context = nullptr;
    pa_stream *m_stream = nullptr;
    bool m_gaveUp = false;
};

} // namespace lumaro
