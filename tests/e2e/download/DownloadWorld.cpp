#include "tests/e2e/download/DownloadWorld.h"

#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTest>
#include <QTimer>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

constexpr auto patience = 200s;

} // namespace

DownloadWorld::DownloadWorld()
    : m_manager(
          {m_http, m_scheduler, m_scheduler, m_defaults, m_panels, m_workspace, {m_folder.path()}})
{
}

M3U8DownloadManager::JobState DownloadWorld::job(const QUrl &url) const
{
    return m_manager.jobs().value(M3U8DownloadManager::keyOf(url));
}

QString DownloadWorld::messageAtEnd(const QUrl &url)
{
    // The waits of Qt Test sleep in between, which would be felt with many segments.
    QEventLoop loop;
    QObject::connect(&m_manager, &M3U8DownloadManager::jobChanged, &loop, [&] {
        if (!job(url).isActive)
            loop.quit();
    });
    QTimer::singleShot(patience, &loop, &QEventLoop::quit);
    if (job(url).isActive)
        loop.exec();
    return job(url).isActive ? QString(u"still "_s + job(url).message) : job(url).message;
}

QString DownloadWorld::save(const QUrl &url, const QString &name)
{
    m_manager.start(url, name);
    if (const QString message = messageAtEnd(url); message != u"Saved")
        QTest::qFail(qPrintable(message + u": "_s + m_manager.errorMessage()), __FILE__, __LINE__);
    return job(url).destination.toLocalFile();
}

QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    return process.waitForFinished(int(std::chrono::milliseconds(patience).count()))
        ? process.readAll()
        : "did not finish";
}

Picture pictureOf(const QString &file)
{
    const QByteArray frames =
        outputOf(u"ffprobe"_s,
                 {u"-v"_s, u"error"_s, u"-count_frames"_s, u"-select_streams"_s, u"v:0"_s,
                  u"-show_entries"_s, u"stream=nb_read_frames"_s, u"-of"_s,
                  u"default=noprint_wrappers=1:nokey=1"_s, file});
    const QByteArray duration =
        outputOf(u"ffprobe"_s,
                 {u"-v"_s, u"error"_s, u"-show_entries"_s, u"format=duration"_s, u"-of"_s,
                  u"default=noprint_wrappers=1:nokey=1"_s, file});
    const QByteArray complaints =
        outputOf(u"ffmpeg"_s,
                 {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-i"_s, file, u"-f"_s, u"null"_s, u"-"_s});
    // Programs of a transport stream are told twice.
    return {frames.split('\n').first().toInt(), duration.toDouble(), complaints};
}

QByteArray contentOf(const QString &file)
{
    QFile input(file);
    return input.open(QIODevice::ReadOnly) ? input.readAll() : QByteArray("no such file");
}

} // namespace lumaro
