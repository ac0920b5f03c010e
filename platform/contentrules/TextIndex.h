#pragma once

#include <QByteArray>
#include <QtEndian>

#include <array>
#include <vector>

namespace lumaro::contentrules {

/// Finds which of very many texts may stand in an address, in a time that hardly depends on how
/// many they are. Most texts are domains: these are filed under what stands before one of their
/// dots, and an address has few dots. Any other text is filed under four of its characters in a
/// row, the rarest. Immutable once built.
class TextIndex
{
public:
    struct Entry
    {
        /// None of the texts is empty.
        QByteArray text;
        quint32 value = 0;
    };

    TextIndex() = default;
    explicit TextIndex(const std::vector<Entry> &entries);

    /// Calls `found(value, position)` for texts that may begin at `position` of `address`; it may
    /// be negative, or the text not there at all. Ends as soon as `found` returns true, and returns
    /// whether it did.
    template <typename Found>
    bool search(QByteArrayView address, Found found) const
    {
        return (m_hasDotted && searchDots(address, found)) || searchGrams<1>(address, found)
            || searchGrams<2>(address, found) || searchGrams<3>(address, found)
            || searchGrams<gramLength>(address, found);
    }

private:
    /// Up to eight characters, the last one lowest.
    using Key = quint64;

    // How much of a text before its dot makes a key.
    static constexpr qsizetype shortestBeforeDot = 4;
    static constexpr qsizetype longestBeforeDot = sizeof(Key);
    static constexpr qsizetype gramLength = 4;

    struct Place
    {
        Key key = 0;
        quint32 value = 0;
        /// Where in its text the key ends.
        quint32 end = 0;
    };

    /// A hash table; the places of slot s are those from starts[s] to starts[s + 1]. Most of what
    /// is looked up is not there, which a set of bits says without leaving the processor's cache.
    class Table
    {
    public:
        void fill(const std::vector<Place> &all);
        bool isEmpty() const { return m_places.empty(); }

        /// `end` is where the key ends in the address.
        template <typename Found>
        bool search(Key key, qsizetype end, Found &found) const
        {
            const Key bit = hash(key) >> m_bitShift;
            if ((m_bits[bit / 64] >> (bit % 64) & 1U) == 0)
                return false;
            const size_t slot = hash(key) >> m_slotShift;
            for (quint32 i = m_starts[slot]; i < m_starts[slot + 1]; ++i) {
                const Place &place = m_places[i];
                if (place.key == key && found(place.value, end - place.end))
                    return true;
            }
            return false;
        }

    private:
        std::vector<quint64> m_bits;
        std::vector<quint32> m_starts;
        std::vector<Place> m_places;
        int m_bitShift = 0;
        int m_slotShift = 0;
    };

    class Frequencies;
    struct Filing;

    static Key hash(Key key) { return key * 0x9E3779B97F4A7C15U; }
    static Key mask(qsizetype length) { return ~Key(0) >> (8 * (sizeof(Key) - size_t(length))); }
    static Key append(Key key, char c) { return key << 8U | quint8(c); }

    /// The characters before `end`, at most eight.
    static Key keyBefore(QByteArrayView text, qsizetype end)
    {
        if (end >= longestBeforeDot)
            return qFromBigEndian<Key>(text.data() + end - longestBeforeDot);
        Key key = 0;
        for (qsizetype i = 0; i < end; ++i)
            key = append(key, text[i]);
        return key;
    }

    template <qsizetype length>
    static Key gram(const char *bytes)
    {
        if constexpr (length == sizeof(quint32))
            return qFromBigEndian<quint32>(bytes);
        Key key = 0;
        for (qsizetype i = 0; i < length; ++i)
            key = append(key, bytes[i]);
        return key;
    }

    template <typename Found>
    bool searchDots(QByteArrayView address, Found &found) const
    {
        for (qsizetype dot = address.indexOf('.'); dot >= 0; dot = address.indexOf('.', dot + 1)) {
            const Key key = keyBefore(address, dot);
            for (qsizetype length = shortestBeforeDot; length <= std::min(longestBeforeDot, dot);
                 ++length) {
                const Table &table = m_dotted[size_t(length - shortestBeforeDot)];
                if (!table.isEmpty() && table.search(key & mask(length), dot, found))
                    return true;
            }
        }
        return false;
    }

    template <qsizetype length, typename Found>
    bool searchGrams(QByteArrayView address, Found &found) const
    {
        const Table &table = m_grams[size_t(length - 1)];
        if (table.isEmpty())
            return false;
        const char *const bytes = address.data();
        for (qsizetype end = length; end <= address.size(); ++end) {
            if (table.search(gram<length>(bytes + end - length), end, found))
                return true;
        }
        return false;
    }

    std::array<Table, longestBeforeDot - shortestBeforeDot + 1> m_dotted;
    bool m_hasDotted = false;
    /// By their length; those below four are for texts that are no longer.
    std::array<Table, gramLength> m_grams;
};

} // namespace lumaro::contentrules
