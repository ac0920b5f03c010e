#include "playlist/LinkRemover.h"

#include "playlist/PlaylistEntriesData.h"

#include <algorithm>

namespace lumaro {

LinkRemover::Match LinkRemover::match(const PlaylistEntries::Data &data,
                                      const PlaylistEntries::Record &record) const
{
    if (!m_address.isEmpty() && record.url.length == size_t(m_address.size())
        && data.view(record.url) == QUtf8StringView(m_address))
        return Address;
    return record.id == m_id ? Id : None;
}

std::vector<LinkRemover::Match> LinkRemover::matches(const PlaylistEntries::Data &data) const
{
    std::vector<Match> matches(data.records.size());
    std::ranges::transform(data.records, matches.begin(),
                           [&](const auto &record) { return match(data, record); });
    return matches;
}

PlaylistEntries LinkRemover::without(const PlaylistEntries &entries)
{
    if (entries.isEmpty())
        return entries;
    if (m_data != entries.m_data) {
        m_data = entries.m_data;
        m_matches = matches(*m_data);
    }
    auto change = entries.copyOfChange();
    const std::vector<Match> own = matches(change->own);
    bool isIdGone = false;
    const auto known = qint32(m_matches.size());
    const auto removed = std::ranges::remove_if(change->order, [&](qint32 number) {
        const Match match =
            number < known ? m_matches[size_t(number)] : own[size_t(number - known)];
        if (match == None)
            return false;
        return match == Address || !std::exchange(isIdGone, true);
    });
    if (removed.empty())
        return entries;
    change->order.erase(removed.begin(), removed.end());
    return {m_data, std::move(change)};
}

} // namespace lumaro
