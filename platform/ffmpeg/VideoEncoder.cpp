#include "platform/ffmpeg/VideoEncoder.h"

#include <QFile>

#include <array>

namespace lumaro {

using namespace ffmpeg;

std::unique_ptr<VideoEncoder> VideoEncoder::create(const VideoInputSettings &settings)
{
    static constexpr std::array<Kind, 3> kinds{{
        {"h264_nvenc", AV_PIX_FMT_YUV420P, AV_HWDEVICE_TYPE_NONE, "/dev/nvidiactl", nullptr},
        {"h264_vaapi", AV_PIX_FMT_NV12, AV_HWDEVICE_TYPE_VAAPI, "/dev/dri/renderD128", nullptr},
        // The fastest preset that still has what makes it High profile.
        {"libx264", AV_PIX_FMT_YUV420P, AV_HWDEVICE_TYPE_NONE, nullptr, "superfast"},
    }};
    for (const Kind &kind : kinds) {
        auto encoder = std::make_unique<VideoEncoder>();
        if (encoder->open(kind, settings))
            return encoder;
    }
    return nullptr;
}

bool VideoEncoder::open(const Kind &kind, const VideoInputSettings &settings)
{
    const AVCodec *codec = avcodec_find_encoder_by_name(kind.name);
    if (!codec || (kind.deviceFile && !QFile::exists(QFile::decodeName(kind.deviceFile))))
        return false;
    m_codec.reset(avcodec_alloc_context3(codec));
    m_pixels = kind.pixels;
    m_codec->width = settings.width;
    m_codec->height = settings.height;
    m_codec->pix_fmt = kind.pixels;
    m_codec->time_base = {1, timeScale};
    m_codec->framerate = {settings.expectedFrameRate, 1};
    m_codec->bit_rate = settings.averageBitRate;
    m_codec->gop_size = settings.maximumKeyFrameInterval;
    m_codec->max_b_frames = 0;
    m_codec->profile = FF_PROFILE_H264_HIGH;
    m_codec->colorspace = AVCOL_SPC_BT709;
    m_codec->color_primaries = AVCOL_PRI_BT709;
    m_codec->color_trc = AVCOL_TRC_BT709;
    m_codec->color_range = AVCOL_RANGE_MPEG;
    m_codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    // Threads that each take a picture would hold some back, for seconds where few come.
    m_codec->thread_type = FF_THREAD_SLICE;
    if (kind.preset)
        av_opt_set(m_codec->priv_data, "preset", kind.preset, 0);
    if (kind.device != AV_HWDEVICE_TYPE_NONE && !useDevice(kind, settings))
        return false;
    return avcodec_open2(m_codec.get(), codec, nullptr) >= 0;
}

bool VideoEncoder::useDevice(const Kind &kind, const VideoInputSettings &settings)
{
    AVBufferRef *made = nullptr;
    if (av_hwdevice_ctx_create(&made, kind.device, nullptr, nullptr, 0) < 0)
        return false;
    const Buffer device(made);
    Buffer frames(av_hwframe_ctx_alloc(device.get()));
    if (!frames)
        return false;
    auto *const context = reinterpret_cast<AVHWFramesContext *>(frames->data);
    context->format = AV_PIX_FMT_VAAPI;
    context->sw_format = kind.pixels;
    context->width = settings.width;
    context->height = settings.height;
    context->initial_pool_size = 8;
    if (av_hwframe_ctx_init(frames.get()) < 0)
        return false;
    m_codec->pix_fmt = context->format;
    m_codec->hw_frames_ctx = frames.release();
    return true;
}

int VideoEncoder::encode(const VideoSample &sample, qint64 time, const PacketSink &sink)
{
    if (time <= m_lastTime)
        return 0;
    Frame frame(av_frame_alloc());
    frame->format = m_pixels;
    frame->width = m_codec->width;
    frame->height = m_codec->height;
    if (const int result = av_frame_get_buffer(frame.get(), 0); result < 0)
        return result;
    if (std::exchange(m_scaledFrom, sample.size) != sample.size) {
        m_scaler.reset(sws_getContext(sample.size.width(), sample.size.height(), AV_PIX_FMT_BGR0,
                                      frame->width, frame->height, m_pixels, SWS_BILINEAR, nullptr,
                                      nullptr, nullptr));
        if (!m_scaler)
            return AVERROR(EINVAL);
        constexpr int fullRange = 1;
        constexpr int videoRange = 0;
        constexpr int unchanged = 1 << 16;
        const int *const bt709 = sws_getCoefficients(SWS_CS_ITU709);
        sws_setColorspaceDetails(m_scaler.get(), bt709, fullRange, bt709, videoRange, 0, unchanged,
                                 unchanged);
    }
    const uint8_t *const rows[] = {sample.topRow};
    const int strides[] = {int(sample.bytesPerLine)};
    sws_scale(m_scaler.get(), rows, strides, 0, sample.size.height(), frame->data, frame->linesize);

    if (m_codec->hw_frames_ctx) {
        Frame uploaded(av_frame_alloc());
        int result = av_hwframe_get_buffer(m_codec->hw_frames_ctx, uploaded.get(), 0);
        if (result >= 0)
            result = av_hwframe_transfer_data(uploaded.get(), frame.get(), 0);
        if (result < 0)
            return result;
        frame = std::move(uploaded);
    }
    frame->pts = m_lastTime = time;
    return ffmpeg::encode(*m_codec, frame.get(), sink);
}

int VideoEncoder::finish(const PacketSink &sink)
{
    return ffmpeg::encode(*m_codec, nullptr, sink);
}

} // namespace lumaro
