#include "platform/contentrules/UrlFilter.h"

#include <algorithm>
#include <optional>

namespace lumaro::contentrules {

namespace {

using CharSet = UrlPattern::CharSet;

struct Node
{
    enum class Kind {
        Set,
        Text, ///< nothing but these characters, which one after another would take much room
        Sequence,
        Choice,
        Repeat, ///< of the only child
        Start,
        End,
    };
    Kind kind = Kind::Sequence;
    CharSet set;
    QByteArray text;
    std::vector<Node> children;
    bool mayBeAbsent = false;
    bool mayGoOn = false;
};

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

/// Recursive descent over the expression.
class Reader
{
public:
    Reader(QByteArrayView expression, bool isCaseSensitive)
        : m_text(expression)
        , m_isCaseSensitive(isCaseSensitive)
    {
    }

    std::optional<Node> read()
    {
        auto node = choice(0);
        return node && m_at == m_text.size() ? node : std::nullopt;
    }

private:
    /// Deeper groups could exhaust the stack.
    static constexpr int maximumDepth = 100;

    bool atEnd() const { return m_at == m_text.size(); }
    bool nextIs(char c) const { return !atEnd() && m_text[m_at] == c; }
    bool take(char c)
    {
        if (!nextIs(c))
            return false;
        ++m_at;
        return true;
    }

    std::optional<Node> choice(int depth)
    {
        if (depth > maximumDepth)
            return std::nullopt;
        Node node;
        node.kind = Node::Kind::Choice;
        do {
            auto alternative = sequence(depth);
            if (!alternative)
                return std::nullopt;
            node.children.push_back(std::move(*alternative));
        } while (take('|'));
        if (node.children.size() == 1)
            return std::move(node.children.front());
        return node;
    }

    /// An alternative that is a text, as in a long list of domains; empty for any other, which is
    /// then still to be read.
    QByteArray wholeText()
    {
        static constexpr QByteArrayView special = "()[].^$*+?{}";
        const qsizetype begin = m_at;
        QByteArray text;
        while (!atEnd() && !nextIs('|') && !nextIs(')')) {
            char c = m_text[m_at++];
            const bool isEscaped = c == '\\';
            if (isEscaped)
                c = escapedCharacter().value_or('\0');
            if (c <= 0 || (!isEscaped && special.contains(c))) {
                m_at = begin;
                return {};
            }
            text += m_isCaseSensitive ? c : lower(c);
        }
        return text;
    }

    std::optional<Node> sequence(int depth)
    {
        Node node;
        if (QByteArray text = wholeText(); !text.isEmpty()) {
            node.kind = Node::Kind::Text;
            node.text = std::move(text);
            return node;
        }
        while (!atEnd() && !nextIs('|') && !nextIs(')')) {
            auto item = repeated(depth);
            if (!item)
                return std::nullopt;
            if (item->kind == Node::Kind::Sequence)
                std::ranges::move(item->children, std::back_inserter(node.children));
            else
                node.children.push_back(std::move(*item));
        }
        return node;
    }

    std::optional<Node> repeated(int depth)
    {
        auto item = atom(depth);
        const bool isAssertion =
            item && (item->kind == Node::Kind::Start || item->kind == Node::Kind::End);
        if (!item || atEnd() || isAssertion)
            return item;
        const char quantifier = m_text[m_at];
        if (quantifier != '*' && quantifier != '+' && quantifier != '?')
            return item;
        ++m_at;
        // How much is taken makes no difference to whether it matches.
        take('?');
        Node node;
        node.kind = Node::Kind::Repeat;
        node.mayBeAbsent = quantifier != '+';
        node.mayGoOn = quantifier != '?';
        node.children.push_back(std::move(*item));
        return node;
    }

    std::optional<Node> atom(int depth)
    {
        const char c = m_text[m_at++];
        switch (c) {
        case '(':
            return group(depth);
        case '[':
            return characterClass();
        case '.':
            return setNode(CharSet().set());
        case '^':
            return assertion(Node::Kind::Start);
        case '$':
            return assertion(Node::Kind::End);
        case '\\':
            return escaped();
        case '*':
        case '+':
        case '?':
        case '{':
        case '}':
            return std::nullopt;
        default:
            return single(c);
        }
    }

