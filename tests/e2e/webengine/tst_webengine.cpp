#include "finder/PageScripts.h"
#include "finder/ResourceMessage.h"
#include "finder/SnifferAdBlocker.h"
#include "finder/SnifferProxyManager.h"
#include "finder/SnifferSavedWebsiteStore.h"
#include "finder/SnifferWebView.h"
#include "platform/ConnectionFailures.h"
#include "platform/PageView.h"
#include "platform/contentrules/CompilingRuleListStore.h"
#include "platform/posix/LoopbackPeer.h"
#include "platform/qt/QtScheduler.h"
#include "platform/relay/ProxyRelay.h"
#include "tests/e2e/servers/FaultServer.h"
#include "tests/e2e/servers/FreePort.h"
#include "tests/e2e/servers/NginxServer.h"
#include "tests/e2e/servers/ProxyServer.h"
#include "tests/e2e/servers/ValueOrFail.h"
#include "tests/e2e/servers/Waiting.h"
#include "tests/e2e/webengine/EngineProgram.h"
#include "tests/fakes/FakeContentRuleListStore.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeProxyConfigurationTarget.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"

#include <QNetworkInterface>
#include <QNetworkProxy>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

/// Says what became of each frame after it has been loaded.
QString witnessScript()
{
    return u"(function () {"
           "    const post = window.webkit.messageHandlers.witness.postMessage;"
           "    addEventListener('load', function () {"
           "        const ad = document.querySelector('.ad');"
           "        post(location.pathname + ' ' + (ad ? getComputedStyle(ad).display : '-')"
           "            + ' ' + (window.webkit !== undefined)"
           "            + ' ' + (window.loaded === true));"
           "    });"
           "})();"_s;
}

bool isOffline()
{
    return std::ranges::none_of(QNetworkInterface::allInterfaces(),
                                [](const QNetworkInterface &interface) {
                                    return !interface.addressEntries().isEmpty()
                                        && !(interface.flags() & QNetworkInterface::IsLoopBack);
                                });
}

/// This machine by an address that the engine goes through its proxy for.
QUrl thisMachine(const QString &scheme, quint16 port, const QString &path)
{
    return QUrl(u"%1://0.0.0.0:%2%3"_s.arg(scheme).arg(port).arg(path));
}

const QString proxySentence = u"The proxy cannot be reached, or does not do what it is asked."_s;

/// One web view in a window of its own.
class World
{
public:
    World()
    {
        const QStringList handlers{QString::fromUtf16(resourceMessageHandler), u"witness"_s};
        window.engine()->addImportPath(u"qrc:/qt/qml"_s);
        window.setInitialProperties({{u"handlers"_s, handlers}});
        window.setResizeMode(QQuickView::SizeRootObjectToView);
        window.setSource(QUrl::fromLocalFile(QFINDTESTDATA("World.qml")));
        view = window.rootObject()->property("page").value<PageView *>();
        view->setUserScripts({resourceReporterScript(), adBlockerFlagScript(true),
                              popupOverrideScript(), witnessScript()});
        QObject::connect(view, &PageView::messageReceived, view,
                         [this](const QString &handler, const QVariant &body) {
                             if (handler == u"witness")
                                 witnessed.append(body.toString());
                             else
                                 reported.append(body.toMap().value(u"url"_s).toString());
                         });
        window.resize(400, 300);
        window.show();
    }

    /// What the frames say until there are `count` of them, in alphabetical order.
    QStringList witness(int count)
    {
        (void)becomesTrue([&] { return witnessed.size() >= count; });
        witnessed.sort();
        return std::exchange(witnessed, {});
    }

    QStringList witnessed;
    QStringList reported;
    QQuickView window;
    /// The window's.
    PageView *view = nullptr;
};

} // namespace

/// Web pages in the real engine, from a real server.
class WebEngineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_world = std::make_unique<World>(); }
    void cleanup();

    void everyFrameReports();
    void goesBackAndForth();
    void pagesCannotPost();
    void pagesCannotReadWhatFramesPost();
    void rulesHideAndBlock();
    void pagesTakeTheProxy_data();
    void pagesTakeTheProxy();
    void tellsWhyThereIsNoPage_data();
    void tellsWhyThereIsNoPage();
    void serversOwnErrorsArePages();
    void tellsWhenAnswersBegin_data();
    void tellsWhenAnswersBegin();
    void silentServersAreGivenUp();

private:
    bool wasAsked(const QString &path) const
    {
        return m_site->accessLog().join(u'\n').contains(u"GET "_s + path + u' ');
    }

    std::unique_ptr<NginxServer> m_site;
    std::unique_ptr<ProxyRelay> m_relay;
    std::unique_ptr<World> m_world;
};

