#include "platform/curl/CurlHttpClient.h"
#include "tests/e2e/servers/FaultServer.h"
#include "tests/e2e/servers/NginxServer.h"
#include "tests/e2e/servers/RunningRequest.h"
#include "tests/e2e/servers/ValueOrFail.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <atomic>
#include <semaphore>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

using Kind = HttpError::Kind;
using Result = std::expected<HttpResponse, HttpError>;
using Started = RunningRequest;

Q_DECLARE_METATYPE(lumaro::FaultResponse)
Q_DECLARE_METATYPE(std::optional<lumaro::HttpError::Kind>)

namespace {

constexpr auto text = "text/plain";
const auto patience = 300ms;

std::optional<Kind> errorOf(const Result &result)
{
    return result ? std::nullopt : std::optional(result.error().kind);
}

/// A port of this machine where nobody listens.
QUrl refusingAddress()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return QUrl(u"http://127.0.0.1:%1/"_s.arg(server.serverPort()));
}

/// A sink that does not return, as with a dead disk, before it is let go. Outlives its client.
class WaitingSink
{
public:
    HttpBodySink sink() const
    {
        return [state = m_state](QByteArrayView) {
            ++state->calls;
            state->released.acquire();
            state->released.release();
            return true;
        };
    }
    int calls() const { return m_state->calls; }
    void release() const { m_state->released.release(); }

private:
    struct State
    {
        std::atomic<int> calls = 0;
        std::counting_semaphore<> released{0};
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

/// Counts its connections, which it leaves open.
class CountingServer
{
public:
    CountingServer()
    {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] {
            ++m_connections;
            QTcpSocket *const socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket] {
                if (socket->readAll().endsWith("\r\n\r\n"))
                    socket->write("HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nx");
            });
        });
        m_server.listen(QHostAddress::LocalHost);
    }
    QUrl url() const { return QUrl(u"http://127.0.0.1:%1/"_s.arg(m_server.serverPort())); }
    int connections() const { return m_connections; }

private:
    QTcpServer m_server;
    int m_connections = 0;
};

} // namespace

class CurlHttpClientTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_client = std::make_unique<CurlHttpClient>(QByteArrayLiteral("Test/1")); }
    void cleanup() { m_client.reset(); }

    void answersAndFaults_data();
    void answersAndFaults();
    void redirects_data();
    void redirects();
    void refusesAddresses_data();
    void refusesAddresses();
    void namesItself();
    void staysUsableAfterFaults();

    void streamsOnItsOwnThread();
    void streamsOnlySuccess();
    void sinkMayRefuse();

    void stopsAtAnyMoment_data();
    void stopsAtAnyMoment();
    void neverCallsSinkAfterStop();
    void endsWithItsClient();
    void requestsRunSideBySide();
    void sinkThatWaitsHoldsUpNobody_data();
    void sinkThatWaitsHoldsUpNobody();
    void slowSinkIsNotTheServersFault();
    void streamsKeepTheirConnection();

