#pragma once

// What PlaylistEntries consists of, for those who work on whole lists of them.

#include "playlist/PlaylistEntries.h"

namespace lumaro {

struct PlaylistEntries::Record
{
    QUuid id;
    PlaylistEntriesBuilder::Slice name;
    PlaylistEntriesBuilder::Slice url;
    PlaylistEntriesBuilder::Slice logo;
    qint32 group = -1;
    qint32 country = -1;
};

/// What a list was built of.
struct PlaylistEntries::Data
{
    using Slice = PlaylistEntriesBuilder::Slice;

    /// Set in the offset of a slice that lies among the added values.
    static constexpr quint32 addedFlag = quint32(1) << 31;

    QUtf8StringView view(Slice slice) const
    {
        const QByteArray &source = slice.offset & addedFlag ? added : text;
        return {source.constData() + (slice.offset & ~addedFlag), qsizetype(slice.length)};
    }

    Slice add(QByteArrayView value)
    {
        // What does not fit any more is lost, which beats another entry's value in its place.
        if (value.isEmpty() || added.size() + value.size() > maximumTextSize)
            return {};
        const Slice slice{quint32(added.size()) | addedFlag, quint32(value.size())};
        added.append(value);
        return slice;
    }

    QByteArray text;
    QByteArray added;
    std::vector<Record> records;
    std::vector<QByteArray> groups;
    std::vector<QByteArray> countries;
};

/// Entries that were put in, and the order of all that are left. The numbers of entries, groups
/// and countries count those of the data first.
struct PlaylistEntries::Change
{
    void insert(qsizetype first, const QList<PlaylistEntry> &entries, const Data &data);

    std::vector<qint32> order;
    Data own;
};

} // namespace lumaro
