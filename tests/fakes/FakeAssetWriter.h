#pragma once

#include "platform/AssetWriter.h"

#include <QFile>
#include <QStringList>

namespace lumaro {

/// What a test sees of a file that is written, and decides about it.
struct FakeAsset
{
    AssetWriter::Status status = AssetWriter::Status::Unknown;
    bool acceptsVideo = true;
    bool acceptsAudio = true;
    bool starts = true;
    bool videoReady = true;
    bool audioReady = true;
    bool completes = true;
    QString error;
    QUrl file;
    std::optional<VideoInputSettings> video;
    std::optional<AudioInputSettings> audio;
    /// What happened, in order, with times in milliseconds.
    QStringList log;
};

class FakeAssetWriter final : public AssetWriter
{
public:
    explicit FakeAssetWriter(FakeAsset &asset)
        : m_asset(asset)
    {
        QFile file(m_asset.file.toLocalFile());
        (void)file.open(QIODevice::NewOnly);
    }

    bool canAdd(const VideoInputSettings &) const override { return m_asset.acceptsVideo; }
    bool canAdd(const AudioInputSettings &) const override { return m_asset.acceptsAudio; }
    void add(const VideoInputSettings &settings) override { m_asset.video = settings; }
    void add(const AudioInputSettings &settings) override { m_asset.audio = settings; }
    bool startWriting() override
    {
        m_asset.status = m_asset.starts ? Status::Writing : Status::Failed;
        return m_asset.starts;
    }
    void startSession(MediaTime time) override { log(u"session", time); }
    bool isVideoReadyForMoreData() const override { return m_asset.videoReady; }
    bool isAudioReadyForMoreData() const override { return m_asset.audioReady; }
    void append(const VideoSample &sample) override { log(u"video", sample.presentationTime); }
    void append(const AudioSample &sample) override { log(u"audio", sample.presentationTime); }
    void markVideoAsFinished() override { m_asset.log.append(QStringLiteral("video finished")); }
    void markAudioAsFinished() override { m_asset.log.append(QStringLiteral("audio finished")); }
    void hurry() override { m_asset.log.append(QStringLiteral("hurry")); }
    void finishWriting(std::function<void()> done) override
    {
        if (m_asset.status == Status::Writing)
            m_asset.status = m_asset.completes ? Status::Completed : Status::Failed;
        m_asset.log.append(QStringLiteral("finished"));
        done();
    }
    void cancelWriting() override
    {
        m_asset.status = Status::Cancelled;
        m_asset.log.append(QStringLiteral("cancelled"));
        QFile::remove(m_asset.file.toLocalFile());
    }
    Status status() const override { return m_asset.status; }
    QString error() const override { return m_asset.error; }

private:
    void log(QStringView what, MediaTime time)
    {
        const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(time);
        m_asset.log.append(what + u' ' + QString::number(milliseconds.count()));
    }

    FakeAsset &m_asset;
};

/// Writers that tell `asset`, or the error when there is one.
inline AssetWriterFactory fakeAssetWriters(FakeAsset &asset, const QString &refusal)
{
    return [&asset,
            &refusal](const QUrl &file) -> std::expected<std::unique_ptr<AssetWriter>, QString> {
        if (!refusal.isEmpty())
            return std::unexpected(refusal);
        asset.file = file;
        return std::make_unique<FakeAssetWriter>(asset);
    };
}

} // namespace lumaro
