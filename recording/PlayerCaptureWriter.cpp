#include "recording/PlayerCaptureWriter.h"

#include "recording/RecorderError.h"

#include <QFile>

namespace lumaro {

namespace {

constexpr qint64 bitsPerPixel = 6;
constexpr qint64 leastBitRate = 4'000'000;
constexpr int keyFrameInterval = 60;
constexpr int audioBitRate = 192'000;

} // namespace

VideoInputSettings videoInputSettings(const QSize &size)
{
    const qint64 bitRate =
        std::max(qint64(size.width()) * size.height() * bitsPerPixel, leastBitRate);
    return {.width = size.width(),
            .height = size.height(),
            .averageBitRate = int(std::min<qint64>(bitRate, std::numeric_limits<int>::max())),
            .expectedFrameRate = PlayerCaptureWriter::frameRate,
            .maximumKeyFrameInterval = keyFrameInterval};
}

AudioInputSettings audioInputSettings()
{
    return {.channels = PlayerCaptureWriter::audioChannels,
            .sampleRate = PlayerCaptureWriter::audioSampleRate,
            .bitRate = audioBitRate};
}

std::expected<std::unique_ptr<PlayerCaptureWriter>, QString>
PlayerCaptureWriter::create(const AssetWriterFactory &factory, const QUrl &outputURL,
                            const QSize &size)
{
    // Where that fails, the writer says why.
    QFile::remove(outputURL.toLocalFile());
    auto made = factory(outputURL);
    if (!made)
        return std::unexpected(made.error());
    std::unique_ptr<PlayerCaptureWriter> writer(
        new PlayerCaptureWriter(std::move(*made), outputURL));
    AssetWriter &asset = *writer->m_writer;
    const VideoInputSettings video = videoInputSettings(size);
    const AudioInputSettings audio = audioInputSettings();
    const auto fail = [&writer](const QString &error) {
        writer->cancel();
        return std::unexpected(error);
    };
    if (!asset.canAdd(video) || !asset.canAdd(audio))
        return fail(description(RecorderError::writerConfigurationFailed));
    asset.add(video);
    asset.add(audio);
    if (!asset.startWriting())
        return fail(writer->failure());
    return writer;
}

PlayerCaptureWriter::PlayerCaptureWriter(std::unique_ptr<AssetWriter> writer, QUrl outputURL)
    : m_writer(std::move(writer))
    , m_outputURL(std::move(outputURL))
{
}

void PlayerCaptureWriter::append(const VideoSample &sample)
{
    if (!sample.isValid() || !sample.isDataReady() || !isWriting())
        return;
    if (!std::exchange(m_sessionStarted, true))
        m_writer->startSession(sample.presentationTime);
    if (m_writer->isVideoReadyForMoreData())
        m_writer->append(sample);
}

void PlayerCaptureWriter::append(const AudioSample &sample)
{
    if (!sample.isValid() || !sample.isDataReady())
        return;
    if (m_sessionStarted && isWriting() && m_writer->isAudioReadyForMoreData())
        m_writer->append(sample);
}

void PlayerCaptureWriter::finish(const std::function<void(const Outcome &)> &completion)
{
    if (!m_sessionStarted) {
        cancel();
        return completion(std::unexpected(description(RecorderError::noFramesCaptured)));
    }
    m_writer->markVideoAsFinished();
    m_writer->markAudioAsFinished();
    m_writer->finishWriting([this, completion] {
        if (m_writer->status() == AssetWriter::Status::Completed)
            completion(m_outputURL);
        else
            completion(std::unexpected(failure()));
    });
}

void PlayerCaptureWriter::cancel()
{
    m_writer->cancelWriting();
}

QString PlayerCaptureWriter::failure() const
{
    const QString error = m_writer->error();
    return error.isEmpty() ? description(RecorderError::writerConfigurationFailed) : error;
}

} // namespace lumaro
