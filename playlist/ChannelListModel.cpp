#include "playlist/ChannelListModel.h"

#include "platform/Utf8Text.h"
#include "playlist/ChannelTexts.h"

#include <algorithm>

namespace lumaro {

ChannelListModel::ChannelListModel(Scheduler &scheduler, QObject *parent)
    : QAbstractListModel(parent)
    , m_scheduler(scheduler)
{
}

ChannelListModel::~ChannelListModel()
{
    m_preparation.request_stop();
}

void ChannelListModel::setEntries(const PlaylistEntries &entries)
{
    std::exchange(m_preparation, std::stop_source()).request_stop();
    m_collapsed.clear();
    setCurrentEntry(-1);
    // What was looked for in the list before says nothing of this one.
    const bool wasFiltered = !std::exchange(m_filterText, {}).isEmpty();
    show({}, std::make_shared<ChannelIndex>());
    if (wasFiltered)
        Q_EMIT filterTextChanged();
    if (!entries.isEmpty())
        prepare(entries, m_preparation.get_token());
}

Task<> ChannelListModel::prepare(PlaylistEntries entries, std::stop_token stop)
{
    const auto indexing = m_scheduler.inBackground(
        [entries] { return std::make_shared<const ChannelIndex>(entries); });
    auto index = co_await indexing;
    if (!stop.stop_requested())
        show(entries, std::move(index));
}

void ChannelListModel::show(const PlaylistEntries &entries,
                            std::shared_ptr<const ChannelIndex> index)
{
    const int before = count();
    beginResetModel();
    m_entries = entries;
    m_index = std::move(index);
    m_matches = m_index->matches(m_filterText);
    m_rows = matchingRows();
    endResetModel();
    if (count() != before)
        Q_EMIT countChanged();
    countMatches();
}

void ChannelListModel::setFilterText(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (m_filterText == trimmed)
        return;
    beginResetModel();
    m_filterText = trimmed;
    m_matches = m_index->matches(m_filterText);
    m_rows = matchingRows();
    endResetModel();
    Q_EMIT filterTextChanged();
    countMatches();
}

std::vector<ChannelListModel::Row> ChannelListModel::matchingRows() const
{
    std::vector<Row> rows;
    const auto &groups = m_index->groups();
    for (size_t group = 0; group < groups.size(); ++group) {
        const auto header = rows.size();
        if (m_index->isGrouped())
            rows.push_back(-1 - Row(group));
        const auto first = rows.size();
        const auto entries = m_index->order().begin() + groups[group].first;
        std::copy_if(entries, entries + groups[group].count, std::back_inserter(rows),
                     [this](Row entry) { return m_matches[size_t(entry)] != 0; });
        if (rows.size() == first)
            rows.resize(header);
        // A search looks into folded categories too.
        else if (m_filterText.isEmpty() && m_collapsed.contains(group))
            rows.resize(first);
    }
    return rows;
}

void ChannelListModel::countMatches()
{
    const auto matches = int(std::ranges::count(m_matches, quint8(1)));
    if (std::exchange(m_matchCount, matches) != matches)
        Q_EMIT matchCountChanged();
}

void ChannelListModel::toggleGroup(int row)
{
    const ChannelIndex::Group *group = groupAt(row);
    if (!group || !m_filterText.isEmpty())
        return;
    const auto number = size_t(group - m_index->groups().data());
    const int first = row + 1;
    // Without a search text a category has all of its channels.
    const int last = row + group->count;
    if (m_collapsed.contains(number)) {
        const auto channels = m_index->order().begin() + group->first;
        beginInsertRows({}, first, last);
        m_collapsed.erase(number);
        m_rows.insert(m_rows.begin() + first, channels, channels + group->count);
        endInsertRows();
    } else {
        beginRemoveRows({}, first, last);
        m_collapsed.insert(number);
        m_rows.erase(m_rows.begin() + first, m_rows.begin() + last + 1);
        endRemoveRows();
    }
    Q_EMIT dataChanged(index(row), index(row), {CollapsedRole});
}

void ChannelListModel::setCurrentEntry(int entry)
{
    if (m_currentEntry == entry)
        return;
    const int before = std::exchange(m_currentEntry, entry);
    Q_EMIT currentEntryChanged();
    announceCurrent(before);
    announceCurrent(entry);
}

void ChannelListModel::announceCurrent(int entry)
{
    const auto row = entry < 0 ? m_rows.end() : std::ranges::find(m_rows, Row(entry));
    if (row == m_rows.end())
        return;
    const QModelIndex at = index(int(row - m_rows.begin()));
    Q_EMIT dataChanged(at, at, {CurrentRole});
}

int ChannelListModel::entryAt(int row) const
{
    return row >= 0 && row < rowCount() ? std::max(m_rows[size_t(row)], -1) : -1;
}

int ChannelListModel::rowAfter(int row, int step) const
{
    if (m_rows.empty())
        return -1;
    const qint64 last = rowCount() - 1;
    const qint64 wanted = row < 0 ? (step < 0 ? last : 0) : qint64(row) + step;
    const int found = int(std::clamp<qint64>(wanted, 0, last));
    if (m_filterText.isEmpty() || !groupAt(found))
        return found;
    // Every header has a channel below it then.
    return step < 0 && found > 0 ? found - 1 : found + 1;
}

int ChannelListModel::firstChannelRow() const
{
    const auto row = std::ranges::find_if(m_rows, [](Row content) { return content >= 0; });
    return row == m_rows.end() ? -1 : int(row - m_rows.begin());
}

const ChannelIndex::Group *ChannelListModel::groupAt(int row) const
{
    if (row < 0 || row >= rowCount() || m_rows[size_t(row)] >= 0)
        return nullptr;
    return &m_index->groups()[size_t(-1 - m_rows[size_t(row)])];
}

int ChannelListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant ChannelListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (const ChannelIndex::Group *group = groupAt(index.row()))
        return groupData(*group, role);
    return channelData(m_rows[size_t(index.row())], role);
}

