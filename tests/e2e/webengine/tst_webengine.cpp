#include "finder/PageScripts.h"
#include "finder/ResourceMessage.h"
#include "finder/SnifferAdBlocker.h"
#include "platform/PageView.h"
#include "platform/contentrules/CompilingRuleListStore.h"
#include "platform/posix/LoopbackPeer.h"
#include "platform/qt/QtScheduler.h"
#include "platform/relay/ProxyRelay.h"
#include "tests/e2e/servers/NginxServer.h"
#include "tests/e2e/servers/ProxyServer.h"
#include "tests/e2e/servers/ValueOrFail.h"
#include "tests/e2e/servers/Waiting.h"
#include "tests/e2e/webengine/EngineProgram.h"
#include "tests/fakes/FakeUserDefaults.h"

#include <QNetworkProxy>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>

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
    blocker.unregister(m_world->view);
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

int main(int argc, char *argv[])
{
    return runWithEngine(argc, argv, [&] {
        WebEngineTest test;
        return QTest::qExec(&test, argc, argv);
    });
}

#include "tst_webengine.moc"
