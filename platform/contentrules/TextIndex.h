#pragma once

#include <QByteArray>

#include <array>
#include <vector>

namespace lumaro::contentrules {

/// Finds which of very many texts may stand in an address, in a time that hardly depends on how
/// many they are: each text is filed under four of its characters in a row, the rarest, and an
/// address looks up its own. Immutable once built.
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
        for (qsizetype length = 1; length <= longestKey; ++length) {
            const Table &table = m_tables[size_t(length - 1)];
            if (table.places.empty())
                continue;
            for (qsizetype at = 0; at + length <= address.size(); ++at) {
                const quint32 key = keyAt(address, at, length);
                const size_t slot = table.slot(key);
                for (quint32 i = table.starts[slot]; i < table.starts[slot + 1]; ++i) {
                    const Place &place = table.places[i];
                    if (place.key == key && found(place.value, at - place.offset))
                        return true;
                }
            }
        }
        return false;
    }

private:
    static constexpr qsizetype longestKey = 4;

    struct Place
    {
        quint32 key = 0;
        quint32 value = 0;
        /// Where in its text the key stands.
        quint32 offset = 0;
    };
    /// A hash table; the places of slot s are those from starts[s] to starts[s + 1].
    struct Table
    {
        std::vector<quint32> starts;
        std::vector<Place> places;
        int shift = 0;

        void fill(const std::vector<Place> &all);
        size_t slot(quint32 key) const { return size_t(key * 2654435769U) >> shift; }
    };

    static quint32 keyAt(QByteArrayView text, qsizetype at, qsizetype length)
    {
        quint32 key = 0;
        for (qsizetype i = at; i < at + length; ++i)
            key = key << 8U | quint8(text[i]);
        return key;
    }

    std::array<Table, longestKey> m_tables;
};

} // namespace lumaro::contentrules
