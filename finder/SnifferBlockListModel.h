#pragma once

#include "finder/RowListModel.h"
#include "finder/SnifferAdBlocker.h"

namespace lumaro {

/// The block-list editor: the user's blocked domains, the one added last first, filtered by a
/// search text. Main thread.
class SnifferBlockListModel : public RowListModel<QString>
{
    Q_OBJECT
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)
    /// Why the last text was not added; empty when it was.
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorTextChanged)
    /// The domains in the list, shown or not.
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// What the list says while it shows nothing; empty while it does.
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY emptyTitleChanged)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY emptyTitleChanged)

    Q_PROPERTY(QString title MEMBER title CONSTANT)
    Q_PROPERTY(QString fieldPlaceholder MEMBER fieldPlaceholder CONSTANT)
    Q_PROPERTY(QString searchPlaceholder MEMBER searchPlaceholder CONSTANT)
    Q_PROPERTY(QString caption MEMBER caption CONSTANT)
    Q_PROPERTY(QString clearTitle MEMBER clearTitle CONSTANT)
    Q_PROPERTY(QString clearText MEMBER clearText CONSTANT)

public:
    enum Role {
        DomainRole = Qt::UserRole + 1,
        /// What the domain's delete button does.
        DeleteHelpRole,
    };
    Q_ENUM(Role)

    /// `blocker` outlives the model.
    explicit SnifferBlockListModel(SnifferAdBlocker &blocker, QObject *parent = nullptr);

    const QString &searchText() const { return m_searchText; }
    void setSearchText(const QString &text);
    const QString &errorText() const { return m_errorText; }
    int count() const { return int(m_blocker.blockedDomains().size()); }
    QString emptyTitle() const;
    QString emptyText() const;

    /// False, with an error text, when `text` is no domain or it is there already.
    Q_INVOKABLE bool add(const QString &text);
    /// The user changes what was refused.
    Q_INVOKABLE void clearError();
    Q_INVOKABLE void remove(int row);
    Q_INVOKABLE void removeAll();

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const QString title = tr("Ad Blocker - Block List");
    const QString fieldPlaceholder = tr("Add domain (e.g. example-ads.com)");
    const QString searchPlaceholder = tr("Search blocked domains...");
    const QString caption = tr("Saved automatically");
    const QString clearTitle = tr("Clear All Domains?");
    const QString clearText = tr("This will permanently remove all domains from the Block List.");

Q_SIGNALS:
    void searchTextChanged();
    void errorTextChanged();
    void countChanged();
    void emptyTitleChanged();

private:
    QStringList matchingDomains() const;
    void update();
    void announceEmptyTitle();
    void setErrorText(const QString &text);

    SnifferAdBlocker &m_blocker;
    QString m_searchText;
    QString m_errorText;
    QString m_announcedEmptyTitle;
};

} // namespace lumaro
