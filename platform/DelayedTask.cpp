#include "platform/DelayedTask.h"

namespace lumaro {

DelayedTask::DelayedTask(Scheduler &scheduler)
    : m_scheduler(scheduler)
{
}

DelayedTask::~DelayedTask()
{
    cancel();
}

void DelayedTask::start(Scheduler::Duration delay, std::function<void()> action)
{
    cancel();
    m_timer = m_scheduler.callAfter(delay, [this, action = std::move(action)] {
        m_timer.reset();
        action();
    });
}

void DelayedTask::cancel()
{
    if (m_timer)
        m_scheduler.cancel(*std::exchange(m_timer, std::nullopt));
}

} // namespace lumaro