private:
    Result get(HttpRequest request)
    {
        const Started started(m_client->get(std::move(request), {}));
        [&] { QTRY_VERIFY_WITH_TIMEOUT(started.isFinished(), 60'000); }();
        return started.isFinished() ? started.result() : Result();
    }

    std::unique_ptr<FaultServer> m_faults;
    std::unique_ptr<NginxServer> m_nginx;
    std::unique_ptr<CurlHttpClient> m_client;
};

void CurlHttpClientTest::initTestCase()
{
    m_faults = valueOrFail(FaultServer::start());
    m_nginx = valueOrFail(NginxServer::start());
    QVERIFY(m_faults && m_nginx);
    QVERIFY(m_nginx->writeFile(u"here.txt"_s, "here"));
}

void CurlHttpClientTest::answersAndFaults_data()
{
    QTest::addColumn<FaultResponse>("response");
    QTest::addColumn<std::optional<Kind>>("error");
    QTest::addColumn<QByteArray>("body");

    const QByteArray bytes("0123456789");
    const FaultResponse good = FaultResponse::of(text, bytes);
    const auto row = [](const char *name, const FaultResponse &response, std::optional<Kind> error,
                        const QByteArray &body = {}) {
        QTest::newRow(name) << response << error << body;
    };
    FaultResponse response = good;
    row("whole", response, std::nullopt, bytes);
    response.status = 404;
    row("not found is an answer", response, std::nullopt, bytes);
    response = good;
    response.framing = FaultResponse::Framing::UntilClose;
    row("until close", response, std::nullopt, bytes);
    response.framing = FaultResponse::Framing::Chunked;
    row("chunked", response, std::nullopt, bytes);
    response.dripInterval = 1ms;
    response.dripSize = 1;
    row("slow chunks", response, std::nullopt, bytes);
    response.closeAfter = 5;
    row("cut off between chunks", response, Kind::Broken);
    response = good;
    response.claimedLength = 1000;
    row("shorter than said", response, Kind::Broken);
    response = good;
    response.resetAfter = 0;
    response.delay = 50ms;
    row("reset before the body", response, Kind::Broken);
    response.resetAfter = 5;
    row("reset within the body", response, Kind::Broken);
    response = good;
    response.stallAfter = 5;
    row("stalls", response, Kind::TimedOut);
    response = good;
    response.delay = 100ms;
    row("late", response, std::nullopt, bytes);
    response = good;
    response.body.times = 1'000'000;
    response.body.part = bytes;
    row("larger than wanted", response, Kind::TooLarge);
    row("without end", FaultResponse::longLine(RepeatedBody::endless), Kind::TooLarge);
    row("inflates", FaultResponse::gzipBomb(), Kind::TooLarge);
    response = good;
    response.headers = {{"Content-Encoding", "gzip"}};
    row("not gzip at all", response, Kind::Broken);
    response = good;
    response.status = 302;
    row("redirect to nowhere", response, std::nullopt, bytes);
}

void CurlHttpClientTest::answersAndFaults()
{
    QFETCH(const FaultResponse, response);
    QFETCH(const std::optional<Kind>, error);
    m_faults->route("/it", response);

    HttpRequest request{.url = m_faults->url("/it"), .maximumBodySize = 100'000};
    // Only a server that says nothing is to run out of it.
    request.patience = error == Kind::TimedOut ? patience : 30s;
    const Result result = get(request);

    QCOMPARE(errorOf(result), error);
    if (result) {
        QCOMPARE(result->status, response.status);
        QTEST(result->body, "body");
    }
    QTRY_COMPARE(m_faults->openConnections(), 0);
    m_faults->release("/it");
}

void CurlHttpClientTest::redirects_data()
{
    QTest::addColumn<QUrl>("from");
    QTest::addColumn<std::optional<Kind>>("error");
    QTest::addColumn<QUrl>("to");

    const QUrl here = m_nginx->url(u"/here.txt"_s);
    const std::optional<Kind> none;
    const auto through = [&](const QString &location) {
        return m_nginx->url(u"/redirect?to="_s + location);
    };
    QTest::newRow("relative") << m_nginx->url(u"/redirect/301/here.txt"_s) << none << here;
    QTest::newRow("absolute") << through(here.toString()) << none << here;
    QTest::newRow("without scheme")
        << through(u"//127.0.0.1:%1/here.txt"_s.arg(here.port())) << none << here;
    QTest::newRow("loop") << m_nginx->url(u"/redirect-loop/a"_s)
                          << std::optional(Kind::TooManyRedirects) << QUrl();
    QTest::newRow("to a file") << through(u"file:///etc/hostname"_s)
                               << std::optional(Kind::UnsupportedAddress) << QUrl();
    QTest::newRow("to another scheme")
        << through(u"gopher://127.0.0.1/"_s) << std::optional(Kind::UnsupportedAddress) << QUrl();
    QTest::newRow("to nobody") << through(refusingAddress().toString())
                               << std::optional(Kind::Unreachable) << QUrl();
}

void CurlHttpClientTest::redirects()
{
    QFETCH(const QUrl, from);
    QFETCH(const std::optional<Kind>, error);
    const Result result = get({.url = from});
    QCOMPARE(errorOf(result), error);
    if (result) {
        QTEST(result->url, "to");
        QCOMPARE(result->status, 200);
        QCOMPARE(result->body, "here");
    }
}

void CurlHttpClientTest::refusesAddresses_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<std::optional<Kind>>("error");

    const auto row = [](const char *name, const QUrl &url, Kind error) {
        QTest::newRow(name) << url << std::optional(error);
    };
    row("file", QUrl(u"file:///etc/hostname"_s), Kind::UnsupportedAddress);
    row("ftp", QUrl(u"ftp://127.0.0.1/x"_s), Kind::UnsupportedAddress);
    row("no host", QUrl(u"http:///x"_s), Kind::UnsupportedAddress);
    row("empty", QUrl(), Kind::UnsupportedAddress);
    row("unknown host", QUrl(u"http://nobody.invalid/x"_s), Kind::Unreachable);
    row("nobody listens", refusingAddress(), Kind::Unreachable);
}

void CurlHttpClientTest::refusesAddresses()
{
    QFETCH(const QUrl, url);
    QFETCH(const std::optional<Kind>, error);
    QCOMPARE(errorOf(get({.url = url})), error);
}

void CurlHttpClientTest::namesItself()
{
    m_faults->route("/agent", FaultResponse::of(text, "x"));
    QVERIFY(get({.url = m_faults->url("/agent")}));
    QCOMPARE(m_faults->requests().constLast().headers.value("user-agent"), "Test/1");
    QVERIFY(get({.url = m_faults->url("/agent?b"), .userAgent = "Other/2"}));
    QCOMPARE(m_faults->requests().constLast().headers.value("user-agent"), "Other/2");
}

void CurlHttpClientTest::staysUsableAfterFaults()
{
    FaultResponse broken = FaultResponse::of(text, "0123456789");
    broken.resetAfter = 3;
    m_faults->route("/broken", broken);
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(errorOf(get({.url = m_faults->url("/broken")})), Kind::Broken);
        const Result result = get({.url = m_nginx->url(u"/here.txt"_s)});
        QVERIFY(result);
        QCOMPARE(result->body, "here");
    }
}

