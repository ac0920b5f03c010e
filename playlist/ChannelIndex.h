#pragma once

#include "playlist/FoldedTexts.h"
#include "playlist/PlaylistEntries.h"

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

    /// What is shown and searched of a name or a title: one line, and no more than anybody reads.
    static QString shown(QUtf8StringView text);

    /// The groups, numbered as in the playlist; the entries without one are one more, the last.
    const std::vector<Group> &groups() const { return m_groups; }
    /// Entry indices, group after group, within a group as in the playlist.
    const std::vector<qint32> &order() const { return m_order; }
    /// False when no entry has a group, so that there is nothing to tell apart.
    bool isGrouped() const { return m_isGrouped; }

    /// For each entry, 1 when `text` occurs in its name or its group's title, whatever the case.
    /// Takes a few milliseconds for 200,000 entries.
    std::vector<quint8> matches(const QString &text) const;

private:
    void arrangeByGroup(const PlaylistEntries &entries);

    std::vector<Group> m_groups;
    std::vector<qint32> m_order;
    bool m_isGrouped = false;
    FoldedTexts m_names;
    FoldedTexts m_titles;
};

} // namespace lumaro
