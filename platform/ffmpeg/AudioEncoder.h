#pragma once

#include "platform/AssetWriter.h"
#include "platform/ffmpeg/Handles.h"

namespace lumaro {

/// AAC from sound whose clock is not the pictures': gaps become silence, overlaps are left out,
/// and slow drift is stretched away inaudibly.
class AudioEncoder
{
public:
    /// Null when there is no encoder for these settings.
    static std::unique_ptr<AudioEncoder> create(const AudioInputSettings &settings);

    const AVCodecContext &codec() const { return *m_codec; }
    /// `time` since the file's zero. A negative number is FFmpeg's error.
    int encode(const AudioSample &sample, MediaTime time, const ffmpeg::PacketSink &sink);
    int finish(const ffmpeg::PacketSink &sink);

private:
    bool open(const AudioInputSettings &settings);
    int addSilence(qint64 frames, const ffmpeg::PacketSink &sink);
    int addSound(const float *data, qint64 frames);
    void followClock(double lateness);
    int drain(int least, const ffmpeg::PacketSink &sink);

    ffmpeg::CodecContext m_codec;
    ffmpeg::Resampler m_resampler;
    ffmpeg::AudioFifo m_fifo;
    /// In frames since the file's zero: up to where there is sound, and up to where it is encoded.
    qint64 m_position = 0;
    qint64 m_encoded = 0;
    bool m_begun = false;
    double m_drift = 0;
    qint64 m_nextCorrection = 0;
};

} // namespace lumaro
