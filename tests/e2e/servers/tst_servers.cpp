#include "tests/e2e/servers/FaultServer.h"
#include "tests/e2e/servers/Fetch.h"
#include "tests/e2e/servers/LiveFeed.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/NginxServer.h"
#include "tests/e2e/servers/ValueOrFail.h"
#include "tests/e2e/servers/VirtualDisplay.h"

#include <QFile>
#include <QTcpSocket>
#include <QTest>

#include <csignal>
#include <thread>

#include <zlib.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

Q_DECLARE_METATYPE(lumaro::FaultResponse)
Q_DECLARE_METATYPE(lumaro::Fixture)

namespace {

/// What ffprobe finds in `file`, such as "audio video".
QString streamKinds(const QString &file)
{
    const QTemporaryDir folder;
    const QString log = folder.filePath(u"streams"_s);
    ChildProcess ffprobe;
    const auto started = ffprobe.start(u"ffprobe"_s,
                                       {u"-v"_s, u"quiet"_s, u"-show_entries"_s,
                                        u"stream=codec_type"_s, u"-of"_s, u"csv=p=0"_s, file},
                                       {.logFile = log});
    QFile output(log);
    if (!started || !ffprobe.waitForFinished(20s) || ffprobe.exitCode() != 0
        || !output.open(QIODevice::ReadOnly))
        return u"unplayable"_s;
    QStringList kinds = QString::fromUtf8(output.readAll()).split(u'\n', Qt::SkipEmptyParts);
    kinds.sort();
    kinds.removeDuplicates();
    return kinds.join(u' ');
}

/// How many bytes `gzip` inflates to; -1 when it is damaged.
qint64 inflatedSize(QByteArray gzip)
{
    z_stream stream{};
    constexpr int gzipFormat = MAX_WBITS + 16;
    inflateInit2(&stream, gzipFormat);
    QByteArray output(1 << 20, '\0');
    stream.next_in = reinterpret_cast<Bytef *>(gzip.data());
    stream.avail_in = uInt(gzip.size());
    int result = Z_OK;
    while (result == Z_OK) {
        stream.next_out = reinterpret_cast<Bytef *>(output.data());
        stream.avail_out = uInt(output.size());
        result = inflate(&stream, Z_NO_FLUSH);
    }
    const auto total = qint64(stream.total_out);
    inflateEnd(&stream);
    return result == Z_STREAM_END ? total : -1;
}

/// Mebibytes of memory that this process has in use.
qint64 residentMemory()
{
    QFile status(u"/proc/self/statm"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    return status.readAll().split(' ').at(1).toLongLong() * 4096 >> 20;
}

FaultResponse text(const QByteArray &body)
{
    return FaultResponse::of("text/plain", body);
}

} // namespace

class ServersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void childrenEndWithTheirStarter();
    void suspendedChildrenEnd();
    void missingProgramIsReported();

    void makesMedia_data();
    void makesMedia();
    void keepsMedia();

    void nginxAnswers_data();
    void nginxAnswers();
    void nginxThrottles();
    void nginxStopsWithItsObject();

    void liveFeedMovesStallsAndEnds();

    void testDecidesWhichAnswerComesFirst();
    void faultsHappen_data();
    void faultsHappen();
    void endlessBodyTakesNoMemory();
    void gzipBombInflates();

    void displayAcceptsClients();

private: // NOLINT(readability-redundant-access-specifiers): the section above is of slots
    std::unique_ptr<NginxServer> m_nginx;
    std::unique_ptr<FaultServer> m_faults;
};

void ServersTest::initTestCase()
{
    m_nginx = valueOrFail(NginxServer::start());
    m_faults = valueOrFail(FaultServer::start());
}

// Processes

void ServersTest::childrenEndWithTheirStarter()
{
    ChildProcess child;
    std::thread([&child] { QVERIFY(child.start(u"sleep"_s, {u"60"_s}, {})); }).join();
    QVERIFY(child.waitForFinished(5s));
    QVERIFY(!child.exitCode());
}

