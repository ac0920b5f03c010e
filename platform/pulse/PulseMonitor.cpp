#include "platform/pulse/PulseMonitor.h"

#include <cstring>

namespace lumaro {

namespace {

/// A piece of sound, in seconds.
constexpr double pieceLength = 0.02;

/// Its callback tells all there is to know.
void forget(pa_operation *operation)
{
    if (operation)
        pa_operation_unref(operation);
}

} // namespace

PulseMonitor::PulseMonitor(AudioCaptureRequest request)
    : m_request(std::move(request))
    , m_loop(pa_threaded_mainloop_new())
{
    m_context = pa_context_new(pa_threaded_mainloop_get_api(m_loop), "Lumaro");
    pa_context_set_state_callback(
        m_context,
        [](pa_context *, void *self) { static_cast<PulseMonitor *>(self)->contextChanged(); },
        this);
    // Without a sound server there is no sound to record either.
    if (pa_context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        giveUp();
    else
        pa_threaded_mainloop_start(m_loop);
}

PulseMonitor::~PulseMonitor()
{
    pa_threaded_mainloop_lock(m_loop);
    m_gaveUp = true;
    closeStream();
    pa_context_disconnect(m_context);
    pa_context_unref(m_context);
    pa_threaded_mainloop_unlock(m_loop);
    pa_threaded_mainloop_stop(m_loop);
    pa_threaded_mainloop_free(m_loop);
}

void PulseMonitor::giveUp()
{
    if (!std::exchange(m_gaveUp, true))
        m_request.becameUnavailable();
}

void PulseMonitor::contextChanged()
{
    const pa_context_state_t state = pa_context_get_state(m_context);
    if (!PA_CONTEXT_IS_GOOD(state))
        return giveUp();
    if (state != PA_CONTEXT_READY)
        return;
    pa_context_set_subscribe_callback(
        m_context,
        [](pa_context *, pa_subscription_event_type_t, uint32_t, void *self) {
            static_cast<PulseMonitor *>(self)->lookForOutput();
        },
        this);
    forget(pa_context_subscribe(m_context, PA_SUBSCRIPTION_MASK_SERVER, nullptr, nullptr));
    lookForOutput();
}

void PulseMonitor::lookForOutput()
{
    forget(pa_context_get_server_info(
        m_context,
        [](pa_context *, const pa_server_info *info, void *self) {
            static_cast<PulseMonitor *>(self)->openStream(info ? info->default_sink_name : nullptr);
        },
        this));
}

void PulseMonitor::closeStream()
{
    if (!m_stream)
        return;
    pa_stream_set_state_callback(m_stream, nullptr, nullptr);
    pa_stream_set_read_callback(m_stream, nullptr, nullptr);
    pa_stream_disconnect(m_stream);
    pa_stream_unref(std::exchange(m_stream, nullptr));
}

void PulseMonitor::openStream(const char *output)
{
    if (m_gaveUp || (m_stream && output && m_output == output))
        return;
    closeStream();
    m_isStreamGood = false;
    m_output = output ? output : "";
    const pa_sample_spec format{.format = PA_SAMPLE_FLOAT32NE,
                                .rate = uint32_t(m_request.sampleRate),
                                .channels = uint8_t(m_request.channels)};
    m_stream = pa_stream_new(m_context, "Recording", &format, nullptr);
    if (!m_stream)
        return giveUp();
    pa_stream_set_state_callback(
        m_stream,
        [](pa_stream *, void *self) { static_cast<PulseMonitor *>(self)->streamChanged(); }, this);
    pa_stream_set_read_callback(
        m_stream,
        [](pa_stream *, size_t, void *self) { static_cast<PulseMonitor *>(self)->read(); }, this);
    constexpr auto byServer = uint32_t(-1);
    const auto piece =
        uint32_t(pieceLength * m_request.sampleRate) * uint32_t(pa_frame_size(&format));
    const pa_buffer_attr buffer{.maxlength = byServer,
                                .tlength = byServer,
                                .prebuf = byServer,
                                .minreq = byServer,
                                .fragsize = piece};
    // Flags are made to be combined. NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange)
    const auto flags = pa_stream_flags_t(PA_STREAM_ADJUST_LATENCY | PA_STREAM_INTERPOLATE_TIMING
                                         | PA_STREAM_AUTO_TIMING_UPDATE
                                         // The server would choose a microphone.
                                         | PA_STREAM_DONT_MOVE);
    if (pa_stream_connect_record(m_stream, "@DEFAULT_MONITOR@", &buffer, flags) < 0)
        giveUp();
}

void PulseMonitor::streamChanged()
{
    const pa_stream_state_t state = pa_stream_get_state(m_stream);
    m_isStreamGood = m_isStreamGood || state == PA_STREAM_READY;
    if (PA_STREAM_IS_GOOD(state))
        return;
    if (!m_isStreamGood)
        return giveUp();
    // Its output is gone; there may be another.
    closeStream();
    lookForOutput();
}

void PulseMonitor::read()
{
    const void *data = nullptr;
    size_t bytes = 0;
    while (pa_stream_readable_size(m_stream) > 0 && pa_stream_peek(m_stream, &data, &bytes) >= 0
           && bytes > 0) {
        pa_usec_t latency = 0;
        int isNegative = 0;
        // Unknown until the server has answered once; then as near as can be told.
        if (pa_stream_get_latency(m_stream, &latency, &isNegative) < 0)
            latency = pa_bytes_to_usec(bytes, pa_stream_get_sample_spec(m_stream));
        // Sound that is still on its way to the ear lies in the future.
        const std::chrono::microseconds age(isNegative ? -qint64(latency) : qint64(latency));
        if (data) {
            AudioSample sample{.presentationTime = mediaTimeNow() - age,
                               .channels = m_request.channels,
                               .data = std::vector<float>(bytes / sizeof(float))};
            std::memcpy(sample.data.data(), data, sample.data.size() * sizeof(float));
            m_request.sample(std::move(sample));
        }
        pa_stream_drop(m_stream);
    }
}

} // namespace lumaro
