#pragma once

#include "platform/ContentRuleList.h"
#include "platform/contentrules/UrlFilter.h"

namespace lumaro::contentrules {

inline constexpr qsizetype maximumRules = 150'000;
/// In UTF-16 code units.
inline constexpr qsizetype maximumSourceLength = 64 * 1024 * 1024;

/// A domain that a rule is limited to.
struct Domain
{
    QByteArray name;
    bool withSubdomains = false;
};

/// What conditions look at of a request, found out once.
struct RequestFacts
{
    explicit RequestFacts(const ContentRequest &request);

    quint32 type = 0;
    /// The host of the page in the address field.
    QByteArray page;
    bool isFirstParty = true;
};

/// When a rule applies, apart from the address.
struct Condition
{
    enum class Party : quint8 {
        Any,
        First,
        Third,
    };

    /// The resource types, or'ed.
    quint32 types = ~quint32(0);
    Party party = Party::Any;
    /// The page is, or is not, on one of the domains.
    bool domainsAreExcluded = false;
    std::vector<Domain> domains;

    bool holds(const RequestFacts &request) const;
};

/// One content rule.
struct ContentRule
{
    std::vector<UrlPattern> patterns;
    Condition condition;
    /// What is hidden, as a selector (CSS); empty for a rule that blocks.
    QString selector;
    // Of a rule that hides, as they were written.
    QString filter;
    bool filterIsCaseSensitive = false;
};

/// Reads rules as ContentRuleListStore describes them. Any thread.
std::expected<std::vector<ContentRule>, ContentRuleListError>
readContentRules(const QString &source);

} // namespace lumaro::contentrules
