#pragma once

#include "platform/contentrules/RuleMatcher.h"

namespace lumaro {

/// Content rules, ready to be applied. Immutable; any thread.
class CompiledRuleList final : public ContentRuleList
{
public:
    /// Compiles `source` as ContentRuleListStore describes it. Takes its time.
    static ContentRuleListStore::Result compile(const QString &source);

    explicit CompiledRuleList(const std::vector<contentrules::ContentRule> &rules);

    bool blocks(const ContentRequest &request) const override;
    QString hidingScript() const override { return m_hidingScript; }

private:
    contentrules::RuleMatcher m_blocking;
    QString m_hidingScript;
};

} // namespace lumaro
