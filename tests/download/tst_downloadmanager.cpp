#include "tests/download/DownloadWorld.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>

#include <functional>

#include <unistd.h>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QUrl list = DownloadWorld::url(u"list.m3u8"_s);
const QString rejected = u"The stream server rejected the download request."_s;

QUrl segment(int number)
{
    return DownloadWorld::url(u"s%1.ts"_s.arg(number));
}

QByteArray playlist(int first, int last, const QByteArray &tags)
{
    QByteArray text = "#EXTM3U\n" + tags + '\n';
    for (int i = first; i <= last; ++i)
        text += "s" + QByteArray::number(i) + ".ts\n";
    return text;
}

QByteArray finished(int first, int last, const QByteArray &tags = {})
{
    return playlist(first, last, tags + "\n#EXT-X-ENDLIST");
}

QByteArray contentOf(const QUrl &file)
{
    QFile input(file.toLocalFile());
    return input.open(QIODevice::ReadOnly) ? input.readAll() : QByteArray("no such file");
}

} // namespace

class DownloadManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_world = std::make_unique<DownloadWorld>(); }
    void cleanup() { m_world.reset(); }

    void savesAFinishedStream();
    void savesAFragmentedStream();
    void fetchesOneSegmentAtATime();
    void runsJobsSideBySide();
    void startsAnAddressOnce();
    void startsAnewWhatHasEnded();
    void writesRepeatedSegmentsOnce();

    void followsALiveStream();
    void waitsBetweenPolls_data();
    void waitsBetweenPolls();
    void survivesPlaylistsThatJump();
    void endsWithALiveStreamThatEnds();
    void keepsTheVariant();

    void stops_data();
    void stops();
    void stopsWhenTheFolderDoesNotAnswer_data();
    void stopsWhenTheFolderDoesNotAnswer();
    void saysThatAStoppedFileIsNotSaved();
    void stoppingWhatDoesNotRunIsNothing();
    void fails_data();
    void fails();
    void refusesBeforeAnyFile_data();
    void refusesBeforeAnyFile();
    void dropsTornSegments_data();
    void dropsTornSegments();
    void failsWithoutTheFolder();
    void failsWhenTheFolderGoes();
    void leavesFilesAloneThatAppear();
    void destroyedManagerLeavesWholeSegments();

    void remembersTheFolder_data();
    void remembersTheFolder();
    void asksForTheStoredFolderInTheBackground_data();
    void asksForTheStoredFolderInTheBackground();
    void choosesTheFolder();
    void cancelledPanelChangesNothing();
    void showsTheFile();
    void dismissesTheError();
    void manySegmentsTakeLittleTime();
    void longAddressesGiveOthersATurn();

private:
    M3U8DownloadManager::JobState job() const { return m_world->job(list); }
    void start(const QByteArray &text, const QString &name = u"News"_s)
    {
        m_world->manager->start(list, name);
        m_world->respond(list, text);
    }
    void respond(int number, const QByteArray &body) { m_world->respond(segment(number), body); }
    QStringList files() const { return QDir(m_world->folder.path()).entryList(QDir::Files); }

    std::unique_ptr<DownloadWorld> m_world;
};

void DownloadManagerTest::savesAFinishedStream()
{
    M3U8DownloadManager &manager = *m_world->manager;
    QStringList messages;
    QList<double> progress;
    connect(&manager, &M3U8DownloadManager::jobChanged, this, [&](const QString &key) {
        QCOMPARE(key, list.toString());
        messages.append(job().message);
        progress.append(job().progress.value_or(-1));
        QCOMPARE(job().isActive, messages.last() != u"Saved");
        QVERIFY(!job().duration || messages.last() == u"Saved");
    });
    manager.start(list, u"News"_s);
    m_world->scheduler.advance(3s);
    m_world->respond(list, finished(1, 4));
    for (int i = 1; i <= 4; ++i)
        respond(i, "<" + QByteArray::number(i) + ">");

    QCOMPARE(messages,
             (QStringList{u"Preparing…"_s, u"Starting…"_s, u"25%"_s, u"50%"_s, u"75%"_s, u"100%"_s,
                          u"Saved"_s}));
    QCOMPARE(progress, (QList<double>{-1, -1, 0.25, 0.5, 0.75, 1, 1}));
    QCOMPARE(job().destination, QUrl::fromLocalFile(m_world->folder.filePath(u"News.ts"_s)));
    QCOMPARE(job().duration, 3.0);
    QCOMPARE(m_world->saved(u"News.ts"_s), "<1><2><3><4>");
    QCOMPARE(manager.errorMessage(), QString());
}

