#pragma once

#include "platform/Scheduler.h"
#include "playlist/ChannelIndex.h"

#include <QAbstractListModel>

#include <memory>
#include <set>
#include <stop_token>

namespace lumaro {

/// The rows of the channel list: the channels of a playlist under their categories, filtered by a
/// search text. Rows are numbers; texts are made for the rows that are looked at. Main thread.
class ChannelListModel : public QAbstractListModel
{
    Q_OBJECT
    /// What to search for, in names and categories, whatever the case.
    Q_PROPERTY(QString filterText READ filterText WRITE setFilterText NOTIFY filterTextChanged)
    /// The channels of the playlist, shown or not.
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// The channels that the search text leaves.
    Q_PROPERTY(int matchCount READ matchCount NOTIFY matchCountChanged)
    /// The channel that plays, as an index into the playlist; -1 for none.
    Q_PROPERTY(int currentEntry READ currentEntry WRITE setCurrentEntry NOTIFY currentEntryChanged)

public:
    enum Role {
        /// True for a category's header row.
        IsGroupRole = Qt::UserRole + 1,
        NameRole,
        /// An http or https address; empty for none.
        LogoRole,
        GroupRole,
        CountryRole,
        /// What stands in for a missing logo.
        InitialRole,
        /// The index into the playlist; -1 for a header.
        EntryRole,
        /// A header's number of channels that the search text leaves.
        CountRole,
        CollapsedRole,
        CurrentRole,
    };
    Q_ENUM(Role)

    /// `scheduler` outlives the model.
    explicit ChannelListModel(Scheduler &scheduler, QObject *parent = nullptr);
    ~ChannelListModel() override;

    /// Shows all of `entries` as soon as they are prepared; until then the list is empty.
    void setEntries(const PlaylistEntries &entries);

    const QString &filterText() const { return m_filterText; }
    void setFilterText(const QString &text);
    int count() const { return int(m_entries.size()); }
    int matchCount() const { return m_matchCount; }
    int currentEntry() const { return m_currentEntry; }
    void setCurrentEntry(int entry);

    /// Folds or unfolds the category whose header is at `row`.
    Q_INVOKABLE void toggleGroup(int row);
    /// The channel at `row` as an index into the playlist; -1 for a header.
    Q_INVOKABLE int entryAt(int row) const;
    /// The row that lies `step` rows from `row`, or the last one on the way there; from no row (-1)
    /// the first one, upwards the last. While searching it is a channel's, because headers do not
    /// fold then. -1 when there are no rows.
    Q_INVOKABLE int rowAfter(int row, int step) const;
    /// The first row with a channel; -1 when there is none.
    Q_INVOKABLE int firstChannelRow() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void filterTextChanged();
    void countChanged();
    void matchCountChanged();
    void currentEntryChanged();

private:
    /// A channel's entry, or a header's group: group g is -1 - g.
    using Row = qint32;

    Task<> prepare(PlaylistEntries entries, std::stop_token stop);
    void show(const PlaylistEntries &entries, std::shared_ptr<const ChannelIndex> index);
    std::vector<Row> matchingRows() const;
    void countMatches();
    void announceCurrent(int entry);
    const ChannelIndex::Group *groupAt(int row) const;
    QVariant groupData(const ChannelIndex::Group &group, int role) const;
    QVariant channelData(int entry, int role) const;

    Scheduler &m_scheduler;
    std::stop_source m_preparation;
    PlaylistEntries m_entries;
    std::shared_ptr<const ChannelIndex> m_index = std::make_shared<ChannelIndex>();
    QString m_filterText;
    std::vector<quint8> m_matches;
    std::set<size_t> m_collapsed;
    std::vector<Row> m_rows;
    int m_matchCount = 0;
    int m_currentEntry = -1;
};

} // namespace lumaro
