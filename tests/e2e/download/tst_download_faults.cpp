#include "tests/e2e/download/DownloadWorld.h"
#include "tests/e2e/download/MountedFolder.h"
#include "tests/e2e/servers/FaultServer.h"
#include "tests/e2e/servers/NginxServer.h"
#include "tests/e2e/servers/StandingDisk.h"
#include "tests/e2e/servers/ValueOrFail.h"

#include <QDir>
#include <QTest>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

Q_DECLARE_METATYPE(lumaro::FaultResponse)

namespace {

constexpr auto playlistType = "application/vnd.apple.mpegurl";
constexpr int patience = 30'000;
constexpr qint64 segmentSize = 300'000;
const QString rejected = u"The stream server rejected the download request."_s;
const QString lost = u"The connection to the server was lost."_s;

QByteArray segmentBytes(char letter)
{
    return QByteArray(segmentSize, letter);
}

/// A finished stream of these addresses.
QByteArray playlistOf(const QByteArrayList &addresses)
{
    return "#EXTM3U\n#EXT-X-TARGETDURATION:1\n" + addresses.join('\n') + "\n#EXT-X-ENDLIST\n";
}

/// The process's memory in use, in bytes.
qint64 residentMemory()
{
    return contentOf(u"/proc/self/statm"_s).split(' ').value(1).toLongLong() * 4096;
}

} // namespace

class DownloadFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_nginx = valueOrFail(NginxServer::start()); }
    void init();
    void cleanup() { m_world.reset(); }

    void keepsWholeSegments_data();
    void keepsWholeSegments();
    void takesUnusualAnswers_data();
    void takesUnusualAnswers();
    void refusesOtherSchemes_data();
    void refusesOtherSchemes();
    void failsOnAFullDisk();
    void failsOnAReadOnlyFolder();
    void failsWhenTheFileGoes();
    void refusedPlaylistIsNotRead();
    void stopsWithinKnownSegments();
    void diskThatStandsStillHoldsUpNobodyElse();
    void takesManySegments();
    void holdsNoSegmentInMemory();

private:
    void serve(const QByteArray &path, const QByteArray &body)
    {
        m_server->route(path, FaultResponse::of(playlistType, body));
    }
    QUrl list() const { return m_server->url("/list.m3u8"); }
    QByteArray saved() const { return contentOf(m_world->path(u"Film.ts"_s)); }

    std::unique_ptr<NginxServer> m_nginx;
    std::unique_ptr<FaultServer> m_server;
    std::unique_ptr<DownloadWorld> m_world;
};

void DownloadFaultsTest::init()
{
    m_server = valueOrFail(FaultServer::start());
    m_world = std::make_unique<DownloadWorld>();
    serve("/list.m3u8", playlistOf({"a", "b", "c"}));
    for (const char letter : {'a', 'b', 'c'})
        serve(QByteArray("/") + letter, segmentBytes(letter));
}

void DownloadFaultsTest::keepsWholeSegments_data()
{
    QTest::addColumn<FaultResponse>("second");
    QTest::addColumn<QString>("sentence");
    const FaultResponse whole = FaultResponse::of("video/mp2t", segmentBytes('b'));
    const auto row = [&](const char *name, auto change, const QString &sentence) {
        FaultResponse response = whole;
        change(response);
        QTest::newRow(name) << response << sentence;
    };
    for (const int status : {403, 404, 410, 500, 503})
        row(QByteArray::number(status), [=](FaultResponse &r) { r.status = status; }, rejected);
    row("not modified", [](FaultResponse &r) { r.status = 304; }, rejected);
    row("reset in the middle", [](FaultResponse &r) { r.resetAfter = segmentSize / 2; }, lost);
    row("reset before the first byte", [](FaultResponse &r) { r.resetAfter = 0; }, lost);
    row("closed in the middle", [](FaultResponse &r) { r.closeAfter = segmentSize / 2; }, lost);
    row(
        "a chunk cut short",
        [](FaultResponse &r) {
            r.framing = FaultResponse::Framing::Chunked;
            r.closeAfter = segmentSize / 2;
        },
        lost);
    row(
        "redirect in circles",
        [](FaultResponse &r) {
            r.status = 302;
            r.headers = {{"Location", "/b"}};
        },
        u"The server redirected the request too many times."_s);
    row(
        "redirect to a file",
        [](FaultResponse &r) {
            r.status = 302;
            r.headers = {{"Location", "file:///etc/passwd"}};
        },
        rejected);
    row(
        "an error page without end",
        [](FaultResponse &r) {
            r.status = 403;
            r.body = {.head = {},
                      .part = QByteArray(4096, 'x'),
                      .times = RepeatedBody::endless,
                      .tail = {}};
        },
        rejected);
}

