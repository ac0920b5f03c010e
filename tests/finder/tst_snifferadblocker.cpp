#include "finder/SnifferAdBlocker.h"
#include "tests/fakes/FakeContentRuleListStore.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"
#include "tests/fakes/FakeWebView.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QString enabledKey = u"VarnAdBlockerEnabled"_s;
const QString domainsKey = u"VarnAdBlockerUserDomains"_s;
const QString on = u"window.__varnAdBlockerEnabled = true;"_s;
const QString off = u"window.__varnAdBlockerEnabled = false;"_s;

struct World
{
    FakeUserDefaults defaults;
    FakeScheduler scheduler;
    FakeContentRuleListStore store;
    std::unique_ptr<SnifferAdBlocker> blocker;

    explicit World(const QByteArray &domains = {})
    {
        if (!domains.isEmpty())
            defaults.values.insert(domainsKey, domains);
        open();
    }
    void open()
    {
        blocker.reset();
        blocker = std::make_unique<SnifferAdBlocker>(defaults, scheduler, store);
    }
    QJsonArray rules() const
    {
        return QJsonDocument::fromJson(blocker->generateRulesJSON().toUtf8()).array();
    }
};

QString filterOf(const QJsonValue &rule)
{
    return rule[u"trigger"][u"url-filter"].toString();
}

} // namespace

class SnifferAdBlockerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsSettings_data();
    void readsSettings();
    void keepsUnreadableDomains();
    void addsDomains_data();
    void addsDomains();
    void refusesWhatIsThere();
    void storesDomains();
    void generatesDomainRule_data();
    void generatesDomainRule();
    void compilesAtFirst();
    void newestCompilationCounts();
    void failedCompilationKeepsRules();
    void switchesEveryView();
    void compilesAgainWhenNothingIsCompiled();
    void reloadsAfterChange();
    void recognisesAds_data();
    void recognisesAds();
    void recognisesRedirects_data();
    void recognisesRedirects();
    void comparesSites_data();
    void comparesSites();
    void endsWhileCompiling();
};

void SnifferAdBlockerTest::readsSettings_data()
{
    QTest::addColumn<QByteArray>("enabled");
    QTest::addColumn<bool>("isEnabled");
    QTest::newRow("absent") << QByteArray() << true;
    QTest::newRow("off") << QByteArray("false") << false;
    QTest::newRow("on") << QByteArray("true") << true;
    QTest::newRow("number") << QByteArray("0") << true;
    QTest::newRow("text") << QByteArray("\"false\"") << true;
    QTest::newRow("broken") << QByteArray("fal") << true;
}

void SnifferAdBlockerTest::readsSettings()
{
    QFETCH(const QByteArray, enabled);
    World world;
    if (!enabled.isNull())
        world.defaults.values.insert(enabledKey, enabled);
    world.open();
    QTEST(world.blocker->isEnabled(), "isEnabled");
    world.blocker->setEnabled(!world.blocker->isEnabled());
    world.open();
    QTEST(!world.blocker->isEnabled(), "isEnabled");
}

void SnifferAdBlockerTest::keepsUnreadableDomains()
{
    for (const QByteArray data : {"[\"a.example\",7]", "{}", "[\"a", "7"}) {
        const World world(data);
        QCOMPARE(world.blocker->blockedDomains(), QStringList());
        QCOMPARE(world.defaults.setAsideValues, QList{data});
    }
    World world(R"(["a.example","", " ","b.example"])");
    QCOMPARE(world.blocker->blockedDomains(), (QStringList{u"a.example"_s, u"b.example"_s}));
    QCOMPARE(world.defaults.setAsideValues.size(), 0);

    world.defaults.values.insert(domainsKey, "rescue me");
    world.defaults.failure = UserDefaultsError{};
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(domainsKey));
    world.open();
    world.defaults.failure.reset();
    QVERIFY(world.blocker->addDomain(u"c.example"_s));
    world.scheduler.runBackground();
    QCOMPARE(world.defaults.data(domainsKey), "rescue me");
}

