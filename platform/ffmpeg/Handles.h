#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libavutil/hwcontext.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <functional>
#include <memory>

/// Owners of FFmpeg's objects.
namespace lumaro::ffmpeg {

template <auto Free>
struct FreedByAddress
{
    template <typename T>
    void operator()(T *object) const
    {
        Free(&object);
    }
};

template <auto Free>
struct Freed
{
    template <typename T>
    void operator()(T *object) const
    {
        Free(object);
    }
};

using CodecContext = std::unique_ptr<AVCodecContext, FreedByAddress<avcodec_free_context>>;
using Frame = std::unique_ptr<AVFrame, FreedByAddress<av_frame_free>>;
using Packet = std::unique_ptr<AVPacket, FreedByAddress<av_packet_free>>;
using Buffer = std::unique_ptr<AVBufferRef, FreedByAddress<av_buffer_unref>>;
using Resampler = std::unique_ptr<SwrContext, FreedByAddress<swr_free>>;
using Scaler = std::unique_ptr<SwsContext, Freed<sws_freeContext>>;
using AudioFifo = std::unique_ptr<AVAudioFifo, Freed<av_audio_fifo_free>>;
using Input = std::unique_ptr<AVFormatContext, FreedByAddress<avformat_close_input>>;

struct OutputDeleter
{
    void operator()(AVFormatContext *context) const
    {
        avio_closep(&context->pb);
        avformat_free_context(context);
    }
};
using Output = std::unique_ptr<AVFormatContext, OutputDeleter>;

/// Takes an encoded packet; a negative number is FFmpeg's error.
using PacketSink = std::function<int(AVPacket &)>;

/// Gives `frame`, or the end for null, to the encoder, and what comes out to `sink`. A negative
/// number is FFmpeg's error.
inline int encode(AVCodecContext &codec, const AVFrame *frame, const PacketSink &sink)
{
    int result = avcodec_send_frame(&codec, frame);
    const Packet packet(av_packet_alloc());
    while (result >= 0) {
        result = avcodec_receive_packet(&codec, packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return 0;
        if (result >= 0)
            result = sink(*packet);
        av_packet_unref(packet.get());
    }
    return result;
}

} // namespace lumaro::ffmpeg
