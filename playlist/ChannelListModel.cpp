#include "playlist/ChannelListModel.h"

#include <algorithm>

namespace lumaro {

namespace {

/// Anything else could make the list read the user's own files and devices.
bool isWebAddress(QUtf8StringView address)
{
    const QByteArrayView bytes(address.data(), address.size());
    return bytes.startsWith("http://") || bytes.startsWith("https://");
}

/// The first letter or digit of `name`, in upper case.
QString initialOf(const QString &name)
{
    const QList<uint> codePoints = name.first(std::min(name.size(), qsizetype(64))).toUcs4();
    const auto first = std::ranges::find_if(
        codePoints, [](uint codePoint) { return QChar::isLetterOrNumber(codePoint); });
    if (first == codePoints.end())
        return {};
    const char32_t upper = QChar::toUpper(*first);
    return QString::fromUcs4(&upper, 1);
}

} // namespace

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
    beginResetModel();
    m_entries = {};
    m_index = std::make_shared<ChannelIndex>();
    m_matches.clear();
    m_collapsed.clear();
    m_rows.clear();
    endResetModel();
    m_matchCount = 0;
    m_currentEntry = -1;
    Q_EMIT countChanged();
    Q_EMIT matchCountChanged();
    Q_EMIT currentEntryChanged();
    if (!entries.isEmpty())
        prepare(entries, m_preparation.get_token());
}

Task<> ChannelListModel::prepare(PlaylistEntries entries, std::stop_token stop)
{
    const auto indexing = m_scheduler.inBackground(
        [entries] { return std::make_shared<const ChannelIndex>(entries); });
    auto index = co_await indexing;
    if (stop.stop_requested())
        co_return;
    m_entries = entries;
    m_index = std::move(index);
    m_matches = m_index->matches(m_filterText);
    rebuildRows();
    Q_EMIT countChanged();
}

void ChannelListModel::setFilterText(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (m_filterText == trimmed)
        return;
    m_filterText = trimmed;
    m_matches = m_index->matches(m_filterText);
    rebuildRows();
    Q_EMIT filterTextChanged();
}

void ChannelListModel::rebuildRows()
{
    beginResetModel();
    m_rows.clear();
    const auto &groups = m_index->groups();
    for (size_t group = 0; group < groups.size(); ++group) {
        const std::vector<Row> channels = rowsOfGroup(group);
        if (channels.empty())
            continue;
        if (m_index->isGrouped())
            m_rows.push_back(-1 - Row(group));
        // A search looks into folded categories too.
        if (!m_filterText.isEmpty() || !m_collapsed.contains(group))
            m_rows.insert(m_rows.end(), channels.begin(), channels.end());
    }
    endResetModel();
    m_matchCount = int(std::ranges::count(m_matches, quint8(1)));
    Q_EMIT matchCountChanged();
}

std::vector<ChannelListModel::Row> ChannelListModel::rowsOfGroup(size_t group) const
{
    const ChannelIndex::Group &range = m_index->groups()[group];
    const auto first = m_index->order().begin() + range.first;
    std::vector<Row> rows;
    std::copy_if(first, first + range.count, std::back_inserter(rows),
                 [this](Row entry) { return m_matches[size_t(entry)] != 0; });
    return rows;
}

void ChannelListModel::toggleGroup(int row)
{
    const ChannelIndex::Group *group = groupAt(row);
    if (!group || !m_filterText.isEmpty())
        return;
    const size_t number = size_t(group - m_index->groups().data());
    const auto after = m_rows.begin() + row + 1;
    if (m_collapsed.erase(number) > 0) {
        const std::vector<Row> channels = rowsOfGroup(number);
        beginInsertRows({}, row + 1, row + int(channels.size()));
        m_rows.insert(after, channels.begin(), channels.end());
        endInsertRows();
    } else {
        m_collapsed.insert(number);
        beginRemoveRows({}, row + 1, row + group->count);
        m_rows.erase(after, after + group->count);
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
    for (const int changed : {before, entry}) {
        const auto row = std::ranges::find(m_rows, Row(changed));
        if (changed >= 0 && row != m_rows.end()) {
            const QModelIndex at = index(int(row - m_rows.begin()));
            Q_EMIT dataChanged(at, at, {CurrentRole});
        }
    }
}

int ChannelListModel::entryAt(int row) const
{
    return row >= 0 && row < rowCount() ? std::max(m_rows[size_t(row)], -1) : -1;
}

int ChannelListModel::channelRow(int row, int step) const
{
    while (row >= 0 && row < rowCount()) {
        if (entryAt(row) >= 0)
            return row;
        row += step;
    }
    return -1;
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
        return headerData(*group, role);
    return channelData(m_rows[size_t(index.row())], role);
}

QVariant ChannelListModel::headerData(const ChannelIndex::Group &group, int role) const
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
    case CountRole:
        return group.count;
    case CollapsedRole:
        return m_filterText.isEmpty()
            && m_collapsed.contains(size_t(&group - m_index->groups().data()));
    case CurrentRole:
        return false;
    default:
        return QString();
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
        return m_entries.name(entry).toString();
    case LogoRole: {
        const QUtf8StringView logo = m_entries.logoAddress(entry);
        return isWebAddress(logo) ? logo.toString() : QString();
    }
    case GroupRole: {
        const int group = m_entries.groupIndex(entry);
        return group < 0 ? QString() : m_entries.groupTitle(group);
    }
    case CountryRole:
        return m_entries.countryCode(entry).toString();
    case InitialRole:
        return initialOf(m_entries.name(entry).toString());
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
