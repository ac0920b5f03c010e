#pragma once

#include "finder/RowListModel.h"
#include "finder/SnifferSavedWebsiteStore.h"

namespace lumaro {

/// The web list: saved or visited websites, filtered by a search text. Main thread.
class SnifferWebListModel : public RowListModel<SnifferSavedWebsite>
{
    Q_OBJECT
    Q_PROPERTY(FilterTab filterTab READ filterTab WRITE setFilterTab NOTIFY filterTabChanged)
    /// The tabs' titles, in the order of FilterTab.
    Q_PROPERTY(QStringList filterTabs READ filterTabs CONSTANT)
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)
    /// What the list says while it shows nothing; empty while it does.
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY emptyTitleChanged)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY emptyTitleChanged)
    /// There is something that clear() would remove.
    Q_PROPERTY(bool canClear READ canClear NOTIFY canClearChanged)
    /// What to ask before clear().
    Q_PROPERTY(QString clearTitle READ clearTitle NOTIFY filterTabChanged)
    Q_PROPERTY(QString clearText READ clearText NOTIFY filterTabChanged)

    Q_PROPERTY(QString searchPlaceholder MEMBER searchPlaceholder CONSTANT)

public:
    enum FilterTab {
        Saved,
        History,
    };
    Q_ENUM(FilterTab)

    enum Role {
        TitleRole = Qt::UserRole + 1,
        AddressRole,
        IsFavoriteRole,
        /// A QDateTime.
        SavedAtRole,
        /// How often it was visited, for the user; empty for never.
        VisitsRole,
    };
    Q_ENUM(Role)

    /// `store` outlives the model.
    explicit SnifferWebListModel(SnifferSavedWebsiteStore &store, QObject *parent = nullptr);

    FilterTab filterTab() const { return m_filterTab; }
    void setFilterTab(FilterTab tab);
    static QStringList filterTabs();
    const QString &searchText() const { return m_searchText; }
    void setSearchText(const QString &text);
    QString emptyTitle() const;
    QString emptyText() const;
    bool canClear() const;
    QString clearTitle() const;
    QString clearText() const;

    /// Empty when there is no such row.
    Q_INVOKABLE QString addressAt(int row) const;
    Q_INVOKABLE void toggleFavorite(int row);
    Q_INVOKABLE void remove(int row);
    /// Removes the history; with the saved websites shown, those as well.
    Q_INVOKABLE void clear();
    Q_INVOKABLE void exportWebsites();
    Q_INVOKABLE void importWebsites();

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const QString searchPlaceholder = tr("Search saved websites or history...");

Q_SIGNALS:
    void filterTabChanged();
    void searchTextChanged();
    void emptyTitleChanged();
    void canClearChanged();

private:
    QList<SnifferSavedWebsite> matchingWebsites() const;
    void update();
    void announceEmptyTitle();

    SnifferSavedWebsiteStore &m_store;
    FilterTab m_filterTab = Saved;
    QString m_searchText;
    QString m_announcedEmptyTitle;
};

} // namespace lumaro