void SnifferAdBlockerTest::addsDomains_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("domain"); // empty: refused
    QTest::newRow("domain") << u" Ads.Example\n"_s << u"ads.example"_s;
    QTest::newRow("full address") << u"HTTPS://WWW.Ads.EXAMPLE:8080/Path?q=1"_s << u"ads.example"_s;
    QTest::newRow("www alone is no prefix") << u"www2.ads.example"_s << u"www2.ads.example"_s;
    QTest::newRow("www once") << u"www.www.ads.example"_s << u"www.ads.example"_s;
    QTest::newRow("without scheme") << u"//ads.example/x"_s << u"ads.example"_s;
    QTest::newRow("another scheme") << u"ftp://ads.example/x"_s << u"ads.example"_s;
    QTest::newRow("path without scheme stays") << u"ads.example/x"_s << u"ads.example/x"_s;
    QTest::newRow("IPv4") << u"http://10.0.0.1/x"_s << u"10.0.0.1"_s;
    QTest::newRow("other script") << u"Bücher.example"_s << u"xn--bcher-kva.example"_s;
    QTest::newRow("other script in an address")
        << u"https://bücher.example/"_s << u"xn--bcher-kva.example"_s;
    QTest::newRow("no dot") << u"localhost"_s << QString();
    QTest::newRow("address without a dot") << u"http://localhost/a.b"_s << QString();
    QTest::newRow("only www") << u"www.com"_s << QString();
    QTest::newRow("empty") << u" "_s << QString();
    QTest::newRow("wildcard") << u"*.ads.example"_s << u"*.ads.example"_s;
    QTest::newRow("regular expression") << u"(ads.example"_s << u"(ads.example"_s;
    QTest::newRow("port in an address") << u"http://ads.example:81"_s << u"ads.example"_s;
    QTest::newRow("port without scheme") << u"ads.example:81"_s << u"ads.example:81"_s;
    QTest::newRow("longest") << QString(1023, u'x') + u'.' << QString(1023, u'x') + u'.';
    QTest::newRow("too long") << QString(10'000, u'x') + u".com" << QString();
    QTest::newRow("two words") << u"ads.example evil.example"_s << QString();
    QTest::newRow("control character") << u"ads\u0001.example"_s << QString();
    QTest::newRow("not a host in any script") << u"\u202e.example x"_s << QString();
}

void SnifferAdBlockerTest::addsDomains()
{
    QFETCH(const QString, text);
    QFETCH(const QString, domain);
    World world;
    QSignalSpy changes(world.blocker.get(), &SnifferAdBlocker::blockedDomainsChanged);
    const auto compilations = world.store.sources.size();
    QCOMPARE(world.blocker->addDomain(text), !domain.isEmpty());
    QCOMPARE(world.blocker->blockedDomains(),
             domain.isEmpty() ? QStringList() : QStringList{domain});
    QCOMPARE(changes.size(), domain.isEmpty() ? 0 : 1);
    QCOMPARE(world.store.sources.size() - compilations, domain.isEmpty() ? 0 : 1);
}

void SnifferAdBlockerTest::refusesWhatIsThere()
{
    World world;
    QVERIFY(world.blocker->addDomain(u"HTTPS://WWW.ADS.EXAMPLE/PATH"_s));
    QVERIFY(!world.blocker->addDomain(u"HTTPS://WWW.ADS.EXAMPLE/PATH"_s));
    QVERIFY(!world.blocker->addDomain(u"ads.example"_s));
    QCOMPARE(world.blocker->blockedDomains(), QStringList{u"ads.example"_s});
}

void SnifferAdBlockerTest::storesDomains()
{
    World world;
    for (const QString &domain : {u"b.example"_s, u"a.example"_s, u"c.example"_s})
        world.blocker->addDomain(domain);
    world.blocker->removeDomain(u"a.example"_s);
    QSignalSpy changes(world.blocker.get(), &SnifferAdBlocker::blockedDomainsChanged);
    world.blocker->removeDomain(u"a.example"_s);
    QCOMPARE(changes.size(), 0);
    world.scheduler.runBackground();
    QCOMPARE(world.defaults.data(domainsKey), R"(["b.example","c.example"])");
    world.open();
    QCOMPARE(world.blocker->blockedDomains(), (QStringList{u"b.example"_s, u"c.example"_s}));
    world.blocker->removeAllDomains();
    world.open();
    QCOMPARE(world.blocker->blockedDomains(), QStringList());
}

void SnifferAdBlockerTest::generatesDomainRule_data()
{
    QTest::addColumn<QByteArray>("domains");
    QTest::addColumn<QString>("filter"); // empty: no rule
    QTest::newRow("one") << QByteArray(R"(["a.b.example"])") << uR"(.*(a\.b\.example).*)"_s;
    QTest::newRow("three, one blank")
        << QByteArray(R"(["a.example"," ","b.example "])") << uR"(.*(a\.example|b\.example).*)"_s;
    QTest::newRow("regular expression") << QByteArray(R"(["a|b.example","^$*+?()[]{}\\.x"])")
                                        << uR"(.*(a\|b\.example|\^\$\*\+\?\(\)\[\]\{\}\\\.x).*)"_s;
    QTest::newRow("not usable") << QByteArray(R"(["a.example","b c.example","d.\u0001"])")
                                << uR"(.*(a\.example).*)"_s;
    QTest::newRow("as addresses spell it") << QByteArray("[\"B\xC3\xBC"
                                                         "cher.Example\"]")
                                           << uR"(.*(xn--bcher-kva\.example).*)"_s;
    QTest::newRow("only blanks") << QByteArray(R"([" ","\n"])") << QString();
}

