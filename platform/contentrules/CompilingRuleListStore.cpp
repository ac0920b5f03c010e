#include "platform/contentrules/CompilingRuleListStore.h"

#include "platform/contentrules/CompiledRuleList.h"

namespace lumaro {

CompilingRuleListStore::CompilingRuleListStore(Scheduler &scheduler)
    : m_scheduler(scheduler)
{
}

Task<ContentRuleListStore::Result>
CompilingRuleListStore::compile([[maybe_unused]] QString identifier, Rules rules,
                                std::stop_token stop)
{
    const OneShot<Result> finished;
    const std::stop_callback whenStopped(stop, [finished] {
        finished.complete(
            std::unexpected(ContentRuleListError{ContentRuleListError::Kind::Cancelled}));
    });
    const auto result = std::make_shared<std::optional<Result>>();
    const auto work = [result, rules, stop] {
        // Nobody waits for it any more.
        if (!stop.stop_requested())
            result->emplace(CompiledRuleList::compile(rules()));
    };
    const auto done = [result, finished] {
        if (*result)
            finished.complete(**result);
    };
    m_scheduler.runInBackground(work, done);
    co_return co_await finished;
}

} // namespace lumaro
