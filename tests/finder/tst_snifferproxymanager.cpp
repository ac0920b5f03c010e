#include "finder/SnifferProxyManager.h"
#include "tests/fakes/FakeProxyConfigurationTarget.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"
#include "tests/fakes/FakeWebView.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;
using Type = SnifferProxyManager::ProxyType;
using Protocol = ProxyConfiguration::Protocol;

namespace {

struct World
{
    FakeUserDefaults defaults;
    FakeScheduler scheduler;
    FakeProxyConfigurationTarget target;
    std::unique_ptr<SnifferProxyManager> manager;

    World() { open(); }
    void open()
    {
        manager.reset();
        manager = std::make_unique<SnifferProxyManager>(defaults, scheduler, target);
    }
};

} // namespace

class SnifferProxyManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsSettings_data();
    void readsSettings();
    void storesEveryChange();
    void storesPorts_data();
    void storesPorts();
    void configures_data();
    void configures();
    void appliesWhatIsStored();
    void reloadsPages();
    void appliesPresets();
    void logsWhatCannotBeStored();
};

void SnifferProxyManagerTest::readsSettings_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("settings"); // enabled, type, host, port, name, password
    const QString standard = u"0 SOCKS5 127.0.0.1 1080  "_s;
    QTest::newRow("nothing") << u"-"_s << QByteArray() << standard;
    QTest::newRow("on") << u"VarnProxyEnabled"_s << QByteArray("true")
                        << u"1 SOCKS5 127.0.0.1 1080  "_s;
    QTest::newRow("on as text") << u"VarnProxyEnabled"_s << QByteArray("\"true\"") << standard;
    QTest::newRow("two values") << u"VarnProxyEnabled"_s << QByteArray("true,1") << standard;
    QTest::newRow("type") << u"VarnProxyType"_s << QByteArray("\"HTTP / HTTPS\"")
                          << u"0 HTTP / HTTPS 127.0.0.1 1080  "_s;
    QTest::newRow("unknown type") << u"VarnProxyType"_s << QByteArray("\"socks5\"") << standard;
    QTest::newRow("host") << u"VarnProxyHost"_s << QByteArray("\"h\"") << u"0 SOCKS5 h 1080  "_s;
    QTest::newRow("emptied host") << u"VarnProxyHost"_s << QByteArray("\"\"")
                                  << u"0 SOCKS5  1080  "_s;
    QTest::newRow("host is a number") << u"VarnProxyHost"_s << QByteArray("7") << standard;
    QTest::newRow("port") << u"VarnProxyPort"_s << QByteArray("9050")
                          << u"0 SOCKS5 127.0.0.1 9050  "_s;
    QTest::newRow("port 0") << u"VarnProxyPort"_s << QByteArray("0") << standard;
    QTest::newRow("negative port") << u"VarnProxyPort"_s << QByteArray("-5") << standard;
    QTest::newRow("port as text") << u"VarnProxyPort"_s << QByteArray("\"9050\"") << standard;
    QTest::newRow("name") << u"VarnProxyUsername"_s << QByteArray("\"u\"")
                          << u"0 SOCKS5 127.0.0.1 1080 u "_s;
    QTest::newRow("password") << u"VarnProxyPassword"_s << QByteArray("\"\\u00e4\\\"\"")
                              << u"0 SOCKS5 127.0.0.1 1080  ä\""_s;
    QTest::newRow("broken") << u"VarnProxyHost"_s << QByteArray("\"h") << standard;
}

void SnifferProxyManagerTest::readsSettings()
{
    QFETCH(const QString, key);
    QFETCH(const QByteArray, data);
    World world;
    world.defaults.values.insert(key, data);
    world.open();
    const auto &m = *world.manager;
    QTEST((QStringList{QString::number(m.isEnabled()), m.rawValue(m.proxyType()), m.host(),
                       m.portString(), m.username(), m.password()})
              .join(u' '),
          "settings");
}