void WebEngineTest::initTestCase()
{
    m_site = valueOrFail(NginxServer::start());
    QVERIFY(m_site);
    // The engine hears of another proxy too late for its next request, so it has the same always.
    m_relay = std::make_unique<ProxyRelay>(&isOwnLoopbackPeer);
    QNetworkProxy::setApplicationProxy({QNetworkProxy::HttpProxy, u"127.0.0.1"_s, m_relay->port()});
    ConnectionFailures::setOfApplicationProxy(&m_relay->failures());
    // The same server by another name is another site.
    const QByteArray other = "http://localhost:" + QByteArray::number(m_site->port());
    QVERIFY(m_site->writeFile(u"page.html"_s,
                              "<!doctype html><p class=ad>Ad</p>"
                              "<script src='/pagead/ad.js'></script>"
                              "<script src='/own.js'></script>"
                              "<iframe src='"
                                  + other + "/frame.html'></iframe>"));
    QVERIFY(m_site->writeFile(u"frame.html"_s,
                              "<!doctype html><p class=ad>Ad</p>"
                              "<script>fetch('/live/a.m3u8?x')</script>"));
    QVERIFY(m_site->writeFile(u"pagead/ad.js"_s, "window.loaded = true"));
    QVERIFY(m_site->writeFile(u"own.js"_s, "window.own = true"));
    QVERIFY(m_site->writeFile(u"forger.html"_s,
                              "<!doctype html><script>"
                              "const body = JSON.stringify({url: 'https://forged/a.m3u8'});"
                              "console.debug('m3u8SnifferResource\\n' + body);"
                              "try { window.webkit.messageHandlers.m3u8SnifferResource"
                              "    .postMessage({url: 'https://forged/a.m3u8'}); } catch (e) {}"
                              "let seen = ''; const debug = console.debug;"
                              "console.debug = function (text) { seen += text; };"
                              "JSON.stringify = function () { return 'stolen'; };"
                              "fetch('/b.m3u8').finally(function () {"
                              "    document.body.className = 'ad';"
                              "    debug('seen: ' + seen); });"
                              "</script>"));
    // What a frame shows first shares its window with the page that it loads.
    QVERIFY(
        m_site->writeFile(u"spy.html"_s,
                          "<!doctype html><iframe></iframe><script>"
                          "const frame = document.querySelector('iframe');"
                          "let seen = '';"
                          "frame.contentWindow.console.debug = function (text) { seen += text; };"
                          "frame.onload = function () { fetch('/saw-' + seen.length); };"
                          "frame.src = '/frame.html';"
                          "</script>"));
}

void WebEngineTest::cleanup()
{
    m_world.reset();
    m_relay->setUpstream({});
}

void WebEngineTest::everyFrameReports()
{
    m_world->view->load(m_site->url(u"/page.html"_s));
    QCOMPARE(m_world->witness(2),
             (QStringList{u"/frame.html block false false"_s, u"/page.html block false true"_s}));
    QVERIFY(becomesTrue([&] { return !m_world->reported.isEmpty(); }));
    QCOMPARE(m_world->reported.first(), u"http://localhost:%1/live/a.m3u8?x"_s.arg(m_site->port()));
    QCOMPARE(m_world->view->url(), m_site->url(u"/page.html"_s));
}

void WebEngineTest::goesBackAndForth()
{
    PageView &view = *m_world->view;
    const auto isAt = [&view](const QUrl &url) {
        return becomesTrue([&] { return view.url() == url; });
    };
    const QUrl frame = m_site->url(u"/frame.html"_s);
    const QUrl page = m_site->url(u"/page.html"_s);
    view.load(frame);
    QCOMPARE(m_world->witness(1).size(), 1);
    QVERIFY(!view.canGoBack() && !view.canGoForward());
    view.load(page);
    QVERIFY(isAt(page));
    QVERIFY(becomesTrue([&] { return view.canGoBack(); }));
    view.goBack();
    QVERIFY(isAt(frame));
    QVERIFY(becomesTrue([&] { return view.canGoForward(); }));
    view.goForward();
    QVERIFY(isAt(page));
    view.loadEmptyPage();
    QVERIFY(isAt(QUrl(u"about:blank"_s)));
}

void WebEngineTest::pagesCannotPost()
{
    m_world->view->load(m_site->url(u"/forger.html"_s));
    QCOMPARE(m_world->witness(1).size(), 1);
    // What it really loads is still told, past everything that it has replaced.
    const QString own = m_site->url(u"/b.m3u8"_s).toString();
    QVERIFY(becomesTrue([&] { return m_world->reported.contains(own); }));
    for (const QString &url : std::as_const(m_world->reported))
        QCOMPARE(url, own);
}