void DownloadFaultsTest::keepsWholeSegments()
{
    QFETCH(const FaultResponse, second);
    QFETCH(const QString, sentence);
    m_server->route("/b", second);
    m_world->manager().start(list(), u"Film"_s);
    QCOMPARE(m_world->messageAtEnd(list()), u"Download failed"_s);
    QCOMPARE(m_world->manager().errorMessage(), sentence);
    QVERIFY(saved() == segmentBytes('a'));
    QCOMPARE(m_server->requestCount("/c"), 0);
}

void DownloadFaultsTest::takesUnusualAnswers_data()
{
    QTest::addColumn<FaultResponse>("second");
    const FaultResponse whole = FaultResponse::of("video/mp2t", segmentBytes('b'));
    const auto row = [&](const char *name, auto change) {
        FaultResponse response = whole;
        change(response);
        QTest::newRow(name) << response;
    };
    row("chunks without a length",
        [](FaultResponse &r) { r.framing = FaultResponse::Framing::Chunked; });
    row("neither length nor chunks",
        [](FaultResponse &r) { r.framing = FaultResponse::Framing::UntilClose; });
    row("wrong type", [](FaultResponse &r) { r.contentType = "text/html"; });
    row("partial content", [](FaultResponse &r) { r.status = 206; });
    row("a redirect that drips", [](FaultResponse &r) {
        r.status = 302;
        r.headers = {{"Location", "/moved"}};
        r.dripSize = 1;
        r.dripInterval = 500ms;
    });
    row("in drops", [](FaultResponse &r) {
        r.dripSize = segmentSize / 10;
        r.dripInterval = 20ms;
    });
}

void DownloadFaultsTest::takesUnusualAnswers()
{
    QFETCH(const FaultResponse, second);
    m_server->route("/b", second);
    serve("/moved", segmentBytes('b'));
    m_world->save(list(), u"Film"_s);
    QVERIFY(saved() == segmentBytes('a') + segmentBytes('b') + segmentBytes('c'));
}

void DownloadFaultsTest::refusesOtherSchemes_data()
{
    QTest::addColumn<QByteArray>("playlist");
    QTest::newRow("segment") << playlistOf({"file:///etc/passwd"});
    QTest::newRow("data") << playlistOf({"data:text/plain,x"});
    QTest::newRow("ftp") << playlistOf({"ftp://127.0.0.1/x"});
    QTest::newRow("map") << playlistOf({"#EXT-X-MAP:URI=\"file:///etc/passwd\"", "a"});
    QTest::newRow("variant") << QByteArray(
        "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=1\nfile:///etc/passwd\n");
}

void DownloadFaultsTest::refusesOtherSchemes()
{
    QFETCH(const QByteArray, playlist);
    serve("/list.m3u8", playlist);
    m_world->manager().start(list(), u"Film"_s);
    QCOMPARE(m_world->messageAtEnd(list()), u"Download failed"_s);
    QCOMPARE(m_world->manager().errorMessage(), rejected);
    for (const QString &name : QDir(m_world->path({})).entryList(QDir::Files))
        QCOMPARE(contentOf(m_world->path(name)), QByteArray());

    const QUrl file = QUrl::fromLocalFile(u"/etc/passwd"_s);
    m_world->manager().start(file, u"Film"_s);
    QCOMPARE(m_world->messageAtEnd(file), u"Download failed"_s);
}

void DownloadFaultsTest::failsOnAFullDisk()
{
    const MountedFolder disk(MountedFolder::Kind::Small);
    if (!disk.isMounted())
        QSKIP("This process may not mount a file system.");
    serve("/list.m3u8", playlistOf({"a", "b", "big", "c"}));
    FaultResponse big;
    big.body = {.head = {}, .part = segmentBytes('x'), .times = 10, .tail = {}};
    m_server->route("/big", big);
    m_world->manager().setSaveFolder(QUrl::fromLocalFile(disk.path()));
    m_world->manager().start(list(), u"Film"_s);
    QCOMPARE(m_world->messageAtEnd(list()), u"Download failed"_s);
    QCOMPARE(m_world->manager().errorMessage(),
             u"The disk is full. Choose another Save Folder or make some room."_s);
    QVERIFY(contentOf(disk.path() + u"/Film.ts"_s) == segmentBytes('a') + segmentBytes('b'));
    QCOMPARE(m_server->requestCount("/c"), 0);
}

void DownloadFaultsTest::failsOnAReadOnlyFolder()
{
    const MountedFolder disk(MountedFolder::Kind::ReadOnly);
    if (!disk.isMounted())
        QSKIP("This process may not mount a file system.");
    m_world->manager().setSaveFolder(QUrl::fromLocalFile(disk.path()));
    m_world->manager().start(list(), u"Film"_s);
    QCOMPARE(m_world->messageAtEnd(list()), u"Download failed"_s);
    QCOMPARE(m_world->manager().errorMessage(),
             u"The file could not be written: Read-only file system."_s);
    QVERIFY(!m_world->job(list()).destination.isEmpty());
}