void DownloadManagerTest::savesAFragmentedStream()
{
    start(finished(1, 2, "#EXT-X-MAP:URI=\"init.mp4\""), {});
    QCOMPARE(job().message, u"Starting…"_s);
    m_world->respond(m_world->url(u"init.mp4"_s), "<map>");
    QCOMPARE(job().message, u"Starting…"_s);
    respond(1, "<1>");
    respond(2, "<2>");
    QCOMPARE(job().message, u"Saved"_s);
    QCOMPARE(m_world->saved(u"HLS Video.mp4"_s), "<map><1><2>");
}

void DownloadManagerTest::fetchesOneSegmentAtATime()
{
    start(finished(1, 3));
    QCOMPARE(m_world->http.pendingRequests(), 1);
    QCOMPARE(m_world->http.lastRequest().patience, 60s);
    QVERIFY(m_world->http.lastRequest().userAgent.startsWith("Mozilla/5.0"));
    m_world->http.sendPiece(segment(1), "a");
    // What has arrived is on disk, not in memory.
    QCOMPARE(m_world->saved(u"News.ts"_s), "a");
    QCOMPARE(m_world->http.requests(), (QList<QUrl>{list, segment(1)}));
    respond(1, "b");
    QCOMPARE(m_world->http.requests(), (QList<QUrl>{list, segment(1), segment(2)}));
}

void DownloadManagerTest::runsJobsSideBySide()
{
    const QUrl other = m_world->url(u"other.m3u8"_s);
    start(finished(1, 2));
    m_world->manager->start(other, u"News"_s);
    m_world->respond(other, finished(7, 8));
    for (const int i : {7, 1, 8, 2})
        respond(i, QByteArray::number(i));
    QCOMPARE(m_world->saved(u"News.ts"_s), "12");
    QCOMPARE(m_world->saved(u"News 2.ts"_s), "78");
    QCOMPARE(m_world->manager->jobs().size(), 2);
}

void DownloadManagerTest::startsAnAddressOnce()
{
    m_world->manager->start(list, u"A"_s);
    m_world->manager->start(list, u"B"_s);
    QCOMPARE(m_world->http.requests().size(), 1);
    m_world->respond(list, finished(1, 1));
    m_world->manager->start(list, u"B"_s);
    respond(1, "1");
    QCOMPARE(files(), QStringList{u"A.ts"_s});
}

void DownloadManagerTest::startsAnewWhatHasEnded()
{
    start(finished(1, 1));
    respond(1, "1");
    // A view may start it again as soon as it sees the end.
    start(finished(1, 1));
    QCOMPARE(job().message, u"Starting…"_s);
    QVERIFY(!job().duration);
    respond(1, "1");
    QCOMPARE(files(), (QStringList{u"News 2.ts"_s, u"News.ts"_s}));
}

void DownloadManagerTest::writesRepeatedSegmentsOnce()
{
    start("#EXTM3U\ns1.ts\ns1.ts\nhttps://h/s1.ts\ns2.ts\n#EXT-X-ENDLIST");
    respond(1, "1");
    QCOMPARE(job().message, u"25%"_s);
    respond(2, "2");
    QCOMPARE(job().message, u"Saved"_s);
    QCOMPARE(m_world->saved(u"News.ts"_s), "12");
}

void DownloadManagerTest::followsALiveStream()
{
    start(playlist(1, 2, "#EXT-X-TARGETDURATION:4"));
    respond(1, "1");
    QCOMPARE(job().message, u"Live · 1 segments"_s);
    QVERIFY(!job().progress);
    respond(2, "2");
    m_world->scheduler.advance(2s);
    m_world->respond(list, playlist(2, 4, "#EXT-X-TARGETDURATION:4"));
    respond(3, "3");
    respond(4, "4");
    QCOMPARE(job().message, u"Live · 4 segments"_s);
    m_world->scheduler.advance(2s);
    m_world->respond(list, playlist(2, 4, {}));
    QCOMPARE(job().message, u"Live · 4 segments"_s);
    QVERIFY(job().isActive);
    QCOMPARE(m_world->saved(u"News.ts"_s), "1234");
}