QVariant ChannelListModel::groupData(const ChannelIndex::Group &group, int role) const
{
    switch (role) {
    case IsGroupRole:
        return true;
    case Qt::DisplayRole:
    case NameRole:
    case GroupRole:
        return group.title;
    case EntryRole:
        return -1;
    case CountRole: {
        const auto entries = m_index->order().begin() + group.first;
        return int(std::count_if(entries, entries + group.count,
                                 [this](Row entry) { return m_matches[size_t(entry)] != 0; }));
    }
    case CollapsedRole:
        return m_filterText.isEmpty()
            && m_collapsed.contains(size_t(&group - m_index->groups().data()));
    case CurrentRole:
        return false;
    case LogoRole:
    case CountryRole:
    case InitialRole:
        return QString();
    default:
        return {};
    }
}

QVariant ChannelListModel::channelData(int entry, int role) const
{
    switch (role) {
    case IsGroupRole:
    case CollapsedRole:
        return false;
    case Qt::DisplayRole:
    case NameRole:
        return ChannelIndex::shown(m_entries.name(entry));
    case LogoRole: {
        const QUtf8StringView logo = m_entries.logoAddress(entry);
        return isWebAddress(logo) ? logo.toString() : QString();
    }
    case GroupRole: {
        const int group = m_entries.groupIndex(entry);
        return group < 0 ? QString() : m_index->groups()[size_t(group)].title;
    }
    case CountryRole:
        return text::toString(m_entries.countryCode(entry));
    case InitialRole:
        return initialOf(ChannelIndex::shown(m_entries.name(entry)));
    case EntryRole:
        return entry;
    case CountRole:
        return 0;
    case CurrentRole:
        return entry == m_currentEntry;
    default:
        return {};
    }
}

QHash<int, QByteArray> ChannelListModel::roleNames() const
{
    return {
        {IsGroupRole, "isGroup"},   {NameRole, "name"},          {LogoRole, "logo"},
        {GroupRole, "group"},       {CountryRole, "country"},    {InitialRole, "initial"},
        {EntryRole, "entry"},       {CountRole, "channelCount"}, {CollapsedRole, "collapsed"},
        {CurrentRole, "isCurrent"},
    };
}

} // namespace lumaro