void WebEngineTest::pagesCannotReadWhatFramesPost()
{
    m_world->view->load(m_site->url(u"/spy.html"_s));
    const QString own = m_site->url(u"/live/a.m3u8?x"_s).toString();
    QVERIFY(becomesTrue([&] { return m_world->reported.contains(own); }));
    QVERIFY(becomesTrue([&] { return wasAsked(u"/saw-0"_s); }));
}

void WebEngineTest::rulesHideAndBlock()
{
    QtScheduler scheduler;
    FakeUserDefaults defaults;
    CompilingRuleListStore store(scheduler);
    SnifferAdBlocker blocker(defaults, scheduler, store);
    blocker.registerAndApply(m_world->view);
    QVERIFY(becomesTrue([&] { return !blocker.isCompiling(); }));
    m_world->view->load(m_site->url(u"/page.html"_s));
    QCOMPARE(m_world->witness(2),
             (QStringList{u"/frame.html none false false"_s, u"/page.html none false false"_s}));

    // A change reaches the page that is open.
    const auto ownCount = [this] { return m_site->accessLog().filter(u"GET /own.js "_s).size(); };
    blocker.addDomain(u"own.js"_s);
    QCOMPARE(m_world->witness(2).size(), 2);
    QVERIFY(becomesTrue([&] { return !blocker.isCompiling(); }));
    const qsizetype before = ownCount();
    m_world->view->reload();
    QCOMPARE(m_world->witness(2).size(), 2);
    QCOMPARE(ownCount(), before);

    blocker.setEnabled(false);
    QCOMPARE(m_world->witness(2),
             (QStringList{u"/frame.html block false false"_s, u"/page.html block false true"_s}));
}

void WebEngineTest::pagesTakeTheProxy_data()
{
    QTest::addColumn<int>("protocol");
    QTest::newRow("SOCKS5") << int(ProxyConfiguration::Protocol::Socks5);
    QTest::newRow("HTTP") << int(ProxyConfiguration::Protocol::HttpConnect);
}

void WebEngineTest::pagesTakeTheProxy()
{
    QFETCH(const int, protocol);
    const auto proxy =
        valueOrFail(ProxyServer::start(ProxyConfiguration::Protocol(protocol),
                                       ProxyConfiguration::Credential{u"user"_s, u"secret"_s}));
    QVERIFY(proxy);
    m_relay->setUpstream(proxy->configuration());
    const qsizetype before = m_site->sources().size();
    const QUrl url = ProxyServer::siteUrl(*m_site, u"/frame.html"_s);
    m_world->view->load(url);
    const QStringList loaded{u"/frame.html block false false"_s};
    QCOMPARE(m_world->witness(1), loaded);
    const QStringList sources = m_site->sources().sliced(before);
    QVERIFY(!sources.isEmpty());
    for (const QString &source : sources)
        QVERIFY2(source.startsWith(ProxyServer::ownAddress), qPrintable(source));

    // With another password, and then without a proxy, nobody finds the site.
    auto wrong = proxy->configuration();
    wrong.credential->password = u"guess"_s;
    for (const auto &upstream : {std::optional(wrong), std::optional<ProxyConfiguration>()}) {
        m_relay->setUpstream(upstream);
        m_world->view->reload();
        QVERIFY(m_world->witness(1) != loaded);
    }
    m_relay->setUpstream(proxy->configuration());
    m_world->view->load(url);
    QCOMPARE(m_world->witness(1), loaded);
}

void WebEngineTest::tellsWhyThereIsNoPage_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<bool>("hasProxy"); // that is not there
    QTest::addColumn<QString>("sentence");
    const QString unknown = isOffline() ? u"This computer is not connected to the internet."_s
                                        : u"There is no server of that name."_s;
    for (const QString &scheme : {u"http"_s, u"https"_s}) {
        const auto row = [&scheme](const char *name, const QUrl &url, bool hasProxy,
                                   const QString &sentence) {
            QTest::addRow("%s, %s", name, qPrintable(scheme)) << url << hasProxy << sentence;
        };
        const QUrl nobody(scheme + u"://nobody.invalid/"_s);
        row("unknown", nobody, false, unknown);
        row("closed port", thisMachine(scheme, freePort(), u"/"_s), false,
            u"The server cannot be reached."_s);
        row("no proxy", nobody, true, proxySentence);
    }
}

void WebEngineTest::tellsWhyThereIsNoPage()
{
    QFETCH(const QUrl, url);
    QFETCH(const bool, hasProxy);
    using Protocol = ProxyConfiguration::Protocol;
    if (hasProxy)
        m_relay->setUpstream(
            ProxyConfiguration{Protocol::Socks5, u"127.0.0.1"_s, freePort(), std::nullopt});
    const QSignalSpy finished(m_world->view, &PageView::loadFinished);
    const QSignalSpy failed(m_world->view, &PageView::loadFailed);
    m_world->view->load(url);
    QVERIFY(becomesTrue([&] { return failed.count() + finished.count() > 0; }));
    QCOMPARE(failed.count(), 1);
    QTEST(failed.first().first().toString(), "sentence");
}