void ServersTest::suspendedChildrenEnd()
{
    const QTemporaryDir folder;
    ChildProcess child;
    QVERIFY(child.start(u"sh"_s,
                        {u"-c"_s, u"trap 'exit 7' TERM; : >ready; while :; do sleep 0.02; done"_s},
                        {.workingFolder = folder.path()}));
    QTRY_VERIFY(QFileInfo::exists(folder.filePath(u"ready"_s)));
    child.sendSignal(SIGSTOP);
    child.stop(20s);
    QCOMPARE(child.exitCode(), 7);
}

void ServersTest::missingProgramIsReported()
{
    ChildProcess child;
    QCOMPARE(child.start(u"no-such-program"_s, {}, {}).error(),
             u"no-such-program is not installed."_s);
    const auto started = child.start(u"true"_s, {}, {.workingFolder = u"/no/such/folder"_s});
    QVERIFY(!started && started.error().contains(u"No such file"_s));
    QVERIFY(!child.isRunning());
}

// Media

void ServersTest::makesMedia_data()
{
    QTest::addColumn<Fixture>("fixture");
    QTest::addColumn<QString>("kinds");
    QTest::newRow("solid colour") << Fixture::SolidColor << u"audio video"_s;
    QTest::newRow("mkv") << Fixture::Matroska << u"audio video"_s;
    QTest::newRow("m4a") << Fixture::AudioOnly << u"audio"_s;
    QTest::newRow("half a movie") << Fixture::TruncatedMovie << u"audio video"_s;
    QTest::newRow("half an index") << Fixture::TruncatedIndex << u"unplayable"_s;
    QTest::newRow("noise") << Fixture::RandomBytes << u"unplayable"_s;
    QTest::newRow("hls") << Fixture::Hls << u"audio video"_s;
    QTest::newRow("hls in fragments") << Fixture::FragmentedHls << u"audio video"_s;
}

void ServersTest::makesMedia()
{
    QFETCH(const Fixture, fixture);
    const MediaFixtures media(QStringLiteral(LUMARO_FIXTURE_FOLDER));
    QTEST(streamKinds(valueOrFail(media.path(fixture))), "kinds");
}

void ServersTest::keepsMedia()
{
    const QTemporaryDir folder;
    const MediaFixtures media(folder.filePath(u"new/cache"_s));
    const QString path = valueOrFail(media.path(Fixture::AudioOnly));
    const QDateTime made = QFileInfo(path).fileTime(QFile::FileModificationTime);
    QCOMPARE(valueOrFail(media.path(Fixture::AudioOnly)), path);
    QCOMPARE(QFileInfo(path).fileTime(QFile::FileModificationTime), made);
    // Nothing half-made stays behind.
    QCOMPARE(
        QDir(folder.filePath(u"new/cache"_s)).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
        QStringList{QFileInfo(path).dir().dirName()});
}

// nginx

void ServersTest::nginxAnswers_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("contentType");
    QTest::addColumn<QByteArray>("location");
    const QByteArray html = "text/html";
    QTest::newRow("playlist") << u"/a/list.m3u8"_s << 200
                              << QByteArray("application/vnd.apple.mpegurl") << QByteArray();
    QTest::newRow("published") << u"/list.m3u"_s << 200 << QByteArray("audio/x-mpegurl")
                               << QByteArray();
    QTest::newRow("missing") << u"/none.m3u"_s << 404 << html << QByteArray();
    QTest::newRow("forbidden") << u"/status/403"_s << 403 << html << QByteArray();
    QTest::newRow("broken") << u"/status/500"_s << 500 << html << QByteArray();
    QTest::newRow("relative") << u"/redirect/307/a/list.m3u8?x=1"_s << 307 << html
                              << QByteArray("/a/list.m3u8?x=1");
    QTest::newRow("absolute") << u"/redirect?to=http://localhost:1/x"_s << 302 << html
                              << QByteArray("http://localhost:1/x");
    QTest::newRow("to a file") << u"/redirect?to=file:///etc/hostname"_s << 302 << html
                               << QByteArray("file:///etc/hostname");
    QTest::newRow("loop") << u"/redirect-loop/b"_s << 302 << html << QByteArray("/redirect-loop/a");
}

