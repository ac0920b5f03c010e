#include "finder/SnifferDetectedStreamsModel.h"

#include "finder/DownloadTexts.h"

#include <QLocale>

namespace lumaro {

namespace {

QString nameOf(const DetectedStream &stream)
{
    if (stream.displayName)
        return *stream.displayName;
    const QString file = stream.url.fileName();
    return file.isEmpty() ? stream.url.host() : file;
}

QString typeText(DetectedStream::StreamType type)
{
    switch (type) {
    case DetectedStream::StreamType::Master:
        return SnifferDetectedStreamsModel::tr("Master");
    case DetectedStream::StreamType::Variant:
        return SnifferDetectedStreamsModel::tr("Variant");
    case DetectedStream::StreamType::Unknown:
        return QStringLiteral("HLS");
    }
    Q_UNREACHABLE();
}

QString jobText(const M3U8DownloadManager::JobState &job)
{
    return !job.isActive && job.duration ? formattedDownloadDuration(*job.duration) : job.message;
}

} // namespace

SnifferDetectedStreamsModel::SnifferDetectedStreamsModel(LocalM3UStore &library,
                                                         M3U8DownloadManager &downloads,
                                                         QObject *parent)
    : RowListModel(parent)
    , m_library(library)
    , m_downloads(downloads)
{
    connect(&library, &LocalM3UStore::entriesChanged, this,
            &SnifferDetectedStreamsModel::noteLibrary);
    connect(&downloads, &M3U8DownloadManager::jobChanged, this,
            &SnifferDetectedStreamsModel::noteJob);
}

void SnifferDetectedStreamsModel::setMonitor(SnifferNetworkMonitor *monitor)
{
    if (m_monitor == monitor)
        return;
    if (m_monitor)
        m_monitor->disconnect(this);
    m_monitor = monitor;
    if (m_monitor) {
        connect(m_monitor, &SnifferNetworkMonitor::streamSeen, this,
                &SnifferDetectedStreamsModel::showFirst);
        connect(m_monitor, &SnifferNetworkMonitor::cleared, this,
                &SnifferDetectedStreamsModel::showAll);
    }
    showAll();
}

void SnifferDetectedStreamsModel::showAll()
{
    const int before = count();
    resetRows(m_monitor ? m_monitor->streams() : QList<DetectedStream>());
    if (count() != before)
        Q_EMIT countChanged();
}

void SnifferDetectedStreamsModel::showFirst(qsizetype from)
{
    putFirst(from, m_monitor->streams().first());
    if (from < 0)
        Q_EMIT countChanged();
}

void SnifferDetectedStreamsModel::noteJob(const QString &key)
{
    const qsizetype row = m_monitor ? m_monitor->indexOf(QUrl(key)) : -1;
    // A job may be for another fragment of the same address.
    if (row < 0 || M3U8DownloadManager::keyOf(rows()[row].url) != key)
        return;
    Q_EMIT dataChanged(
        index(int(row)), index(int(row)),
        {JobTextRole, JobProgressRole, JobIsActiveRole, JobHasFailedRole, CanRevealRole});
}

void SnifferDetectedStreamsModel::noteLibrary()
{
    if (count() > 0)
        Q_EMIT dataChanged(index(0), index(count() - 1), {IsSavedRole, SaveHelpRole});
}

std::optional<M3U8DownloadManager::JobState>
SnifferDetectedStreamsModel::jobOf(const DetectedStream &stream) const
{
    const auto &jobs = m_downloads.jobs();
    const auto job = jobs.constFind(M3U8DownloadManager::keyOf(stream.url));
    return job == jobs.cend() ? std::nullopt : std::optional(*job);
}

const DetectedStream *SnifferDetectedStreamsModel::rowAt(int row) const
{
    return row >= 0 && row < count() ? &rows()[row] : nullptr;
}

void SnifferDetectedStreamsModel::play(int row)
{
    if (const DetectedStream *const found = rowAt(row)) {
        const DetectedStream stream = *found;
        Q_EMIT playRequested(stream.url, nameOf(stream));
    }
}

void SnifferDetectedStreamsModel::download(int row)
{
    if (const DetectedStream *const found = rowAt(row)) {
        const DetectedStream stream = *found;
        m_downloads.start(stream.url, stream.displayName);
    }
}

void SnifferDetectedStreamsModel::stopDownload(int row)
{
    if (const DetectedStream *const found = rowAt(row))
        m_downloads.stop(QUrl(found->url));
}

void SnifferDetectedStreamsModel::revealDownload(int row)
{
    if (const DetectedStream *const found = rowAt(row))
        m_downloads.openDownloadedFileLocation(QUrl(found->url));
}

void SnifferDetectedStreamsModel::save(int row)
{
    const DetectedStream *const found = rowAt(row);
    if (!found)
        return;
    if (m_library.contains(found->url)) {
        Q_EMIT libraryRequested();
        return;
    }
    const DetectedStream stream = *found;
    m_library.save(stream.url, stream.displayName.value_or(QString()));
    Q_EMIT notice(tr("Saved to Local M3U"));
}

QString SnifferDetectedStreamsModel::addressAt(int row) const
{
    const DetectedStream *const found = rowAt(row);
    return found ? found->url.toString(QUrl::FullyEncoded) : QString();
}

QVariant SnifferDetectedStreamsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const DetectedStream &stream = rows()[index.row()];
    const auto job = role >= JobTextRole ? jobOf(stream) : std::nullopt;
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return nameOf(stream);
    case AddressRole:
        return stream.url.toDisplayString();
    case TypeRole:
        return typeText(stream.type);
    case TimeRole:
        return QLocale().toString(stream.detectedAt.toLocalTime().time(),
                                  QStringLiteral("HH:mm:ss"));
    case IsSavedRole:
        return m_library.contains(stream.url);
    case SaveHelpRole:
        return m_library.contains(stream.url) ? tr("Saved to Local M3U (Click to open in Player)")
                                              : tr("Save to Local M3U");
    case JobTextRole:
        return job ? jobText(*job) : QString();
    case JobProgressRole:
        return job ? job->progress.value_or(-1) : -1.0;
    case JobIsActiveRole:
        return job && job->isActive;
    case JobHasFailedRole:
        return job && job->hasFailed();
    case CanRevealRole:
        return job && !job->isActive && !job->destination.isEmpty();
    default:
        return {};
    }
}

QHash<int, QByteArray> SnifferDetectedStreamsModel::roleNames() const
{
    return {{NameRole, "name"},
            {AddressRole, "address"},
            {TypeRole, "typeText"},
            {TimeRole, "time"},
            {IsSavedRole, "isSaved"},
            {SaveHelpRole, "saveHelp"},
            {JobTextRole, "jobText"},
            {JobProgressRole, "jobProgress"},
            {JobIsActiveRole, "jobIsActive"},
            {JobHasFailedRole, "jobHasFailed"},
            {CanRevealRole, "canReveal"}};
}

} // namespace lumaro
