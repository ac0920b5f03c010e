#include "finder/SnifferBlockListModel.h"

namespace lumaro {

SnifferBlockListModel::SnifferBlockListModel(SnifferAdBlocker &blocker, QObject *parent)
    : RowListModel(parent)
    , m_blocker(blocker)
{
    setRows(matchingDomains());
    m_announcedEmptyTitle = emptyTitle();
    connect(&m_blocker, &SnifferAdBlocker::blockedDomainsChanged, this, [this] {
        update();
        Q_EMIT countChanged();
    });
}

QStringList SnifferBlockListModel::matchingDomains() const
{
    const QString wanted = m_searchText.trimmed();
    QStringList domains;
    for (const QString &domain : m_blocker.blockedDomains()) {
        if (domain.contains(wanted, Qt::CaseInsensitive))
            domains.prepend(domain);
    }
    return domains;
}

void SnifferBlockListModel::update()
{
    setRows(matchingDomains());
    announceEmptyTitle();
}

void SnifferBlockListModel::announceEmptyTitle()
{
    const QString now = emptyTitle();
    if (std::exchange(m_announcedEmptyTitle, now) != now)
        Q_EMIT emptyTitleChanged();
}

void SnifferBlockListModel::setSearchText(const QString &text)
{
    if (std::exchange(m_searchText, text) == text)
        return;
    Q_EMIT searchTextChanged();
    update();
}

QString SnifferBlockListModel::emptyTitle() const
{
    if (!rows().isEmpty())
        return {};
    return count() == 0 ? tr("No domains in Block List.") : tr("No matching domains found.");
}

QString SnifferBlockListModel::emptyText() const
{
    return count() == 0 ? tr("You can add specific ad, tracker, or popup domains above "
                             "whenever you wish.")
                        : QString();
}

bool SnifferBlockListModel::add(const QString &text)
{
    const bool isAdded = m_blocker.addDomain(text);
    setErrorText(isAdded ? QString()
                         : tr("Enter a valid domain (e.g. adserver.com) not already in "
                              "the list."));
    return isAdded;
}

void SnifferBlockListModel::clearError()
{
    setErrorText({});
}

void SnifferBlockListModel::setErrorText(const QString &text)
{
    if (std::exchange(m_errorText, text) != text)
        Q_EMIT errorTextChanged();
}

void SnifferBlockListModel::remove(int row)
{
    if (row >= 0 && row < rows().size())
        m_blocker.removeDomain(QString(rows()[row]));
}

void SnifferBlockListModel::removeAll()
{
    m_blocker.removeAllDomains();
}

QVariant SnifferBlockListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const QString &domain = rows()[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case DomainRole:
        return domain;
    case DeleteHelpRole:
        return tr("Permanently delete %1 from Block List").arg(domain);
    default:
        return {};
    }
}

QHash<int, QByteArray> SnifferBlockListModel::roleNames() const
{
    return {{DomainRole, "domain"}, {DeleteHelpRole, "deleteHelp"}};
}

} // namespace lumaro
