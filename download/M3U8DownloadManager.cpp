#include "download/M3U8DownloadManager.h"

#include "download/FileNaming.h"
#include "download/SegmentFile.h"
#include "download/WrittenSegments.h"
#include "platform/FilePanels.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

#include <QFileInfo>

#include <algorithm>

namespace lumaro {

namespace {

QString saveFolderKey()
{
    return QStringLiteral("Lumaro.M3U8DownloadFolder");
}

bool isFolder(const QString &path)
{
    return QFileInfo(path).isDir();
}

QUrl firstFolder(const QStringList &paths)
{
    const auto found = std::ranges::find_if(paths, isFolder);
    return found == paths.end() ? QUrl() : QUrl::fromLocalFile(*found);
}

/// How long a live playlist is left alone before it is read again.
Scheduler::Duration pollInterval(double targetDuration)
{
    const std::chrono::duration<double> half(std::clamp(targetDuration / 2, 1.0, 6.0));
    return std::chrono::duration_cast<Scheduler::Duration>(half);
}

/// How much work is done with segments that are written already before others get a turn: the
/// lengths of their addresses, in bytes, and for each some more.
constexpr qsizetype knownSegmentsATurn = 64 * 1024;
constexpr qsizetype workWithAny = 16;

DownloadFailure cancelled()
{
    return HttpError{HttpError::Kind::Cancelled};
}

/// What became of the attempt to make a file.
struct Creation
{
    std::expected<void, FileWriteError> result;
    /// Somebody else was quicker.
    bool isTaken = false;
};

/// Waits for the file to be closed, but when `stop` is requested not for long: what does not answer
/// is left to its thread.
Task<std::expected<void, FileWriteError>> close(std::shared_ptr<SegmentFile> file, Scheduler &files,
                                                Scheduler &scheduler, std::stop_token stop)
{
    const std::stop_source patience;
    std::optional<Scheduler::TimerId> timer;
    const std::stop_callback whenStopped(stop, [&] {
        timer = scheduler.callAfter(M3U8DownloadManager::closingPatience,
                                    [patience] { patience.request_stop(); });
    });
    const auto closing = files.inBackground([file] { return file->close(); }, patience.get_token());
    const std::optional<std::expected<void, FileWriteError>> closed = co_await closing;
    if (timer)
        scheduler.cancel(*timer);
    co_return closed.value_or(std::unexpected(
        FileWriteError{.kind = FileWriteError::Kind::Failed,
                       .description = M3U8DownloadManager::tr("the folder does not answer")}));
}

double secondsBetween(Scheduler::TimePoint begin, Scheduler::TimePoint end)
{
    return std::chrono::duration<double>(end - begin).count();
}

} // namespace

M3U8DownloadManager::M3U8DownloadManager(DownloadPlatform platform, QObject *parent)
    : QObject(parent)
    , m_platform(std::move(platform))
    , m_fetcher(m_platform.http, m_platform.scheduler)
{
    const QByteArray stored = m_platform.defaults.data(saveFolderKey()).value_or(QByteArray());
    if (stored.isEmpty()) {
        m_saveFolder = firstFolder(m_platform.standardFolders);
    } else {
        m_saveFolder = m_uncheckedFolder = QUrl::fromLocalFile(QString::fromUtf8(stored));
        checkSaveFolder(m_lifetime.get_token());
    }
}

M3U8DownloadManager::~M3U8DownloadManager()
{
    m_lifetime.request_stop();
    for (const std::stop_source &task : std::as_const(m_tasks))
        task.request_stop();
}

QString M3U8DownloadManager::keyOf(const QUrl &url)
{
    return url.toString(QUrl::FullyEncoded);
}

void M3U8DownloadManager::start(const QUrl &url, const std::optional<QString> &suggestedName)
{
    const QString key = keyOf(url);
    if (m_tasks.contains(key))
        return;
    const std::stop_source task;
    m_tasks.insert(key, task);
    m_names.insert(key, suggestedName);
    m_files.remove(key);
    setJob(key, {.message = tr("Preparing…"), .isActive = true});
    run(url, task.get_token());
}

void M3U8DownloadManager::stop(const QUrl &url)
{
    // Ending, the job takes its own entry away.
    const std::stop_source task = m_tasks.value(keyOf(url), std::stop_source(std::nostopstate));
    task.request_stop();
}

void M3U8DownloadManager::openDownloadedFileLocation(const QUrl &url)
{
    const QUrl file = m_jobs.value(keyOf(url)).destination;
    if (!file.isEmpty())
        m_platform.workspace.activateFileViewer({file});
}

qint64 M3U8DownloadManager::fileSize(const QString &key) const
{
    const auto file = m_files.value(key);
    return file ? file->size() : 0;
}

// One job

Task<> M3U8DownloadManager::run(QUrl url, std::stop_token stop)
{
    const std::stop_token lifetime = m_lifetime.get_token();
    const Scheduler::TimePoint begin = m_platform.scheduler.now();
    const Outcome outcome = co_await save(url, stop);
    if (lifetime.stop_requested())
        co_return;
    finish(keyOf(url), outcome, stop.stop_requested(),
           secondsBetween(begin, m_platform.scheduler.now()));
}

Task<M3U8DownloadManager::Outcome> M3U8DownloadManager::save(QUrl url, std::stop_token stop)
{
    DownloadResult<MediaPlaylist> playlist = co_await m_fetcher.resolveMediaPlaylist(url, stop);
    if (!playlist)
        co_return std::unexpected(playlist.error());

    if (!m_uncheckedFolder.isEmpty() && m_saveFolder == m_uncheckedFolder) {
        auto checking = checkSaveFolder(stop);
        co_await checking;
        if (stop.stop_requested())
            co_return std::unexpected(cancelled());
    }
    // This may be gone by the time they are needed.
    Scheduler &files = m_platform.files;
    Scheduler &scheduler = m_platform.scheduler;
    const auto file = std::make_shared<SegmentFile>();
    auto writing = write(*std::move(playlist), file, keyOf(url), stop);
    const Outcome written = co_await writing;
    auto closing = close(file, files, scheduler, stop);
    const std::expected<void, FileWriteError> closed = co_await closing;
    if (!closed && (written || stop.stop_requested()))
        co_return std::unexpected(closed.error());
    co_return written;
}

/// A folder of another machine may take its time to say whether it is there, or never do so.
Task<> M3U8DownloadManager::checkSaveFolder(std::stop_token stop)
{
    const QUrl folder = m_uncheckedFolder;
    const auto looking = m_platform.files.inBackground(
        [path = folder.toLocalFile()] { return isFolder(path); }, stop);
    const std::optional<bool> isThere = co_await looking;
    if (!isThere || stop.stop_requested())
        co_return;
    m_uncheckedFolder.clear();
    // The user may have chosen another one meanwhile.
    if (!*isThere && m_saveFolder == folder)
        setSaveFolder(firstFolder(m_platform.standardFolders));
}

Task<M3U8DownloadManager::Outcome> M3U8DownloadManager::write(MediaPlaylist playlist,
                                                              std::shared_ptr<SegmentFile> file,
                                                              QString key, std::stop_token stop)
{
    const QString fileExtension =
        playlist.mapURL.isEmpty() ? QStringLiteral("ts") : QStringLiteral("mp4");
    auto opening = openDestination(file, key, fileExtension, stop);
    const Outcome opened = co_await opening;
    if (!opened)
        co_return opened;
    auto downloading = download(std::move(playlist), file, key, stop);
    co_return co_await downloading;
}

Task<M3U8DownloadManager::Outcome>
M3U8DownloadManager::openDestination(std::shared_ptr<SegmentFile> file, QString key,
                                     QString fileExtension, std::stop_token stop)
{
    for (;;) {
        const auto naming = m_platform.files.inBackground(
            [folder = m_saveFolder.toLocalFile(), name = m_names.value(key), fileExtension] {
                return uniqueDestination(folder, name, fileExtension);
            },
            stop);
        const std::optional<std::optional<QString>> named = co_await naming;
        if (!named)
            co_return std::unexpected(cancelled());
        const std::optional<QString> &path = *named;
        if (!path)
            co_return std::unexpected(DownloadError::cannotCreateDestination);
        m_files.insert(key, file);
        setJob(key,
               {.message = tr("Starting…"),
                .isActive = true,
                .destination = QUrl::fromLocalFile(*path)});
        const auto creating = m_platform.files.inBackground(
            [file, path = *path] {
                const auto created = file->create(path);
                return Creation{.result = created, .isTaken = !created && isTaken(path)};
            },
            stop);
        const std::optional<Creation> created = co_await creating;
        if (!created)
            co_return std::unexpected(cancelled());
        if (created->result)
            co_return {};
        // The next name will do.
        if (!created->isTaken)
            co_return std::unexpected(created->result.error());
    }
}

Task<M3U8DownloadManager::Outcome> M3U8DownloadManager::download(MediaPlaylist playlist,
                                                                 std::shared_ptr<SegmentFile> file,
                                                                 QString key, std::stop_token stop)
{
    if (!playlist.mapURL.isEmpty()) {
        const Outcome appended = co_await append(playlist.mapURL, file, stop);
        if (!appended)
            co_return appended;
    }

    WrittenSegments written;
    qsizetype count = 0;
    JobState state = m_jobs.value(key);
    for (;;) {
        written.beginPlaylist();
        // Relative addresses are resolved with it.
        const qsizetype workWithEach = playlist.url.toEncoded().size() + workWithAny;
        qsizetype position = 0;
        qsizetype workSoFar = 0;
        SegmentList::Reader segments(playlist.segments);
        while (const std::optional<QUrl> segment = segments.next()) {
            ++position;
            if (!written.insert(*segment)) {
                // A list may hold nothing else for very long.
                const qsizetype work = segments.position() + position * workWithEach;
                if (work - workSoFar >= knownSegmentsATurn) {
                    workSoFar = work;
                    if (!co_await m_platform.scheduler.sleep(Scheduler::Duration::zero(), stop))
                        co_return std::unexpected(cancelled());
                }
                continue;
            }
            const Outcome appended = co_await append(*segment, file, stop);
            if (!appended)
                co_return appended;
            ++count;
            if (playlist.isLive) {
                state.message = tr("Live · %n segments", nullptr, int(count));
                state.isLive = true;
            } else {
                const qsizetype total = playlist.segments.size();
                state.message = QString::number(position * 100 / total) + u'%';
                state.progress = double(position) / double(total);
            }
            setJob(key, state);
        }
        if (!playlist.isLive)
            co_return {};

        const Scheduler::Duration interval = pollInterval(playlist.targetDuration);
        if (!co_await m_platform.scheduler.sleep(interval, stop))
            co_return std::unexpected(cancelled());
        DownloadResult<MediaPlaylist> newer =
            co_await m_fetcher.fetchMediaPlaylist(playlist.url, stop);
        if (!newer)
            co_return std::unexpected(newer.error());
        playlist = *std::move(newer);
    }
}

Task<M3U8DownloadManager::Outcome>
M3U8DownloadManager::append(QUrl segment, std::shared_ptr<SegmentFile> file, std::stop_token stop)
{
    // This may be gone when the segment has arrived.
    Scheduler &files = m_platform.files;
    const HttpBodySink sink = [file](QByteArrayView bytes) { return file->append(bytes); };
    const Outcome fetched = co_await m_fetcher.fetchData(segment, sink, stop);
    // The sink may be waiting for the disk still.
    if (stop.stop_requested())
        co_return std::unexpected(cancelled());
    if (const auto error = file->error())
        co_return std::unexpected(*error);
    if (!fetched)
        co_return fetched;
    file->keep();
    const auto looking = files.inBackground([file] { return file->fate(); }, stop);
    const std::optional<SegmentFile::Fate> fate = co_await looking;
    if (!fate)
        co_return std::unexpected(cancelled());
    switch (*fate) {
    case SegmentFile::Fate::FolderGone:
        co_return std::unexpected(DownloadError::cannotCreateDestination);
    case SegmentFile::Fate::Deleted:
        co_return std::unexpected(FileWriteError{.kind = FileWriteError::Kind::Failed,
                                                 .description = tr("it was deleted")});
    case SegmentFile::Fate::There:
        break;
    }
    co_return {};
}

void M3U8DownloadManager::finish(const QString &key, const Outcome &outcome, bool wasStopped,
                                 double seconds)
{
    // What could not be saved for the disk's sake is no saved file, whoever ended the job.
    const bool isStopped =
        wasStopped && (outcome || !std::holds_alternative<FileWriteError>(outcome.error()));
    JobState state;
    state.destination = m_jobs.value(key).destination;
    if (outcome) {
        state.message = tr("Saved");
        state.progress = 1;
        state.duration = seconds;
    } else if (isStopped) {
        state.message = tr("Stopped · file saved");
        state.duration = seconds;
    } else {
        state.message = tr("Download failed");
    }
    m_tasks.remove(key);
    if (!outcome && !isStopped) {
        // Announced even when the last failure was the same.
        m_errorMessage = description(outcome.error());
        Q_EMIT errorMessageChanged();
    }
    setJob(key, state);
}

void M3U8DownloadManager::setJob(const QString &key, const JobState &state)
{
    JobState &job = m_jobs[key];
    if (job == state)
        return;
    job = state;
    Q_EMIT jobChanged(key);
}

// Errors and the save folder

void M3U8DownloadManager::dismissError()
{
    if (m_errorMessage.isEmpty())
        return;
    m_errorMessage.clear();
    Q_EMIT errorMessageChanged();
}

void M3U8DownloadManager::setSaveFolder(const QUrl &folder)
{
    if (m_saveFolder == folder)
        return;
    m_saveFolder = folder;
    Q_EMIT saveFolderChanged();
}

void M3U8DownloadManager::chooseSaveFolder()
{
    askForSaveFolder();
}

Task<> M3U8DownloadManager::askForSaveFolder()
{
    const FolderPanelRequest request{
        .title = tr("Choose HLS Download Folder"), .prompt = tr("Choose"), .folder = m_saveFolder};
    const std::stop_token stop = m_lifetime.get_token();
    const std::optional<QUrl> folder = co_await m_platform.panels.chooseFolder(request, stop);
    if (!folder || stop.stop_requested())
        co_return;
    setSaveFolder(*folder);
    // A choice that could not be stored is made again next time; nothing is lost.
    (void)m_platform.defaults.setData(saveFolderKey(), folder->toLocalFile().toUtf8());
}

} // namespace lumaro
