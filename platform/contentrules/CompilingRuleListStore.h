#pragma once

#include "platform/ContentRuleList.h"
#include "platform/Scheduler.h"

namespace lumaro {

/// Compiles content rules in the background.
class CompilingRuleListStore final : public ContentRuleListStore
{
public:
    /// `scheduler` outlives the store.
    explicit CompilingRuleListStore(Scheduler &scheduler);

    Task<Result> compile(QString identifier, Rules rules, std::stop_token stop) override;

private:
    Scheduler &m_scheduler;
};

} // namespace lumaro
