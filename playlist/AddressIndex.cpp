#include "playlist/AddressIndex.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace lumaro {

namespace {

QByteArrayView addressOf(const PlaylistEntries &entries, qsizetype index)
{
    const QUtf8StringView address = entries.address(index);
    return {address.data(), address.size()};
}

quint32 hashOf(QByteArrayView address)
{
    // Seeded, so that nobody can make up addresses that all meet in one place.
    return quint32(qHash(address, QHashSeed::globalSeed()));
}

} // namespace

/// The addresses of some entries of a list.
class AddressIndex::Table
{
public:
    /// `which` are the entries' indices, ascending.
    Table(const PlaylistEntries &entries, std::vector<qint32> which)
        : m_entries(entries)
        , m_which(std::move(which))
        , m_next(m_which.size())
        , m_slots(std::bit_ceil(2 * m_which.size() + 1))
    {
        for (qsizetype i = qsizetype(m_which.size()) - 1; i >= 0; --i) {
            const QByteArrayView address = addressOf(m_entries, m_which[size_t(i)]);
            const quint32 hash = hashOf(address);
            Slot &slot = m_slots[slotOf(address, hash)];
            m_next[size_t(i)] = slot.first;
            slot = {hash, qint32(i)};
        }
    }

    /// What `place` makes of the first entry with this address of which it makes something; -1 for
    /// none.
    template <typename Place>
    qsizetype find(QByteArrayView address, const Place &place) const
    {
        qint32 at = m_slots[slotOf(address, hashOf(address))].first;
        while (at >= 0) {
            if (const qsizetype found = place(m_which[size_t(at)]); found >= 0)
                return found;
            at = m_next[size_t(at)];
        }
        return -1;
    }

private:
    /// The first of those with one address, where its hash says or at the next free place.
    struct Slot
    {
        quint32 hash = 0;
        qint32 first = -1;
    };

    /// Where the entries with this address are, or else could be put.
    size_t slotOf(QByteArrayView address, quint32 hash) const
    {
        const size_t mask = m_slots.size() - 1;
        size_t at = hash & mask;
        while (m_slots[at].first >= 0) {
            const Slot &slot = m_slots[at];
            if (slot.hash == hash && addressOf(m_entries, m_which[size_t(slot.first)]) == address)
                break;
            at = (at + 1) & mask;
        }
        return at;
    }

    PlaylistEntries m_entries;
    std::vector<qint32> m_which;
    /// The next one with the same address; -1 for none.
    std::vector<qint32> m_next;
    /// A power of two of them, half empty at least.
    std::vector<Slot> m_slots;
};

AddressIndex::AddressIndex(const PlaylistEntries &entries, const AddressIndex &before)
    : m_entries(entries)
    , m_original(before.m_original)
{
    const PlaylistEntries origin = entries.origin();
    if (!m_original || !entries.hasSameOrigin(before.m_entries)) {
        std::vector<qint32> all(size_t(origin.size()));
        std::iota(all.begin(), all.end(), 0);
        m_original = std::make_shared<const Table>(origin, std::move(all));
    }
    if (entries.isOrigin())
        return;
    m_places.assign(size_t(origin.size()), -1);
    std::vector<qint32> added;
    for (qsizetype i = 0; i < entries.size(); ++i) {
        if (const qsizetype was = entries.indexInOrigin(i); was >= 0)
            m_places[size_t(was)] = qint32(i);
        else
            added.push_back(qint32(i));
    }
    m_added = std::make_shared<const Table>(entries, std::move(added));
}

qsizetype AddressIndex::indexOf(const QUrl &url) const
{
    if (!m_original)
        return -1;
    const QByteArray address = url.toEncoded();
    // What is left of the origin is in its order.
    const qsizetype original = m_original->find(
        address, [this](qint32 i) { return m_places.empty() ? i : m_places[size_t(i)]; });
    if (!m_added)
        return original;
    const qsizetype added = m_added->find(address, [](qint32 i) { return i; });
    return original < 0 || added < 0 ? std::max(original, added) : std::min(original, added);
}

} // namespace lumaro
