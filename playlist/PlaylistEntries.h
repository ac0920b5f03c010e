#pragma once

#include "playlist/PlaylistEntry.h"

#include <QByteArray>
#include <QList>

#include <memory>
#include <vector>

namespace lumaro {

/// The entries of one playlist, in order: immutable, shared when copied and mostly when changed,
/// and made for hundreds of thousands of them. It keeps the playlist's UTF-8 text and, for each
/// entry, where in it the values stand; a PlaylistEntry is made when it is asked for. Any thread.
class PlaylistEntries
{
public:
    /// The longest text whose places can be told, in bytes.
    static constexpr qsizetype maximumTextSize = (qsizetype(1) << 31) - 1;

    PlaylistEntries() = default;
    /// An empty logo address, group or country counts as none.
    static PlaylistEntries fromList(const QList<PlaylistEntry> &entries);

    qsizetype size() const;
    bool isEmpty() const { return size() == 0; }

    PlaylistEntry at(qsizetype index) const;
    QList<PlaylistEntry> toList() const;

    /// These entries with `with` in place of the `count` from `first` on. What both hold, they
    /// share.
    PlaylistEntries replacing(qsizetype first, qsizetype count,
                              const QList<PlaylistEntry> &with) const;

    const QUuid &id(qsizetype index) const;
    /// The entry with this id, the first if there are several; -1 for none.
    qsizetype indexOf(const QUuid &id) const;
    QUtf8StringView name(qsizetype index) const;
    /// Empty when there is none.
    QUtf8StringView logoAddress(qsizetype index) const;
    QUtf8StringView address(qsizetype index) const;
    /// Empty when there is none.
    QUtf8StringView countryCode(qsizetype index) const;

    /// The number of different groups, and one's title. As they were read, groups stand in order of
    /// first appearance and each has an entry; after changes some may have none.
    int groupCount() const;
    QString groupTitle(int group) const;
    /// The entry's group; -1 for none.
    int groupIndex(qsizetype index) const;
    /// The title of the entry's group; empty when there is none.
    QUtf8StringView group(qsizetype index) const;

    /// The list that this one was made of by replacing(), itself if it was not; nothing is copied.
    PlaylistEntries origin() const { return {m_data, nullptr}; }
    bool isOrigin() const { return !m_change; }
    bool hasSameOrigin(const PlaylistEntries &other) const { return m_data == other.m_data; }
    /// Where the entry was there; -1 for one that was put in later. Ascends with `index`.
    qsizetype indexInOrigin(qsizetype index) const;

    /// The entry at `index` equals the one of `other` at `otherIndex` in every field.
    bool isSame(qsizetype index, const PlaylistEntries &other, qsizetype otherIndex) const;

    /// Equal in every field of every entry.
    friend bool operator==(const PlaylistEntries &left, const PlaylistEntries &right);

private:
    friend class LinkRemover;
    friend class PlaylistEntriesBuilder;
    struct Record;
    struct Data;
    struct Change;
    struct Place;

    PlaylistEntries(std::shared_ptr<const Data> data, std::shared_ptr<const Change> change)
        : m_data(std::move(data))
        , m_change(std::move(change))
    {
    }

    Place place(qsizetype index) const;
    /// In the data's records, or after them in those of the change.
    qsizetype number(qsizetype index) const;
    std::shared_ptr<Change> copyOfChange() const;
    QUtf8StringView groupText(int group) const;

    std::shared_ptr<const Data> m_data;
    /// What has become of m_data since it was built; null for nothing.
    std::shared_ptr<const Change> m_change;
};

/// Collects entries whose values stand in one UTF-8 text, or are added to it.
class PlaylistEntriesBuilder
{
public:
    /// A value's place: in the text, or among what was added.
    struct Slice
    {
        quint32 offset = 0;
        quint32 length = 0;
    };

    /// `text` is at most PlaylistEntries::maximumTextSize long.
    explicit PlaylistEntriesBuilder(QByteArray text);
    ~PlaylistEntriesBuilder();
    PlaylistEntriesBuilder(const PlaylistEntriesBuilder &) = delete;
    PlaylistEntriesBuilder &operator=(const PlaylistEntriesBuilder &) = delete;

    /// The place of `part`, which lies within the text.
    Slice inText(QByteArrayView part) const;
    /// The place of a value that is not in the text.
    Slice add(QByteArrayView value);
    /// The bytes that were added so far.
    qsizetype addedSize() const;

    /// `logo`, `group` and `country` are empty for none; the last two may lie anywhere. Gives the
    /// entry a fresh id.
    void append(Slice name, Slice url, Slice logo, QByteArrayView group, QByteArrayView country);
    void append(const QUuid &id, Slice name, Slice url, Slice logo, QByteArrayView group,
                QByteArrayView country);

    PlaylistEntries build();

private:
    /// Numbers different values in order of first appearance.
    class Interner;
    class RandomIds;

    std::unique_ptr<PlaylistEntries::Data> m_data;
    std::unique_ptr<Interner> m_groups;
    std::unique_ptr<Interner> m_countries;
    std::unique_ptr<RandomIds> m_ids;
};

} // namespace lumaro
