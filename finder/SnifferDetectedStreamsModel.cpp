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

bool hasFailed(const M3U8DownloadManager::JobState &job)
{
    return !job.isActive && !job.duration && job.destination.isEmpty();
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
    connect(&library, &LocalM3UStore::entriesChanged, this, &SnifferDetectedStreamsModel::update);
    connect(&downloads, &M3U8DownloadManager::jobChanged, this,
            &SnifferDetectedStreamsModel::update);
}

void SnifferDetectedStreamsModel::setMonitor(SnifferNetworkMonitor *monitor)
{
    if (m_monitor == monitor)
        return;
    if (m_monitor)
        m_monitor->disconnect(this);
    m_monitor = monitor;
    if (m_monitor)
        connect(m_monitor, &SnifferNetworkMonitor::streamsChanged, this,
                &SnifferDetectedStreamsModel::update);
    update();
}

void SnifferDetectedStreamsModel::update()
{
    QList<DetectedStreamRow> rows;
    if (m_monitor) {
        const auto &jobs = m_downloads.jobs();
        for (const DetectedStream &stream : m_monitor->streams()) {
            DetectedStreamRow row{
                .stream = stream, .isSaved = m_library.contains(stream.url), .job = {}};
            if (const auto job = jobs.find(M3U8DownloadManager::keyOf(stream.url));
                job != jobs.end())
                row.job = *job;
            rows.append(row);
        }
    }
    const int before = count();
    followRows(rows, [](const DetectedStreamRow &row) { return row.stream.id; });
    if (count() != before)
        Q_EMIT countChanged();
}

const DetectedStreamRow *SnifferDetectedStreamsModel::rowAt(int row) const
{
    return row >= 0 && row < count() ? &rows()[row] : nullptr;
}

void SnifferDetectedStreamsModel::play(int row)
{
    if (const DetectedStreamRow *const found = rowAt(row)) {
        const DetectedStream stream = found->stream;
        Q_EMIT playRequested(stream.url, nameOf(stream));
    }
}

void SnifferDetectedStreamsModel::download(int row)
{
    if (const DetectedStreamRow *const found = rowAt(row)) {
        const DetectedStream stream = found->stream;
        m_downloads.start(stream.url, stream.displayName);
    }
}

void SnifferDetectedStreamsModel::stopDownload(int row)
{
    if (const DetectedStreamRow *const found = rowAt(row))
        m_downloads.stop(QUrl(found->stream.url));
}

void SnifferDetectedStreamsModel::revealDownload(int row)
{
    if (const DetectedStreamRow *const found = rowAt(row))
        m_downloads.openDownloadedFileLocation(QUrl(found->stream.url));
}

void SnifferDetectedStreamsModel::save(int row)
{
    const DetectedStreamRow *const found = rowAt(row);
    if (!found)
        return;
    if (found->isSaved) {
        Q_EMIT libraryRequested();
        return;
    }
    const DetectedStream stream = found->stream;
    m_library.save(stream.url, stream.displayName.value_or(QString()));
    Q_EMIT notice(tr("Saved to Local M3U"));
}

QString SnifferDetectedStreamsModel::addressAt(int row) const
{
    const DetectedStreamRow *const found = rowAt(row);
    return found ? found->stream.url.toString(QUrl::FullyEncoded) : QString();
}

QVariant SnifferDetectedStreamsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const DetectedStreamRow &row = rows()[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return nameOf(row.stream);
    case AddressRole:
        return row.stream.url.toDisplayString();
    case TypeRole:
        return typeText(row.stream.type);
    case TimeRole:
        return QLocale().toString(row.stream.detectedAt.toLocalTime().time(),
                                  QStringLiteral("HH:mm:ss"));
    case IsSavedRole:
        return row.isSaved;
    case SaveHelpRole:
        return row.isSaved ? tr("Saved to Local M3U (Click to open in Player)")
                           : tr("Save to Local M3U");
    case JobTextRole:
        return row.job ? jobText(*row.job) : QString();
    case JobProgressRole:
        return row.job ? row.job->progress.value_or(-1) : -1.0;
    case JobIsActiveRole:
        return row.job && row.job->isActive;
    case JobHasFailedRole:
        return row.job && hasFailed(*row.job);
    case CanRevealRole:
        return row.job && !row.job->isActive && !row.job->destination.isEmpty();
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
