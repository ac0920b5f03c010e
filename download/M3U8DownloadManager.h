#pragma once

#include "download/StreamFetcher.h"

#include <QMap>
#include <QObject>

namespace lumaro {

class FilePanels;
class SegmentFile;
class UserDefaults;
class Workspace;

/// What a download manager works with. All of it outlives the manager.
struct DownloadPlatform
{
    HttpClient &http;
    Scheduler &scheduler;
    /// Its background work may wait for a file system.
    Scheduler &files;
    UserDefaults &defaults;
    FilePanels &panels;
    Workspace &workspace;
    /// The save folders of a user who has chosen none: the first that exists.
    QStringList standardFolders;
};

/// Saves HLS streams, each to one file in the save folder. One job runs for each address; jobs for
/// different addresses run side by side. Main thread.
class M3U8DownloadManager : public QObject
{
    Q_OBJECT
    /// What the last failure was; empty for none.
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(QUrl saveFolder READ saveFolder NOTIFY saveFolderChanged)

public:
    /// How long a stopped job waits for its file: other machines' file systems write much of it
    /// only when it is closed.
    static constexpr std::chrono::seconds closingPatience{15};

    struct JobState
    {
        /// 0 to 1; empty while the amount is unknown.
        std::optional<double> progress{};
        QString message{};
        bool isActive = false;
        /// Of a stream that grows, once a segment of it was saved, and while the job is active.
        bool isLive = false;
        /// The file being written; empty before there is one.
        QUrl destination{};
        /// Seconds that the job took; only when it has ended with a saved file.
        std::optional<double> duration{};

        /// It has ended with an error.
        bool hasFailed() const { return !isActive && !duration; }

        bool operator==(const JobState &) const = default;
    };

    explicit M3U8DownloadManager(DownloadPlatform platform, QObject *parent = nullptr);
    /// Stops what still runs; the files stay.
    ~M3U8DownloadManager() override;

    /// By the stream's absolute address: every job since the manager was made.
    const QMap<QString, JobState> &jobs() const { return m_jobs; }
    static QString keyOf(const QUrl &url);
    /// What the job's stream was called when it was started; empty when nobody said.
    QString suggestedName(const QString &key) const
    {
        return m_names.value(key).value_or(QString());
    }
    /// How large the job's file is, in bytes, as far as this manager has written it.
    qint64 fileSize(const QString &key) const;

    const QString &errorMessage() const { return m_errorMessage; }
    /// The user has seen the error.
    Q_INVOKABLE void dismissError();

    const QUrl &saveFolder() const { return m_saveFolder; }
    /// Saves there from now on, until the program ends.
    void setSaveFolder(const QUrl &folder);
    /// Asks for another save folder and remembers it.
    Q_INVOKABLE void chooseSaveFolder();

    /// Begins to save the stream at `url`, unless that is under way.
    void start(const QUrl &url, const std::optional<QString> &suggestedName);
    /// Ends the job for `url`, keeping what it has saved. A save folder that does not answer within
    /// closingPatience is not waited for; the job has then failed.
    Q_INVOKABLE void stop(const QUrl &url);
    /// Shows the file that was saved from `url` in the file browser.
    Q_INVOKABLE void openDownloadedFileLocation(const QUrl &url);

Q_SIGNALS:
    /// The job under `key` is new or has changed.
    void jobChanged(const QString &key);
    void errorMessageChanged();
    void saveFolderChanged();

private:
    using Outcome = DownloadResult<void>;

    Task<> run(QUrl url, std::stop_token stop);
    Task<Outcome> save(QUrl url, std::stop_token stop);
    Task<> checkSaveFolder(std::stop_token stop);
    Task<Outcome> write(MediaPlaylist playlist, std::shared_ptr<SegmentFile> file, QString key,
                        std::stop_token stop);
    Task<Outcome> openDestination(std::shared_ptr<SegmentFile> file, QString key,
                                  QString fileExtension, std::stop_token stop);
    Task<Outcome> download(MediaPlaylist playlist, std::shared_ptr<SegmentFile> file, QString key,
                           std::stop_token stop);
    Task<Outcome> append(QUrl segment, std::shared_ptr<SegmentFile> file, std::stop_token stop);
    void finish(const QString &key, const Outcome &outcome, bool wasStopped, double seconds);

    void setJob(const QString &key, const JobState &state);
    Task<> askForSaveFolder();

    DownloadPlatform m_platform;
    StreamFetcher m_fetcher;
    QMap<QString, JobState> m_jobs;
    QMap<QString, std::optional<QString>> m_names;
    QMap<QString, std::shared_ptr<SegmentFile>> m_files;
    QString m_errorMessage;
    QUrl m_saveFolder;
    /// The stored save folder, until it is known to be there.
    QUrl m_uncheckedFolder;
    QMap<QString, std::stop_source> m_tasks;
    std::stop_source m_lifetime;
};

} // namespace lumaro
