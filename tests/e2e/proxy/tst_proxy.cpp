#include "platform/curl/CurlHttpClient.h"
#include "platform/posix/LoopbackPeer.h"
#include "platform/relay/ProxyRelay.h"
#include "tests/e2e/servers/FreePort.h"
#include "tests/e2e/servers/NginxServer.h"
#include "tests/e2e/servers/ProxyServer.h"
#include "tests/e2e/servers/RunningRequest.h"
#include "tests/e2e/servers/ValueOrFail.h"

#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

using Protocol = ProxyConfiguration::Protocol;
using Credential = ProxyConfiguration::Credential;

Q_DECLARE_METATYPE(lumaro::ConnectionFailure)
Q_DECLARE_METATYPE(lumaro::ProxyConfiguration::Protocol)
Q_DECLARE_METATYPE(std::optional<lumaro::ProxyConfiguration::Protocol>)
Q_DECLARE_METATYPE(std::optional<lumaro::ProxyConfiguration::Credential>)

namespace {

const Credential rightCredential{u"user"_s, u"secret word"_s};
constexpr qsizetype largeSize = 20'000'000;

const Credential wrongCredential{u"user"_s, u"guess"_s};

/// A server that answers every connection with the same bytes.
class Babbler : public QTcpServer
{
public:
    explicit Babbler(const QByteArray &answer)
    {
        connect(this, &QTcpServer::newConnection, this, [this, answer] {
            QTcpSocket *const socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, socket, [socket, answer] {
                socket->write(answer);
                socket->disconnectFromHost();
            });
        });
        listen(QHostAddress::LocalHost);
    }
};

/// Empty for what is no good answer.
QByteArray bodyOf(const QByteArray &answer)
{
    const qsizetype end = answer.indexOf("\r\n\r\n");
    const bool isGood = end >= 0 && answer.startsWith("HTTP/1.1 200 ");
    return isGood ? answer.sliced(end + 4) : QByteArray();
}

/// What comes until the other side closes.
QByteArray answerOn(QTcpSocket &socket)
{
    const bool isEnded = QTest::qWaitFor(
        [&socket] { return socket.state() == QAbstractSocket::UnconnectedState; }, 20'000);
    return isEnded ? socket.readAll() : QByteArray("no answer");
}

ProxyConfiguration localProxy(Protocol protocol, quint16 port)
{
    return {protocol, u"127.0.0.1"_s, port, std::nullopt};
}

} // namespace

/// Requests through real proxies, by the HTTP client and by the relay for everybody else.
class ProxyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void goesThroughTheProxy_data();
    void goesThroughTheProxy();
    void failsWithTheProxy_data();
    void failsWithTheProxy();
    void keepsTheProxysQuestionToItself();
    void remembersWhyItFailed_data();
    void remembersWhyItFailed();
    void goesThroughTheDesktopsProxyWithoutAnother();
    void changesWhileInUse();
    void thisMachineNeedsNoProxy();
    void servesNobodyElse();
    void keepsUpWithALargeAnswer_data();
    void keepsUpWithALargeAnswer();

private:
    QUrl siteUrl(const QString &path) const { return ProxyServer::siteUrl(*m_site, path); }
    QByteArray fetched(CurlHttpClient &client, const QUrl &url);
    /// The whole answer of the relay to a request for `url`.
    QByteArray answered(const QUrl &url);
    /// What `url` answers by way of the relay.
    QByteArray relayed(const QUrl &url);
    /// The same through a tunnel, as for https; empty when there is none.
    QByteArray tunnelled(const QUrl &url);

    std::unique_ptr<NginxServer> m_site;
    std::unique_ptr<ProxyRelay> m_relay;
    qsizetype m_seen = 0;
};

void ProxyTest::initTestCase()
{
    m_site = valueOrFail(NginxServer::start());
    QVERIFY(m_site && m_site->writeFile(u"page"_s, "Hello."));
    QVERIFY(m_site->writeFile(u"large"_s, QByteArray(largeSize, 'x')));
    m_relay = std::make_unique<ProxyRelay>(&isOwnLoopbackPeer);
    QVERIFY(m_relay->port() != 0);
}

