#pragma once

#include "playlist/PlaylistEntries.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace lumaro {

/// A playlist prepared for showing: its entries in the order of their groups, and their names
/// folded for searching. Made once, in the background; immutable. Any thread.
class ChannelIndex
{
public:
    struct Group
    {
        QString title;
        /// Where its entries stand in order().
        qint32 first = 0;
        qint32 count = 0;
    };

    ChannelIndex() = default;
    explicit ChannelIndex(const PlaylistEntries &entries);

    /// The groups in order of first appearance, the entries without one last.
    const std::vector<Group> &groups() const { return m_groups; }
    /// Entry indices, group after group, within a group as in the playlist.
    const std::vector<qint32> &order() const { return m_order; }
    /// False when no entry has a group, so that there is nothing to tell apart.
    bool isGrouped() const { return m_isGrouped; }

    /// For each entry, 1 when `text` occurs in its name or its group's title, whatever the case.
    /// Takes time in proportion to the names' length, a few milliseconds for 200,000 of them.
    std::vector<quint8> matches(const QString &text) const;

private:
    void arrangeByGroup(const PlaylistEntries &entries);
    void foldNames(const PlaylistEntries &entries);

    std::vector<Group> m_groups;
    std::vector<qint32> m_order;
    bool m_isGrouped = false;
    /// Case-folded UTF-8 names, each followed by a line feed.
    QByteArray m_names;
    /// Where each name's line feed stands.
    std::vector<quint32> m_nameEnds;
};

} // namespace lumaro
