#pragma once

#include <QByteArray>

#include <bitset>
#include <expected>
#include <vector>

namespace lumaro::contentrules {

/// One way for an address to match: a plain text or a small automaton, which takes time in
/// proportion to the address whatever the expression.
class UrlPattern
{
public:
    using CharSet = std::bitset<128>;
    static constexpr size_t maximumSteps = 2000;

    struct Step
    {
        enum class Kind : quint8 {
            Take, ///< one character of the set, then the next step
            Fork, ///< both the next step and `other`
            Jump, ///< `other`
            Done,
        };
        Kind kind = Kind::Done;
        quint16 set = 0;
        quint16 other = 0;
    };

    /// Only at the address's beginning, or end.
    bool atStart = false;
    bool atEnd = false;
    bool isCaseSensitive = false;
    /// The whole text, when there are no steps. Lower-case unless case counts.
    QByteArray text;
    /// The longest text in every match, in lower case; empty when there is none.
    QByteArray required;
    std::vector<CharSet> sets;
    std::vector<Step> steps;

    bool matchesEverything() const
    {
        return steps.empty() && text.isEmpty() && !(atStart && atEnd);
    }

    /// `address` is as it is, or in lower case unless case counts.
    bool matches(QByteArrayView address) const;

private:
    bool run(QByteArrayView address) const;
};

/// Why an expression is refused.
enum class UrlFilterError {
    Syntax, ///< wrong, or beyond what content rules may say
    TooLarge,
};

/// Reads a regular expression in the dialect of content rules: characters, ".", classes, groups,
/// alternatives, "*", "+" and "?", and "^" and "$" at the ends; ASCII only. An address matches when
/// one of the patterns does.
std::expected<std::vector<UrlPattern>, UrlFilterError> readUrlFilter(QByteArrayView expression,
                                                                     bool isCaseSensitive);

} // namespace lumaro::contentrules
