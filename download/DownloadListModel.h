#pragma once

#include "download/M3U8DownloadManager.h"

#include <QAbstractListModel>

namespace lumaro {

/// The jobs of a download manager as rows, the newest first. Main thread.
class DownloadListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// How many jobs run now.
    Q_PROPERTY(int activeCount READ activeCount NOTIFY activeCountChanged)

public:
    enum Role {
        /// The file's name, or while there is no file the stream's.
        TitleRole = Qt::UserRole + 1,
        MessageRole,
        /// 0 to 1; negative while unknown.
        ProgressRole,
        IsActiveRole,
        HasFailedRole,
        /// There is a file to show.
        CanRevealRole,
        /// The stream's address.
        UrlRole,
    };

    /// `manager` outlives the model.
    explicit DownloadListModel(M3U8DownloadManager &manager, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_keys.size()); }
    int activeCount() const { return m_activeCount; }

Q_SIGNALS:
    void countChanged();
    void activeCountChanged();

private:
    void update(const QString &key);
    void updateActiveCount();

    M3U8DownloadManager &m_manager;
    QStringList m_keys;
    int m_activeCount = 0;
};

} // namespace lumaro