    std::optional<Node> group(int depth)
    {
        // Nothing refers to what a group took, so all are alike.
        if (take('?') && !take(':'))
            return std::nullopt;
        auto node = choice(depth + 1);
        return node && take(')') ? node : std::nullopt;
    }

    static Node assertion(Node::Kind kind)
    {
        Node node;
        node.kind = kind;
        return node;
    }

    static Node setNode(const CharSet &set)
    {
        Node node;
        node.kind = Node::Kind::Set;
        node.set = set;
        return node;
    }

    void add(CharSet &set, char c) const { set.set(size_t(m_isCaseSensitive ? c : lower(c))); }

    std::optional<Node> single(char c) const
    {
        if (c <= 0)
            return std::nullopt;
        CharSet set;
        add(set, c);
        return setNode(set);
    }

    /// Escaped letters and digits mean classes, boundaries and back references.
    std::optional<char> escapedCharacter()
    {
        if (atEnd())
            return std::nullopt;
        const char c = m_text[m_at++];
        const bool isSpecial = c <= 0 || isLetter(c) || (c >= '0' && c <= '9');
        return isSpecial ? std::nullopt : std::optional(c);
    }

    std::optional<Node> escaped()
    {
        const auto c = escapedCharacter();
        return c ? single(*c) : std::nullopt;
    }

    std::optional<char> classCharacter()
    {
        if (atEnd())
            return std::nullopt;
        if (take('\\'))
            return escapedCharacter();
        const char c = m_text[m_at++];
        return c > 0 ? std::optional(c) : std::nullopt;
    }

    std::optional<Node> characterClass()
    {
        const bool isNegated = take('^');
        CharSet set;
        bool isEmpty = true;
        while (!take(']')) {
            const auto first = classCharacter();
            if (!first)
                return std::nullopt;
            char last = *first;
            const bool isRange = nextIs('-') && m_at + 1 < m_text.size() && m_text[m_at + 1] != ']';
            if (isRange) {
                ++m_at;
                const auto end = classCharacter();
                if (!end || uchar(*end) < uchar(*first))
                    return std::nullopt;
                last = *end;
            }
            for (int c = uchar(*first); c <= uchar(last); ++c)
                add(set, char(c));
            isEmpty = false;
        }
        if (isEmpty)
            return std::nullopt;
        return setNode(isNegated ? ~set : set);
    }

    QByteArrayView m_text;
    bool m_isCaseSensitive;
    qsizetype m_at = 0;
};

bool isAnything(const Node &node)
{
    return node.kind == Node::Kind::Repeat && node.mayBeAbsent && node.mayGoOn
        && node.children.front().kind == Node::Kind::Set && node.children.front().set.all();
}

std::optional<char> onlyCharacter(const Node &node)
{
    if (node.kind != Node::Kind::Set || node.set.count() != 1)
        return std::nullopt;
    for (size_t c = 0; c < node.set.size(); ++c) {
        if (node.set.test(c))
            return char(c);
    }
    return std::nullopt;
}

/// Empty when other texts match too.
std::optional<QByteArray> onlyText(const Node &node)
{
    if (node.kind == Node::Kind::Text)
        return node.text;
    const auto c = onlyCharacter(node);
    return c ? std::optional(QByteArray(1, *c)) : std::nullopt;
}

QByteArray longestText(const std::vector<Node> &items)
{
    QByteArray longest;
    QByteArray current;
    for (const Node &item : items) {
        if (const auto text = onlyText(item))
            current += text->toLower();
        else
            current.clear();
        if (current.size() > longest.size())
            longest = current;
    }
    return longest;
}

/// Turns a sequence into steps.
class Writer
{
public:
    explicit Writer(UrlPattern &pattern)
        : m_pattern(pattern)
    {
    }

    /// False when it is too large, or has an assertion inside.
    bool write(const std::vector<Node> &items)
    {
        for (const Node &item : items) {
            if (!write(item))
                return false;
        }
        return true;
    }

    bool finish() { return put({UrlPattern::Step::Kind::Done, 0, 0}); }
    bool hasMisplacedAssertion() const { return m_hasMisplacedAssertion; }

private:
    using Kind = UrlPattern::Step::Kind;

    quint16 position() const { return quint16(m_pattern.steps.size()); }

