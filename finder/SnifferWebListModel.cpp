#include "finder/SnifferWebListModel.h"

#include <algorithm>
#include <limits>

namespace lumaro {

namespace {

QString visitsText(qint64 count)
{
    if (count == 0)
        return {};
    if (count == 1)
        return SnifferWebListModel::tr("Visited once");
    return SnifferWebListModel::tr("Visited %n times", nullptr,
                                   int(std::min<qint64>(count, std::numeric_limits<int>::max())));
}

} // namespace

SnifferWebListModel::SnifferWebListModel(SnifferSavedWebsiteStore &store, QObject *parent)
    : RowListModel(parent)
    , m_store(store)
{
    setRows(matchingWebsites());
    m_announcedEmptyTitle = emptyTitle();
    connect(&m_store, &SnifferSavedWebsiteStore::websitesChanged, this, [this] { update(); });
}

QStringList SnifferWebListModel::filterTabs()
{
    return {tr("Saved"), tr("History")};
}

QList<SnifferSavedWebsite> SnifferWebListModel::matchingWebsites() const
{
    const QString wanted = m_searchText.trimmed();
    QList<SnifferSavedWebsite> websites;
    std::ranges::copy_if(m_store.websites(), std::back_inserter(websites),
                         [this, &wanted](const SnifferSavedWebsite &website) {
                             return website.isFavorite == (m_filterTab == Saved)
                                 && (website.title.contains(wanted, Qt::CaseInsensitive)
                                     || website.urlString.contains(wanted, Qt::CaseInsensitive));
                         });
    return websites;
}

void SnifferWebListModel::update()
{
    setRows(matchingWebsites());
    announceEmptyTitle();
    Q_EMIT canClearChanged();
}

void SnifferWebListModel::setFilterTab(FilterTab tab)
{
    if (m_filterTab == tab)
        return;
    m_filterTab = tab;
    resetRows(matchingWebsites());
    Q_EMIT filterTabChanged();
    Q_EMIT canClearChanged();
    announceEmptyTitle();
}

void SnifferWebListModel::announceEmptyTitle()
{
    const QString now = emptyTitle();
    if (std::exchange(m_announcedEmptyTitle, now) != now)
        Q_EMIT emptyTitleChanged();
}

void SnifferWebListModel::setSearchText(const QString &text)
{
    if (std::exchange(m_searchText, text) == text)
        return;
    Q_EMIT searchTextChanged();
    update();
}

QString SnifferWebListModel::emptyTitle() const
{
    if (!rows().isEmpty())
        return {};
    if (!m_searchText.trimmed().isEmpty())
        return tr("No websites found");
    return m_filterTab == Saved ? tr("No saved websites yet") : tr("No browsing history yet");
}

QString SnifferWebListModel::emptyText() const
{
    if (!m_searchText.trimmed().isEmpty())
        return {};
    return m_filterTab == Saved
        ? tr("Enter a website URL above and click the Star button to save sites for "
             "quick access.")
        : tr("Websites you visit in the sniffer will appear here automatically.");
}

bool SnifferWebListModel::canClear() const
{
    return std::ranges::any_of(m_store.websites(), [this](const SnifferSavedWebsite &website) {
        return m_filterTab == Saved || !website.isFavorite;
    });
}

QString SnifferWebListModel::clearTitle() const
{
    return m_filterTab == Saved ? tr("Clear Web List?") : tr("Clear History?");
}

QString SnifferWebListModel::clearText() const
{
    return m_filterTab == Saved
        ? tr("This will permanently remove all saved websites and the history.")
        : tr("This will permanently remove all visited websites. Saved websites stay.");
}

QString SnifferWebListModel::addressAt(int row) const
{
    return row >= 0 && row < rows().size() ? rows()[row].urlString : QString();
}

void SnifferWebListModel::toggleFavorite(int row)
{
    if (row >= 0 && row < rows().size())
        m_store.toggleFavorite(rows()[row].id);
}

void SnifferWebListModel::remove(int row)
{
    if (row >= 0 && row < rows().size())
        m_store.remove(rows()[row].id);
}

void SnifferWebListModel::clear()
{
    m_store.removeAll(m_filterTab == History);
}

void SnifferWebListModel::exportWebsites()
{
    m_store.exportWebsites();
}

void SnifferWebListModel::importWebsites()
{
    m_store.importWebsites();
}

QVariant SnifferWebListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const SnifferSavedWebsite &website = rows()[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return website.displayTitle();
    case AddressRole:
        return website.urlString;
    case IsFavoriteRole:
        return website.isFavorite;
    case SavedAtRole:
        return website.savedAt;
    case VisitsRole:
        return visitsText(website.visitCount);
    default:
        return {};
    }
}

QHash<int, QByteArray> SnifferWebListModel::roleNames() const
{
    return {
        {TitleRole, "title"},     {AddressRole, "address"}, {IsFavoriteRole, "isFavorite"},
        {SavedAtRole, "savedAt"}, {VisitsRole, "visits"},
    };
}

} // namespace lumaro
