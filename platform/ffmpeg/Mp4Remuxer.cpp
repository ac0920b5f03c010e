#include "platform/ffmpeg/Mp4Remuxer.h"

#include "platform/ffmpeg/NewFile.h"

#include <QDateTime>
#include <QDir>
#include <QMap>

#include <chrono>
#include <cstdio>
#include <filesystem>

namespace lumaro {

using namespace ffmpeg;

namespace {

/// What the index takes at most, in bytes: duration, size, position, and being a key frame.
constexpr qint64 indexPerPacket = 48;
constexpr qint64 indexBase = 16 * 1024;

/// A copy that took the last of a disk's room would end whatever else is being saved there.
constexpr qint64 roomForOthers = 16 * 1024 * 1024;

const QString copySuffix = QStringLiteral(".lumaro-part");
/// No copy takes as long.
constexpr std::chrono::hours longestCopy{24};

qint64 indexSize(const FragmentedMp4 &file)
{
    return indexBase + file.packets * indexPerPacket;
}

/// Where the disk does not say, there may be.
bool hasRoomForCopy(const FragmentedMp4 &file)
{
    const QFileInfo info(file.path);
    const auto needed = std::uintmax_t(info.size() + indexSize(file) + roomForOthers);
    std::error_code error;
    const auto space =
        std::filesystem::space(QFile::encodeName(info.absolutePath()).toStdString(), error);
    return error || space.available >= needed;
}

QByteArray urlOf(const QString &path)
{
    return "file:" + QFile::encodeName(path);
}

Output openOutput(const NewFile &file)
{
    AVFormatContext *context = nullptr;
    if (avformat_alloc_output_context2(&context, nullptr, "mp4", nullptr) < 0)
        return nullptr;
    Output output(context);
    return file.open(*output) < 0 ? nullptr : std::move(output);
}

bool copy(AVFormatContext &input, AVFormatContext &output, const FragmentedMp4 &file,
          const std::atomic<bool> &abandoned)
{
    QMap<int, AVStream *> streams;
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream &from = *input.streams[i];
        if (from.codecpar->codec_type == AVMEDIA_TYPE_AUDIO && !file.hasAudio)
            continue;
        AVStream *to = avformat_new_stream(&output, nullptr);
        if (!to || avcodec_parameters_copy(to->codecpar, from.codecpar) < 0)
            return false;
        to->codecpar->codec_tag = 0;
        to->time_base = from.time_base;
        streams.insert(int(i), to);
    }
    AVDictionary *options = nullptr;
    av_dict_set_int(&options, "moov_size", indexSize(file), 0);
    const int begun = avformat_write_header(&output, &options);
    av_dict_free(&options);
    if (begun < 0)
        return false;

    const Packet packet(av_packet_alloc());
    int result = 0;
    while (!abandoned && result >= 0 && (result = av_read_frame(&input, packet.get())) >= 0) {
        if (AVStream *to = streams.value(packet->stream_index)) {
            av_packet_rescale_ts(packet.get(), input.streams[packet->stream_index]->time_base,
                                 to->time_base);
            packet->stream_index = to->index;
            packet->pos = -1;
            // Fragments do not say it of each packet, and the last one would be cut off.
            if (packet->duration == 0 && to->codecpar->codec_type == AVMEDIA_TYPE_VIDEO)
                packet->duration = av_rescale_q(1, {1, file.pictureRate}, to->time_base);
            result = av_interleaved_write_frame(&output, packet.get());
        }
        av_packet_unref(packet.get());
    }
    if (result != AVERROR_EOF || av_write_trailer(&output) < 0)
        return false;
    return avio_closep(&output.pb) >= 0;
}

} // namespace

void makeOrdinary(const FragmentedMp4 &file, const std::atomic<bool> &abandoned)
{
    const QFileInfo info(file.path);
    const QString beside = info.absolutePath() + u"/." + info.fileName() + copySuffix;
    // Left there by a process that died, or by somebody else.
    QFile::remove(beside);
    if (!hasRoomForCopy(file))
        return;
    const NewFile copyFile(beside);
    if (copyFile.error() < 0)
        return;
    bool copied = false;
    {
        AVFormatContext *opened = nullptr;
        avformat_open_input(&opened, urlOf(file.path).constData(), nullptr, nullptr);
        const Input input(opened);
        const Output output = openOutput(copyFile);
        copied = input && output && avformat_find_stream_info(input.get(), nullptr) >= 0
            && copy(*input, *output, file, abandoned);
    }
    const bool replaced = copied && !abandoned && copyFile.reachesTheDisk()
        && std::rename(QFile::encodeName(beside).constData(),
                       QFile::encodeName(file.path).constData())
            == 0;
    if (!replaced)
        QFile::remove(beside);
}

void removeAbandonedCopies(const QString &folder)
{
    const QDateTime oldest = QDateTime::currentDateTime().addSecs(
        -std::chrono::duration_cast<std::chrono::seconds>(longestCopy).count());
    const QFileInfoList copies =
        QDir(folder).entryInfoList({u".*" + copySuffix}, QDir::Files | QDir::Hidden);
    for (const QFileInfo &copy : copies) {
        if (copy.lastModified() < oldest)
            QFile::remove(copy.filePath());
    }
}

} // namespace lumaro
