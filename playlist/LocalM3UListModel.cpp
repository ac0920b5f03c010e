#include "playlist/LocalM3UListModel.h"

#include "platform/RowUpdate.h"
#include "playlist/ChannelIndex.h"
#include "playlist/ChannelTexts.h"
#include "playlist/FoldedTexts.h"

#include <algorithm>
#include <numeric>

namespace lumaro {

/// The names and categories of the links, folded for searching.
class LocalM3UListModel::SearchIndex
{
public:
    explicit SearchIndex(const PlaylistEntries &entries)
        : m_entries(entries)
        , m_names(entries.size(), [&](qsizetype i) { return ChannelIndex::shown(entries.name(i)); })
        , m_groups(entries.groupCount(), [&](qsizetype i) {
            return ChannelIndex::shown(entries.groupTitle(int(i)).toUtf8());
        })
    {
    }

    /// The entries in whose name or category `text` occurs.
    Rows matches(const QString &text) const
    {
        const std::vector<quint8> names = m_names.containing(text);
        const std::vector<quint8> groups = m_groups.containing(text);
        Rows rows;
        for (size_t i = 0; i < names.size(); ++i) {
            const int group = m_entries.groupIndex(qsizetype(i));
            if (names[i] != 0 || (group >= 0 && groups[size_t(group)] != 0))
                rows.push_back(qint32(i));
        }
        return rows;
    }

private:
    PlaylistEntries m_entries;
    FoldedTexts m_names;
    FoldedTexts m_groups;
};

LocalM3UListModel::LocalM3UListModel(LocalM3UStore &store, Scheduler &scheduler, QObject *parent)
    : QAbstractListModel(parent)
    , m_store(store)
    , m_scheduler(scheduler)
{
    connect(&store, &LocalM3UStore::entriesChanged, this, &LocalM3UListModel::refresh);
    connect(&store, &LocalM3UStore::loaded, this, [this] {
        refresh();
        Q_EMIT isLoadingChanged();
    });
    if (!store.isLoading())
        refresh();
}

LocalM3UListModel::~LocalM3UListModel()
{
    m_preparation.request_stop();
}

void LocalM3UListModel::refresh()
{
    std::exchange(m_preparation, std::stop_source()).request_stop();
    m_index.reset();
    if (m_filterText.isEmpty()) {
        Rows all(size_t(m_store.entries().size()));
        std::iota(all.begin(), all.end(), 0);
        changeRows(m_store.entries(), std::move(all));
        setIsSearching(false);
    } else {
        prepare(m_store.entries(), m_preparation.get_token());
    }
    if (std::exchange(m_count, count()) != count())
        Q_EMIT countChanged();
}

Task<> LocalM3UListModel::prepare(PlaylistEntries entries, std::stop_token stop)
{
    setIsSearching(true);
    const QString text = m_filterText;
    const auto searching = m_scheduler.inBackground([entries, text] {
        auto index = std::make_shared<const SearchIndex>(entries);
        Rows rows = index->matches(text);
        return std::pair(std::move(index), std::move(rows));
    });
    auto [index, rows] = co_await searching;
    if (stop.stop_requested())
        co_return;
    m_index = std::move(index);
    // More may have been typed meanwhile.
    changeRows(entries, m_filterText == text ? std::move(rows) : m_index->matches(m_filterText));
    setIsSearching(false);
}

void LocalM3UListModel::setFilterText(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (m_filterText == trimmed)
        return;
    const bool wasEmpty = std::exchange(m_filterText, trimmed).isEmpty();
    m_selectsFirstMatch = !trimmed.isEmpty();
    Q_EMIT filterTextChanged();
    if (isLoading())
        setIsSearching(!trimmed.isEmpty());
    else if (trimmed.isEmpty())
        refresh();
    else if (m_index)
        resetRows();
    else if (wasEmpty)
        prepare(m_store.entries(), m_preparation.get_token());
}

void LocalM3UListModel::resetRows()
{
    const int before = matchCount();
    beginResetModel();
    m_rows = m_index->matches(m_filterText);
    endResetModel();
    if (matchCount() != before)
        Q_EMIT matchCountChanged();
    restoreSelection();
}

void LocalM3UListModel::changeRows(const PlaylistEntries &entries, Rows rows)
{
    const auto isSame = [&](qint32 before, qint32 after) {
        return m_entries.isSame(before, entries, after);
    };
    const auto [first, removed, inserted] = RowUpdate::between(m_rows, rows, isSame);
    const int before = matchCount();

    if (removed == inserted) {
        m_rows = std::move(rows);
        m_entries = entries;
        if (removed > 0)
            Q_EMIT dataChanged(index(first), index(first + removed - 1));
    } else {
        if (removed > 0) {
            beginRemoveRows({}, first, first + removed - 1);
            m_rows.erase(m_rows.begin() + first, m_rows.begin() + first + removed);
            endRemoveRows();
        }
        if (inserted > 0)
            beginInsertRows({}, first, first + inserted - 1);
        m_rows = std::move(rows);
        m_entries = entries;
        if (inserted > 0)
            endInsertRows();
    }
    if (matchCount() != before)
        Q_EMIT matchCountChanged();
    restoreSelection();
}

void LocalM3UListModel::restoreSelection()
{
    if (std::exchange(m_selectsFirstMatch, false)) {
        selectRow(0);
        return;
    }
    if (m_selectedRow < 0)
        return;
    const auto entry = qint32(m_entries.indexOf(m_selectedId));
    const auto row = std::ranges::lower_bound(m_rows, entry);
    if (row != m_rows.end() && *row == entry)
        setSelectedRow(int(row - m_rows.begin()));
    else
        setSelectedRow(std::min(m_selectedRow, matchCount() - 1));
}

void LocalM3UListModel::setIsSearching(bool searching)
{
    if (std::exchange(m_isSearching, searching) != searching)
        Q_EMIT isSearchingChanged();
}

void LocalM3UListModel::selectRow(int row)
{
    setSelectedRow(row >= 0 && row < matchCount() ? row : -1);
}

void LocalM3UListModel::setSelectedRow(int row)
{
    m_selectedId = idAt(row);
    if (std::exchange(m_selectedRow, row) != row)
        Q_EMIT selectedRowChanged();
}

void LocalM3UListModel::select(const QUuid &id)
{
    const auto entry = qint32(m_entries.indexOf(id));
    const auto row = std::ranges::find(m_rows, entry);
    if (row == m_rows.end())
        return;
    setSelectedRow(int(row - m_rows.begin()));
    Q_EMIT revealRequested(m_selectedRow);
}

void LocalM3UListModel::moveSelection(int by)
{
    const int last = matchCount() - 1;
    if (m_selectedRow < 0)
        selectRow(by >= 0 ? 0 : last);
    else
        selectRow(int(std::clamp(qint64(m_selectedRow) + by, qint64(0), qint64(last))));
    if (m_selectedRow >= 0)
        Q_EMIT revealRequested(m_selectedRow);
}

void LocalM3UListModel::setCurrentURL(const QUrl &url)
{
    const QByteArray address = url.toEncoded();
    if (m_currentAddress == address)
        return;
    m_currentAddress = address;
    if (!m_rows.empty())
        Q_EMIT dataChanged(index(0), index(matchCount() - 1), {CurrentRole});
}

QUuid LocalM3UListModel::idAt(int row) const
{
    return row >= 0 && row < matchCount() ? m_entries.id(m_rows[size_t(row)]) : QUuid();
}

int LocalM3UListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : matchCount();
}

QVariant LocalM3UListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const qint32 entry = m_rows[size_t(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return ChannelIndex::shown(m_entries.name(entry));
    case LogoRole:
        return logoThatMayShow(m_entries.logoAddress(entry));
    case GroupRole:
        return ChannelIndex::shown(m_entries.group(entry));
    case CountryRole:
        return ChannelIndex::shown(m_entries.countryCode(entry));
    case InitialRole:
        return initialOf(ChannelIndex::shown(m_entries.name(entry)));
    case CurrentRole: {
        const QUtf8StringView address = m_entries.address(entry);
        return !m_currentAddress.isEmpty()
            && QByteArrayView(address.data(), address.size()) == m_currentAddress;
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> LocalM3UListModel::roleNames() const
{
    return {
        {NameRole, "name"},       {LogoRole, "logo"},       {GroupRole, "group"},
        {CountryRole, "country"}, {InitialRole, "initial"}, {CurrentRole, "isCurrent"},
    };
}

} // namespace lumaro
