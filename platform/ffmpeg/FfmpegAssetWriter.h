#pragma once

#include "platform/AssetWriter.h"
#include "platform/ffmpeg/AudioEncoder.h"
#include "platform/ffmpeg/NewFile.h"
#include "platform/ffmpeg/VideoEncoder.h"

#include <atomic>
#include <mutex>

namespace lumaro {

/// An MP4 file by FFmpeg. While it is written it consists of fragments of a second (ISO/IEC
/// 14496-12, movie fragments), each of which plays as soon as it is on disk; at the end it becomes
/// an ordinary file with the index in front. Where there is no room or no time for that, the
/// fragments stay.
class FfmpegAssetWriter final : public AssetWriter
{
public:
    static std::expected<std::unique_ptr<AssetWriter>, QString> create(const QUrl &file);
    ~FfmpegAssetWriter() override;

    bool canAdd(const VideoInputSettings &settings) const override;
    bool canAdd(const AudioInputSettings &settings) const override;
    void add(const VideoInputSettings &settings) override;
    void add(const AudioInputSettings &settings) override;
    bool startWriting() override;
    void startSession(MediaTime time) override { m_zero = time; }
    // Encoding is part of appending.
    bool isVideoReadyForMoreData() const override { return status() == Status::Writing; }
    bool isAudioReadyForMoreData() const override { return status() == Status::Writing; }
    void append(const VideoSample &sample) override;
    void append(const AudioSample &sample) override;
    void markVideoAsFinished() override;
    void markAudioAsFinished() override;
    void hurry() override { m_hurries = true; }
    void finishWriting(std::function<void()> done) override;
    void cancelWriting() override;
    Status status() const override { return m_status; }
    QString error() const override;

private:
    FfmpegAssetWriter(QString path, std::unique_ptr<ffmpeg::NewFile> file, ffmpeg::Output output);

    AVStream *addStream(const AVCodecContext &codec);
    ffmpeg::PacketSink sink(const AVCodecContext &codec, AVStream *stream, qint64 &packets);
    void complete();
    void fail(int error);

    const QString m_path;
    /// Until it is complete.
    std::unique_ptr<ffmpeg::NewFile> m_file;
    ffmpeg::Output m_output;
    std::unique_ptr<VideoEncoder> m_video;
    std::unique_ptr<AudioEncoder> m_audio;
    AVStream *m_videoStream = nullptr;
    AVStream *m_audioStream = nullptr;
    qint64 m_videoPackets = 0;
    qint64 m_audioPackets = 0;
    MediaTime m_zero{};
    /// Up to where the file surely consists of whole fragments, in bytes.
    qint64 m_wholeSize = 0;
    std::atomic<bool> m_hurries = false;
    std::atomic<Status> m_status = Status::Unknown;
    mutable std::mutex m_errorMutex;
    QString m_error;
};

} // namespace lumaro
