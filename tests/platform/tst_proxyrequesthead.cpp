#include "platform/relay/ProxyRequestHead.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

/// Reading what clients ask a proxy for, and saying it again.
class ProxyRequestHeadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goesOn_data();
    void goesOn();
    void refuses_data();
    void refuses();
};

void ProxyRequestHeadTest::goesOn_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QString>("host");
    QTest::addColumn<int>("port");
    QTest::addColumn<QByteArray>("forServer");
    QTest::addColumn<QByteArray>("forProxy");
    QTest::newRow("plain") << "GET http://site/a%2Fb?c=%20d HTTP/1.1\r\nHost: site\r\n\r\n"_ba
                           << u"site"_s << 80
                           << "GET /a%2Fb?c=%20d HTTP/1.1\r\nHost: site\r\nConnection: close"
                              "\r\n\r\n"_ba
                           << "GET http://site/a%2Fb?c=%20d HTTP/1.1\r\nHost: site\r\n"
                              "Connection: close\r\nProxy-Authorization: Basic dTpww7Y=\r\n\r\n"_ba;
    QTest::newRow("for the proxy only")
        << "HEAD http://site:81 HTTP/1.0\r\nPROXY-Connection: keep-alive\r\nX: 1\r\n"
           "proxy-authorization : Basic abc\r\nConnection: keep-alive\r\n\r\n"_ba
        << u"site"_s << 81 << "HEAD / HTTP/1.0\r\nX: 1\r\nConnection: close\r\n\r\n"_ba
        << "HEAD http://site:81 HTTP/1.0\r\nX: 1\r\nConnection: close\r\n"
           "Proxy-Authorization: Basic dTpww7Y=\r\n\r\n"_ba;
    QTest::newRow("tunnel") << "CONNECT [::1]:443 HTTP/1.1\r\nHost: [::1]:443\r\n\r\n"_ba
                            << u"::1"_s << 443 << QByteArray()
                            << "CONNECT [::1]:443 HTTP/1.1\r\nHost: [::1]:443\r\n"
                               "Proxy-Authorization: Basic dTpww7Y=\r\n\r\n"_ba;
}

void ProxyRequestHeadTest::goesOn()
{
    QFETCH(const QByteArray, head);
    QFETCH(const QByteArray, forServer);
    const auto request = ProxyRequestHead::read(head);
    QVERIFY(request);
    QTEST(request->host(), "host");
    QTEST(int(request->port()), "port");
    QCOMPARE(request->isTunnel(), forServer.isEmpty());
    if (!request->isTunnel())
        QCOMPARE(request->forServer(), forServer);
    QTEST(request->forProxy(ProxyConfiguration::Credential{u"u"_s, u"pö"_s}), "forProxy");
    QVERIFY(!request->forProxy({}).contains("Authorization"));
}

void ProxyRequestHeadTest::refuses_data()
{
    QTest::addColumn<QByteArray>("head");
    for (const char *line :
         {"", "GET", "GET / HTTP/1.1", "GET http://site/", "GET http://site/ HTTP/2",
          "GET http://site/ HTTP/1.1 x", "GET https://site/ HTTP/1.1", "GET ftp://site/ HTTP/1.1",
          "GET http:///x HTTP/1.1", "GET http://site:0/ HTTP/1.1", "CONNECT site HTTP/1.1",
          "CONNECT site:443/x HTTP/1.1", "CONNECT u@site:443 HTTP/1.1", "CONNECT :443 HTTP/1.1",
          "CONNECT site:99999 HTTP/1.1", "GET http://site/ HTTP/1.1\r\nX: a\rb",
          "GET http://site/ HTTP/1.1\nX: a", "\x16\x03\x01"})
        QTest::newRow(line) << QByteArray(line) + "\r\n\r\n";
    QTest::newRow("unfinished") << "GET http://site/ HTTP/1.1\r\n"_ba;
}

void ProxyRequestHeadTest::refuses()
{
    QFETCH(const QByteArray, head);
    QVERIFY(!ProxyRequestHead::read(head));
}

QTEST_APPLESS_MAIN(ProxyRequestHeadTest)
#include "tst_proxyrequesthead.moc"
