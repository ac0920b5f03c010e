#include "playlist/AddressIndex.h"

#include <bit>

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

AddressIndex::AddressIndex(const PlaylistEntries &entries)
    : m_entries(entries)
    , m_slots(std::bit_ceil(2 * size_t(entries.size()) + 1))
{
    for (qsizetype i = 0; i < entries.size(); ++i) {
        const QByteArrayView address = addressOf(entries, i);
        const quint32 hash = hashOf(address);
        Slot &slot = m_slots[slotOf(address, hash)];
        // Of several the first one stays.
        if (slot.entry < 0)
            slot = {hash, qint32(i)};
    }
}

size_t AddressIndex::slotOf(QByteArrayView address, quint32 hash) const
{
    const size_t mask = m_slots.size() - 1;
    size_t place = hash & mask;
    while (m_slots[place].entry >= 0) {
        const Slot &slot = m_slots[place];
        if (slot.hash == hash && addressOf(m_entries, slot.entry) == address)
            break;
        place = (place + 1) & mask;
    }
    return place;
}

qsizetype AddressIndex::indexOf(const QUrl &url) const
{
    if (m_slots.empty())
        return -1;
    const QByteArray address = url.toEncoded();
    return m_slots[slotOf(address, hashOf(address))].entry;
}

} // namespace lumaro
