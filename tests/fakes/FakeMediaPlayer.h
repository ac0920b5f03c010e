#pragma once

#include "platform/MediaPlayer.h"

#include <QStringList>

namespace lumaro {

/// A media player whose item is whatever the test says; it logs what it is told to do.
class FakeMediaPlayer final : public MediaPlayer
{
public:
    void replaceItem(const QUrl &url) override
    {
        m_item = url;
        log.append(u"load " + url.toString());
    }
    void removeItem() override
    {
        m_item.clear();
        log.append(QStringLiteral("remove"));
    }
    bool hasItem() const override { return !m_item.isEmpty(); }

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
    std::chrono::milliseconds observerInterval{};

private:
    QUrl m_item;
    double m_rate = 0;
    std::function<void()> m_observer;
};

} // namespace lumaro