void SnifferProxyManagerTest::storesEveryChange()
{
    World world;
    QSignalSpy changes(world.manager.get(), &SnifferProxyManager::hostChanged);
    world.manager->setEnabled(true);
    world.manager->setProxyType(Type::Http);
    world.manager->setHost(u" proxy.example "_s);
    world.manager->setHost(u" proxy.example "_s);
    world.manager->setPortString(u"8118"_s);
    world.manager->setUsername(u"user"_s);
    world.manager->setPassword(u"p\n\"\u00e4"_s);
    QCOMPARE(changes.size(), 1);
    world.scheduler.runBackground();
    QCOMPARE(world.defaults.data(u"VarnProxyEnabled"_s), "true");
    QCOMPARE(world.defaults.data(u"VarnProxyType"_s), "\"HTTP / HTTPS\"");
    QCOMPARE(world.defaults.data(u"VarnProxyPort"_s), "8118");
    world.open();
    QCOMPARE(world.manager->isEnabled(), true);
    QCOMPARE(world.manager->proxyType(), Type::Http);
    QCOMPARE(world.manager->host(), u" proxy.example "_s);
    QCOMPARE(world.manager->username(), u"user"_s);
    QCOMPARE(world.manager->password(), u"p\n\"\u00e4"_s);
}

void SnifferProxyManagerTest::storesPorts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("stored"); // after 9050
    QTest::newRow("spaces") << u" 1081\n"_s << u"1081"_s;
    QTest::newRow("plus") << u"+1081"_s << u"1081"_s;
    QTest::newRow("minus") << u"-1"_s << u"-1"_s;
    QTest::newRow("leading zeros") << u"0080"_s << u"80"_s;
    QTest::newRow("beyond ports") << u"70000"_s << u"70000"_s;
    QTest::newRow("empty") << QString() << u"9050"_s;
    QTest::newRow("word") << u"socks"_s << u"9050"_s;
    QTest::newRow("fraction") << u"10.5"_s << u"9050"_s;
    QTest::newRow("grouped") << u"1 080"_s << u"9050"_s;
    QTest::newRow("hexadecimal") << u"0x50"_s << u"9050"_s;
    QTest::newRow("sign alone") << u"+"_s << u"9050"_s;
    QTest::newRow("two signs") << u"+-1"_s << u"9050"_s;
    QTest::newRow("other digits") << u"١٠٨٠"_s << u"9050"_s;
    QTest::newRow("endless") << QString(30, u'9') << u"9050"_s;
}

void SnifferProxyManagerTest::storesPorts()
{
    QFETCH(const QString, text);
    World world;
    world.manager->setPortString(u"9050"_s);
    world.manager->setPortString(text);
    QCOMPARE(world.manager->portString(), text);
    world.manager.reset();
    QTEST(QString::fromLatin1(world.defaults.data(u"VarnProxyPort"_s).value()), "stored");
}

void SnifferProxyManagerTest::configures_data()
{
    QTest::addColumn<Type>("type");
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("port");
    QTest::addColumn<QString>("username");
    QTest::addColumn<QList<ProxyConfiguration>>("configurations");
    const QString local = u"127.0.0.1"_s;
    const QList<ProxyConfiguration> direct;
    QTest::newRow("SOCKS5") << Type::Socks5 << local << u"1080"_s << QString()
                            << QList{ProxyConfiguration{Protocol::Socks5, local, 1080, {}}};
    QTest::newRow("HTTP with a name")
        << Type::Http << u" proxy.example\n"_s << u" 8080 "_s << u" u "_s
        << QList{ProxyConfiguration{
               Protocol::HttpConnect, u"proxy.example"_s, 8080, {{u" u "_s, u"secret"_s}}}};
    QTest::newRow("name of spaces")
        << Type::Socks5 << local << u"65535"_s << u"  "_s
        << QList{ProxyConfiguration{Protocol::Socks5, local, 65535, {}}};
    QTest::newRow("IPv6") << Type::Socks5 << u"::1"_s << u"1"_s << QString()
                          << QList{ProxyConfiguration{Protocol::Socks5, u"::1"_s, 1, {}}};
    QTest::newRow("IPv6 in brackets")
        << Type::Http << u"[::1]"_s << u"1"_s << QString()
        << QList{ProxyConfiguration{Protocol::HttpConnect, u"::1"_s, 1, {}}};
    QTest::newRow("no host") << Type::Socks5 << u" "_s << u"1080"_s << QString() << direct;
    QTest::newRow("impossible host")
        << Type::Socks5 << u"a b/c"_s << u"1080"_s << QString() << direct;
    QTest::newRow("no port") << Type::Socks5 << local << QString() << QString() << direct;
    QTest::newRow("word") << Type::Http << local << u"http"_s << QString() << direct;
    QTest::newRow("port 0") << Type::Http << local << u"0"_s << QString() << direct;
    QTest::newRow("port 65536") << Type::Http << local << u"65536"_s << QString() << direct;
    QTest::newRow("negative") << Type::Http << local << u"-1080"_s << QString() << direct;
}

