#include "download/DownloadListModel.h"

#include <algorithm>

namespace lumaro {

namespace {

QString titleOf(const M3U8DownloadManager &manager, const QString &key)
{
    const QUrl url(key);
    for (const QString &title : {manager.jobs().value(key).destination.fileName(),
                                 manager.suggestedName(key).trimmed(), url.fileName()}) {
        if (!title.isEmpty())
            return title;
    }
    return url.host();
}

} // namespace

DownloadListModel::DownloadListModel(M3U8DownloadManager &manager, QObject *parent)
    : QAbstractListModel(parent)
    , m_manager(manager)
    , m_keys(manager.jobs().keys())
{
    updateActiveCount();
    connect(&manager, &M3U8DownloadManager::jobChanged, this, &DownloadListModel::update);
}

int DownloadListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant DownloadListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const QString &key = m_keys.at(index.row());
    const M3U8DownloadManager::JobState job = m_manager.jobs().value(key);
    switch (role) {
    case TitleRole:
        return titleOf(m_manager, key);
    case MessageRole:
        return job.message;
    case ProgressRole:
        return job.progress.value_or(-1);
    case IsActiveRole:
        return job.isActive;
    case HasFailedRole:
        return job.hasFailed();
    case CanRevealRole:
        return !job.destination.isEmpty();
    case UrlRole:
        return QUrl(key);
    default:
        return {};
    }
}

QHash<int, QByteArray> DownloadListModel::roleNames() const
{
    return {{TitleRole, "title"},
            {MessageRole, "message"},
            {ProgressRole, "progress"},
            {IsActiveRole, "isActive"},
            {HasFailedRole, "hasFailed"},
            {CanRevealRole, "canReveal"},
            {UrlRole, "url"}};
}

void DownloadListModel::update(const QString &key)
{
    const qsizetype row = m_keys.indexOf(key);
    if (row >= 0) {
        const QModelIndex changed = index(int(row));
        Q_EMIT dataChanged(changed, changed);
    } else {
        beginInsertRows({}, 0, 0);
        m_keys.prepend(key);
        endInsertRows();
        Q_EMIT countChanged();
    }
    updateActiveCount();
}

void DownloadListModel::updateActiveCount()
{
    const auto active = int(std::ranges::count_if(
        m_manager.jobs(), [](const M3U8DownloadManager::JobState &job) { return job.isActive; }));
    if (std::exchange(m_activeCount, active) != active)
        Q_EMIT activeCountChanged();
}

} // namespace lumaro
