#pragma once

#include "playlist/LocalM3UStore.h"

#include <QAbstractListModel>

#include <memory>
#include <stop_token>
#include <vector>

namespace lumaro {

/// The rows of the library's list: its links in their order, filtered by a search text, one of
/// them selected. Rows are numbers; texts are made for the rows that are looked at. Main thread.
class LocalM3UListModel : public QAbstractListModel
{
    Q_OBJECT
    /// What to search for, in names and categories, whatever the case.
    Q_PROPERTY(QString filterText READ filterText WRITE setFilterText NOTIFY filterTextChanged)
    /// The library is not there yet.
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    /// The links of the library, shown or not; none before it is there.
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// The links that the search text leaves.
    Q_PROPERTY(int matchCount READ matchCount NOTIFY matchCountChanged)
    /// The rows are not those of the search text yet.
    Q_PROPERTY(bool isSearching READ isSearching NOTIFY isSearchingChanged)
    /// -1 for none. A new search text selects its first match. Otherwise the selection follows its
    /// link when the library changes; when the link goes, its neighbour is selected.
    Q_PROPERTY(int selectedRow READ selectedRow WRITE selectRow NOTIFY selectedRowChanged)

public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        /// An http or https address or that of an image file; empty for none.
        LogoRole,
        GroupRole,
        CountryRole,
        /// What stands in for a missing logo.
        InitialRole,
        CurrentRole,
    };
    Q_ENUM(Role)

    /// Both outlive the model.
    LocalM3UListModel(LocalM3UStore &store, Scheduler &scheduler, QObject *parent = nullptr);
    ~LocalM3UListModel() override;

    const QString &filterText() const { return m_filterText; }
    void setFilterText(const QString &text);
    bool isLoading() const { return m_store.isLoading(); }
    int count() const { return isLoading() ? 0 : int(m_store.entries().size()); }
    int matchCount() const { return int(m_rows.size()); }
    bool isSearching() const { return m_isSearching; }
    int selectedRow() const { return m_selectedRow; }
    void selectRow(int row);
    /// Selects the link with this id, if the search text leaves it.
    void select(const QUuid &id);
    /// Selects the row that many rows on, the last or first at the most.
    Q_INVOKABLE void moveSelection(int by);

    /// The links to this address are marked as what plays; empty for none.
    void setCurrentURL(const QUrl &url);

    /// The id of the link at `row`; null when there is no such row.
    QUuid idAt(int row) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void filterTextChanged();
    void isLoadingChanged();
    void countChanged();
    void matchCountChanged();
    void isSearchingChanged();
    void selectedRowChanged();
    /// The user should see this row.
    void revealRequested(int row);

private:
    class SearchIndex;
    using Rows = std::vector<qint32>;

    void refresh();
    Task<> prepare(PlaylistEntries entries, std::stop_token stop);
    void resetRows();
    void changeRows(const PlaylistEntries &entries, Rows rows);
    void restoreSelection();
    void setIsSearching(bool searching);
    void setSelectedRow(int row);

    LocalM3UStore &m_store;
    Scheduler &m_scheduler;
    std::stop_source m_preparation;
    /// What is shown. While a search is being prepared, the library may be ahead of it.
    PlaylistEntries m_entries;
    /// For searching in m_entries; made when it is first needed.
    std::shared_ptr<const SearchIndex> m_index;
    QString m_filterText;
    /// Indices of entries, ascending.
    Rows m_rows;
    int m_count = 0;
    QByteArray m_currentAddress;
    bool m_isSearching = false;
    /// The search text is new.
    bool m_selectsFirstMatch = false;
    QUuid m_selectedId;
    int m_selectedRow = -1;
};

} // namespace lumaro
