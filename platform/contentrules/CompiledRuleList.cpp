#include "platform/contentrules/CompiledRuleList.h"

#include <algorithm>

namespace lumaro {

using contentrules::ContentRule;

namespace {

/// Those that hide, or those that do not.
std::vector<ContentRule> rulesThatHide(bool hide, const std::vector<ContentRule> &rules)
{
    std::vector<ContentRule> some;
    std::ranges::copy_if(rules, std::back_inserter(some), [hide](const ContentRule &rule) {
        return rule.selector.isEmpty() != hide;
    });
    return some;
}

} // namespace

ContentRuleListStore::Result CompiledRuleList::compile(const QString &source)
{
    auto rules = contentrules::readContentRules(source);
    if (!rules)
        return std::unexpected(rules.error());
    return ContentRuleListStore::Compiled{
        std::make_shared<const CompiledRuleList>(*std::move(rules))};
}

CompiledRuleList::CompiledRuleList(const std::vector<ContentRule> &rules)
    : m_blocking(rulesThatHide(false, rules))
    , m_hiding(rulesThatHide(true, rules))
{
}

bool CompiledRuleList::blocks(const ContentRequest &request) const
{
    return m_blocking.matchesAny(request);
}

QString CompiledRuleList::hidingStyleSheet(const QUrl &document, const QUrl &firstParty) const
{
    QString sheet;
    for (const quint32 number :
         m_hiding.matchingRules({document, firstParty, ResourceType::Document})) {
        // In a block of its own, a selector that the browser does not know spoils no other.
        sheet += m_hiding.rule(number).selector + u" { display: none !important; }\n";
    }
    return sheet;
}

} // namespace lumaro