void DownloadManagerTest::waitsBetweenPolls_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<int>("wait"); // milliseconds
    const auto row = [](const char *target, int wait) {
        QTest::newRow(target) << QByteArray(target) << wait;
    };
    row("10", 5000);
    row("1", 1000);
    row("20", 6000);
    row("12", 6000);
    row("11.9", 5950);
    row("3", 1500);
    row("0", 1000);
    row("-5", 1000);
    row("1e9", 6000);
    row("nan", 2000);
    row("-inf", 2000);
    row("missing", 2000);
}

void DownloadManagerTest::waitsBetweenPolls()
{
    QFETCH(const QByteArray, target);
    QFETCH(const int, wait);
    start(playlist(1, 1, "#EXT-X-TARGETDURATION:" + target));
    respond(1, "1");
    m_world->scheduler.advance(std::chrono::milliseconds(wait) - 1ms);
    QCOMPARE(m_world->http.pendingRequests(), 0);
    m_world->scheduler.advance(1ms);
    QCOMPARE(m_world->http.pendingRequests(), 1);
    QCOMPARE(m_world->http.requests().last(), list);
}

void DownloadManagerTest::survivesPlaylistsThatJump()
{
    start(playlist(1, 3, {}));
    for (int i = 1; i <= 3; ++i)
        respond(i, QByteArray::number(i));
    const QList<std::pair<int, int>> windows{{5, 6}, {1, 3}, {2, 6}, {5, 7}};
    for (const auto &[first, last] : windows) {
        m_world->scheduler.advance(2s);
        m_world->respond(list, playlist(first, last, {}));
        for (int i = first; i <= last; ++i) {
            if (m_world->http.pendingRequests() > 0
                && m_world->http.requests().last() == segment(i))
                respond(i, QByteArray::number(i));
        }
    }
    QCOMPARE(m_world->saved(u"News.ts"_s), "1235647");
}

void DownloadManagerTest::endsWithALiveStreamThatEnds()
{
    start(playlist(1, 9, {}));
    for (int i = 1; i <= 9; ++i)
        respond(i, QByteArray::number(i));
    m_world->scheduler.advance(2s);
    m_world->respond(list, finished(8, 11));
    m_world->respond(segment(10), "a");
    QCOMPARE(job().message, u"75%"_s);
    m_world->respond(segment(11), "b");
    QCOMPARE(job().message, u"Saved"_s);
    QCOMPARE(m_world->saved(u"News.ts"_s), "123456789ab");
}

void DownloadManagerTest::keepsTheVariant()
{
    const QUrl variant = m_world->url(u"v/high.m3u8"_s);
    start("#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nv/low.m3u8\n"
          "#EXT-X-STREAM-INF:BANDWIDTH=2\nv/high.m3u8\n");
    m_world->respond(variant, playlist(1, 1, {}));
    m_world->respond(m_world->url(u"v/s1.ts"_s), "1");
    m_world->scheduler.advance(2s);
    QCOMPARE(m_world->http.requests().last(), variant);
    QCOMPARE(m_world->http.requests().count(list), 1);
}

void DownloadManagerTest::stops_data()
{
    QTest::addColumn<int>("steps");
    QTest::addColumn<QByteArray>("kept"); // empty: no file
    QTest::newRow("before the playlist") << 0 << QByteArray();
    QTest::newRow("while it is read") << 1 << QByteArray();
    QTest::newRow("before the first byte") << 2 << QByteArray("");
    QTest::newRow("within the first segment") << 3 << QByteArray("");
    QTest::newRow("within the second segment") << 4 << QByteArray("<1>");
    QTest::newRow("while waiting") << 5 << QByteArray("<1><2>");
    QTest::newRow("while polling") << 6 << QByteArray("<1><2>");
}

