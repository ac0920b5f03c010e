#pragma once

#include "platform/Scheduler.h"

namespace lumaro {

/// One delayed action of its owner; starting it again replaces the one that waits. Cancelled when
/// destroyed, so the action may refer to the owner. Main thread only.
class DelayedTask
{
public:
    explicit DelayedTask(Scheduler &scheduler);
    ~DelayedTask();
    DelayedTask(const DelayedTask &) = delete;
    DelayedTask &operator=(const DelayedTask &) = delete;

    /// Runs `action` after `delay`, in place of any action still waiting.
    void start(Scheduler::Duration delay, std::function<void()> action);
    void cancel();

    /// True from start() until the action begins or is cancelled.
    bool isPending() const { return m_timer.has_value(); }

private:
    Scheduler &m_scheduler;
    std::optional<Scheduler::TimerId> m_timer;
};

} // namespace lumaro
