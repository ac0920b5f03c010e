#include "platform/ffmpeg/AudioEncoder.h"

#include <algorithm>
#include <cmath>

namespace lumaro {

using namespace ffmpeg;

namespace {

/// Seconds. Sound that is later than this has lost something before it; below it the clocks differ,
/// or a time was imprecise.
constexpr double gap = 0.04;
/// Sound that is earlier than this was there already.
constexpr double overlap = 0.1;
constexpr double tolerance = 0.005;
/// Of each new time in the estimated drift.
constexpr double weight = 0.02;
/// The most that a second is stretched by, too little to be heard.
constexpr double mostStretch = 0.002;

} // namespace

std::unique_ptr<AudioEncoder> AudioEncoder::create(const AudioInputSettings &settings)
{
    auto encoder = std::make_unique<AudioEncoder>();
    return encoder->open(settings) ? std::move(encoder) : nullptr;
}

bool AudioEncoder::open(const AudioInputSettings &settings)
{
    const AVCodec *codec = avcodec_find_encoder(AV_CODEC_ID_AAC);
    if (!codec)
        return false;
    m_codec.reset(avcodec_alloc_context3(codec));
    m_codec->sample_fmt = AV_SAMPLE_FMT_FLTP;
    m_codec->sample_rate = settings.sampleRate;
    m_codec->bit_rate = settings.bitRate;
    m_codec->time_base = {1, settings.sampleRate};
    av_channel_layout_default(&m_codec->ch_layout, settings.channels);
    m_codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (avcodec_open2(m_codec.get(), codec, nullptr) < 0)
        return false;

    SwrContext *resampler = nullptr;
    swr_alloc_set_opts2(&resampler, &m_codec->ch_layout, m_codec->sample_fmt, m_codec->sample_rate,
                        &m_codec->ch_layout, AV_SAMPLE_FMT_FLT, settings.sampleRate, 0, nullptr);
    m_resampler.reset(resampler);
    if (!m_resampler)
        return false;
    // Ready to stretch from the beginning.
    av_opt_set_int(m_resampler.get(), "flags", SWR_FLAG_RESAMPLE, 0);
    m_fifo.reset(av_audio_fifo_alloc(m_codec->sample_fmt, settings.channels, m_codec->frame_size));
    // The encoder's first frame comes before the sound; it shall not come before the file's zero.
    m_position = m_encoded = m_codec->initial_padding;
    return swr_init(m_resampler.get()) >= 0 && m_fifo;
}

int AudioEncoder::encode(const AudioSample &sample, MediaTime time, const PacketSink &sink)
{
    const double rate = m_codec->sample_rate;
    const qint64 frames = qint64(sample.data.size()) / sample.channels;
    const double at = std::chrono::duration<double>(time).count() * rate;
    const double lateness = at - double(m_position);
    qint64 skipped = 0;
    int result = 0;
    if (!m_begun || lateness > gap * rate || lateness < -overlap * rate) {
        if (lateness > 0)
            result = addSilence(std::llround(lateness), sink);
        else
            skipped = std::min(std::llround(-lateness), static_cast<long long>(frames));
        m_drift = 0;
    } else {
        followClock(lateness);
    }
    m_begun = m_begun || skipped < frames;
    if (result >= 0 && skipped < frames)
        result = addSound(sample.data.data() + skipped * sample.channels, frames - skipped);
    return result < 0 ? result : drain(m_codec->frame_size, sink);
}

void AudioEncoder::followClock(double lateness)
{
    const int rate = m_codec->sample_rate;
    m_drift += (lateness - m_drift) * weight;
    if (m_position < m_nextCorrection || std::abs(m_drift) < tolerance * rate)
        return;
    m_nextCorrection = m_position + rate;
    swr_set_compensation(m_resampler.get(),
                         int(std::clamp(m_drift, -mostStretch * rate, mostStretch * rate)), rate);
}

int AudioEncoder::addSilence(qint64 frames, const PacketSink &sink)
{
    const Frame silence(av_frame_alloc());
    silence->format = m_codec->sample_fmt;
    silence->nb_samples = m_codec->sample_rate;
    av_channel_layout_copy(&silence->ch_layout, &m_codec->ch_layout);
    if (const int result = av_frame_get_buffer(silence.get(), 0); result < 0)
        return result;
    av_samples_set_silence(silence->extended_data, 0, silence->nb_samples,
                           m_codec->ch_layout.nb_channels, m_codec->sample_fmt);
    while (frames > 0) {
        const int count = int(std::min<qint64>(frames, silence->nb_samples));
        const int written = av_audio_fifo_write(
            m_fifo.get(), reinterpret_cast<void **>(silence->extended_data), count);
        if (written < 0)
            return written;
        frames -= count;
        m_position += count;
        // A machine may have slept for days.
        if (const int result = drain(m_codec->frame_size, sink); result < 0)
            return result;
    }
    return 0;
}

int AudioEncoder::addSound(const float *data, qint64 frames)
{
    const Frame sound(av_frame_alloc());
    sound->format = m_codec->sample_fmt;
    sound->nb_samples = swr_get_out_samples(m_resampler.get(), int(frames));
    av_channel_layout_copy(&sound->ch_layout, &m_codec->ch_layout);
    if (const int result = av_frame_get_buffer(sound.get(), 0); result < 0)
        return result;
    const uint8_t *input[] = {reinterpret_cast<const uint8_t *>(data)};
    const int converted =
        swr_convert(m_resampler.get(), sound->extended_data, sound->nb_samples, input, int(frames));
    if (converted < 0)
        return converted;
    m_position += converted;
    return av_audio_fifo_write(m_fifo.get(), reinterpret_cast<void **>(sound->extended_data),
                               converted);
}

int AudioEncoder::drain(int least, const PacketSink &sink)
{
    int result = 0;
    while (result >= 0 && av_audio_fifo_size(m_fifo.get()) >= least) {
        const Frame frame(av_frame_alloc());
        frame->format = m_codec->sample_fmt;
        frame->sample_rate = m_codec->sample_rate;
        frame->nb_samples = std::min(av_audio_fifo_size(m_fifo.get()), m_codec->frame_size);
        av_channel_layout_copy(&frame->ch_layout, &m_codec->ch_layout);
        result = av_frame_get_buffer(frame.get(), 0);
        if (result < 0)
            break;
        av_audio_fifo_read(m_fifo.get(), reinterpret_cast<void **>(frame->extended_data),
                           frame->nb_samples);
        frame->pts = m_encoded;
        m_encoded += frame->nb_samples;
        result = ffmpeg::encode(*m_codec, frame.get(), sink);
    }
    return result;
}

int AudioEncoder::finish(const PacketSink &sink)
{
    if (const int result = m_begun ? drain(1, sink) : 0; result < 0)
        return result;
    return ffmpeg::encode(*m_codec, nullptr, sink);
}

} // namespace lumaro