void DownloadManagerTest::stops()
{
    QFETCH(const int, steps);
    QFETCH(const QByteArray, kept);
    const QList<std::function<void()>> road{
        [this] { m_world->http.respond(list, 200, playlist(1, 2, {})); },
        [this] { m_world->scheduler.runBackground(); },
        [this] { m_world->http.sendPiece(segment(1), "<1"); },
        [this] {
            respond(1, ">");
            m_world->http.sendPiece(segment(2), "<2");
        },
        [this] { respond(2, ">"); },
        [this] { m_world->scheduler.advance(2s); },
    };
    m_world->manager->start(list, u"News"_s);
    m_world->scheduler.advance(10s);
    for (int i = 0; i < steps; ++i)
        road.at(i)();
    QVERIFY(job().isActive);
    const QUrl destination = job().destination;

    m_world->manager->stop(list);
    m_world->scheduler.runBackground();
    QCOMPARE(job().message, u"Stopped · file saved"_s);
    QVERIFY(!job().isActive);
    QVERIFY(!job().progress);
    QCOMPARE(job().destination, destination);
    QVERIFY(job().duration >= 10);
    QCOMPARE(m_world->manager->errorMessage(), QString());
    QCOMPARE(m_world->http.pendingRequests(), 0);
    QCOMPARE(m_world->scheduler.pendingCalls(), 0);
    QCOMPARE(files().size(), kept.isNull() ? 0 : 1);
    if (!kept.isNull())
        QCOMPARE(m_world->saved(u"News.ts"_s), kept);
    m_world->scheduler.runBackground();
    QCOMPARE(job().message, u"Stopped · file saved"_s);
}

void DownloadManagerTest::stopsWhenTheFolderDoesNotAnswer_data()
{
    QTest::addColumn<int>("answers"); // before it falls silent
    QTest::addColumn<bool>("wakesUp");
    const QStringList moments{u"naming"_s, u"making the file"_s, u"between segments"_s,
                              u"closing"_s};
    for (int answers = 0; answers < moments.size(); ++answers) {
        for (const bool wakesUp : {false, true})
            QTest::addRow("%s%s", qPrintable(moments.at(answers)), wakesUp ? ", only late" : "")
                << answers << wakesUp;
    }
}

void DownloadManagerTest::stopsWhenTheFolderDoesNotAnswer()
{
    QFETCH(const int, answers);
    QFETCH(const bool, wakesUp);
    FakeScheduler files;
    const auto made = m_world->make(files);
    M3U8DownloadManager &manager = *made;
    const auto job = [&] { return manager.jobs().value(M3U8DownloadManager::keyOf(list)); };
    manager.start(list, u"News"_s);
    m_world->respond(list, finished(1, 1));
    for (int i = 0; i < answers; ++i) {
        QCOMPARE(files.pendingBackgroundWork(), 1);
        files.runOneBackground();
        if (m_world->http.pendingRequests() > 0)
            respond(1, "<1>");
    }
    QCOMPARE(files.pendingBackgroundWork(), 1);

    manager.stop(list);
    constexpr auto late = M3U8DownloadManager::closingPatience - 1ms;
    m_world->scheduler.advance(late);
    QVERIFY(job().isActive);
    if (wakesUp)
        files.runBackground();
    else
        m_world->scheduler.advance(1ms);
    QVERIFY(!job().isActive);
    QCOMPARE(m_world->scheduler.pendingCalls(), 0);
    if (wakesUp) {
        QCOMPARE(job().message, answers == 3 ? u"Saved"_s : u"Stopped · file saved"_s);
        QCOMPARE(manager.errorMessage(), QString());
        return;
    }
    QCOMPARE(job().message, u"Download failed"_s);
    QCOMPARE(manager.errorMessage(),
             u"The file could not be written: the folder does not answer."_s);

    // Another attempt does not mind what becomes of the first one.
    manager.start(list, u"News"_s);
    QCOMPARE(job().message, u"Preparing…"_s);
    files.runBackground();
    QCOMPARE(job().message, u"Preparing…"_s);
    m_world->respond(list, finished(1, 1));
    files.runBackground();
    respond(1, "<1>");
    files.runBackground();
    QCOMPARE(job().message, u"Saved"_s);
    QCOMPARE(contentOf(job().destination), "<1>");
}

void DownloadManagerTest::saysThatAStoppedFileIsNotSaved()
{
    start(finished(1, 2));
    respond(1, "<1>");
    m_world->http.sendPiece(segment(2), "<2");
    // As with a disk that is gone.
    for (const QFileInfo &link : QDir(u"/proc/self/fd"_s).entryInfoList(QDir::Files)) {
        if (link.symLinkTarget() == job().destination.toLocalFile())
            ::close(link.fileName().toInt());
    }
    m_world->manager->stop(list);
    m_world->scheduler.runBackground();
    QCOMPARE(job().message, u"Download failed"_s);
    QCOMPARE(m_world->manager->errorMessage(),
             u"The file could not be written: Bad file descriptor."_s);
}