void SnifferProxyManagerTest::configures()
{
    QFETCH(const Type, type);
    QFETCH(const QString, host);
    QFETCH(const QString, port);
    QFETCH(const QString, username);
    World world;
    auto &m = *world.manager;
    m.setProxyType(type);
    m.setHost(host);
    m.setPortString(port);
    m.setUsername(username);
    m.setPassword(u"secret"_s);
    m.applyProxyConfiguration(false);
    QCOMPARE(world.target.applied.last(), QList<ProxyConfiguration>());
    m.setEnabled(true);
    m.applyProxyConfiguration(false);
    QTEST(world.target.applied.last(), "configurations");
}

void SnifferProxyManagerTest::appliesWhatIsStored()
{
    World world;
    QCOMPARE(world.target.applied.value(0), QList<ProxyConfiguration>());
    world.manager->setEnabled(true);
    // A setting alone changes nothing yet.
    QCOMPARE(world.target.applied.size(), 1);
    world.open();
    QCOMPARE(world.target.applied.last().size(), 1);
}

void SnifferProxyManagerTest::reloadsPages()
{
    World world;
    FakeWebView page(u"https://a.example"_s);
    FakeWebView blank(u"about:blank"_s);
    FakeWebView empty;
    auto gone = std::make_unique<FakeWebView>(u"https://b.example"_s);
    auto closing = std::make_unique<FakeWebView>(u"https://c.example"_s);
    page.reloaded = [&closing] { closing.reset(); };
    for (FakeWebView *view : {&page, &blank, &empty, gone.get(), closing.get(), &page})
        world.manager->registerWebView(view);
    gone.reset();
    world.manager->applyProxyConfiguration(false);
    QCOMPARE(page.log, QStringList());
    world.manager->applyProxyConfiguration(true);
    QCOMPARE(page.log, QStringList{u"reload"_s});
    QCOMPARE(blank.log + empty.log, QStringList());
}

void SnifferProxyManagerTest::appliesPresets()
{
    World world;
    FakeWebView page(u"https://a.example"_s);
    world.manager->registerWebView(&page);
    world.manager->applyPreset(Type::Http, u"localhost"_s, 8118);
    QCOMPARE(world.target.applied.last().size(), 0);
    QCOMPARE(page.log, QStringList());
    world.manager->setEnabled(true);
    world.manager->applyPreset(Type::Socks5, u"127.0.0.1"_s, 9050);
    QCOMPARE(world.target.applied.last(),
             QList{ProxyConfiguration(Protocol::Socks5, u"127.0.0.1"_s, 9050, {})});
    QCOMPARE(page.log, QStringList{u"reload"_s});
    world.open();
    QCOMPARE(world.manager->portString(), u"9050"_s);
}

void SnifferProxyManagerTest::logsWhatCannotBeStored()
{
    World world;
    world.defaults.failure = UserDefaultsError{UserDefaultsError::Kind::NoSpace};
    world.manager->setHost(u"h"_s);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"VarnProxyHost.*no space"_s));
    world.scheduler.runBackground();
    QCOMPARE(world.manager->host(), u"h"_s);
}

QTEST_GUILESS_MAIN(SnifferProxyManagerTest)
#include "tst_snifferproxymanager.moc"
