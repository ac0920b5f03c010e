#include "finder/SnifferBrowserTabs.h"

#include <algorithm>

namespace lumaro {

namespace {

constexpr qsizetype mostClosedPages = 10;

} // namespace

SnifferBrowserTabs::SnifferBrowserTabs(SnifferSavedWebsiteStore &websites, WallClock clock,
                                       QObject *parent)
    : QAbstractListModel(parent)
    , m_websites(websites)
    , m_clock(std::move(clock))
{
    addTab();
}

SnifferBrowserTabs::~SnifferBrowserTabs() = default;

int SnifferBrowserTabs::rowOf(const QUuid &id) const
{
    const auto tab = std::ranges::find(m_tabs, id, &SnifferBrowserTab::id);
    return tab == m_tabs.end() ? -1 : int(tab - m_tabs.begin());
}

QUuid SnifferBrowserTabs::idAt(int row) const
{
    return row >= 0 && row < count() ? m_tabs[size_t(row)].id : QUuid();
}

int SnifferBrowserTabs::selectedRow() const
{
    return rowOf(m_selectedTabID);
}

SnifferManager *SnifferBrowserTabs::selectedTab() const
{
    const int row = selectedRow();
    return row < 0 ? nullptr : m_tabs[size_t(row)].manager.get();
}

SnifferManager *SnifferBrowserTabs::tabOf(const PageView *view) const
{
    const auto found = std::ranges::find_if(m_tabs, [view](const SnifferBrowserTab &tab) {
        return view && tab.manager->webView() == view;
    });
    return found == m_tabs.cend() ? nullptr : found->manager.get();
}

void SnifferBrowserTabs::selectRow(int row)
{
    const QUuid id = idAt(row);
    if (id.isNull() || m_selectedTabID == id)
        return;
    m_selectedTabID = id;
    Q_EMIT selectedTabChanged();
}

void SnifferBrowserTabs::selectNext(int by)
{
    selectRow(((selectedRow() + by) % count() + count()) % count());
}

void SnifferBrowserTabs::addTab(const QUrl &url)
{
    const QUuid id = QUuid::createUuid();
    auto manager = std::make_unique<SnifferManager>(m_websites, m_clock);
    if (!url.isEmpty())
        manager->navigate(url);
    for (const auto changed : {&SnifferManager::pageTitleChanged, &SnifferManager::addressChanged})
        connect(manager.get(), changed, this, [this, id] { announceTitle(id); });
    beginInsertRows({}, count(), count());
    m_tabs.push_back({id, std::move(manager)});
    endInsertRows();
    Q_EMIT countChanged();
    selectRow(count() - 1);
}

void SnifferBrowserTabs::closeRow(int row)
{
    closeTab(idAt(row));
}

void SnifferBrowserTabs::closeTab(const QUuid &id)
{
    const int row = rowOf(id);
    if (row < 0)
        return;
    SnifferManager &manager = *m_tabs[size_t(row)].manager;
    if (const QUrl &page = manager.shownPage(); !page.isEmpty()) {
        m_closedPages.append(page);
        if (m_closedPages.size() > mostClosedPages)
            m_closedPages.removeFirst();
    }
    manager.clearAddress();
    manager.networkMonitor()->clear();
    // There is never none.
    if (count() == 1)
        addTab();

    const bool wasSelected = m_selectedTabID == id;
    beginRemoveRows({}, row, row);
    const SnifferBrowserTab closed = std::move(m_tabs[size_t(row)]);
    m_tabs.erase(m_tabs.begin() + row);
    endRemoveRows();
    Q_EMIT countChanged();
    if (wasSelected)
        selectRow(std::min(row, count() - 1));
    else
        Q_EMIT selectedTabChanged();
}

void SnifferBrowserTabs::reopenTab()
{
    if (!m_closedPages.isEmpty())
        addTab(m_closedPages.takeLast());
}

void SnifferBrowserTabs::pauseAllTabsMedia()
{
    for (const SnifferBrowserTab &tab : m_tabs)
        tab.manager->pauseAllMedia();
}

void SnifferBrowserTabs::announceTitle(const QUuid &id)
{
    if (const int row = rowOf(id); row >= 0)
        Q_EMIT dataChanged(index(row), index(row), {Qt::DisplayRole, TitleRole});
}

int SnifferBrowserTabs::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant SnifferBrowserTabs::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    SnifferManager *const manager = m_tabs[size_t(index.row())].manager.get();
    switch (role) {
    case ManagerRole:
        return QVariant::fromValue(manager);
    case Qt::DisplayRole:
    case TitleRole: {
        const QString title = manager->pageTitle().simplified();
        if (!title.isEmpty())
            return title;
        return manager->address().isEmpty() ? tr("New Tab") : manager->address();
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> SnifferBrowserTabs::roleNames() const
{
    return {{ManagerRole, "manager"}, {TitleRole, "title"}};
}

} // namespace lumaro