void DownloadManagerTest::stoppingWhatDoesNotRunIsNothing()
{
    m_world->manager->stop(list);
    QVERIFY(m_world->manager->jobs().isEmpty());
    start(finished(1, 1));
    respond(1, "1");
    m_world->manager->stop(list);
    QCOMPARE(job().message, u"Saved"_s);
}

void DownloadManagerTest::fails_data()
{
    QTest::addColumn<int>("status"); // 0: the transport fails
    QTest::addColumn<QString>("sentence");
    QTest::newRow("403") << 403 << rejected;
    QTest::newRow("404") << 404 << rejected;
    QTest::newRow("500") << 500 << rejected;
    QTest::newRow("transport") << 0 << HttpError{HttpError::Kind::TimedOut}.description();
}

void DownloadManagerTest::fails()
{
    QFETCH(const int, status);
    start(finished(1, 3));
    respond(1, "1");
    if (status == 0)
        m_world->http.fail(segment(2), HttpError::Kind::TimedOut);
    else
        m_world->http.respond(segment(2), status, "<html>");
    m_world->scheduler.runBackground();
    QCOMPARE(job().message, u"Download failed"_s);
    QVERIFY(!job().isActive);
    QVERIFY(!job().progress);
    QVERIFY(!job().duration);
    QVERIFY(!job().destination.isEmpty());
    QTEST(m_world->manager->errorMessage(), "sentence");
    QCOMPARE(m_world->saved(u"News.ts"_s), "1");
    QCOMPARE(m_world->http.pendingRequests(), 0);
}

void DownloadManagerTest::refusesBeforeAnyFile_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("no playlist") << QByteArray("<html>")
                                 << u"This URL is not a valid M3U8 playlist."_s;
    QTest::newRow("encrypted") << finished(1, 1, "#EXT-X-KEY:METHOD=AES-128,URI=\"k\"")
                               << u"Encrypted or DRM-protected HLS streams cannot be downloaded."_s;
    QTest::newRow("byte ranges") << finished(1, 1, "#EXT-X-BYTERANGE:5@0")
                                 << u"This byte-range HLS format is not supported yet."_s;
    QTest::newRow("no segments") << finished(1, 0)
                                 << u"No downloadable video segments were found."_s;
}

void DownloadManagerTest::refusesBeforeAnyFile()
{
    QFETCH(const QByteArray, text);
    start(text);
    QCOMPARE(job().message, u"Download failed"_s);
    QVERIFY(job().destination.isEmpty());
    QTEST(m_world->manager->errorMessage(), "sentence");
    QVERIFY(files().isEmpty());
}

void DownloadManagerTest::dropsTornSegments_data()
{
    QTest::addColumn<HttpError::Kind>("error");
    QTest::newRow("reset") << HttpError::Kind::Broken;
    QTest::newRow("stall") << HttpError::Kind::TimedOut;
}

void DownloadManagerTest::dropsTornSegments()
{
    QFETCH(const HttpError::Kind, error);
    start(finished(1, 3));
    respond(1, "<1>");
    m_world->http.sendPiece(segment(2), "<2");
    QCOMPARE(m_world->saved(u"News.ts"_s), "<1><2");
    m_world->http.fail(segment(2), error);
    m_world->scheduler.runBackground();
    QCOMPARE(m_world->saved(u"News.ts"_s), "<1>");
}

void DownloadManagerTest::failsWithoutTheFolder()
{
    QVERIFY(QDir(m_world->folder.path()).removeRecursively());
    start(finished(1, 1));
    QCOMPARE(job().message, u"Download failed"_s);
    QCOMPARE(m_world->manager->errorMessage(),
             u"The selected download folder is no longer "
             "available. Choose another Save Folder."_s);
    QCOMPARE(m_world->http.requests().size(), 1);
}

