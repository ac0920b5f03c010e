#pragma once

#include "playlist/PlaylistEntries.h"

#include <QHash>

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
    /// Keeps the texts that the keys lie in.
    PlaylistEntries m_entries;
    QHash<QByteArrayView, qsizetype> m_indices;
};

} // namespace lumaro
