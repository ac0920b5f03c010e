#pragma once

#include "platform/AssetWriter.h"

namespace lumaro {

/// Turns the samples of one recording into one MP4 file, whose zero is the first picture. A sample
/// that cannot be written right away is dropped. Made on the main thread, then used on the capture
/// queue alone, but for hasFailed() and hurry().
class PlayerCaptureWriter
{
public:
    static constexpr int frameRate = 30;
    static constexpr int audioSampleRate = 48'000;
    static constexpr int audioChannels = 2;

    /// Outcome of a recording: the file, or an English sentence.
    using Outcome = std::expected<QUrl, QString>;

    /// Replaces a file that is there. The error is an English sentence.
    static std::expected<std::unique_ptr<PlayerCaptureWriter>, QString>
    create(const AssetWriterFactory &factory, const QUrl &outputURL, const QSize &size);

    void append(const VideoSample &sample);
    void append(const AudioSample &sample);

    void finish(const std::function<void(const Outcome &)> &completion);
    /// What is being finished, or will be, shall take no time. On any thread.
    void hurry() { m_writer->hurry(); }
    /// Leaves no file.
    void cancel();

    /// The file cannot be written any further. On any thread.
    bool hasFailed() const { return m_writer->status() == AssetWriter::Status::Failed; }

private:
    PlayerCaptureWriter(std::unique_ptr<AssetWriter> writer, QUrl outputURL);

    bool isWriting() const { return m_writer->status() == AssetWriter::Status::Writing; }
    QString failure() const;

    std::unique_ptr<AssetWriter> m_writer;
    bool m_sessionStarted = false;
    QUrl m_outputURL;
};

/// For pictures of this size.
VideoInputSettings videoInputSettings(const QSize &size);
AudioInputSettings audioInputSettings();

} // namespace lumaro
