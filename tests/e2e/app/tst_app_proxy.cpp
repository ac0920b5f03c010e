#include "tests/e2e/app/AppWorld.h"
#include "tests/e2e/servers/ProxyServer.h"

#include <QFileInfo>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

using Protocol = ProxyConfiguration::Protocol;

Q_DECLARE_METATYPE(lumaro::ProxyConfiguration::Protocol)

/// Everything that the application loads takes the user's way, through real proxies.
class AppProxyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_world = std::make_unique<AppWorld>(); }
    void cleanup() { m_world.reset(); }

    void everythingTakesTheProxy_data();
    void everythingTakesTheProxy();

private:
    QUrl siteUrl(const QString &path) const { return ProxyServer::siteUrl(*m_site, path); }
    void use(const ProxyConfiguration &proxy);

    std::unique_ptr<NginxServer> m_site;
    std::unique_ptr<AppWorld> m_world;
};

void AppProxyTest::initTestCase()
{
    m_site = valueOrFail(NginxServer::start());
    const MediaFixtures media(QStringLiteral(LUMARO_FIXTURE_FOLDER));
    QVERIFY(
        m_site->publish(QFileInfo(valueOrFail(media.path(Fixture::Hls))).absolutePath(), u"hls"_s));
    QVERIFY(m_site->publish(valueOrFail(media.path(Fixture::Movie)), u"movie.mp4"_s));
    QVERIFY(m_site->writeFile(u"list.m3u"_s, "#EXTM3U\n#EXTINF:-1,One\nmovie.mp4\n"));
}

void AppProxyTest::use(const ProxyConfiguration &proxy)
{
    SnifferProxyManager &settings = m_world->proxy();
    settings.setProxyType(proxy.protocol == Protocol::Socks5
                              ? SnifferProxyManager::ProxyType::Socks5
                              : SnifferProxyManager::ProxyType::Http);
    settings.setHost(proxy.host);
    settings.setPortString(QString::number(proxy.port));
    settings.setUsername(proxy.credential->username);
    settings.setPassword(proxy.credential->password);
    settings.setEnabled(true);
    settings.applyProxyConfiguration(false);
}

void AppProxyTest::everythingTakesTheProxy_data()
{
    QTest::addColumn<Protocol>("protocol");
    QTest::newRow("SOCKS5") << Protocol::Socks5;
    QTest::newRow("HTTP") << Protocol::HttpConnect;
}

void AppProxyTest::everythingTakesTheProxy()
{
    QFETCH(const Protocol, protocol);
    const auto proxy = valueOrFail(
        ProxyServer::start(protocol, ProxyConfiguration::Credential{u"user"_s, u"secret"_s}));
    QVERIFY(proxy);
    const qsizetype before = m_site->sources().size();
    use(proxy->configuration());

    const QUrl stream = siteUrl(u"/hls/master.m3u8"_s);
    m_world->open(stream.toString());
    QVERIFY(m_world->playsTo(0.5));
    m_world->press(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(becomesTrue([&] {
        return m_world->downloads()
                   .manager()
                   ->jobs()
                   .value(M3U8DownloadManager::keyOf(stream))
                   .message
            == u"Saved";
    }));
    m_world->open(siteUrl(u"/list.m3u"_s).toString());
    QVERIFY(becomesTrue([&] { return channelNames(m_world->player()) == QStringList{u"One"_s}; }));
    m_world->shell().playChannel(0);
    QVERIFY(m_world->playsTo(0.5));

    const QStringList sources = m_site->sources().sliced(before);
    QVERIFY(sources.size() > 5);
    for (const QString &source : sources)
        QVERIFY2(source.startsWith(ProxyServer::ownAddress), qPrintable(source));

    m_world->proxy().setEnabled(false);
    m_world->proxy().applyProxyConfiguration(false);
    m_world->open(siteUrl(u"/movie.mp4"_s).toString());
    QVERIFY(becomesTrue([&] { return !m_world->shell().pictureNotice().isEmpty(); }));
    m_world->open(m_site->url(u"/movie.mp4"_s).toString());
    QVERIFY(m_world->playsTo(0.5));
}

LUMARO_APP_TEST_MAIN(AppProxyTest)
#include "tst_app_proxy.moc"
