#include "playlist/AddressIndex.h"

namespace lumaro {

AddressIndex::AddressIndex(const PlaylistEntries &entries)
    : m_entries(entries)
{
    m_indices.reserve(entries.size());
    // Backwards, so that of several the first one stays.
    for (qsizetype i = entries.size() - 1; i >= 0; --i) {
        const QUtf8StringView address = entries.address(i);
        m_indices.insert({address.data(), address.size()}, i);
    }
}

qsizetype AddressIndex::indexOf(const QUrl &url) const
{
    return m_indices.value(url.toEncoded(), -1);
}

} // namespace lumaro