    bool put(const UrlPattern::Step &step)
    {
        if (m_pattern.steps.size() == UrlPattern::maximumSteps)
            return false;
        m_pattern.steps.push_back(step);
        return true;
    }

    bool write(const Node &node)
    {
        switch (node.kind) {
        case Node::Kind::Set:
            return writeSet(node.set);
        case Node::Kind::Text:
            return writeText(node.text);
        case Node::Kind::Sequence:
            return write(node.children);
        case Node::Kind::Choice:
            return writeChoice(node.children);
        case Node::Kind::Repeat:
            return writeRepeat(node);
        case Node::Kind::Start:
        case Node::Kind::End:
            m_hasMisplacedAssertion = true;
            return false;
        }
        Q_UNREACHABLE();
    }

    bool writeText(const QByteArray &text)
    {
        return std::ranges::all_of(text, [this](char c) {
            CharSet set;
            set.set(size_t(c));
            return writeSet(set);
        });
    }

    bool writeSet(const CharSet &set)
    {
        const auto known = std::ranges::find(m_pattern.sets, set);
        const auto number = quint16(known - m_pattern.sets.begin());
        if (known == m_pattern.sets.end())
            m_pattern.sets.push_back(set);
        return put({Kind::Take, number, 0});
    }

    bool writeChoice(const std::vector<Node> &alternatives)
    {
        std::vector<quint16> ends;
        for (size_t i = 0; i < alternatives.size(); ++i) {
            const bool isLast = i + 1 == alternatives.size();
            const quint16 fork = position();
            if (!isLast && !put({Kind::Fork, 0, 0}))
                return false;
            if (!write(alternatives[i]))
                return false;
            if (isLast)
                break;
            ends.push_back(position());
            if (!put({Kind::Jump, 0, 0}))
                return false;
            m_pattern.steps[fork].other = position();
        }
        for (const quint16 end : ends)
            m_pattern.steps[end].other = position();
        return true;
    }

    bool writeRepeat(const Node &node)
    {
        const quint16 before = position();
        if (node.mayBeAbsent && !put({Kind::Fork, 0, 0}))
            return false;
        const quint16 start = position();
        if (!write(node.children))
            return false;
        if (node.mayGoOn) {
            // On to what follows, and back.
            if (!put({Kind::Fork, 0, start}))
                return false;
        }
        if (node.mayBeAbsent)
            m_pattern.steps[before].other = position();
        return true;
    }

    UrlPattern &m_pattern;
    bool m_hasMisplacedAssertion = false;
};

/// Expands the top-level alternatives of an expression into patterns.
class Expansion
{
public:
    explicit Expansion(bool isCaseSensitive)
        : m_isCaseSensitive(isCaseSensitive)
    {
    }

    std::optional<UrlFilterError> expand(Node node, bool atStart, bool atEnd)
    {
        if (node.kind == Node::Kind::Choice)
            return expandEach(std::move(node.children), atStart, atEnd);
        std::vector<Node> items;
        if (node.kind == Node::Kind::Sequence)
            items = std::move(node.children);
        else
            items.push_back(std::move(node));
        trim(items, atStart, atEnd);
        if (items.size() == 1 && items.front().kind == Node::Kind::Choice)
            return expandEach(std::move(items.front().children), atStart, atEnd);
        return add(items, atStart, atEnd);
    }

    std::vector<UrlPattern> takePatterns() { return std::move(m_patterns); }

private:
    std::optional<UrlFilterError> expandEach(std::vector<Node> nodes, bool atStart, bool atEnd)
    {
        for (Node &node : nodes) {
            if (const auto error = expand(std::move(node), atStart, atEnd))
                return error;
        }
        return std::nullopt;
    }

    /// Takes off the assertions, and whatever may match anything at an open end.
    static void trim(std::vector<Node> &items, bool &atStart, bool &atEnd)
    {
        if (!items.empty() && items.front().kind == Node::Kind::Start) {
            atStart = true;
            items.erase(items.begin());
        }
        if (!items.empty() && items.back().kind == Node::Kind::End) {
            atEnd = true;
            items.pop_back();
        }
        const auto first = std::ranges::find_if_not(items, isAnything);
        if (first != items.begin())
            atStart = false;
        items.erase(items.begin(), first);
        while (!items.empty() && isAnything(items.back())) {
            items.pop_back();
            atEnd = false;
        }
        // All of it matched anything.
        if (items.empty() && !(atStart && atEnd))
            atStart = atEnd = false;
    }

