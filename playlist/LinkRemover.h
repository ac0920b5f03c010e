#pragma once

#include "playlist/PlaylistEntries.h"

#include <vector>

namespace lumaro {

/// Takes a link out of lists, quickly out of many that were made of the same one. Any thread.
class LinkRemover
{
public:
    /// The first entry with this id goes, and so does every one with this address; an empty address
    /// is none.
    LinkRemover(const QUuid &id, const QByteArray &address)
        : m_id(id)
        , m_address(address)
    {
    }

    PlaylistEntries without(const PlaylistEntries &entries);

private:
    enum Match : quint8 { None, Id, Address };

    Match match(const PlaylistEntries::Data &data, const PlaylistEntries::Record &record) const;
    std::vector<Match> matches(const PlaylistEntries::Data &data) const;

    QUuid m_id;
    QByteArray m_address;
    /// What the last list was built of, and which of its records match.
    std::shared_ptr<const PlaylistEntries::Data> m_data;
    std::vector<Match> m_matches;
};

} // namespace lumaro