void ServersTest::nginxAnswers()
{
    QFETCH(const QString, path);
    QVERIFY(m_nginx->writeFile(u"a/list.m3u8"_s, "#EXTM3U\n"));
    m_nginx->publish(m_nginx->documentRoot() + u"/a/list.m3u8"_s, u"list.m3u"_s);

    const Fetched fetched = fetch(m_nginx->url(path));
    QTEST(fetched.status, "status");
    QTEST(fetched.contentType, "contentType");
    QTEST(fetched.location, "location");
    const QString line = u"GET %1 %2"_s.arg(path, QString::number(fetched.status));
    QTRY_VERIFY(m_nginx->accessLog().contains(line));
}

void ServersTest::nginxThrottles()
{
    QVERIFY(m_nginx->writeFile(u"big.bin"_s, QByteArray(1 << 20, 'x')));
    const Fetched fetched = fetch(m_nginx->url(u"/slow/2000/big.bin"_s), 1500ms);
    QCOMPARE(fetched.error, QNetworkReply::OperationCanceledError);
    QCOMPARE(fetched.status, 200);
    QVERIFY(!fetched.body.isEmpty());
    QVERIFY(fetched.body.size() < 100'000);
}

void ServersTest::nginxStopsWithItsObject()
{
    auto other = valueOrFail(NginxServer::start());
    QVERIFY(other->port() != m_nginx->port());
    const QUrl url = other->url(u"/status/404"_s);
    QCOMPARE(fetch(url).status, 404);
    other.reset();
    QCOMPARE(fetch(url).error, QNetworkReply::ConnectionRefusedError);
}

void ServersTest::liveFeedMovesStallsAndEnds()
{
    const auto feed = valueOrFail(LiveFeed::start(*m_nginx, u"channel"_s));
    QVERIFY(feed->waitUntilServing(20s));
    const auto playlist = [&feed] { return fetch(feed->url()).body; };
    const QByteArray first = playlist();
    QVERIFY(!first.contains("#EXT-X-ENDLIST"));
    QTRY_VERIFY(playlist() != first);

    feed->stall();
    const QByteArray stalled = playlist();
    QVERIFY(!QTest::qWaitFor([&] { return playlist() != stalled; }, 2500));
    feed->resume();
    QTRY_VERIFY(playlist() != stalled);

    feed->finish();
    QVERIFY(playlist().contains("#EXT-X-ENDLIST"));
    feed->remove();
    QCOMPARE(fetch(feed->url()).status, 404);
}

// Faults

void ServersTest::testDecidesWhichAnswerComesFirst()
{
    QByteArray order;
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (const QByteArray name : {"a", "b"}) {
        const QByteArray path = "/order/" + name;
        m_faults->route(path, text(name));
        m_faults->hold(path);
        auto &client = clients.emplace_back(std::make_unique<QTcpSocket>());
        connect(client.get(), &QTcpSocket::disconnected, this, [&order, name] { order += name; });
        client->connectToHost(QHostAddress::LocalHost, quint16(m_faults->url(path).port()));
        client->write("GET " + path + "?q HTTP/1.1\r\nHost: x\r\n\r\n");
        QTRY_COMPARE(m_faults->requestCount(path + "?q"), 1);
    }
    m_faults->release("/order/b");
    QTRY_COMPARE(order, QByteArray("b"));
    m_faults->release("/order/a");
    QTRY_COMPARE(order, QByteArray("ba"));
    QTRY_COMPARE(m_faults->openConnections(), 0);
}

void ServersTest::faultsHappen_data()
{
    QTest::addColumn<FaultResponse>("response");
    QTest::addColumn<QNetworkReply::NetworkError>("error");
    QTest::addColumn<QByteArray>("body");

    const QByteArray latin1 = "\xef\xbb\xbf#EXTM3U\r\nCaf\xe9\r\n";
    const FaultResponse good = text(latin1);
    using Error = QNetworkReply::NetworkError;
    QTest::newRow("bytes") << good << Error::NoError << latin1;

    FaultResponse response = good;
    response.framing = FaultResponse::Framing::UntilClose;
    QTest::newRow("until close") << response << Error::NoError << latin1;
    response.framing = FaultResponse::Framing::Chunked;
    QTest::newRow("chunked") << response << Error::NoError << latin1;

    response = good;
    response.claimedLength = 1000;
    QTest::newRow("shorter than said") << response << Error::RemoteHostClosedError << latin1;
    response = good;
    response.resetAfter = 5;
    QTest::newRow("reset") << response << Error::RemoteHostClosedError << latin1.first(5);
    response.resetAfter = 0;
    response.delay = 50ms;
    QTest::newRow("late") << response << Error::RemoteHostClosedError << QByteArray();
    response = good;
    response.dripInterval = 1ms;
    response.dripSize = 3;
    QTest::newRow("drops") << response << Error::NoError << latin1;
    response = good;
    response.stallAfter = 7;
    QTest::newRow("stall") << response << Error::OperationCanceledError << latin1.first(7);
}

void ServersTest::faultsHappen()
{
    QFETCH(const FaultResponse, response);
    m_faults->route("/fault", response);
    const Fetched fetched = fetch(m_faults->url("/fault"), 1s);
    QCOMPARE(fetched.status, 200);
    QTEST(fetched.error, "error");
    QTEST(fetched.body, "body");
}

void ServersTest::endlessBodyTakesNoMemory()
{
    m_faults->route("/long", FaultResponse::longLine(RepeatedBody::endless));
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, quint16(m_faults->url("/long").port()));
    client.write("GET /long HTTP/1.1\r\n\r\n");
    // Unbounded, the client's own buffer would be what grows.
    client.setReadBufferSize(1 << 20);
    const qint64 before = residentMemory();
    qint64 received = 0;
    bool isOneLine = true;
    connect(&client, &QTcpSocket::readyRead, this, [&] {
        const QByteArray bytes = client.readAll();
        isOneLine = isOneLine && bytes.indexOf('\n', received == 0 ? 400 : 0) < 0;
        received += bytes.size();
    });
    QTRY_VERIFY_WITH_TIMEOUT(received > 100'000'000, 30'000);
    QVERIFY(isOneLine);
#ifdef __SANITIZE_ADDRESS__
    // The sanitizer holds back what was freed, so memory says nothing here.
    Q_UNUSED(before);
#else
    QVERIFY(residentMemory() - before < 30);
#endif
    client.abort();
    QTRY_COMPARE(m_faults->openConnections(), 0);
}

void ServersTest::gzipBombInflates()
{
    constexpr qint64 size = 300 << 20;
    m_faults->route("/bomb", FaultResponse::gzipBomb(size));
    const Fetched fetched = fetch(m_faults->url("/bomb"));
    QCOMPARE(fetched.error, QNetworkReply::NoError);
    QVERIFY(fetched.body.size() < size / 900);
    QCOMPARE(inflatedSize(fetched.body), size);
}

// Display

void ServersTest::displayAcceptsClients()
{
    // The test keeps its own platform; only clients started from here see the display.
    const QByteArray display = qgetenv("DISPLAY");
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    auto server = valueOrFail(VirtualDisplay::start());
    QVERIFY(server);
    const QString socket = u"/tmp/.X11-unix/X"_s + server->name().sliced(1);
    QCOMPARE(qgetenv("DISPLAY"), server->name().toLatin1());
    QVERIFY(QFileInfo::exists(socket));
    server.reset();
    QVERIFY(!QFileInfo::exists(socket));
    display.isNull() ? qunsetenv("DISPLAY") : qputenv("DISPLAY", display);
    qputenv("QT_QPA_PLATFORM", platform);
}

QTEST_GUILESS_MAIN(ServersTest)
#include "tst_servers.moc"
