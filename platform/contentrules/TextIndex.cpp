#include "platform/contentrules/TextIndex.h"

#include <algorithm>
#include <bit>
#include <unordered_map>

namespace lumaro::contentrules {

TextIndex::TextIndex(const std::vector<Entry> &entries)
{
    std::unordered_map<quint32, quint32> frequencies;
    for (const Entry &entry : entries) {
        for (qsizetype at = 0; at + longestKey <= entry.text.size(); ++at)
            ++frequencies[keyAt(entry.text, at, longestKey)];
    }

    std::array<std::vector<Place>, longestKey> places;
    for (const Entry &entry : entries) {
        const qsizetype length = std::min(longestKey, entry.text.size());
        Q_ASSERT(length > 0);
        Place best{keyAt(entry.text, 0, length), entry.value, 0};
        for (qsizetype at = 1; at + longestKey <= entry.text.size(); ++at) {
            const quint32 key = keyAt(entry.text, at, longestKey);
            if (frequencies[key] < frequencies[best.key])
                best = {key, entry.value, quint32(at)};
        }
        places[size_t(length - 1)].push_back(best);
    }
    for (size_t i = 0; i < places.size(); ++i)
        m_tables[i].fill(places[i]);
}

void TextIndex::Table::fill(const std::vector<Place> &all)
{
    if (all.empty())
        return;
    // Twice as many slots as places, and a power of two.
    const int bits = std::clamp(int(std::bit_width(all.size())) + 1, 4, 24);
    shift = 32 - bits;
    starts.assign((size_t(1) << bits) + 1, 0);
    for (const Place &place : all)
        ++starts[slot(place.key) + 1];
    for (size_t s = 1; s < starts.size(); ++s)
        starts[s] += starts[s - 1];
    places.resize(all.size());
    std::vector<quint32> next(starts.begin(), starts.end() - 1);
    for (const Place &place : all)
        places[next[slot(place.key)]++] = place;
}

} // namespace lumaro::contentrules
