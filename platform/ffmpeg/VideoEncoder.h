#pragma once

#include "platform/AssetWriter.h"
#include "platform/ffmpeg/Handles.h"

namespace lumaro {

/// H.264 from BGRA pictures: by the graphics card where it can, else by libx264 with settings that
/// two processor cores hold in real time. No picture refers to a later one, so packets leave in
/// the order of their times, and the first one's is the file's zero.
class VideoEncoder
{
public:
    /// Of the encoder's times, in units a second.
    static constexpr int timeScale = 90'000;

    /// Null when there is no encoder for these settings.
    static std::unique_ptr<VideoEncoder> create(const VideoInputSettings &settings);

    const AVCodecContext &codec() const { return *m_codec; }
    /// `time` in the encoder's units. A negative number is FFmpeg's error.
    int encode(const VideoSample &sample, qint64 time, const ffmpeg::PacketSink &sink);
    int finish(const ffmpeg::PacketSink &sink);

private:
    struct Kind
    {
        const char *name;
        AVPixelFormat pixels;
        AVHWDeviceType device;
        /// Without this file there is no such encoder; null for one that needs none.
        const char *deviceFile;
        const char *preset;
    };

    bool open(const Kind &kind, const VideoInputSettings &settings);
    bool useDevice(const Kind &kind, const VideoInputSettings &settings);

    ffmpeg::CodecContext m_codec;
    ffmpeg::Scaler m_scaler;
    QSize m_scaledFrom;
    AVPixelFormat m_pixels = AV_PIX_FMT_NONE;
    qint64 m_lastTime = -1;
};

} // namespace lumaro
