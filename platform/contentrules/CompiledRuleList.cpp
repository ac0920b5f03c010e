#include "platform/contentrules/CompiledRuleList.h"

#include "platform/BuiltInScript.h"

#include <QJsonObject>

#include <algorithm>

namespace lumaro {

using contentrules::Condition;
using contentrules::ContentRule;
using contentrules::Domain;

namespace {

bool hides(const ContentRule &rule)
{
    return !rule.selector.isEmpty();
}

std::vector<ContentRule> blockingRules(const std::vector<ContentRule> &rules)
{
    std::vector<ContentRule> some;
    std::ranges::remove_copy_if(rules, std::back_inserter(some), hides);
    return some;
}

QString partyName(Condition::Party party)
{
    switch (party) {
    case Condition::Party::Any:
        return {};
    case Condition::Party::First:
        return QStringLiteral("first");
    case Condition::Party::Third:
        return QStringLiteral("third");
    }
    Q_UNREACHABLE();
}

QJsonObject asJson(const ContentRule &rule)
{
    QJsonArray domains;
    for (const Domain &domain : rule.condition.domains)
        domains.append(
            QString((domain.withSubdomains ? u"*" : u"") + QString::fromLatin1(domain.name)));
    return {{QStringLiteral("filter"), rule.filter},
            {QStringLiteral("caseSensitive"), rule.filterIsCaseSensitive},
            {QStringLiteral("party"), partyName(rule.condition.party)},
            {QStringLiteral("domains"), domains},
            {QStringLiteral("excluded"), rule.condition.domainsAreExcluded},
            {QStringLiteral("selector"), rule.selector}};
}

QString hidingScriptFor(const std::vector<ContentRule> &rules)
{
    QJsonArray hiding;
    for (const ContentRule &rule : rules) {
        if (hides(rule) && (rule.condition.types & quint32(ResourceType::Document)) != 0)
            hiding.append(asJson(rule));
    }
    if (hiding.isEmpty())
        return {};
    QJsonArray arguments;
    arguments.append(hiding);
    return builtInCall(QStringLiteral(":/lumaro/contentrules/scripts/hide-elements.js"), arguments);
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
    : m_blocking(blockingRules(rules))
    , m_hidingScript(hidingScriptFor(rules))
{
}

bool CompiledRuleList::blocks(const ContentRequest &request) const
{
    return m_blocking.matchesAny(request);
}

} // namespace lumaro
