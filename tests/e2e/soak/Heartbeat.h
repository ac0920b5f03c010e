#pragma once

#include <QTimer>

#include <atomic>
#include <chrono>
#include <thread>

namespace lumaro {

/// Ends the program, with what its main thread is doing in the core, when that does not return to
/// its event loop for too long. To be made on the main thread.
class Heartbeat
{
public:
    using Clock = std::chrono::steady_clock;

    explicit Heartbeat(std::chrono::milliseconds longestSilence);

    /// The longest time between two beats so far.
    std::chrono::milliseconds longestSilence() const { return m_longest; }

private:
    void beat();
    void listen(const std::stop_token &stop) const;

    const std::chrono::milliseconds m_bound;
    std::atomic<Clock::time_point> m_last = Clock::now();
    std::chrono::milliseconds m_longest{};
    QTimer m_timer;
    std::jthread m_listener;
};

} // namespace lumaro
