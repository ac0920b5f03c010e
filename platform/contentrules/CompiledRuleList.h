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
    QString hidingStyleSheet(const QUrl &document, const QUrl &firstParty) const override;

private:
    contentrules::RuleMatcher m_blocking;
    contentrules::RuleMatcher m_hiding;
};

} // namespace lumaro
