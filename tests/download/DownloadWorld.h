#pragma once

#include "download/M3U8DownloadManager.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"
#include "tests/fakes/FakeWorkspace.h"

#include <QFile>
#include <QTemporaryDir>

#include <memory>

namespace lumaro {

/// A download manager on fakes, which saves into a folder of its own.
struct DownloadWorld
{
    ~DownloadWorld()
    {
        manager.reset();
        // Files are closed elsewhere.
        scheduler.runBackground();
    }

    QTemporaryDir folder;
    FakeHttpClient http;
    FakeScheduler scheduler;
    FakeUserDefaults defaults;
    FakeFilePanels panels;
    FakeWorkspace workspace;
    std::unique_ptr<M3U8DownloadManager> manager = make();

    std::unique_ptr<M3U8DownloadManager> make() { return make(scheduler); }
    /// With `files` for what waits for a disk.
    std::unique_ptr<M3U8DownloadManager> make(Scheduler &files)
    {
        return std::make_unique<M3U8DownloadManager>(
            DownloadPlatform{http, scheduler, files, defaults, panels, workspace, {folder.path()}});
    }

    /// An address on the one server there is.
    static QUrl url(const QString &path) { return QUrl(u"https://h/" + path); }

    M3U8DownloadManager::JobState job(const QUrl &address) const
    {
        return manager->jobs().value(M3U8DownloadManager::keyOf(address));
    }

    void respond(const QUrl &address, const QByteArray &body)
    {
        http.respond(address, 200, body);
        scheduler.runBackground();
    }

    QByteArray saved(const QString &name) const
    {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }
};

} // namespace lumaro
