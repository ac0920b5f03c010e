#pragma once

#include "playlist/PlaylistEntries.h"

#include <vector>

namespace lumaro {

/// Finds entries by their addresses, however many there are. Immutable; any thread.
class AddressIndex
{
public:
    AddressIndex() = default;
    explicit AddressIndex(const PlaylistEntries &entries);

    /// The first entry whose address has the same absolute string as `url`; -1 for none.
    qsizetype indexOf(const QUrl &url) const;

private:
    /// An entry where its address's hash says, or at the next free place.
    struct Slot
    {
        quint32 hash = 0;
        qint32 entry = -1;
    };

    /// Where the entry with this address is, or else could be put.
    size_t slotOf(QByteArrayView address, quint32 hash) const;

    PlaylistEntries m_entries;
    /// A power of two of them, half empty at least.
    std::vector<Slot> m_slots;
};

} // namespace lumaro