void WebEngineTest::serversOwnErrorsArePages()
{
    const QSignalSpy finished(m_world->view, &PageView::loadFinished);
    const QSignalSpy failed(m_world->view, &PageView::loadFailed);
    const QUrl url = thisMachine(u"http"_s, m_site->port(), u"/status/502"_s);
    m_relay->setUpstream(ProxyConfiguration{ProxyConfiguration::Protocol::Socks5, u"127.0.0.1"_s,
                                            freePort(), std::nullopt});
    m_world->view->load(url);
    QVERIFY(becomesTrue([&] { return failed.count() > 0; }));
    m_relay->setUpstream({});
    m_world->view->load(url);
    QVERIFY(becomesTrue([&] { return finished.count() > 0; }));
    QVERIFY(wasAsked(u"/status/502"_s));
    QCOMPARE(failed.count(), 1);
}

void WebEngineTest::tellsWhenAnswersBegin_data()
{
    QTest::addColumn<FaultResponse>("response");
    QTest::addColumn<bool>("fromPage"); // that shows meanwhile
    FaultResponse page = FaultResponse::of("text/html", "<p>Here");
    FaultResponse endless = page;
    endless.stallAfter = 5;
    FaultResponse question = page;
    question.status = 401;
    question.headers = {{"WWW-Authenticate", "Basic realm=\"r\""}};
    for (const bool fromPage : {false, true}) {
        const char *const from = fromPage ? "a page" : "nothing";
        QTest::addRow("page, from %s", from) << page << fromPage;
        QTest::addRow("page without end, from %s", from) << endless << fromPage;
        QTest::addRow("who is there, from %s", from) << question << fromPage;
    }
}

void WebEngineTest::tellsWhenAnswersBegin()
{
    QFETCH(const FaultResponse, response);
    QFETCH(const bool, fromPage);
    const auto server = valueOrFail(FaultServer::start());
    QVERIFY(server);
    server->route("/page", response);
    server->hold("/page");
    if (fromPage) {
        const QSignalSpy finished(m_world->view, &PageView::loadFinished);
        m_world->view->load(m_site->url(u"/frame.html"_s));
        QVERIFY(becomesTrue([&] { return !finished.isEmpty(); }));
    }
    const QSignalSpy started(m_world->view, &PageView::loadStarted);
    const QSignalSpy begun(m_world->view, &PageView::answerBegan);
    m_world->view->load(server->url("/page"));
    QVERIFY(becomesTrue([&] { return server->requestCount("/page") > 0; }));
    letPass(std::chrono::milliseconds(300));
    QCOMPARE(started.count(), 1);
    QCOMPARE(begun.count(), 0);
    server->release("/page");
    QVERIFY(becomesTrue([&] { return !begun.isEmpty(); }));
}

void WebEngineTest::silentServersAreGivenUp()
{
    FakeScheduler scheduler;
    FakeUserDefaults defaults;
    FakeFilePanels panels;
    FakeContentRuleListStore rules;
    FakeProxyConfigurationTarget target;
    SnifferAdBlocker blocker(defaults, scheduler, rules);
    SnifferProxyManager proxy(defaults, scheduler, target);
    SnifferSavedWebsiteStore websites(defaults, scheduler, panels);
    SnifferManager tab(websites);
    const auto bridge = std::make_unique<SnifferWebView>(
        *m_world->view, tab, SnifferWebView::Environment{blocker, proxy, scheduler});
    const auto server = valueOrFail(FaultServer::start());
    QVERIFY(server);
    server->route("/page", FaultResponse::of("text/html", "<title>Late</title>"));
    server->hold("/page");

    tab.navigate(server->url("/page"));
    QVERIFY(becomesTrue([&] { return server->requestCount("/page") > 0; }));
    scheduler.advance(std::chrono::seconds(59));
    QCOMPARE(tab.errorMessage(), QString());
    QVERIFY(tab.isLoading());
    scheduler.advance(std::chrono::seconds(1));
    QVERIFY(becomesTrue([&] { return server->openConnections() == 0; }));
    QCOMPARE(tab.errorMessage(), u"The server takes too long to answer."_s);
    QVERIFY(!tab.isLoading());
    QVERIFY(websites.websites().isEmpty());

    server->release("/page");
    tab.reload();
    QVERIFY(becomesTrue([&] { return tab.pageTitle() == u"Late"; }));
    QCOMPARE(tab.errorMessage(), QString());
}

int main(int argc, char *argv[])
{
    return runWithEngine(argc, argv, [&] {
        WebEngineTest test;
        return QTest::qExec(&test, argc, argv);
    });
}

#include "tst_webengine.moc"
