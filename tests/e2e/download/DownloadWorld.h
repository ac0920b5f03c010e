#pragma once

#include "download/M3U8DownloadManager.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/qt/QtScheduler.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeUserDefaults.h"
#include "tests/fakes/FakeWorkspace.h"

#include <QTemporaryDir>

namespace lumaro {

/// A download manager on the real network and disk, which saves into a folder of its own.
class DownloadWorld
{
public:
    DownloadWorld();

    M3U8DownloadManager &manager() { return m_manager; }
    M3U8DownloadManager::JobState job(const QUrl &url) const;
    QString path(const QString &name) const { return m_folder.filePath(name); }

    /// The job's last message, as soon as it has ended.
    QString messageAtEnd(const QUrl &url);
    /// Saves the stream at `url` and returns the file's path; the running test fails otherwise.
    QString save(const QUrl &url, const QString &name);

private:
    QTemporaryDir m_folder;
    QtScheduler m_scheduler;
    CurlHttpClient m_http{QByteArrayLiteral("Test/1")};
    FakeUserDefaults m_defaults;
    FakeFilePanels m_panels;
    FakeWorkspace m_workspace;
    M3U8DownloadManager m_manager;
};

/// What `program` prints, on either stream.
QByteArray outputOf(const QString &program, const QStringList &arguments);

/// What a decoder makes of a file's picture from one end to the other.
struct Picture
{
    int frames = 0;
    /// Seconds.
    double duration = 0;
    /// What the decoder had to say.
    QByteArray complaints;
};
Picture pictureOf(const QString &file);

QByteArray contentOf(const QString &file);

} // namespace lumaro