void SnifferAdBlockerTest::generatesDomainRule()
{
    QFETCH(const QByteArray, domains);
    QFETCH(const QString, filter);
    const World world(domains);
    QCOMPARE(world.rules().size(), filter.isEmpty() ? 2 : 3);
    if (!filter.isEmpty())
        QCOMPARE(filterOf(world.rules().first()), filter);
}

void SnifferAdBlockerTest::compilesAtFirst()
{
    World world;
    FakeWebView view;
    QCOMPARE(world.store.identifiers, QList{u"VarnAdBlocker"_s});
    QVERIFY(world.blocker->isCompiling());
    world.blocker->registerAndApply(&view);
    QCOMPARE(view.lists.size(), 0);
    QCOMPARE(world.store.sources.size(), 1);
    const auto list = world.store.succeed();
    QVERIFY(!world.blocker->isCompiling());
    QCOMPARE(view.lists, QList{list});
    // Registering again makes no second entry.
    world.blocker->registerAndApply(&view);
    QCOMPARE(view.lists, QList{list});
    QCOMPARE(view.log, QStringList());
}

void SnifferAdBlockerTest::newestCompilationCounts()
{
    World world;
    FakeWebView view;
    world.blocker->registerAndApply(&view);
    world.blocker->addDomain(u"a.example"_s);
    world.blocker->addDomain(u"b.example"_s);
    QCOMPARE(world.store.pending.size(), 3);
    // The older ones end later than the newest.
    world.store.pending.move(2, 0);
    const auto newest = world.store.succeed();
    QVERIFY(!world.blocker->isCompiling());
    world.store.succeed();
    world.store.fail();
    QCOMPARE(view.lists, QList{newest});
    QVERIFY(world.store.sources.last().contains(u"b\\\\.example"_s));
}

void SnifferAdBlockerTest::failedCompilationKeepsRules()
{
    World world;
    FakeWebView view;
    world.blocker->registerAndApply(&view);
    const auto list = world.store.succeed();
    world.blocker->compileRules();
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(u"Failed to compile the rules: .* in rule 1"_s));
    world.store.fail();
    QVERIFY(!world.blocker->isCompiling());
    QCOMPARE(view.lists, QList{list});
    FakeWebView another;
    world.blocker->registerAndApply(&another);
    QCOMPARE(another.lists, QList{list});
    QCOMPARE(world.store.pending.size(), 0);
}

void SnifferAdBlockerTest::switchesEveryView()
{
    World world;
    FakeWebView page(u"https://a.example"_s);
    FakeWebView blank(u"about:blank"_s);
    auto gone = std::make_unique<FakeWebView>();
    for (FakeWebView *view : {&page, &blank, gone.get()})
        world.blocker->registerAndApply(view);
    gone.reset();
    const auto list = world.store.succeed();
    world.blocker->setEnabled(true);
    QCOMPARE(page.log, QStringList());

    world.blocker->setEnabled(false);
    QCOMPARE(page.lists.size() + blank.lists.size(), 0);
    QCOMPARE(page.log, (QStringList{off, u"reload"_s}));
    QCOMPARE(blank.log, QStringList{off});
    world.blocker->compileRules();
    world.store.succeed();
    QCOMPARE(page.lists.size(), 0);

    world.blocker->setEnabled(true);
    QCOMPARE(page.lists.size(), 1);
    QCOMPARE(blank.lists.size(), 1);
    QCOMPARE(page.log, (QStringList{off, u"reload"_s, on, u"reload"_s}));
}

void SnifferAdBlockerTest::compilesAgainWhenNothingIsCompiled()
{
    World world;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"Failed to compile"_s));
    world.store.fail();
    FakeWebView one;
    FakeWebView two;
    world.blocker->registerAndApply(&one);
    world.blocker->registerAndApply(&two);
    QCOMPARE(world.store.pending.size(), 1);
    world.store.succeed();
    QCOMPARE(one.lists.size(), 1);
    QCOMPARE(two.lists.size(), 1);
}

void SnifferAdBlockerTest::reloadsAfterChange()
{
    World world;
    FakeWebView page(u"https://a.example"_s);
    FakeWebView blank(u"about:blank"_s);
    world.blocker->registerAndApply(&page);
    world.blocker->registerAndApply(&blank);
    world.blocker->addDomain(u"ads.example"_s);
    QCOMPARE(page.log, QStringList{u"reload"_s});
    QCOMPARE(blank.log, QStringList());
    world.blocker->setEnabled(false);
    page.log.clear();
    world.blocker->removeAllDomains();
    QCOMPARE(page.log, QStringList());
}

