#pragma once

#include "platform/Scheduler.h"

#include <deque>
#include <map>

namespace lumaro {

/// Time that stands still until the test moves it. Background work waits for runBackground().
class FakeScheduler final : public Scheduler
{
public:
    FakeScheduler() = default;
    FakeScheduler(const FakeScheduler &) = delete;
    FakeScheduler &operator=(const FakeScheduler &) = delete;
    /// Does what still waits, for whoever asked has been told to stop.
    ~FakeScheduler() override { runBackground(); }

    TimePoint now() const override { return m_now; }
    TimerId callAfter(Duration delay, std::function<void()> action) override;
    void cancel(TimerId timer) override;
    void runInBackground(std::function<void()> work, std::function<void()> done) override;

    /// Moves the time on, making every call that falls due on the way, in order.
    void advance(Duration duration);
    /// Makes the call that falls due next, which must be due now.
    void makeOneCall();

    /// Does the background work that waits, and what that work asks for in turn.
    void runBackground();
    /// Does the oldest of it alone.
    void runOneBackground();
    /// As runBackground(), but what was asked for last overtakes the rest.
    void runNewestBackground();

    qsizetype pendingCalls() const { return qsizetype(m_calls.size()); }
    qsizetype pendingBackgroundWork() const { return qsizetype(m_background.size()); }

private:
    struct Call
    {
        TimerId id = 0;
        std::function<void()> action;
    };
    struct Work
    {
        std::function<void()> work;
        std::function<void()> done;
    };

    TimePoint m_now;
    TimerId m_lastId = 0;
    std::multimap<TimePoint, Call> m_calls;
    std::deque<Work> m_background;
};

} // namespace lumaro
