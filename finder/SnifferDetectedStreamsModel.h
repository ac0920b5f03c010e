#pragma once

#include "download/M3U8DownloadManager.h"
#include "finder/RowListModel.h"
#include "finder/SnifferNetworkMonitor.h"
#include "playlist/LocalM3UStore.h"

#include <QPointer>

namespace lumaro {

/// The detected-streams panel: the streams of one tab, and what can be done with each. What the
/// library and the downloads know of a stream is looked up when it is shown: pages may load
/// thousands. Main thread.
class SnifferDetectedStreamsModel : public RowListModel<DetectedStream>
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

    Q_PROPERTY(QString header MEMBER header CONSTANT)
    Q_PROPERTY(QString emptyTitle MEMBER emptyTitle CONSTANT)
    Q_PROPERTY(QString emptyText MEMBER emptyText CONSTANT)
    Q_PROPERTY(QString openLibraryText MEMBER openLibraryText CONSTANT)

public:
    enum Role {
        /// The stream's name, else its file's, else its host's.
        NameRole = Qt::UserRole + 1,
        AddressRole,
        /// "Master", "Variant" or "HLS".
        TypeRole,
        /// When it was last seen, as a time of day.
        TimeRole,
        IsSavedRole,
        /// What the save button does.
        SaveHelpRole,
        /// What became of its download; empty without one.
        JobTextRole,
        /// 0 to 1; negative while unknown.
        JobProgressRole,
        JobIsActiveRole,
        JobHasFailedRole,
        /// There is a file to show.
        CanRevealRole,
    };
    Q_ENUM(Role)

    /// The arguments outlive the model.
    SnifferDetectedStreamsModel(LocalM3UStore &library, M3U8DownloadManager &downloads,
                                QObject *parent = nullptr);

    /// Whose streams are shown; null for none's.
    void setMonitor(SnifferNetworkMonitor *monitor);
    int count() const { return int(rows().size()); }

    /// Asks for the stream to be played.
    Q_INVOKABLE void play(int row);
    /// Begins to save the stream to a file, unless that is under way.
    Q_INVOKABLE void download(int row);
    Q_INVOKABLE void stopDownload(int row);
    Q_INVOKABLE void revealDownload(int row);
    /// Puts the stream into the library; one that is there is shown there instead.
    Q_INVOKABLE void save(int row);
    /// Empty when there is no such row.
    Q_INVOKABLE QString addressAt(int row) const;

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const QString header = tr("Detected M3U8 Streams");
    const QString emptyTitle = tr("No HLS streams detected");
    const QString emptyText = tr("Play a video in the browser above to detect playlist requests.");
    const QString openLibraryText = tr("Click to open Local M3U playlist in Player");

Q_SIGNALS:
    void countChanged();
    void playRequested(const QUrl &url, const QString &name);
    void libraryRequested();
    /// For the user.
    void notice(const QString &text);

private:
    void showAll();
    void showFirst(qsizetype from);
    void noteJob(const QString &key);
    void noteLibrary();
    const DetectedStream *rowAt(int row) const;
    /// Empty if there has been none.
    std::optional<M3U8DownloadManager::JobState> jobOf(const DetectedStream &stream) const;

    LocalM3UStore &m_library;
    M3U8DownloadManager &m_downloads;
    QPointer<SnifferNetworkMonitor> m_monitor;
};

} // namespace lumaro