void ProxyTest::cleanup()
{
    m_relay->setUpstream({});
    m_seen = m_site->sources().size();
}

QByteArray ProxyTest::fetched(CurlHttpClient &client, const QUrl &url)
{
    const RunningRequest request(client.get({.url = url, .patience = 10s}, {}));
    if (!QTest::qWaitFor([&] { return request.isFinished(); }, 20'000))
        return "no answer";
    const auto &result = request.result();
    return result && result->status == 200 ? result->body : QByteArray();
}

QByteArray ProxyTest::answered(const QUrl &url)
{
    QTcpSocket socket;
    socket.setProxy(QNetworkProxy::NoProxy);
    socket.connectToHost(QHostAddress::LocalHost, m_relay->port());
    socket.write("GET " + url.toEncoded() + " HTTP/1.1\r\nHost: " + url.authority().toUtf8()
                 + "\r\n\r\n");
    return answerOn(socket);
}

QByteArray ProxyTest::relayed(const QUrl &url)
{
    return bodyOf(answered(url));
}

QByteArray ProxyTest::tunnelled(const QUrl &url)
{
    QTcpSocket socket;
    socket.setProxy({QNetworkProxy::HttpProxy, u"127.0.0.1"_s, m_relay->port()});
    socket.connectToHost(url.host(), quint16(url.port()));
    socket.write("GET " + url.path().toUtf8() + " HTTP/1.0\r\n\r\n");
    return bodyOf(answerOn(socket));
}

void ProxyTest::goesThroughTheProxy_data()
{
    QTest::addColumn<Protocol>("protocol");
    QTest::addColumn<std::optional<Credential>>("credential");
    const std::optional<Credential> none;
    QTest::newRow("SOCKS5") << Protocol::Socks5 << none;
    QTest::newRow("SOCKS5 with a credential") << Protocol::Socks5 << std::optional(rightCredential);
    QTest::newRow("HTTP") << Protocol::HttpConnect << none;
    QTest::newRow("HTTP with a credential")
        << Protocol::HttpConnect << std::optional(Credential{u"user"_s, u"secret"_s});
}

void ProxyTest::goesThroughTheProxy()
{
    QFETCH(const Protocol, protocol);
    QFETCH(const std::optional<Credential>, credential);
    const auto proxy = valueOrFail(ProxyServer::start(protocol, credential));
    QVERIFY(proxy);
    CurlHttpClient client("Test/1");
    client.setProxy(proxy->configuration());
    QCOMPARE(fetched(client, siteUrl(u"/page"_s)), "Hello.");

    m_relay->setUpstream(proxy->configuration());
    QCOMPARE(relayed(siteUrl(u"/page"_s)), "Hello.");
    QCOMPARE(tunnelled(siteUrl(u"/page"_s)), "Hello.");
    const QString source = ProxyServer::ownAddress + u" /page"_s;
    QTRY_COMPARE(m_site->sources().sliced(m_seen), QStringList(3, source));
}

void ProxyTest::failsWithTheProxy_data()
{
    QTest::addColumn<Protocol>("protocol");
    QTest::addColumn<QByteArray>("answer");
    for (const auto &[name, protocol] :
         {std::pair("SOCKS5", Protocol::Socks5), std::pair("HTTP", Protocol::HttpConnect)}) {
        QTest::addRow("%s, nobody there", name) << protocol << QByteArray();
        QTest::addRow("%s, garbage", name) << protocol << QByteArray("\x01\x02garbage\r\n\r\n");
        QTest::addRow("%s, refuses", name)
            << protocol
            << (protocol == Protocol::Socks5 ? QByteArray("\x05\xff")
                                             : QByteArray("HTTP/1.1 403 Forbidden\r\n\r\n"));
    }
}

void ProxyTest::failsWithTheProxy()
{
    QFETCH(const Protocol, protocol);
    QFETCH(const QByteArray, answer);
    Babbler server(answer);
    const ProxyConfiguration proxy = localProxy(protocol, server.serverPort());
    if (answer.isEmpty())
        server.close();
    const QUrl url = siteUrl(u"/page"_s);
    CurlHttpClient client("Test/1");
    client.setProxy(proxy);
    QCOMPARE(fetched(client, url), QByteArray());
    m_relay->setUpstream(proxy);
    QCOMPARE(relayed(url), QByteArray());
    QCOMPARE(tunnelled(url), QByteArray());
}

void ProxyTest::keepsTheProxysQuestionToItself()
{
    const Babbler server("HTTP/1.1 407 Proxy Authentication Required\r\n"
                         "Proxy-Authenticate: Basic realm=\"p\"\r\nContent-Length: 0\r\n\r\n");
    m_relay->setUpstream(localProxy(Protocol::HttpConnect, server.serverPort()));
    const QByteArray answer = answered(siteUrl(u"/page"_s));
    QVERIFY2(answer.startsWith("HTTP/1.1 502 "), answer);
    QCOMPARE(tunnelled(siteUrl(u"/page"_s)), QByteArray());
}

void ProxyTest::remembersWhyItFailed_data()
{
    using enum ConnectionFailure;
    QTest::addColumn<std::optional<Protocol>>("protocol"); // of the proxy between
    QTest::addColumn<QByteArray>("answer"); // of that proxy; empty when nobody is there
    QTest::addColumn<ConnectionFailure>("failure");
    const std::optional<Protocol> none;
    const std::optional socks = Protocol::Socks5;
    const std::optional http = Protocol::HttpConnect;
    QTest::newRow("nobody there") << none << QByteArray() << Unreachable;
    QTest::newRow("no proxy there") << socks << QByteArray() << Proxy;
    QTest::newRow("no HTTP proxy there") << http << QByteArray() << Proxy;
    QTest::newRow("proxy refuses") << socks << QByteArray("\x05\xff") << Proxy;
    QTest::newRow("proxy cannot reach it")
        << socks << QByteArray("\x05\0\x05\x04", 4) << Unreachable;
    QTest::newRow("proxy asks for a password")
        << http << QByteArray("HTTP/1.1 407 Who?\r\n\r\n") << Proxy;
}

void ProxyTest::remembersWhyItFailed()
{
    QFETCH(const std::optional<Protocol>, protocol);
    QFETCH(const QByteArray, answer);
    const QUrl url(u"http://0.0.0.0:%1/"_s.arg(freePort()));
    Babbler server(answer);
    const quint16 port = server.serverPort();
    if (answer.isEmpty())
        server.close();
    if (protocol)
        m_relay->setUpstream(localProxy(*protocol, port));
    QVERIFY(!m_relay->failures().of(url));
    for (const auto &ask : {&ProxyTest::relayed, &ProxyTest::tunnelled}) {
        QCOMPARE((this->*ask)(url), QByteArray());
        QVERIFY(m_relay->failures().of(url));
        QTEST(*m_relay->failures().of(url), "failure");
        QVERIFY(!m_relay->failures().of(QUrl(u"http://0.0.0.0/"_s)));
        // Once it can be reached, that is over.
        m_relay->setUpstream({});
        QTcpServer there;
        QVERIFY(there.listen(QHostAddress::LocalHost, quint16(url.port())));
        connect(&there, &QTcpServer::newConnection, this,
                [&there] { there.nextPendingConnection()->disconnectFromHost(); });
        QCOMPARE((this->*ask)(url), QByteArray());
        QVERIFY(!m_relay->failures().of(url));
        if (protocol)
            m_relay->setUpstream(localProxy(*protocol, port));
    }
}

void ProxyTest::goesThroughTheDesktopsProxyWithoutAnother()
{
    const auto proxy = valueOrFail(ProxyServer::start(Protocol::HttpConnect));
    QVERIFY(proxy);
    qputenv("http_proxy", "http://127.0.0.1:" + QByteArray::number(proxy->configuration().port));
    const auto clear = qScopeGuard([] { qunsetenv("http_proxy"); });
    QCOMPARE(relayed(siteUrl(u"/page"_s)), "Hello.");
    QTRY_COMPARE(m_site->sources().sliced(m_seen),
                 QStringList{ProxyServer::ownAddress + u" /page"_s});
    // The user's own comes first.
    m_relay->setUpstream(localProxy(Protocol::Socks5, 9));
    QCOMPARE(relayed(siteUrl(u"/page"_s)), QByteArray());
}

void ProxyTest::changesWhileInUse()
{
    const auto first = valueOrFail(ProxyServer::start(Protocol::Socks5, rightCredential));
    QVERIFY(first);
    m_relay->setUpstream(first->configuration());
    QTcpSocket socket;
    socket.setProxy({QNetworkProxy::HttpProxy, u"127.0.0.1"_s, m_relay->port()});
    socket.connectToHost(QString::fromUtf16(ProxyServer::siteName), m_site->port());
    QTRY_COMPARE(socket.state(), QAbstractSocket::ConnectedState);

    auto wrong = first->configuration();
    wrong.credential = wrongCredential;
    m_relay->setUpstream(wrong);
    QTRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(relayed(siteUrl(u"/page"_s)), QByteArray());

    m_relay->setUpstream(first->configuration());
    QCOMPARE(relayed(siteUrl(u"/page"_s)), "Hello.");
    first->stop();
    QCOMPARE(relayed(siteUrl(u"/page"_s)), QByteArray());
}

void ProxyTest::thisMachineNeedsNoProxy()
{
    const ProxyConfiguration nobody = localProxy(Protocol::Socks5, 9);
    CurlHttpClient client("Test/1");
    client.setProxy(nobody);
    m_relay->setUpstream(nobody);
    const QUrl url = m_site->url(u"/page"_s);
    QCOMPARE(fetched(client, url), "Hello.");
    QCOMPARE(relayed(url), "Hello.");
    QCOMPARE(tunnelled(url), "Hello.");
    QTRY_COMPARE(m_site->sources().sliced(m_seen), QStringList(3, u"127.0.0.1 /page"_s));
}

void ProxyTest::servesNobodyElse()
{
    // Reads what the relay has for it and says so.
    const QString script = u"exec 3<>/dev/tcp/127.0.0.1/%1; printf 'GET %2 HTTP/1.1\\r\\n\\r\\n' "
                           ">&3; cat <&3; echo end"_s.arg(QString::number(m_relay->port()),
                                                          m_site->url(u"/page"_s).toString());
    ChildProcess stranger;
    const QTemporaryDir folder;
    const QString log = folder.filePath(u"log"_s);
    QVERIFY(stranger.start(u"bash"_s, {u"-c"_s, script}, {.logFile = log}));
    QVERIFY(QTest::qWaitFor([&] { return !stranger.isRunning(); }, 20'000));
    QFile said(log);
    QVERIFY(said.open(QIODevice::ReadOnly));
    const QByteArray text = said.readAll();
    QVERIFY2(!text.contains("Hello."), text);
    QCOMPARE(m_site->sources().size(), m_seen);
}

void ProxyTest::keepsUpWithALargeAnswer_data()
{
    QTest::addColumn<Protocol>("protocol");
    QTest::newRow("SOCKS5") << Protocol::Socks5;
    QTest::newRow("HTTP") << Protocol::HttpConnect;
}

void ProxyTest::keepsUpWithALargeAnswer()
{
    QFETCH(const Protocol, protocol);
    const auto proxy = valueOrFail(ProxyServer::start(protocol));
    QVERIFY(proxy);
    m_relay->setUpstream(proxy->configuration());
    QCOMPARE(relayed(siteUrl(u"/large"_s)).size(), largeSize);
    QCOMPARE(tunnelled(siteUrl(u"/large"_s)).size(), largeSize);
}

QTEST_GUILESS_MAIN(ProxyTest)
#include "tst_proxy.moc"
