#pragma once

#include "platform/MediaSamples.h"
#include "platform/SerialQueue.h"

#include <atomic>

namespace lumaro {

/// Puts captured sound on a queue. While the queue stands still, as with a disk that does, what
/// comes when `mostWaiting` waits already is dropped. On any one thread.
class AudioFeed
{
public:
    static constexpr std::chrono::seconds mostWaiting{5};

    AudioFeed(std::shared_ptr<SerialQueue> queue, std::function<void(const AudioSample &)> sink,
              int sampleRate)
        : m_queue(std::move(queue))
        , m_sink(std::move(sink))
        , m_mostFrames(size_t(sampleRate) * mostWaiting.count())
        , m_waiting(std::make_shared<std::atomic<size_t>>(0))
    {
    }

    void deliver(AudioSample sample)
    {
        const size_t frames = sample.data.size() / size_t(std::max(sample.channels, 1));
        if (*m_waiting + frames > m_mostFrames)
            return;
        *m_waiting += frames;
        m_queue->post([sink = m_sink, waiting = m_waiting, frames, sample = std::move(sample)] {
            sink(sample);
            *waiting -= frames;
        });
    }

private:
    const std::shared_ptr<SerialQueue> m_queue;
    const std::function<void(const AudioSample &)> m_sink;
    const size_t m_mostFrames;
    /// Frames on the queue, which may outlive this.
    const std::shared_ptr<std::atomic<size_t>> m_waiting;
};

} // namespace lumaro
