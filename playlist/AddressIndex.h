#pragma once

#include "playlist/PlaylistEntries.h"

namespace lumaro {

/// Finds entries by their addresses, however many there are. Immutable, shared when copied; any
/// thread.
class AddressIndex
{
public:
    AddressIndex() = default;
    /// Quick when `before` is that of a list with the same origin: most of it is shared then.
    explicit AddressIndex(const PlaylistEntries &entries, const AddressIndex &before = {});

    /// The first entry whose address has the same absolute string as `url`; -1 for none.
    qsizetype indexOf(const QUrl &url) const;

private:
    class Table;

    PlaylistEntries m_entries;
    /// Of the entries that were in the origin, and of those that came later.
    std::shared_ptr<const Table> m_original;
    std::shared_ptr<const Table> m_added;
    /// Where an entry of the origin is now; -1 for nowhere. Empty when all are where they were.
    std::vector<qint32> m_places;
};

} // namespace lumaro
