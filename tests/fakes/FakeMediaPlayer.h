#pragma once

#include "platform/MediaPlayer.h"

#include <QStringList>

namespace lumaro {

/// Gives the pictures that a test puts into it.
class FakeVideoOutput final : public VideoOutput
{
public:
    explicit FakeVideoOutput(quint64 ofItem)
        : item(ofItem)
    {
    }

    bool hasNewPixelBuffer(double) const override { return hasNew; }
    std::optional<PixelBuffer> copyPixelBuffer(double itemTime) override
    {
        copiedTimes.append(itemTime);
        return picture;
    }

    const quint64 item;
    bool hasNew = true;
    std::optional<PixelBuffer> picture = PixelBuffer{};
    QList<double> copiedTimes;
};

/// A media player whose item is whatever the test says; it logs what it is told to do.
class FakeMediaPlayer final : public MediaPlayer
{
public:
    void replaceItem(const QUrl &url) override
    {
        m_item = url;
        ++m_itemNumber;
        log.append(u"load " + url.toString());
        Q_EMIT currentItemChanged();
    }
    void removeItem() override
    {
        m_item.clear();
        log.append(QStringLiteral("remove"));
        Q_EMIT currentItemChanged();
    }
    bool hasItem() const override { return !m_item.isEmpty(); }
    quint64 currentItem() const override { return hasItem() ? m_itemNumber : 0; }
    std::shared_ptr<VideoOutput> addVideoOutput() override
    {
        auto output = std::make_shared<FakeVideoOutput>(currentItem());
        videoOutput = output;
        return output;
    }

    void play() override
    {
        m_rate = 1;
        log.append(QStringLiteral("play"));
    }
    void pause() override
    {
        m_rate = 0;
        log.append(QStringLiteral("pause"));
    }
    double rate() const override { return m_rate; }
    TimeControlStatus timeControlStatus() const override { return status; }

    std::optional<double> currentTime() const override { return time; }
    std::optional<double> duration() const override { return length; }
    std::optional<TimeRange> seekableRange() const override
    {
        return !seekable && length ? TimeRange{0, *length} : seekable;
    }
    QSize presentationSize() const override { return pictureSize; }
    bool showsCover() const override { return pictureIsCover; }

    void seek(double seconds) override { log.append(QStringLiteral("seek %1").arg(seconds)); }
    void setVolume(double gain) override { log.append(QStringLiteral("volume %1").arg(gain)); }
    void setMuted(bool muted) override
    {
        log.append(muted ? QStringLiteral("mute") : QStringLiteral("unmute"));
    }

    void setPeriodicTimeObserver(std::chrono::milliseconds interval,
                                 std::function<void()> observer) override
    {
        observerInterval = interval;
        m_observer = std::move(observer);
    }

    /// Reaches the end of the item, or pauses by itself.
    void setRate(double rate) { m_rate = rate; }
    void changeStatus(TimeControlStatus newStatus)
    {
        status = newStatus;
        Q_EMIT timeControlStatusChanged();
    }
    void changePictureSize(QSize size)
    {
        pictureSize = size;
        Q_EMIT presentationSizeChanged();
    }
    void tick()
    {
        if (m_observer)
            m_observer();
    }

    QStringList log;
    TimeControlStatus status = TimeControlStatus::Paused;
    std::optional<double> time;
    std::optional<double> length;
    /// Without it the whole length.
    std::optional<TimeRange> seekable;
    QSize pictureSize;
    bool pictureIsCover = false;
    /// The one added last, while anybody keeps it.
    std::weak_ptr<FakeVideoOutput> videoOutput;
    std::chrono::milliseconds observerInterval{};

private:
    QUrl m_item;
    quint64 m_itemNumber = 0;
    double m_rate = 0;
    std::function<void()> m_observer;
};

} // namespace lumaro