void DownloadManagerTest::failsWhenTheFolderGoes()
{
    start(finished(1, 3));
    respond(1, "1");
    QVERIFY(QDir(m_world->folder.path()).removeRecursively());
    respond(2, "2");
    QCOMPARE(job().message, u"Download failed"_s);
    QCOMPARE(m_world->manager->errorMessage(),
             u"The selected download folder is no longer "
             "available. Choose another Save Folder."_s);
}

void DownloadManagerTest::leavesFilesAloneThatAppear()
{
    // Between the choice of a name and the file's making, somebody else takes it.
    connect(m_world->manager.get(), &M3U8DownloadManager::jobChanged, this, [this] {
        if (job().message == u"Starting…" && files().isEmpty()) {
            QFile file(job().destination.toLocalFile());
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("mine");
        }
    });
    start(finished(1, 1));
    respond(1, "1");
    QCOMPARE(m_world->saved(u"News.ts"_s), "mine");
    QCOMPARE(m_world->saved(u"News 2.ts"_s), "1");
    QCOMPARE(job().destination.fileName(), u"News 2.ts"_s);
}

void DownloadManagerTest::destroyedManagerLeavesWholeSegments()
{
    start(finished(1, 2));
    respond(1, "<1>");
    m_world->http.sendPiece(segment(2), "<2");
    m_world->manager.reset();
    m_world->scheduler.runBackground();
    QCOMPARE(m_world->saved(u"News.ts"_s), "<1>");
    QCOMPARE(m_world->http.pendingRequests(), 0);
}

void DownloadManagerTest::remembersTheFolder_data()
{
    QTest::addColumn<QString>("stored"); // below the temporary folder
    QTest::addColumn<QStringList>("standard");
    QTest::addColumn<QString>("used");
    QTest::newRow("stored") << u"a"_s << QStringList{u"b"_s} << u"a"_s;
    QTest::newRow("stored, gone") << u"gone"_s << QStringList{u"b"_s, u"c"_s} << u"b"_s;
    QTest::newRow("nothing stored") << QString() << QStringList{u"b"_s, u"c"_s} << u"b"_s;
    QTest::newRow("no downloads folder") << QString() << QStringList{u"gone"_s, u"c"_s} << u"c"_s;
}

void DownloadManagerTest::remembersTheFolder()
{
    QFETCH(const QString, stored);
    QFETCH(QStringList, standard);
    QFETCH(const QString, used);
    const QDir root(m_world->folder.path());
    for (const QString &name : {u"a"_s, u"b"_s, u"c"_s})
        QVERIFY(root.mkdir(name));
    for (QString &path : standard)
        path = root.filePath(path);
    if (!stored.isEmpty())
        m_world->defaults.values.insert(u"Lumaro.M3U8DownloadFolder"_s,
                                        root.filePath(stored).toUtf8());
    const M3U8DownloadManager manager({m_world->http, m_world->scheduler, m_world->scheduler,
                                       m_world->defaults, m_world->panels, m_world->workspace,
                                       standard});
    m_world->scheduler.runBackground();
    QCOMPARE(manager.saveFolder(), QUrl::fromLocalFile(root.filePath(used)));
}

/// Another machine may not answer: neither the program's start nor stopping a job waits for it.
void DownloadManagerTest::asksForTheStoredFolderInTheBackground_data()
{
    QTest::addColumn<bool>("stops");
    QTest::addColumn<bool>("choosesAnother");
    QTest::newRow("gone") << false << false;
    QTest::newRow("stopped meanwhile") << true << false;
    QTest::newRow("another chosen meanwhile") << false << true;
}

void DownloadManagerTest::asksForTheStoredFolderInTheBackground()
{
    QFETCH(const bool, stops);
    QFETCH(const bool, choosesAnother);
    const QTemporaryDir another;
    const QString gone = m_world->folder.filePath(u"gone"_s);
    m_world->defaults.values.insert(u"Lumaro.M3U8DownloadFolder"_s, gone.toUtf8());
    FakeScheduler files;
    const auto made = m_world->make(files);
    M3U8DownloadManager &manager = *made;
    QCOMPARE(manager.saveFolder(), QUrl::fromLocalFile(gone));
    const auto job = [&] { return manager.jobs().value(M3U8DownloadManager::keyOf(list)); };
    if (choosesAnother)
        manager.setSaveFolder(QUrl::fromLocalFile(another.path()));
    manager.start(list, u"News"_s);
    m_world->respond(list, "#EXTM3U\n#EXTINF:1,\na.ts\n#EXT-X-ENDLIST\n");
    QCOMPARE(job().isActive, true);
    QVERIFY(job().destination.isEmpty());
    if (stops) {
        manager.stop(list);
        QVERIFY(!job().isActive);
    }
    files.runBackground();
    const QString used = choosesAnother ? another.path() : m_world->folder.path();
    QCOMPARE(manager.saveFolder(), QUrl::fromLocalFile(used));
    if (stops)
        return;
    m_world->respond(DownloadWorld::url(u"a.ts"_s), "<1>");
    files.runBackground();
    QCOMPARE(job().message, u"Saved"_s);
    QVERIFY(QFile::exists(used + u"/News.ts"));
}