void DownloadFaultsTest::failsWhenTheFileGoes()
{
    m_server->hold("/b");
    m_world->manager().start(list(), u"Film"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_server->requestCount("/b"), 1, patience);
    QVERIFY(QFile::remove(m_world->path(u"Film.ts"_s)));
    m_server->release("/b");
    QCOMPARE(m_world->messageAtEnd(list()), u"Download failed"_s);
    QCOMPARE(m_world->manager().errorMessage(),
             u"The file could not be written: it was deleted."_s);
}

void DownloadFaultsTest::refusedPlaylistIsNotRead()
{
    FaultResponse endless = FaultResponse::of("text/html", {});
    endless.status = 404;
    endless.body = {
        .head = {}, .part = QByteArray(4096, 'x'), .times = RepeatedBody::endless, .tail = {}};
    m_server->route("/list.m3u8", endless);
    m_world->manager().start(list(), u"Film"_s);
    QCOMPARE(m_world->messageAtEnd(list()), u"Download failed"_s);
    QCOMPARE(m_world->manager().errorMessage(), rejected);
}

void DownloadFaultsTest::stopsWithinKnownSegments()
{
    FaultResponse repeated = FaultResponse::of(playlistType, {});
    repeated.body = {
        .head = "#EXTM3U\n", .part = "a\n", .times = 1'000'000, .tail = "#EXT-X-ENDLIST\n"};
    m_server->route("/list.m3u8", repeated);
    m_world->manager().start(list(), u"Film"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_world->job(list()).message, u"0%"_s, patience);
    m_world->manager().stop(list());
    QCOMPARE(m_world->messageAtEnd(list()), u"Stopped · file saved"_s);
}

void DownloadFaultsTest::diskThatStandsStillHoldsUpNobodyElse()
{
    m_server->hold("/b");
    FaultResponse large = FaultResponse::of("video/mp2t", {});
    large.body = {.head = {}, .part = segmentBytes('b'), .times = 100, .tail = {}};
    m_server->route("/b", large);
    m_world->manager().start(list(), u"Film"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_server->requestCount("/b"), 1, patience);
    QTRY_VERIFY_WITH_TIMEOUT(saved() == segmentBytes('a'), patience);
    const StandingDisk disk(m_world->path(u"Film.ts"_s));
    QVERIFY(disk.isInPlace());
    m_server->release("/b");

    serve("/other.m3u8", playlistOf({"a", "c"}));
    m_world->save(m_server->url("/other.m3u8"), u"Other"_s);
    QVERIFY(contentOf(m_world->path(u"Other.ts"_s)) == segmentBytes('a') + segmentBytes('c'));
    QVERIFY(m_world->job(list()).isActive);

    m_world->manager().stop(list());
    QCOMPARE(m_world->messageAtEnd(list()), u"Download failed"_s);
    QCOMPARE(m_world->manager().errorMessage(),
             u"The file could not be written: the folder does not answer."_s);
    serve("/b", segmentBytes('b'));
    m_world->save(list(), u"Film"_s);
    QVERIFY(contentOf(m_world->path(u"Film 2.ts"_s))
            == segmentBytes('a') + segmentBytes('b') + segmentBytes('c'));
}

void DownloadFaultsTest::takesManySegments()
{
    // Small files of a real web server, which keeps the connection.
#if defined(__SANITIZE_ADDRESS__)
    constexpr int count = 10'000;
#else
    constexpr int count = 100'000;
#endif
    QByteArrayList addresses;
    for (int i = 0; i < count; ++i)
        addresses.append("tiny?" + QByteArray::number(i));
    QVERIFY(m_nginx->writeFile(u"many.m3u8"_s, playlistOf(addresses)));
    QVERIFY(m_nginx->writeFile(u"tiny"_s, "x"));
    const QUrl many = m_nginx->url(u"/many.m3u8"_s);
    m_world->manager().start(many, u"Film"_s);
    QCOMPARE(m_world->messageAtEnd(many), u"Saved"_s);
    QVERIFY(saved() == QByteArray(count, 'x'));
}

void DownloadFaultsTest::holdsNoSegmentInMemory()
{
#if defined(__SANITIZE_ADDRESS__)
    QSKIP("The sanitizer holds freed memory back.");
#endif
    FaultResponse big;
    big.body = {.head = {}, .part = QByteArray(1 << 20, 'x'), .times = 200, .tail = {}};
    m_server->route("/big", big);
    serve("/list.m3u8", playlistOf({"a", "big"}));
    m_world->manager().start(list(), u"Film"_s);
    qint64 before = 0;
    qint64 most = 0;
    while (m_world->job(list()).isActive) {
        QTest::qWait(2);
        if (m_server->requestCount("/big") == 0)
            continue;
        before = before == 0 ? residentMemory() : before;
        most = std::max(most, residentMemory());
    }
    QCOMPARE(m_world->job(list()).message, u"Saved"_s);
    const qint64 growth = most - before;
    QVERIFY2(growth < 8 * 1024 * 1024, qPrintable(QString::number(growth)));
}

QTEST_GUILESS_MAIN(DownloadFaultsTest)
#include "tst_download_faults.moc"
