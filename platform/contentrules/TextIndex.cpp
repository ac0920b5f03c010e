#include "platform/contentrules/TextIndex.h"

#include <algorithm>
#include <bit>
#include <optional>

namespace lumaro::contentrules {

namespace {

/// Whoever shares a key with more texts is better found in another way.
constexpr quint32 mostBeforeOneDot = 32;

/// The number of bits for a table with `perItem` slots an item.
int bitsFor(size_t items, size_t perItem)
{
    return std::clamp(int(std::bit_width(items * perItem)), 12, 24);
}

} // namespace

/// How often keys occur, at most: those that fall together are counted together.
class TextIndex::Frequencies
{
public:
    explicit Frequencies(size_t keys)
        : m_shift(64 - bitsFor(keys, 4))
        , m_counts(size_t(1) << (64 - m_shift), 0)
    {
    }

    void add(Key key) { ++m_counts[hash(key) >> m_shift]; }
    quint32 of(Key key) const { return m_counts[hash(key) >> m_shift]; }

private:
    int m_shift;
    std::vector<quint32> m_counts;
};

/// Where a text may be filed.
struct TextIndex::Filing
{
    Place place;
    qsizetype length = 0;
    quint32 frequency = 0;

    /// Calls `use(key, end, length)` for what stands before each dot.
    template <typename Use>
    static void eachDot(QByteArrayView text, Use use)
    {
        for (qsizetype dot = text.indexOf('.'); dot >= 0; dot = text.indexOf('.', dot + 1)) {
            if (dot >= shortestBeforeDot)
                use(keyBefore(text, dot), dot, std::min(dot, longestBeforeDot));
        }
    }

    /// The same for the characters in a row.
    template <typename Use>
    static void eachGram(QByteArrayView text, Use use)
    {
        const qsizetype length = std::min(gramLength, text.size());
        for (qsizetype end = length; end <= text.size(); ++end)
            use(keyBefore(text, end) & mask(length), end, length);
    }

    /// Keeps the rarest of what `each` shows.
    template <typename Each>
    static std::optional<Filing> rarest(const Entry &entry, const Frequencies &frequencies,
                                        Each each)
    {
        std::optional<Filing> best;
        each(entry.text, [&](Key key, qsizetype end, qsizetype length) {
            const quint32 frequency = frequencies.of(key);
            if (!best || frequency < best->frequency)
                best = {{key, entry.value, quint32(end)}, length, frequency};
        });
        return best;
    }
};

TextIndex::TextIndex(const std::vector<Entry> &entries)
{
    const auto eachDot = [](QByteArrayView text, auto use) { Filing::eachDot(text, use); };
    const auto eachGram = [](QByteArrayView text, auto use) { Filing::eachGram(text, use); };

    Frequencies dotFrequencies(entries.size());
    for (const Entry &entry : entries)
        eachDot(entry.text, [&](Key key, qsizetype, qsizetype) { dotFrequencies.add(key); });

    std::array<std::vector<Place>, longestBeforeDot - shortestBeforeDot + 1> dotted;
    std::vector<const Entry *> others;
    for (const Entry &entry : entries) {
        const auto filing = Filing::rarest(entry, dotFrequencies, eachDot);
        if (filing && filing->frequency <= mostBeforeOneDot)
            dotted[size_t(filing->length - shortestBeforeDot)].push_back(filing->place);
        else
            others.push_back(&entry);
    }

    Frequencies gramFrequencies(others.size() * 8);
    for (const Entry *entry : others)
        eachGram(entry->text, [&](Key key, qsizetype, qsizetype) { gramFrequencies.add(key); });
    std::array<std::vector<Place>, gramLength> grams;
    for (const Entry *entry : others) {
        const auto filing = Filing::rarest(*entry, gramFrequencies, eachGram);
        Q_ASSERT(filing);
        grams[size_t(filing->length - 1)].push_back(filing->place);
    }

    m_hasDotted = others.size() < entries.size();
    for (size_t i = 0; i < dotted.size(); ++i)
        m_dotted[i].fill(dotted[i]);
    for (size_t i = 0; i < grams.size(); ++i)
        m_grams[i].fill(grams[i]);
}

void TextIndex::Table::fill(const std::vector<Place> &all)
{
    if (all.empty())
        return;
    m_bitShift = 64 - bitsFor(all.size(), 16);
    m_bits.assign((size_t(1) << (64 - m_bitShift)) / 64, 0);
    m_slotShift = 64 - bitsFor(all.size(), 2);
    m_starts.assign((size_t(1) << (64 - m_slotShift)) + 1, 0);
    for (const Place &place : all) {
        const Key bit = hash(place.key) >> m_bitShift;
        m_bits[bit / 64] |= Key(1) << (bit % 64);
        ++m_starts[(hash(place.key) >> m_slotShift) + 1];
    }
    for (size_t s = 1; s < m_starts.size(); ++s)
        m_starts[s] += m_starts[s - 1];
    m_places.resize(all.size());
    std::vector<quint32> next(m_starts.begin(), m_starts.end() - 1);
    for (const Place &place : all)
        m_places[next[hash(place.key) >> m_slotShift]++] = place;
}

} // namespace lumaro::contentrules