void CurlHttpClientTest::streamsOnItsOwnThread()
{
    FaultResponse response = FaultResponse::of(text, {});
    response.body = {"start", "0123456789", 100'000, "end"};
    m_faults->route("/stream", response);

    QByteArray body;
    std::atomic<int> callsHere = 0;
    const HttpBodySink sink = [&, here = std::this_thread::get_id()](QByteArrayView bytes) {
        callsHere += std::this_thread::get_id() == here ? 1 : 0;
        body.append(bytes);
        return true;
    };
    const Started started(m_client->stream({.url = m_faults->url("/stream")}, sink, {}));
    QTRY_VERIFY(started.isFinished());
    QVERIFY(started.result());
    QVERIFY(started.result()->body.isEmpty());
    QCOMPARE(body, QByteArray("start" + QByteArray("0123456789").repeated(100'000) + "end"));
    QCOMPARE(callsHere.load(), 0);
}

void CurlHttpClientTest::streamsOnlySuccess()
{
    FaultResponse forbidden = FaultResponse::of(text, "no");
    forbidden.status = 403;
    m_faults->route("/forbidden", forbidden);
    std::atomic<int> calls = 0;
    const HttpBodySink sink = [&](QByteArrayView) { return ++calls > 0; };
    const Started started(m_client->stream({.url = m_faults->url("/forbidden")}, sink, {}));
    QTRY_VERIFY(started.isFinished());
    QVERIFY(started.result());
    QCOMPARE(started.result()->status, 403);
    QCOMPARE(calls.load(), 0);
}

void CurlHttpClientTest::sinkMayRefuse()
{
    m_faults->route("/endless", FaultResponse::longLine(RepeatedBody::endless));
    const HttpBodySink sink = [](QByteArrayView) { return false; };
    const Started started(m_client->stream({.url = m_faults->url("/endless")}, sink, {}));
    QTRY_VERIFY(started.isFinished());
    QCOMPARE(errorOf(started.result()), Kind::NotTaken);
}

void CurlHttpClientTest::stopsAtAnyMoment_data()
{
    QTest::addColumn<bool>("isHeld");
    QTest::newRow("before the answer") << true;
    QTest::newRow("within the body") << false;
}

void CurlHttpClientTest::stopsAtAnyMoment()
{
    QFETCH(const bool, isHeld);
    FaultResponse response = FaultResponse::of(text, "0123456789");
    response.stallAfter = 5;
    m_faults->route("/slow", response);
    if (isHeld)
        m_faults->hold("/slow");
    const qsizetype before = m_faults->requestCount("/slow");

    std::stop_source stop;
    const Started started(m_client->get({.url = m_faults->url("/slow")}, stop.get_token()));
    QTRY_COMPARE(m_faults->requestCount("/slow"), before + 1);
    QVERIFY(!started.isFinished());
    stop.request_stop();
    QTRY_VERIFY(started.isFinished());
    QCOMPARE(errorOf(started.result()), Kind::Cancelled);
    QTRY_COMPARE(m_faults->openConnections(), 0);
    m_faults->release("/slow");

    const Started late(m_client->get({.url = m_faults->url("/slow")}, stop.get_token()));
    QVERIFY(late.isFinished());
    QCOMPARE(errorOf(late.result()), Kind::Cancelled);
}

void CurlHttpClientTest::neverCallsSinkAfterStop()
{
    m_faults->route("/endless", FaultResponse::longLine(RepeatedBody::endless));
    for (int i = 0; i < 10; ++i) {
        std::atomic<qint64> received = 0;
        const HttpBodySink sink = [&](QByteArrayView bytes) {
            received += bytes.size();
            return true;
        };
        std::stop_source stop;
        const Started started(
            m_client->stream({.url = m_faults->url("/endless")}, sink, stop.get_token()));
        QTRY_VERIFY(received > 0);
        stop.request_stop();
        QTRY_VERIFY(started.isFinished());
        QCOMPARE(errorOf(started.result()), Kind::Cancelled);
        // One call may have been under way.
        QTRY_COMPARE(m_faults->openConnections(), 0);
        const qint64 atEnd = received;
        QVERIFY(get({.url = m_nginx->url(u"/here.txt"_s)}));
        QCOMPARE(received.load(), atEnd);
    }
}

void CurlHttpClientTest::endsWithItsClient()
{
    m_faults->route("/held", FaultResponse::of(text, "x"));
    m_faults->hold("/held");
    std::stop_source stop;
    const Started started(m_client->get({.url = m_faults->url("/held")}, stop.get_token()));
    const Started another(m_client->get({.url = m_faults->url("/held")}, {}));
    stop.request_stop();
    m_client.reset();
    QVERIFY(started.isFinished());
    QVERIFY(another.isFinished());
    QCOMPARE(errorOf(another.result()), Kind::Cancelled);
    m_faults->release("/held");
}

void CurlHttpClientTest::requestsRunSideBySide()
{
    m_faults->route("/first", FaultResponse::of(text, "1"));
    m_faults->route("/second", FaultResponse::of(text, "2"));
    m_faults->hold("/first");
    const Started first(m_client->get({.url = m_faults->url("/first")}, {}));
    const Started second(m_client->get({.url = m_faults->url("/second")}, {}));
    QTRY_VERIFY(second.isFinished());
    QVERIFY(!first.isFinished());
    m_faults->release("/first");
    QTRY_VERIFY(first.isFinished());
    QCOMPARE(first.result()->body, "1");
}

void CurlHttpClientTest::sinkThatWaitsHoldsUpNobody_data()
{
    QTest::addColumn<bool>("isStopped");
    QTest::newRow("stopped") << true;
    QTest::newRow("with its client") << false;
}

void CurlHttpClientTest::sinkThatWaitsHoldsUpNobody()
{
    QFETCH(const bool, isStopped);
    m_faults->route("/endless", FaultResponse::longLine(RepeatedBody::endless));
    m_faults->route("/body", FaultResponse::of(text, "0123456789"));
    const WaitingSink waiting;
    std::stop_source stop;
    const Started held(
        m_client->stream({.url = m_faults->url("/endless")}, waiting.sink(), stop.get_token()));
    QTRY_COMPARE(waiting.calls(), 1);

    std::atomic<qint64> received = 0;
    const HttpBodySink sink = [&](QByteArrayView bytes) {
        received += bytes.size();
        return true;
    };
    const Started another(m_client->stream({.url = m_faults->url("/body")}, sink, {}));
    QTRY_VERIFY(another.isFinished());
    QVERIFY(another.result());
    QCOMPARE(received.load(), 10);
    QVERIFY(get({.url = m_nginx->url(u"/here.txt"_s)}));
    QVERIFY(!held.isFinished());

    if (isStopped)
        stop.request_stop();
    else
        m_client.reset();
    QVERIFY(held.isFinished());
    QCOMPARE(errorOf(held.result()), Kind::Cancelled);
    QCOMPARE(waiting.calls(), 1);
    waiting.release();
    QTRY_COMPARE(m_faults->openConnections(), 0);
    QCOMPARE(waiting.calls(), 1);
}

void CurlHttpClientTest::slowSinkIsNotTheServersFault()
{
    m_faults->route("/body", FaultResponse::of(text, "0123456789"));
    const WaitingSink waiting;
    HttpRequest request{.url = m_faults->url("/body")};
    request.patience = 20ms;
    const Started started(m_client->stream(request, waiting.sink(), {}));
    QTRY_COMPARE(waiting.calls(), 1);
    QTest::qWait(int(std::chrono::milliseconds(2 * request.patience).count()));
    waiting.release();
    QTRY_VERIFY(started.isFinished());
    QCOMPARE(errorOf(started.result()), std::nullopt);
}

void CurlHttpClientTest::streamsKeepTheirConnection()
{
    CountingServer first;
    CountingServer second;
    const HttpBodySink sink = [](QByteArrayView) { return true; };
    for (int i = 0; i < 10; ++i) {
        const Started one(m_client->stream({.url = first.url()}, sink, {}));
        const Started other(m_client->stream({.url = second.url()}, sink, {}));
        QTRY_VERIFY(one.isFinished() && other.isFinished());
        QVERIFY(one.result() && other.result());
    }
    QCOMPARE(first.connections(), 1);
    QCOMPARE(second.connections(), 1);
}

QTEST_GUILESS_MAIN(CurlHttpClientTest)
#include "tst_curlhttpclient.moc"
