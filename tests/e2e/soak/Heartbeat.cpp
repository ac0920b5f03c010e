#include "tests/e2e/soak/Heartbeat.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

using namespace std::chrono_literals;

namespace lumaro {

Heartbeat::Heartbeat(std::chrono::milliseconds longestSilence)
    : m_bound(longestSilence)
    , m_listener([this](const std::stop_token &stop) { listen(stop); })
{
    m_timer.callOnTimeout(&m_timer, [this] { beat(); });
    m_timer.start(20ms);
}

void Heartbeat::beat()
{
    const auto now = Clock::now();
    m_longest = std::max(
        m_longest, std::chrono::duration_cast<std::chrono::milliseconds>(now - m_last.load()));
    m_last = now;
}

void Heartbeat::listen(const std::stop_token &stop) const
{
    while (!stop.stop_requested()) {
        std::this_thread::sleep_for(200ms);
        if (Clock::now() - m_last.load() < m_bound)
            continue;
        std::fprintf(stderr, "The main thread has not answered for %lld ms.\n",
                     static_cast<long long>(m_bound.count()));
        std::abort();
    }
}

} // namespace lumaro