void DownloadManagerTest::choosesTheFolder()
{
    const QTemporaryDir chosen;
    const QSignalSpy changes(m_world->manager.get(), &M3U8DownloadManager::saveFolderChanged);
    m_world->panels.choice = QUrl::fromLocalFile(chosen.path());
    m_world->manager->chooseSaveFolder();
    const FolderPanelRequest asked{.title = u"Choose HLS Download Folder"_s,
                                   .prompt = u"Choose"_s,
                                   .folder = QUrl::fromLocalFile(m_world->folder.path())};
    QCOMPARE(m_world->panels.folderRequests, QList{asked});
    QCOMPARE(changes.count(), 1);
    QCOMPARE(m_world->defaults.values.value(u"Lumaro.M3U8DownloadFolder"_s),
             chosen.path().toUtf8());
    start(finished(1, 1));
    QVERIFY(QFile::exists(chosen.filePath(u"News.ts"_s)));
    QCOMPARE(m_world->make()->saveFolder(), QUrl::fromLocalFile(chosen.path()));
}

void DownloadManagerTest::cancelledPanelChangesNothing()
{
    m_world->manager->chooseSaveFolder();
    QCOMPARE(m_world->manager->saveFolder(), QUrl::fromLocalFile(m_world->folder.path()));
    QCOMPARE(m_world->defaults.writes, 0);
}

void DownloadManagerTest::showsTheFile()
{
    m_world->manager->openDownloadedFileLocation(list);
    m_world->manager->start(list, u"News"_s);
    m_world->manager->openDownloadedFileLocation(list);
    QVERIFY(m_world->workspace.shown.isEmpty());
    m_world->respond(list, finished(1, 1));
    m_world->manager->openDownloadedFileLocation(list);
    QCOMPARE(m_world->workspace.shown, QList{job().destination});
}

void DownloadManagerTest::dismissesTheError()
{
    const QSignalSpy errors(m_world->manager.get(), &M3U8DownloadManager::errorMessageChanged);
    start("<html>");
    QCOMPARE(errors.count(), 1);
    m_world->manager->dismissError();
    QCOMPARE(m_world->manager->errorMessage(), QString());
    start("<html>");
    QCOMPARE(errors.count(), 3);
}

void DownloadManagerTest::manySegmentsTakeLittleTime()
{
    // Anything quadratic would outlast the test's patience.
    constexpr int count = 100'000;
    start(finished(1, count));
    for (int i = 1; i <= count; ++i)
        respond(i, "x");
    QCOMPARE(job().message, u"Saved"_s);
    QCOMPARE(m_world->saved(u"News.ts"_s).size(), count);
}

void DownloadManagerTest::longAddressesGiveOthersATurn()
{
    const QByteArray address = "s1.ts?" + QByteArray(30'000, 'x');
    start("#EXTM3U\n" + QByteArray(address + '\n').repeated(20) + "#EXT-X-ENDLIST");
    m_world->respond(DownloadWorld::url(QString::fromLatin1(address)), "<1>");
    for (int turn = 0; turn < 6; ++turn) {
        QVERIFY(job().isActive);
        QCOMPARE(m_world->scheduler.pendingCalls(), 1);
        m_world->scheduler.makeOneCall();
    }
    m_world->scheduler.runBackground();
    QCOMPARE(job().message, u"Saved"_s);
    QCOMPARE(m_world->saved(u"News.ts"_s), "<1>");
}

QTEST_GUILESS_MAIN(DownloadManagerTest)
#include "tst_downloadmanager.moc"
