#include "platform/contentrules/RuleMatcher.h"

#include <QVarLengthArray>

#include <algorithm>
#include <optional>

namespace lumaro::contentrules {

namespace {

bool isWebAddress(QByteArrayView address)
{
    return address.startsWith("http://") || address.startsWith("https://")
        || address.startsWith("ws://") || address.startsWith("wss://");
}

/// Calls `use` with the host and each domain above it until it returns true.
template <typename Use>
bool anyDomain(const QByteArray &host, Use use)
{
    for (qsizetype at = 0;;) {
        if (use(host.sliced(at)))
            return true;
        const qsizetype dot = host.indexOf('.', at);
        if (dot < 0)
            return false;
        at = dot + 1;
    }
}

} // namespace

/// What is looked at of a request.
struct RuleMatcher::Subject
{
    /// Longer addresses only gain time.
    static constexpr qsizetype maximumLength = 16384;

    explicit Subject(const ContentRequest &asked)
        : request(asked)
        , lowerAddress(lowered(encoded(asked)))
    {
    }
    const QByteArray &seenBy(const UrlPattern &pattern)
    {
        if (!pattern.isCaseSensitive)
            return lowerAddress;
        return address ? *address : address.emplace(encoded(request));
    }
    // Most requests have an address that no rule is for, and need none of this.
    const RequestFacts &facts() { return knownFacts ? *knownFacts : knownFacts.emplace(request); }

    const ContentRequest &request;
    QByteArray lowerAddress;
    std::optional<QByteArray> address;
    std::optional<RequestFacts> knownFacts;

private:
    static QByteArray encoded(const ContentRequest &request)
    {
        QByteArray address = request.url.toEncoded(QUrl::FullyEncoded);
        address.truncate(maximumLength);
        return address;
    }
    /// QByteArray's own way takes several times as long.
    static QByteArray lowered(QByteArray text)
    {
        for (char &c : text)
            c = char(c + (c >= 'A' && c <= 'Z' ? 'a' - 'A' : 0));
        return text;
    }
};

RuleMatcher::RuleMatcher(std::vector<ContentRule> rules)
    : m_rules(std::move(rules))
{
    std::vector<TextIndex::Entry> texts;
    for (size_t rule = 0; rule < m_rules.size(); ++rule) {
        // The patterns are all that is needed of it.
        for (UrlPattern &pattern : std::exchange(m_rules[rule].patterns, {}))
            file(std::move(pattern), quint32(rule), texts);
    }
    m_texts = TextIndex(texts);
}

void RuleMatcher::file(UrlPattern added, quint32 rule, std::vector<TextIndex::Entry> &texts)
{
    const auto number = quint32(m_patterns.size());
    m_patterns.push_back({std::move(added), rule});
    const UrlPattern &pattern = m_patterns.back().filter;
    const Condition &condition = m_rules[rule].condition;
    if (!pattern.required.isEmpty()) {
        texts.push_back({pattern.required, number});
    } else if (!condition.domains.empty() && !condition.domainsAreExcluded) {
        for (const Domain &domain : condition.domains)
            m_domains[domain.name].push_back(number);
    } else {
        m_others.push_back(number);
    }
}

bool RuleMatcher::applies(const Pattern &pattern, Subject &subject) const
{
    return m_rules[pattern.rule].condition.holds(subject.facts())
        && (pattern.filter.matchesEverything()
            || pattern.filter.matches(subject.seenBy(pattern.filter)));
}

bool RuleMatcher::matchesAny(const ContentRequest &request) const
{
    Subject subject(request);
    if (!isWebAddress(subject.lowerAddress))
        return false;
    const auto tryPattern = [&](quint32 number) { return applies(m_patterns[number], subject); };
    // A text may be found in many places; the pattern's answer stays the same.
    QVarLengthArray<quint32, 32> tried;
    const auto tryText = [&](quint32 number, qsizetype position) {
        const QByteArray &text = m_patterns[number].filter.required;
        if (position < 0 || tried.contains(number)
            || !QByteArrayView(subject.lowerAddress).sliced(position).startsWith(text))
            return false;
        tried.append(number);
        return tryPattern(number);
    };
    const auto tryDomain = [&](const QByteArray &domain) {
        const auto found = m_domains.constFind(domain);
        return found != m_domains.cend() && std::ranges::any_of(*found, tryPattern);
    };
    return std::ranges::any_of(m_others, tryPattern)
        || m_texts.search(subject.lowerAddress, tryText)
        || (!m_domains.isEmpty() && anyDomain(subject.facts().page, tryDomain));
}

} // namespace lumaro::contentrules
