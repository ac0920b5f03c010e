#include "platform/ffmpeg/FfmpegAssetWriter.h"

#include "platform/ffmpeg/Mp4Remuxer.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <array>

namespace lumaro {

using namespace ffmpeg;

namespace {

QString sentence(int error)
{
    if (error == AVERROR(ENOSPC) || error == AVERROR(EDQUOT))
        return QCoreApplication::translate(
            "FfmpegAssetWriter",
            "The disk is full. The recording was stopped, and what was recorded is kept.");
    // In words that are not taken for the system's refusal to let the screen be captured.
    if (error == AVERROR(EACCES) || error == AVERROR(EPERM))
        return QCoreApplication::translate(
            "FfmpegAssetWriter",
            "The recording could not be written: this folder is protected. "
            "Choose another one.");
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    return QCoreApplication::translate("FfmpegAssetWriter",
                                       "The recording could not be written: %1.")
        .arg(QString::fromLocal8Bit(text.data()));
}

} // namespace

std::expected<std::unique_ptr<AssetWriter>, QString> FfmpegAssetWriter::create(const QUrl &file)
{
    // What its encoders tell of themselves is for nobody here.
    av_log_set_level(AV_LOG_ERROR);
    AVFormatContext *context = nullptr;
    if (const int result = avformat_alloc_output_context2(&context, nullptr, "mp4", nullptr);
        result < 0)
        return std::unexpected(sentence(result));
    Output output(context);
    const QString path = file.toLocalFile();
    removeAbandonedCopies(QFileInfo(path).absolutePath());
    auto made = std::make_unique<NewFile>(path);
    if (const int result = made->open(*output); result < 0)
        return std::unexpected(sentence(result));
    return std::unique_ptr<AssetWriter>(
        new FfmpegAssetWriter(path, std::move(made), std::move(output)));
}

FfmpegAssetWriter::FfmpegAssetWriter(QString path, std::unique_ptr<NewFile> file, Output output)
    : m_path(std::move(path))
    , m_file(std::move(file))
    , m_output(std::move(output))
{
}

FfmpegAssetWriter::~FfmpegAssetWriter() = default;

bool FfmpegAssetWriter::canAdd(const VideoInputSettings &settings) const
{
    return !m_video && settings.width > 0 && settings.height > 0;
}

bool FfmpegAssetWriter::canAdd(const AudioInputSettings &settings) const
{
    return !m_audio && settings.channels > 0 && settings.sampleRate > 0;
}

void FfmpegAssetWriter::add(const VideoInputSettings &settings)
{
    m_video = VideoEncoder::create(settings);
}

void FfmpegAssetWriter::add(const AudioInputSettings &settings)
{
    m_audio = AudioEncoder::create(settings);
}

AVStream *FfmpegAssetWriter::addStream(const AVCodecContext &codec)
{
    AVStream *stream = avformat_new_stream(m_output.get(), nullptr);
    if (stream) {
        avcodec_parameters_from_context(stream->codecpar, &codec);
        stream->time_base = codec.time_base;
        stream->avg_frame_rate = codec.framerate;
    }
    return stream;
}

bool FfmpegAssetWriter::startWriting()
{
    if (!m_video || !m_audio)
        return false;
    m_videoStream = addStream(m_video->codec());
    m_audioStream = addStream(m_audio->codec());
    if (!m_videoStream || !m_audioStream)
        return false;
    AVDictionary *options = nullptr;
    av_dict_set(&options, "movflags", "empty_moov+default_base_moof", 0);
    av_dict_set(&options, "frag_duration", "1000000", 0);
    const int result = avformat_write_header(m_output.get(), &options);
    av_dict_free(&options);
    avio_flush(m_output->pb);
    if (result < 0 || m_output->pb->error < 0) {
        fail(result < 0 ? result : m_output->pb->error);
        return false;
    }
    m_wholeSize = avio_tell(m_output->pb);
    m_status = Status::Writing;
    return true;
}

PacketSink FfmpegAssetWriter::sink(const AVCodecContext &codec, AVStream *stream, qint64 &packets)
{
    return [this, &codec, stream, &packets](AVPacket &packet) {
        packet.stream_index = stream->index;
        // The last picture of all is shown as long as one is expected to be.
        if (packet.duration == 0 && codec.framerate.num > 0)
            packet.duration = av_rescale_q(1, av_inv_q(codec.framerate), codec.time_base);
        av_packet_rescale_ts(&packet, codec.time_base, stream->time_base);
        // A fragment that this packet begins begins when it says, however long the last packet of
        // the one before was expected to last.
        if (packets > 0)
            av_opt_set(m_output->priv_data, "movflags", "+frag_discont", 0);
        // Without interleaving: the tracks of a fragment need not take turns, and nothing is held
        // back for a track that is silent.
        const int result = av_write_frame(m_output.get(), &packet);
        avio_flush(m_output->pb);
        if (result < 0 || m_output->pb->error < 0)
            return result < 0 ? result : m_output->pb->error;
        m_wholeSize = avio_tell(m_output->pb);
        ++packets;
        return 0;
    };
}

void FfmpegAssetWriter::append(const VideoSample &sample)
{
    const qint64 time = av_rescale_q((sample.presentationTime - m_zero).count(), {1, 1'000'000'000},
                                     {1, VideoEncoder::timeScale});
    const int result =
        m_video->encode(sample, time, sink(m_video->codec(), m_videoStream, m_videoPackets));
    if (result < 0)
        fail(result);
}

void FfmpegAssetWriter::append(const AudioSample &sample)
{
    const int result = m_audio->encode(sample, sample.presentationTime - m_zero,
                                       sink(m_audio->codec(), m_audioStream, m_audioPackets));
    if (result < 0)
        fail(result);
}

void FfmpegAssetWriter::markVideoAsFinished()
{
    if (m_status != Status::Writing)
        return;
    if (const int result = m_video->finish(sink(m_video->codec(), m_videoStream, m_videoPackets));
        result < 0)
        fail(result);
}

void FfmpegAssetWriter::markAudioAsFinished()
{
    if (m_status != Status::Writing)
        return;
    if (const int result = m_audio->finish(sink(m_audio->codec(), m_audioStream, m_audioPackets));
        result < 0)
        fail(result);
}

void FfmpegAssetWriter::finishWriting(std::function<void()> done)
{
    if (m_status == Status::Writing) {
        int result = av_write_trailer(m_output.get());
        avio_flush(m_output->pb);
        result = std::min(result, m_output->pb->error);
        if (result < 0)
            fail(result);
        else
            complete();
    }
    done();
}

void FfmpegAssetWriter::complete()
{
    if (const int result = avio_closep(&m_output->pb); result < 0)
        return fail(result);
    m_output.reset();
    m_file.reset();
    // What cannot be made ordinary plays as it is.
    makeOrdinary({.path = m_path,
                  .packets = m_videoPackets + m_audioPackets,
                  .pictureRate = m_video->codec().framerate.num,
                  .hasAudio = m_audioPackets > 0},
                 m_hurries);
    // Somebody may have taken it away meanwhile.
    if (!QFile::exists(m_path))
        return fail(AVERROR(ENOENT));
    m_status = Status::Completed;
}

void FfmpegAssetWriter::cancelWriting()
{
    m_output.reset();
    m_status = Status::Cancelled;
    QFile::remove(m_path);
}

QString FfmpegAssetWriter::error() const
{
    const std::scoped_lock lock(m_errorMutex);
    return m_error;
}

void FfmpegAssetWriter::fail(int error)
{
    {
        const std::scoped_lock lock(m_errorMutex);
        m_error = sentence(error);
    }
    m_output.reset();
    // Half a fragment would be the end of some players.
    if (m_file)
        m_file->truncate(m_wholeSize);
    m_status = Status::Failed;
}

} // namespace lumaro
