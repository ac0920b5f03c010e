#include "platform/Scheduler.h"

namespace lumaro {

Task<bool> Scheduler::sleep(Duration duration, std::stop_token stop)
{
    if (stop.stop_requested())
        co_return false;
    const OneShot<bool> done;
    const TimerId timer = callAfter(duration, [done] { done.complete(true); });
    const std::stop_callback whenStopped(stop, [done] { done.complete(false); });
    const bool elapsed = co_await done;
    if (!elapsed)
        cancel(timer);
    co_return elapsed;
}

} // namespace lumaro
