#pragma once

#include "platform/contentrules/ContentRule.h"
#include "platform/contentrules/TextIndex.h"

#include <QHash>

namespace lumaro::contentrules {

/// Finds whether a rule applies to a request without looking at every one. Immutable; any thread.
class RuleMatcher
{
public:
    explicit RuleMatcher(std::vector<ContentRule> rules);

    bool matchesAny(const ContentRequest &request) const;

private:
    struct Pattern
    {
        UrlPattern filter;
        quint32 rule = 0;
    };
    struct Subject;

    void file(UrlPattern added, quint32 rule, std::vector<TextIndex::Entry> &texts);
    bool applies(const Pattern &pattern, Subject &subject) const;

    std::vector<ContentRule> m_rules;
    std::vector<Pattern> m_patterns;
    // Each pattern is filed in one of these, by its number.
    TextIndex m_texts;
    QHash<QByteArray, std::vector<quint32>> m_domains;
    std::vector<quint32> m_others;
};

} // namespace lumaro::contentrules