    std::optional<UrlFilterError> add(const std::vector<Node> &items, bool atStart, bool atEnd)
    {
        UrlPattern pattern;
        pattern.atStart = atStart;
        pattern.atEnd = atEnd;
        pattern.isCaseSensitive = m_isCaseSensitive;
        pattern.required = longestText(items);
        const bool isText =
            std::ranges::all_of(items, [](const Node &item) { return onlyText(item).has_value(); });
        if (isText) {
            for (const Node &item : items)
                pattern.text += *onlyText(item);
            // Mostly the same, and then it takes its room once.
            if (pattern.text == pattern.required)
                pattern.required = pattern.text;
        } else {
            Writer writer(pattern);
            if (!writer.write(items) || !writer.finish())
                return writer.hasMisplacedAssertion() ? UrlFilterError::Syntax
                                                      : UrlFilterError::TooLarge;
        }
        m_patterns.push_back(std::move(pattern));
        return std::nullopt;
    }

    bool m_isCaseSensitive;
    std::vector<UrlPattern> m_patterns;
};

/// The steps at which an automaton stands, each once.
class StepSet
{
public:
    explicit StepSet(const std::vector<UrlPattern::Step> &steps)
        : m_steps(steps.data())
        , m_marks(steps.size(), 0)
    {
    }

    void clear()
    {
        m_taking.clear();
        m_isDone = false;
        ++m_round;
    }

    /// Adds the step and all that it leads to without a character.
    void add(quint16 step)
    {
        m_pending.push_back(step);
        while (!m_pending.empty()) {
            const quint16 next = m_pending.back();
            m_pending.pop_back();
            if (std::exchange(m_marks[next], m_round) == m_round)
                continue;
            const UrlPattern::Step &s = m_steps[next];
            switch (s.kind) {
            case UrlPattern::Step::Kind::Take:
                m_taking.push_back(next);
                break;
            case UrlPattern::Step::Kind::Fork:
                m_pending.push_back(s.other);
                m_pending.push_back(quint16(next + 1));
                break;
            case UrlPattern::Step::Kind::Jump:
                m_pending.push_back(s.other);
                break;
            case UrlPattern::Step::Kind::Done:
                m_isDone = true;
                break;
            }
        }
    }

    const std::vector<quint16> &taking() const { return m_taking; }
    bool isDone() const { return m_isDone; }

private:
    const UrlPattern::Step *m_steps;
    std::vector<quint32> m_marks;
    std::vector<quint16> m_taking;
    std::vector<quint16> m_pending;
    quint32 m_round = 1;
    bool m_isDone = false;
};

} // namespace

bool UrlPattern::matches(QByteArrayView address) const
{
    if (!steps.empty())
        return run(address);
    if (atStart && atEnd)
        return address == text;
    if (atStart)
        return address.startsWith(text);
    if (atEnd)
        return address.endsWith(text);
    return address.contains(text);
}

bool UrlPattern::run(QByteArrayView address) const
{
    StepSet now(steps);
    StepSet next(steps);
    now.add(0);
    for (qsizetype i = 0;; ++i) {
        const bool isLast = i == address.size();
        if (now.isDone() && (!atEnd || isLast))
            return true;
        if (isLast)
            return false;
        const auto c = uchar(address[i]);
        next.clear();
        for (const quint16 step : now.taking()) {
            if (c < 128 && sets[steps[step].set].test(c))
                next.add(quint16(step + 1));
        }
        if (!atStart)
            next.add(0);
        std::swap(now, next);
    }
}

std::expected<std::vector<UrlPattern>, UrlFilterError> readUrlFilter(QByteArrayView expression,
                                                                     bool isCaseSensitive)
{
    if (expression.isEmpty())
        return std::unexpected(UrlFilterError::Syntax);
    auto node = Reader(expression, isCaseSensitive).read();
    if (!node)
        return std::unexpected(UrlFilterError::Syntax);
    Expansion expansion(isCaseSensitive);
    if (const auto error = expansion.expand(std::move(*node), false, false))
        return std::unexpected(*error);
    return expansion.takePatterns();
}

} // namespace lumaro::contentrules