void SnifferAdBlockerTest::recognisesAds_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("isAd");
    QTest::newRow("domain") << u"https://ads.example/x"_s << true;
    QTest::newRow("longer host") << u"https://badads.example.com/x"_s << true;
    QTest::newRow("domain in the query") << u"https://a.tv/?u=ADS.example"_s << true;
    QTest::newRow("another domain") << u"https://a.tv/x"_s << false;
    QTest::newRow("path") << u"https://a.tv/PageAd/x"_s << true;
    QTest::newRow("banner") << u"https://a.tv/ads/banner1.png"_s << true;
    QTest::newRow("fragment of a folder") << u"https://a.tv/popunder.js"_s << true;
    QTest::newRow("folder's end is missing") << u"https://a.tv/pagead"_s << false;
    QTest::newRow("host looks like a path") << u"https://pagead.tv/"_s << false;
    QTest::newRow("stream wins") << u"https://a.tv/pagead/live.m3u8"_s << false;
    QTest::newRow("film on a listed domain") << u"https://ads.example/a.MP4?x"_s << false;
    QTest::newRow("segment") << u"https://ads.example/1.m4s"_s << false;
    QTest::newRow("ts anywhere") << u"https://a.tsx.tv/pagead/"_s << false;
    QTest::newRow("empty") << QString() << false;
}

void SnifferAdBlockerTest::recognisesAds()
{
    QFETCH(const QString, address);
    World world;
    world.blocker->addDomain(u"ads.example"_s);
    QTEST(world.blocker->isAdOrPopupURL(QUrl(address)), "isAd");
}

void SnifferAdBlockerTest::recognisesRedirects_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("isSuspicious");
    const QString a = u"a.tv"_s;
    QTest::newRow("tracking query") << a << u"https://b.tv/?x=1&UTM_Source=a"_s << true;
    QTest::newRow("no query") << a << u"https://b.tv/"_s << false;
    QTest::newRow("marker in the path") << a << u"https://b.tv/subid=1"_s << false;
    QTest::newRow("marker inside a name") << a << u"https://b.tv/?href=1"_s << true;
    QTest::newRow("keyword in the host") << a << u"https://Gateway.b.tv/"_s << true;
    QTest::newRow("same site") << a << u"https://m.a.tv/?utm_source=a"_s << false;
    QTest::newRow("two labels") << u"x.a.tv"_s << u"https://y.A.TV/redirect"_s << false;
    QTest::newRow("ad") << a << u"https://b.tv/pagead/"_s << true;
    QTest::newRow("media with a keyword") << a << u"https://b.tv/track/1.m3u8"_s << true;
    QTest::newRow("no host here") << QString() << u"https://b.tv/redirect"_s << false;
    QTest::newRow("no host there") << a << u"about:redirect"_s << false;
}

void SnifferAdBlockerTest::recognisesRedirects()
{
    QFETCH(const QString, host);
    QFETCH(const QString, address);
    const World world;
    QTEST(world.blocker->isSuspiciousCrossDomainRedirect(host, QUrl(address)), "isSuspicious");
}

void SnifferAdBlockerTest::comparesSites_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<bool>("same");
    QTest::newRow("equal but for case") << u"A.tv"_s << u"a.TV"_s << true;
    QTest::newRow("subdomain") << u"m.a.tv"_s << u"a.tv"_s << true;
    QTest::newRow("siblings") << u"x.a.tv"_s << u"y.a.tv"_s << true;
    QTest::newRow("public suffix") << u"a.co.uk"_s << u"b.co.uk"_s << true;
    QTest::newRow("last label") << u"x.a.tv"_s << u"x.a.de"_s << false;
    QTest::newRow("ends alike") << u"ba.tv"_s << u"a.tv"_s << false;
    QTest::newRow("one label") << u"localhost"_s << u"localhost"_s << true;
    QTest::newRow("one label below") << u"a.localhost"_s << u"localhost"_s << true;
    QTest::newRow("other one label") << u"localhost"_s << u"host"_s << false;
    QTest::newRow("empty labels") << u"a..tv"_s << u"b.a.tv"_s << true;
    QTest::newRow("dots") << u".a"_s << u".b"_s << false;
    QTest::newRow("both empty") << QString() << QString() << true;
    QTest::newRow("one empty") << QString() << u"a.tv"_s << false;
}

void SnifferAdBlockerTest::comparesSites()
{
    QFETCH(const QString, a);
    QFETCH(const QString, b);
    QTEST(SnifferAdBlocker::isSameOrSubdomain(a, b), "same");
    QTEST(SnifferAdBlocker::isSameOrSubdomain(b, a), "same");
}

void SnifferAdBlockerTest::endsWhileCompiling()
{
    World world;
    world.blocker.reset();
    world.store.succeed();
}

QTEST_GUILESS_MAIN(SnifferAdBlockerTest)
#include "tst_snifferadblocker.moc"
