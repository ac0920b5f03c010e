#pragma once

#include "finder/SnifferManager.h"

#include <QAbstractListModel>

#include <memory>
#include <vector>

namespace lumaro {

/// The finder's tabs, of which there is always one, and the one that shows. Main thread.
class SnifferBrowserTabs : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// The row of the tab that shows.
    Q_PROPERTY(int selectedRow READ selectedRow WRITE selectRow NOTIFY selectedTabChanged)
    Q_PROPERTY(lumaro::SnifferManager *selectedTab READ selectedTab NOTIFY selectedTabChanged)

public:
    enum Role {
        ManagerRole = Qt::UserRole + 1,
        /// The page's title, else its address, else what an empty tab is called.
        TitleRole,
    };

    /// `websites` outlives the tabs.
    explicit SnifferBrowserTabs(SnifferSavedWebsiteStore &websites, WallClock clock = systemClock(),
                                QObject *parent = nullptr);
    ~SnifferBrowserTabs() override;

    int count() const { return int(m_tabs.size()); }
    int selectedRow() const;
    /// Shows the tab at `row`; nothing happens when there is none.
    void selectRow(int row);
    /// Shows the next tab, or the one before, round the end.
    Q_INVOKABLE void selectNext(int by);
    const QUuid &selectedTabID() const { return m_selectedTabID; }
    SnifferManager *selectedTab() const;
    /// The tab that `view` shows; null for none.
    SnifferManager *tabOf(const PageView *view) const;

    /// Adds a tab at the end, going to `url` unless that is empty, and shows it.
    Q_INVOKABLE void addTab(const QUrl &url = {});
    /// The next tab shows then, or the last. Closing the only one leaves an empty one.
    void closeTab(const QUuid &id);
    Q_INVOKABLE void closeRow(int row);
    /// Adds a tab for the page that was closed last. Those closed earlier follow, ten at most.
    Q_INVOKABLE void reopenTab();
    /// Has all pages pause what plays.
    Q_INVOKABLE void pauseAllTabsMedia();

    QUuid idAt(int row) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();
    void selectedTabChanged();

private:
    struct SnifferBrowserTab
    {
        QUuid id;
        std::unique_ptr<SnifferManager> manager;
    };

    int rowOf(const QUuid &id) const;
    void announceTitle(const QUuid &id);

    SnifferSavedWebsiteStore &m_websites;
    WallClock m_clock;
    std::vector<SnifferBrowserTab> m_tabs;
    /// The last is the newest.
    QList<QUrl> m_closedPages;
    QUuid m_selectedTabID;
};

} // namespace lumaro
