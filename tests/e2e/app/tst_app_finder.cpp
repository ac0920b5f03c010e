#include "tests/e2e/app/AppWorld.h"
#include "tests/e2e/servers/FreePort.h"
#include "tests/e2e/servers/OwnProcess.h"
#include "tests/e2e/servers/ProxyServer.h"

#include <QFileInfo>
#include <QQuickItem>

#include <csignal>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

using Streams = SnifferDetectedStreamsModel;

namespace {

/// How often ten tabs are opened and closed.
int roundsOfTabs()
{
    bool isNumber = false;
    const int asked = qEnvironmentVariableIntValue("LUMARO_TAB_ROUNDS", &isNumber);
    return isNumber ? asked : 20;
}

/// The processes that show pages. The engine forks them from another that it keeps for that.
QStringList pageProcesses()
{
    const auto children = [](const QString &parents) {
        // Not those that have ended and are yet to be noticed.
        return outputOf(u"pgrep"_s, {u"-r"_s, u"D,R,S,I"_s, u"-P"_s, parents, u"QtWebEngine"_s})
            .split(u'\n', Qt::SkipEmptyParts);
    };
    QStringList pages;
    for (const QString &child : children(QString::number(getpid())))
        pages += children(child);
    return pages;
}

/// Ends the process of the page that was opened last.
bool killsNewestPage()
{
    const QStringList processes = pageProcesses();
    if (processes.isEmpty())
        return false;
    const int pid =
        std::ranges::max(processes, {}, [](const QString &text) { return text.toInt(); }).toInt();
    return pid > 1 && kill(pid, SIGKILL) == 0;
}

} // namespace

/// The stream finder with a real browser, on pages of a real server. All tests share one program:
/// the browser serves only one.
class AppFinderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase() { m_world.reset(); }

    void isLoadedWhenOpened();
    void streamsAreFound_data();
    void streamsAreFound();
    void foundStreamsAreUsed();
    void pagesOpenNoWindows();
    void linksForWindows_data();
    void linksForWindows();
    void framesDoNotMoveThePage_data();
    void framesDoNotMoveThePage();
    void redirectsAreFollowed();
    void pagesThatCannotBeLoaded_data();
    void pagesThatCannotBeLoaded();
    void filesAskForAPlace();
    void filesComeThroughTheNextProxy();
    void pagesAskForFilesAgain();
    void linksOpenFromTheMenu();
    void pagesAskBeforeTheyMay();
    void pagesFillTheScreen();
    void pagesTalkOverThemselves();
    void hiddenPagesTakeNoKeys();
    void serversAskForNames_data();
    void serversAskForNames();
    void pagesAreSilenced();
    void questionsGoWithTheirPage_data();
    void questionsGoWithTheirPage();
    void escapeAnswersWhilePagesLoad();
    void pagesAskBeforeTheyGo();
    void pagesLeaveTheAddressFieldAlone();
    void keysReachThePanel();
    void textIsFound();
    void pagesReachNoFiles();
    void crashesStayInTheirTab();
    void brokenCertificatesStop();
    void closingPauses_data();
    void closingPauses();
    void closedTabsGiveBack();
    void quitsWithAPanelOpen();

private:
    SnifferManager &tab() { return *m_world->finder().tabs()->selectedTab(); }
    Streams &streams() { return *m_world->finder().streams(); }
    /// Goes to a page of the server and waits for it.
    bool opens(const QUrl &url);
    bool opens(const QString &path) { return opens(m_site->url(path)); }
    /// The same server under another name: another site.
    QString other() const { return u"http://localhost:%1"_s.arg(m_site->port()); }
    /// The item that shows the selected tab's page.
    QQuickItem *page() const
    {
        QQuickItem *const view = m_window->findChild<QQuickItem *>(u"finderView"_s);
        return view ? view->property("page").value<QQuickItem *>() : nullptr;
    }
    /// What the selected tab's page asks over itself; null before it has any page.
    QQuickItem *question() const
    {
        return page() ? page()->findChild<QQuickItem *>(u"pageDialog"_s) : nullptr;
    }
    bool isAsked(const QString &message) const
    {
        const auto *const request =
            question() ? question()->property("dialog").value<QObject *>() : nullptr;
        return request && request->property("message") == message;
    }
    /// Tells a page that waits for it to go on.
    bool goOn(const QString &name) const { return m_site->writeFile(name, "go"); }
    /// Begins to type into the address field.
    bool editsAddress() const
    {
        QTest::keyClick(m_window, Qt::Key_L, Qt::ControlModifier);
        QTest::keyClick(m_window, 'a');
        return addressText() == u"a";
    }
    /// What is in the field that has the keyboard.
    QString addressText() const
    {
        const QQuickItem *const item = m_window->activeFocusItem();
        return item ? item->property("text").toString() : QString();
    }
    /// Clicks in the middle of the upper half of the page.
    void click(Qt::MouseButton button = Qt::LeftButton);
    bool write(const QString &name, const QString &body) const
    {
        // Before a page's first picture, which waits for something to be seen, the engine drops
        // clicks on it.
        const QString drawn = u"<script>if (self === top) requestAnimationFrame(function () {"
                              " requestAnimationFrame(function () { fetch('/drawn'); }); })"
                              "</script>"_s;
        return m_site->writeFile(
            name,
            (u"<!doctype html><title>"_s + name + u"</title>"_s + body + drawn + u"<p>Here"_s)
                .toUtf8());
    }
    qsizetype pagesDrawn() const { return m_site->accessLog().filter(u"GET /drawn "_s).size(); }
    bool wasAsked(const QString &path) const
    {
        return m_site->accessLog().join(u'\n').contains(u"GET "_s + path + u' ');
    }

    QTemporaryDir m_home;
    std::unique_ptr<NginxServer> m_site;
    std::unique_ptr<AppWorld> m_world;
    QQuickWindow *m_window = nullptr;
};

void AppFinderTest::initTestCase()
{
    qputenv("HOME", m_home.path().toUtf8());
    QVERIFY(QDir(m_home.path()).mkpath(u"Documents"_s));
    m_site = valueOrFail(NginxServer::start());
    QVERIFY(m_site);
    const MediaFixtures media(QStringLiteral(LUMARO_FIXTURE_FOLDER));
    const QFileInfo stream(valueOrFail(media.path(Fixture::Hls)));
    QVERIFY(m_site->publish(stream.absolutePath(), u"hls"_s));
    QVERIFY(m_site->publish(valueOrFail(media.path(Fixture::Movie)), u"movie.mp4"_s));
    QVERIFY(QFile::exists(QStringLiteral(LUMARO_HLS_JS)));
    QVERIFY(m_site->publish(QStringLiteral(LUMARO_HLS_JS), u"hls.js"_s));
    const QString player = u"<video muted autoplay></video><script src=/hls.js></script><script>"
                           "const h = new Hls(); h.loadSource('/hls/%1?p=%2');"
                           "h.attachMedia(document.querySelector('video'));</script>"_s.arg(
                               stream.fileName(), u"%1"_s);
    QVERIFY(write(u"main.html"_s, player.arg(u"main"_s)));
    QVERIFY(write(u"inner.html"_s, player.arg(u"frame"_s)));
    QVERIFY(write(u"frame.html"_s, u"<iframe src='%1/inner.html'></iframe>"_s.arg(other())));
    QVERIFY(write(u"shadow.html"_s,
                  u"<div></div><script src=/hls.js></script><script>"
                  "const root = document.querySelector('div').attachShadow({mode: 'closed'});"
                  "const v = document.createElement('video'); root.append(v);"
                  "const h = new Hls(); h.loadSource('/hls/%1?p=shadow'); h.attachMedia(v);"
                  "</script>"_s.arg(stream.fileName())));
    const QString address = u"/hls/%1?p=%2"_s.arg(stream.fileName(), u"%1"_s);
    QVERIFY(write(u"fetch.html"_s,
                  u"<script>fetch(new Request('%1'))</script>"_s.arg(address.arg(u"fetch"_s))));
    QVERIFY(write(
        u"xhr.html"_s,
        u"<script>const x = new XMLHttpRequest(); x.open('GET', '%1'); x.send();</script>"_s.arg(
            address.arg(u"xhr"_s))));
    QVERIFY(write(u"media.html"_s,
                  u"<video src='%1' autoplay muted></video>"_s.arg(address.arg(u"media"_s))));
    QVERIFY(
        write(u"link.html"_s, u"<script>location = '%1'</script>"_s.arg(address.arg(u"link"_s))));
    QVERIFY(
        m_site->writeFile(u"worker.js"_s, "fetch('" + address.arg(u"worker"_s).toUtf8() + "')"));
    QVERIFY(write(u"worker.html"_s, u"<script>new Worker('/worker.js')</script>"_s));
    const QString wide =
        u"style='position:fixed;inset:0;display:block;border:0;width:100%;height:100%'"_s;
    QVERIFY(write(u"plain.html"_s, u"<p>Nothing here"_s));
    QVERIFY(write(u"popup.html"_s,
                  u"<script>onclick = function () { window.open('%1/plain.html');"
                  " setTimeout(function () { window.open('%1/plain.html'); }, 50);"
                  " fetch('/clicked'); }</script>"_s.arg(other())));
    QVERIFY(write(u"same.html"_s, u"<a href='/plain.html' target=_blank %1>x</a>"_s.arg(wide)));
    QVERIFY(write(u"cross.html"_s,
                  u"<script>addEventListener('mouseup', function () { fetch('/let-go'); })</script>"
                  "<a href='%1/plain.html' target=_blank %2>x</a>"_s.arg(other(), wide)));
    QVERIFY(write(
        u"jump.html"_s,
        u"<script>fetch('/jumped'); top.location = '%1/plain.html?jump'</script>"_s.arg(other())));
    QVERIFY(write(u"jumpclick.html"_s,
                  u"<body %2><script>onclick = function () { fetch('/jumped-click');"
                  " top.location = '%1/plain.html?click'; }</script>"_s.arg(other(), wide)));
    QVERIFY(write(u"jumplate.html"_s,
                  u"<body %2><script>onclick = function () { setTimeout(function () {"
                  " fetch('/jumped-late'); top.location = '%1/plain.html?late'; }, 6000); }"
                  "</script>"_s.arg(other(), wide)));
    QVERIFY(write(u"talks.html"_s,
                  u"<script>addEventListener('load', function () { setTimeout(function () {"
                  " alert('One'); fetch('/said-' + prompt('Two', 'x')); }, 0); });"
                  "</script>"_s));
    // Goes on when the test writes the file.
    const QString later = u"<script>const waits = setInterval(async function () {"
                          " if ((await fetch('/%1')).ok) { clearInterval(waits); %2 } }, 100);"
                          "</script>"_s;
    QVERIFY(write(u"talkslater.html"_s,
                  later.arg(u"talk"_s, u"alert('Late'); fetch('/heard-late');"_s)));
    QVERIFY(write(u"moves.html"_s, later.arg(u"move"_s, u"history.pushState({}, '', '#2');"_s)));
    QVERIFY(write(u"nags.html"_s,
                  u"<script>addEventListener('load', function () { setTimeout(function () {"
                  " for (let i = 1; i <= 5; ++i) alert(i); fetch('/nagged'); }, 0); });"
                  "</script>"_s));
    QVERIFY(write(u"talksearly.html"_s,
                  u"<script>alert('Early'); fetch('/heard-early');</script>"
                  "<img src=/slow/50/file.zip>"_s));
    QVERIFY(write(u"stays.html"_s,
                  u"<body %1><script>onbeforeunload = function (event) {"
                  " event.preventDefault(); return event.returnValue = 'x'; };"
                  " onmouseup = function () { fetch('/touched'); }</script>"_s.arg(wide)));
    QVERIFY(write(u"uploads.html"_s,
                  u"<body %1><input type=file hidden><script>onclick = function () {"
                  " setTimeout(function () { document.querySelector('input').click();"
                  " fetch('/picks'); }, 700); }</script>"_s.arg(wide)));
    QVERIFY(write(u"embeds.html"_s,
                  u"<iframe src='%1/media-on.html' allow=autoplay></iframe>"_s.arg(other())));
    for (const QString &name : {u"jump"_s, u"jumpclick"_s, u"jumplate"_s})
        QVERIFY(write(u"with"_s + name + u".html",
                      u"<iframe src='%1/%2.html' %3></iframe>"_s.arg(other(), name, wide)));
    QVERIFY(m_site->writeFile(u"file.zip"_s, QByteArray(1000, 'z')));
    QVERIFY(write(u"file.html"_s, u"<script>location = '/file.zip'</script>"_s));
    QVERIFY(write(u"escape.html"_s,
                  u"<iframe src='file:///etc/passwd'></iframe><script>"
                  "try { location = 'file:///etc/passwd'; } catch (e) {}"
                  "setTimeout(function () { fetch('/stayed'); }, 300);</script>"_s));
    QVERIFY(write(u"asks.html"_s,
                  u"<script>navigator.geolocation.getCurrentPosition(function () {"
                  " fetch('/located'); }, function (e) { fetch('/denied-' + e.code); });"
                  "</script>"_s));
    QVERIFY(write(u"fills.html"_s,
                  u"<body %1><script>onclick = function () {"
                  " document.documentElement.requestFullscreen(); }</script>"_s.arg(wide)));
    QVERIFY(write(u"media-on.html"_s,
                  u"<video src='/movie.mp4' autoplay loop muted></video><script>"
                  "document.querySelector('video').onpause = function () { fetch('/paused'); }"
                  "</script>"_s));
    m_world = std::make_unique<AppWorld>();
}

void AppFinderTest::init()
{
    if (QTest::currentTestFunction() == "isLoadedWhenOpened"_ba)
        return;
    m_window = m_world->openFinder();
    QVERIFY(m_window);
    m_world->finder().tabs()->addTab();
    m_world->finder().tabs()->closeRow(0);
}

bool AppFinderTest::opens(const QUrl &url)
{
    const qsizetype before = pagesDrawn();
    tab().navigate(url);
    return becomesTrue([&] {
        return !tab().isLoading() && tab().pageTitle() == url.path().mid(1)
            && pagesDrawn() > before;
    });
}

void AppFinderTest::click(Qt::MouseButton button)
{
    QQuickItem *const item = page();
    const QPointF middle = item->mapToScene(QPointF(item->width() / 2, item->height() / 4));
    QTest::mouseMove(m_window, middle.toPoint());
    QTest::mouseClick(m_window, button, {}, middle.toPoint());
}

void AppFinderTest::isLoadedWhenOpened()
{
    QVERIFY(!hasLoadedBrowser());
    m_window = m_world->openFinder();
    QVERIFY(m_window);
    QVERIFY(hasLoadedBrowser());
    QVERIFY(m_world->finderController().isShown());
    // Until there is something to be seen, no page has a process.
    QCOMPARE(pageProcesses(), QStringList());
}

void AppFinderTest::streamsAreFound_data()
{
    QTest::addColumn<QString>("way");
    for (const QString &way : {u"main"_s, u"frame"_s, u"shadow"_s, u"fetch"_s, u"xhr"_s, u"media"_s,
                               u"link"_s, u"worker"_s})
        QTest::newRow(qPrintable(way)) << way;
}

void AppFinderTest::streamsAreFound()
{
    QFETCH(const QString, way);
    tab().navigate(m_site->url(u"/"_s + way + u".html"));
    const auto found = [&] {
        int count = 0;
        for (int row = 0; row < streams().count(); ++row)
            count += streams().addressAt(row).endsWith(u"?p="_s + way) ? 1 : 0;
        return count;
    };
    QVERIFY(becomesTrue([&] { return found() > 0; }));
    // By several ways, but once.
    QTest::qWait(300);
    QCOMPARE(found(), 1);
}

void AppFinderTest::foundStreamsAreUsed()
{
    QVERIFY(opens(u"/main.html"_s));
    const auto isMaster = [&] {
        return QUrl(streams().addressAt(streams().count() - 1)).query() == u"p=main";
    };
    QVERIFY(becomesTrue(isMaster));
    const int last = streams().count() - 1;
    const QUrl url(streams().addressAt(last));
    QCOMPARE(url.query(), u"p=main"_s);
    QCOMPARE(streams().data(streams().index(last), Streams::NameRole).toString(), u"main.html"_s);

    streams().save(last);
    QVERIFY(m_world->library().contains(url));

    streams().download(last);
    const auto is = [&](Streams::Role role) {
        return streams().data(streams().index(last), role).toBool();
    };
    QVERIFY(
        becomesTrue([&] { return is(Streams::CanRevealRole) && !is(Streams::JobIsActiveRole); }));
    const QStringList files = QDir(m_world->folder()).entryList({u"*.ts"_s}, QDir::Files);
    QCOMPARE(files.size(), 1);
    const double seconds =
        outputOf(u"ffprobe"_s,
                 {u"-v"_s, u"error"_s, u"-show_entries"_s, u"format=duration"_s, u"-of"_s,
                  u"csv=p=0"_s, QDir(m_world->folder()).filePath(files.first())})
            .toDouble();
    QVERIFY2(seconds > 19 && seconds < 21, qPrintable(QString::number(seconds)));

    // It plays in the main window, which comes to the front, and the finder's falls silent.
    streams().play(last);
    QVERIFY(m_world->playsTo(0.2));
    QCOMPARE(m_world->player().title(), u"main.html"_s);
    QVERIFY(becomesTrue([&] { return !m_world->finderController().isShown(); }));
    m_world->player().stop();
}

void AppFinderTest::pagesOpenNoWindows()
{
    QVERIFY(opens(u"/popup.html"_s));
    const qsizetype windows = QGuiApplication::allWindows().size();
    click();
    QVERIFY(becomesTrue([&] { return wasAsked(u"/clicked"_s); }));
    QTest::qWait(300);
    QCOMPARE(QGuiApplication::allWindows().size(), windows);
    QCOMPARE(m_world->finder().tabs()->count(), 1);
    QCOMPARE(tab().shownPage(), m_site->url(u"/popup.html"_s));
}

void AppFinderTest::linksForWindows_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("end");
    QTest::newRow("same site") << u"/same.html"_s << u"/plain.html"_s;
    QTest::newRow("other site") << u"/cross.html"_s << u"/cross.html"_s;
}

void AppFinderTest::linksForWindows()
{
    QFETCH(const QString, path);
    QFETCH(const QString, end);
    QVERIFY(opens(path));
    click();
    if (path == end) {
        QVERIFY(becomesTrue([&] { return wasAsked(u"/let-go"_s); }));
        QTest::qWait(300);
    }
    QVERIFY(becomesTrue([&] { return tab().shownPage() == m_site->url(end); }));
    QCOMPARE(m_world->finder().tabs()->count(), 1);
}

void AppFinderTest::framesDoNotMoveThePage_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("sign");
    QTest::newRow("by themselves") << u"/withjump.html"_s << u"/jumped"_s;
    QTest::newRow("after a click in them") << u"/withjumpclick.html"_s << u"/jumped-click"_s;
    QTest::newRow("long after a click in them") << u"/withjumplate.html"_s << u"/jumped-late"_s;
}

void AppFinderTest::framesDoNotMoveThePage()
{
    QFETCH(const QString, path);
    QFETCH(const QString, sign);
    QVERIFY(opens(path));
    // Until the frame is there to be clicked on.
    for (int i = 0; i < 20 && sign != u"/jumped" && !wasAsked(sign); ++i) {
        click();
        QTest::qWait(500);
    }
    QVERIFY(becomesTrue([&] { return wasAsked(sign); }));
    QTest::qWait(500);
    QCOMPARE(tab().shownPage(), m_site->url(path));
}

void AppFinderTest::redirectsAreFollowed()
{
    tab().navigate(m_site->url(u"/redirect/302/redirect/301/redirect/307/plain.html"_s));
    QVERIFY(becomesTrue([&] { return tab().shownPage() == m_site->url(u"/plain.html"_s); }));
    tab().navigate(m_site->url(u"/redirect-loop/a"_s));
    QVERIFY(becomesTrue([&] { return !tab().errorMessage().isEmpty(); }));
    QCOMPARE(tab().errorMessage(), u"The page leads round in circles."_s);
}

void AppFinderTest::pagesThatCannotBeLoaded_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("http") << u"http://nobody.invalid/"_s;
    QTest::newRow("https") << u"https://nobody.invalid/"_s;
}

void AppFinderTest::pagesThatCannotBeLoaded()
{
    QFETCH(const QString, address);
    QVERIFY(opens(u"/plain.html"_s));
    tab().navigate(QUrl(address));
    QVERIFY(becomesTrue([&] { return !tab().errorMessage().isEmpty(); }));
    QVERIFY2(!tab().errorMessage().contains(u"proxy"), qPrintable(tab().errorMessage()));
    QCOMPARE(tab().address(), address.chopped(1));
    // What was never there is not remembered.
    m_world->finder().webList()->setFilterTab(SnifferWebListModel::History);
    for (int row = 0; row < m_world->finder().webList()->rowCount(); ++row)
        QVERIFY(!m_world->finder().webList()->addressAt(row).contains(u"nobody"));
    QVERIFY(page()->property("hasFailed").toBool());
    keepPicture(*m_window, u"cannot-be-loaded"_s);
    // Another attempt, by the button that has the keyboard.
    page()->forceActiveFocus();
    QTest::keyClick(m_window, Qt::Key_Space);
    QCOMPARE(tab().errorMessage(), QString());
    QVERIFY(becomesTrue([&] { return !tab().errorMessage().isEmpty(); }));
    QVERIFY(opens(u"/plain.html"_s));
    QVERIFY(!page()->property("hasFailed").toBool());
}

void AppFinderTest::filesComeThroughTheNextProxy()
{
    using Protocol = ProxyConfiguration::Protocol;
    using Type = SnifferProxyManager::ProxyType;
    const auto first = valueOrFail(ProxyServer::start(Protocol::Socks5));
    const auto second = valueOrFail(ProxyServer::start(Protocol::Socks5));
    QVERIFY(first && second);
    SnifferProxyManager &settings = m_world->proxy();
    const auto use = [&settings](const ProxyServer &proxy) {
        settings.applyPreset(Type::Socks5, proxy.configuration().host, proxy.configuration().port);
        settings.setEnabled(true);
        settings.applyProxyConfiguration(false);
    };
    const auto useNone = qScopeGuard([&settings] {
        settings.setEnabled(false);
        settings.applyProxyConfiguration(false);
    });
    const QByteArray content = QByteArray(300'000, 'z') + "end";
    QVERIFY(m_site->writeFile(u"long.zip"_s, content));
    use(*first);
    QVERIFY(opens(u"/plain.html"_s));
    tab().navigate(ProxyServer::siteUrl(*m_site, u"/slow/20000/long.zip"_s));
    QVERIFY(becomesTrue([&] {
        const QQuickItem *const name = m_window->activeFocusItem();
        return name && name->objectName() == u"fileNameTextField";
    }));
    for (const char c : "long"_ba)
        QTest::keyClick(m_window, c);
    const QString saved = m_home.filePath(u"Documents/long.zip"_s);
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return !m_world->panels().isOpen(); }));
    use(*second);
    QVERIFY(becomesTrue([&] { return QFileInfo(saved).size() == content.size(); }));
    QFile file(saved);
    QVERIFY(file.open(QIODevice::ReadOnly) && file.readAll() == content);
    // It went on where it was.
    QVERIFY(m_site->accessLog().contains(u"GET /slow/20000/long.zip 206"_s));
}

void AppFinderTest::filesAskForAPlace()
{
    QVERIFY(opens(u"/plain.html"_s));
    tab().navigate(m_site->url(u"/file.zip"_s));
    QVERIFY(becomesTrue([&] {
        const QQuickItem *const name = m_window->activeFocusItem();
        return name && name->objectName() == u"fileNameTextField";
    }));
    // The name without its extension is selected.
    for (const char c : "saved"_ba)
        QTest::keyClick(m_window, c);
    const QString saved = m_home.filePath(u"Documents/saved.zip"_s);
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return QFileInfo(saved).size() == 1000; }));
    QCOMPARE(tab().shownPage(), m_site->url(u"/plain.html"_s));
}

void AppFinderTest::pagesAskForFilesAgain()
{
    QuickFilePanels &panels = m_world->panels();
    QVERIFY(opens(u"/uploads.html"_s));
    click();
    m_world->recording().startNormal();
    QVERIFY(becomesTrue([&] { return panels.isOpen(); }));
    QVERIFY(becomesTrue([&] { return wasAsked(u"/picks"_s); }));
    QTest::qWait(300);
    QCOMPARE(panels.kind(), QuickFilePanels::Kind::NewFileAndText);
    QTest::keyClick(m_window, Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return !panels.isOpen(); }));
    // The engine lets a page ask for one file at a time, so it must have been answered.
    click();
    QVERIFY(becomesTrue(
        [&] { return panels.isOpen() && panels.kind() == QuickFilePanels::Kind::File; }));
    QVERIFY(becomesTrue([&] {
        QTest::keyClick(m_window, Qt::Key_Escape);
        return !panels.isOpen();
    }));
}

void AppFinderTest::linksOpenFromTheMenu()
{
    QVERIFY(opens(u"/same.html"_s));
    click(Qt::RightButton);
    QVERIFY(becomesTrue([&] {
        const QQuickItem *const focused = m_window->activeFocusItem();
        return focused && focused->inherits("QQuickPopupItem");
    }));
    // There is no way back or forward yet, so Reload comes first, and then the link's.
    for (int i = 0; i < 2; ++i)
        QTest::keyClick(m_window, Qt::Key_Down);
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return m_world->finder().tabs()->count() == 2; }));
    QVERIFY(becomesTrue([&] { return tab().shownPage() == m_site->url(u"/plain.html"_s); }));
}

void AppFinderTest::pagesAskBeforeTheyMay()
{
    QVERIFY(opens(u"/asks.html"_s));
    QQuickItem *block = nullptr;
    QVERIFY(becomesTrue([&] {
        block = page()->findChild<QQuickItem *>(u"blockButton"_s);
        return block && block->isVisible();
    }));
    QVERIFY(!m_site->accessLog().join(u'\n').contains(u"/denied"_s));
    const QPointF middle = block->mapToScene(QPointF(block->width() / 2, block->height() / 2));
    QTest::mouseClick(m_window, Qt::LeftButton, {}, middle.toPoint());
    QVERIFY(becomesTrue([&] { return wasAsked(u"/denied-1"_s); }));
    QVERIFY(!block->isVisible());
    QVERIFY(!wasAsked(u"/located"_s));
}

void AppFinderTest::pagesFillTheScreen()
{
    QVERIFY(opens(u"/fills.html"_s));
    click();
    QVERIFY(becomesTrue([&] { return m_window->visibility() == QWindow::FullScreen; }));
    QTest::keyClick(m_window, Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return m_window->visibility() == QWindow::Windowed; }));
    QCOMPARE(tab().shownPage(), m_site->url(u"/fills.html"_s));
}

void AppFinderTest::pagesTalkOverThemselves()
{
    tab().navigate(m_site->url(u"/talks.html"_s));
    QVERIFY(becomesTrue([&] { return isAsked(u"One"_s); }));
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return isAsked(u"Two"_s); }));
    QTest::keyClick(m_window, Qt::Key_End);
    QTest::keyClick(m_window, Qt::Key_Y);
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return wasAsked(u"/said-xy"_s); }));
    QVERIFY(!question()->isVisible());
}

void AppFinderTest::hiddenPagesTakeNoKeys()
{
    QVERIFY(opens(u"/talkslater.html"_s));
    const QQuickItem *const hidden = question();
    m_world->finder().tabs()->addTab();
    QVERIFY(editsAddress());
    QVERIFY(goOn(u"talk"_s));
    QVERIFY(becomesTrue([&] { return hidden->property("isOpen").toBool(); }));
    QTest::keyClick(m_window, 'b');
    QCOMPARE(addressText(), u"ab"_s);
    QVERIFY(!wasAsked(u"/heard-late"_s));
    // Shown, it has them.
    m_world->finder().tabs()->selectNext(-1);
    QCOMPARE(question(), hidden);
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return wasAsked(u"/heard-late"_s); }));
    m_world->finder().tabs()->closeRow(1);
}

void AppFinderTest::serversAskForNames_data()
{
    QTest::addColumn<bool>("isHidden");
    QTest::newRow("shown") << false;
    QTest::newRow("hidden") << true;
}

void AppFinderTest::serversAskForNames()
{
    QFETCH(const bool, isHidden);
    const auto server = valueOrFail(FaultServer::start());
    QVERIFY(server);
    FaultResponse asks = FaultResponse::of("text/html"_ba, "<title>Closed</title>"_ba);
    asks.status = 401;
    asks.headers = {{"WWW-Authenticate"_ba, "Basic realm=\"Private\""_ba}};
    server->route("/private"_ba, asks);
    server->hold("/private"_ba);
    tab().navigate(server->url("/private"_ba));
    QVERIFY(becomesTrue([&] { return server->requestCount("/private"_ba) == 1; }));
    const QQuickItem *const login = question();
    if (isHidden) {
        m_world->finder().tabs()->addTab();
        QVERIFY(editsAddress());
    }
    server->release("/private"_ba);
    QVERIFY(becomesTrue([&] { return login->property("isOpen").toBool(); }));
    if (isHidden) {
        QTest::keyClick(m_window, 'b');
        QCOMPARE(addressText(), u"ab"_s);
        m_world->finder().tabs()->selectNext(-1);
    }
    QTest::keyClick(m_window, 'n');
    QTest::keyClick(m_window, Qt::Key_Return);
    QTest::keyClick(m_window, 'p');
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return server->requestCount("/private"_ba) == 2; }));
    QCOMPARE(server->requests().last().headers.value("authorization"_ba),
             "Basic "_ba + "n:p"_ba.toBase64());
    // It says no, so it is asked again.
    QVERIFY(becomesTrue([&] { return login->property("isOpen").toBool(); }));
    QTest::keyClick(m_window, Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return tab().pageTitle() == u"Closed"; }));
    // Who gives up need not answer.
    tab().navigate(server->url("/private?2"_ba));
    QVERIFY(becomesTrue([&] { return login->property("isOpen").toBool(); }));
    tab().stopLoading();
    QVERIFY(becomesTrue([&] { return !login->property("isOpen").toBool(); }));
    if (isHidden)
        m_world->finder().tabs()->closeRow(1);
}

void AppFinderTest::pagesAreSilenced()
{
    tab().navigate(m_site->url(u"/nags.html"_s));
    QVERIFY(becomesTrue([&] { return isAsked(u"1"_s); }));
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return isAsked(u"2"_s); }));
    const QQuickItem *const silence = page()->findChild<QQuickItem *>(u"pageDialogSilence"_s);
    QVERIFY(silence && silence->isVisible());
    keepPicture(*m_window, u"silence"_s);
    QTest::mouseClick(
        m_window, Qt::LeftButton, {},
        silence->mapToScene(QPointF(silence->width() / 2, silence->height() / 2)).toPoint());
    QVERIFY(silence->property("isOn").toBool());
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return wasAsked(u"/nagged"_s); }));
    QVERIFY(!question()->isVisible());
}

void AppFinderTest::questionsGoWithTheirPage_data()
{
    QTest::addColumn<bool>("crashes");
    QTest::newRow("elsewhere") << false;
    QTest::newRow("crash") << true;
}

void AppFinderTest::questionsGoWithTheirPage()
{
    QFETCH(const bool, crashes);
    // Another site has another process.
    tab().navigate(QUrl(other() + u"/talks.html"));
    QVERIFY(becomesTrue([&] { return isAsked(u"One"_s); }));
    if (crashes) {
        QVERIFY(killsNewestPage());
        QVERIFY(becomesTrue([&] { return page()->property("hasCrashed").toBool(); }));
        QVERIFY(!question()->isVisible());
        // What is focused reloads.
        QTest::keyClick(m_window, Qt::Key_Return);
        QVERIFY(becomesTrue([&] { return isAsked(u"One"_s); }));
        QVERIFY(!page()->property("hasCrashed").toBool());
    }
    QVERIFY(opens(u"/plain.html"_s));
    QVERIFY(!question()->isVisible());
}

void AppFinderTest::escapeAnswersWhilePagesLoad()
{
    tab().navigate(m_site->url(u"/talksearly.html"_s));
    QVERIFY(becomesTrue([&] { return isAsked(u"Early"_s); }));
    QVERIFY(tab().isLoading());
    QTest::keyClick(m_window, Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return wasAsked(u"/heard-early"_s); }));
    QVERIFY(!question()->isVisible());
    QVERIFY(tab().isLoading());
    QTest::keyClick(m_window, Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return !tab().isLoading(); }));
}

void AppFinderTest::pagesAskBeforeTheyGo()
{
    QVERIFY(opens(u"/stays.html"_s));
    // Only pages that were used may ask.
    click();
    QVERIFY(becomesTrue([&] { return wasAsked(u"/touched"_s); }));
    tab().navigate(m_site->url(u"/plain.html"_s));
    QVERIFY(becomesTrue([&] { return question()->isVisible(); }));
    QTest::keyClick(m_window, Qt::Key_Escape);
    QVERIFY(becomesTrue([&] { return !question()->isVisible(); }));
    QCOMPARE(tab().pageTitle(), u"stays.html"_s);
    // The engine takes a moment to learn of it.
    QTest::qWait(500);
    tab().navigate(m_site->url(u"/plain.html?again"_s));
    QVERIFY(becomesTrue([&] { return question()->isVisible(); }));
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return tab().pageTitle() == u"plain.html"; }));
}

void AppFinderTest::pagesLeaveTheAddressFieldAlone()
{
    QVERIFY(opens(u"/moves.html"_s));
    QTest::keyClick(m_window, Qt::Key_F, Qt::ControlModifier);
    const QQuickItem *const field = page()->findChild<QQuickItem *>(u"findField"_s);
    QVERIFY(field && field->hasActiveFocus());
    QVERIFY(editsAddress());
    QVERIFY(goOn(u"move"_s));
    QVERIFY(becomesTrue([&] { return tab().shownPage() == m_site->url(u"/moves.html#2"_s); }));
    QVERIFY(!field->isVisible());
    QTest::keyClick(m_window, 'b');
    QCOMPARE(addressText(), u"ab"_s);
}

void AppFinderTest::keysReachThePanel()
{
    QVERIFY(opens(u"/plain.html"_s));
    click();
    QVERIFY(m_world->finder().isStreamsExpanded());
    QTest::keyClick(m_window, Qt::Key_Minus);
    QVERIFY(becomesTrue([&] { return !m_world->finder().isStreamsExpanded(); }));
    QTest::keyClick(m_window, Qt::Key_Plus);
    QVERIFY(becomesTrue([&] { return m_world->finder().isStreamsExpanded(); }));
}

void AppFinderTest::textIsFound()
{
    QVERIFY(opens(u"/plain.html"_s));
    QTest::keyClick(m_window, Qt::Key_F, Qt::ControlModifier);
    for (const char letter : "here"_ba)
        QTest::keyClick(m_window, letter);
    const auto counts = [&](const QString &text) {
        const QQuickItem *const count = page()->findChild<QQuickItem *>(u"findCount"_s);
        return count && count->isVisible() && count->property("text") == text;
    };
    QVERIFY(becomesTrue([&] { return counts(u"1 of 2"_s); }));
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return counts(u"2 of 2"_s); }));
    QTest::keyClick(m_window, Qt::Key_F3, Qt::ShiftModifier);
    QVERIFY(becomesTrue([&] { return counts(u"1 of 2"_s); }));
    QTest::keyClick(m_window, 'x');
    QVERIFY(becomesTrue([&] { return counts(u"Nothing"_s); }));
    keepPicture(*m_window, u"find"_s);
    // The page has the keys again.
    QTest::keyClick(m_window, Qt::Key_Escape);
    QTest::keyClick(m_window, Qt::Key_Minus);
    QVERIFY(becomesTrue([&] { return !m_world->finder().isStreamsExpanded(); }));
    m_world->finder().setStreamsExpanded(true);
}

void AppFinderTest::pagesReachNoFiles()
{
    QVERIFY(opens(u"/escape.html"_s));
    QVERIFY(becomesTrue([&] { return wasAsked(u"/stayed"_s); }));
    QCOMPARE(tab().shownPage(), m_site->url(u"/escape.html"_s));
}

void AppFinderTest::crashesStayInTheirTab()
{
    QVERIFY(opens(u"/plain.html"_s));
    QQuickItem *const first = page();
    m_world->finder().tabs()->addTab();
    // Another site has another process.
    tab().navigate(QUrl(other() + u"/plain.html"));
    QVERIFY(becomesTrue([&] {
        return page() && page() != first && !tab().isLoading()
            && tab().pageTitle() == u"plain.html";
    }));
    QVERIFY(killsNewestPage());
    QVERIFY(becomesTrue([&] { return page()->property("hasCrashed").toBool(); }));
    QVERIFY(!first->property("hasCrashed").toBool());
    // What is focused reloads.
    QTest::keyClick(m_window, Qt::Key_Return);
    QVERIFY(becomesTrue([&] { return !page()->property("hasCrashed").toBool(); }));
    m_world->finder().tabs()->closeRow(1);
    tab().reload();
    QVERIFY(becomesTrue([&] { return !tab().isLoading() && tab().pageTitle() == u"plain.html"; }));
}

void AppFinderTest::brokenCertificatesStop()
{
    const QTemporaryDir folder;
    const QString key = folder.filePath(u"key"_s);
    const QString certificate = folder.filePath(u"certificate"_s);
    outputOf(u"openssl"_s,
             {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-keyout"_s, key,
              u"-out"_s, certificate, u"-subj"_s, u"/CN=nobody"_s});
    QVERIFY(QFile::exists(certificate));
    const quint16 port = freePort();
    ChildProcess server;
    QVERIFY(server.start(u"openssl"_s,
                         {u"s_server"_s, u"-quiet"_s, u"-www"_s, u"-accept"_s,
                          QString::number(port), u"-key"_s, key, u"-cert"_s, certificate},
                         {}));
    const QUrl url(u"https://127.0.0.1:%1/"_s.arg(port));
    QVERIFY(becomesTrue([&] {
        tab().navigate(url);
        QTest::qWait(200);
        return page() && page()->property("refusedAddress").toString() == url.toString();
    }));
    QVERIFY(m_world->finder().isStarred() == false);
}

void AppFinderTest::closingPauses_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("page") << u"/media-on.html"_s;
    QTest::newRow("frame of another site") << u"/embeds.html"_s;
}

void AppFinderTest::closingPauses()
{
    QFETCH(const QString, path);
    const auto pauses = [this] { return m_site->accessLog().filter(u"GET /paused "_s).size(); };
    const qsizetype loads = m_site->accessLog().filter(u"GET /movie.mp4 "_s).size();
    QVERIFY(opens(path));
    QVERIFY(becomesTrue(
        [&] { return m_site->accessLog().filter(u"GET /movie.mp4 "_s).size() > loads; }));
    const qsizetype before = pauses();
    QTest::qWait(500);
    m_window->close();
    QVERIFY(becomesTrue([&] { return !m_window->isVisible(); }));
    QVERIFY(becomesTrue([&] { return pauses() > before; }));
    QCOMPARE(m_world->openFinder(), m_window);
    QCOMPARE(tab().shownPage(), m_site->url(path));
}

void AppFinderTest::closedTabsGiveBack()
{
    SnifferBrowserTabs &tabs = *m_world->finder().tabs();
    // Those of the tests before end in their own time; two may stay for whoever comes next.
    const qsizetype atRest = std::max<qsizetype>(2, pageProcesses().size());
    const auto round = [&] {
        for (int i = 0; i < 10; ++i) {
            tabs.addTab(m_site->url(u"/plain.html?%1"_s.arg(i)));
            if (!becomesTrue([&] { return tab().pageTitle() == u"plain.html"; }))
                return false;
        }
        while (tabs.count() > 1)
            tabs.closeRow(tabs.count() - 1);
        tabs.closeRow(0);
        const auto isAtRest = [&] { return pageProcesses().size() <= atRest; };
        return becomesTrue(isAtRest) || becomesTrue(isAtRest);
    };
    // What the browser keeps for good comes with the first round.
    QVERIFY2(round(), qPrintable(pageProcesses().join(u' ')));
    const qint64 before = OwnProcess::now().memory;
    for (int i = 0; i < roundsOfTabs(); ++i)
        QVERIFY(round());
    const qint64 grown = OwnProcess::now().memory - before;
    QVERIFY2(grown < 30 * 1024, qPrintable(QString::number(grown)));
}

/// The last, for there is no second browser.
void AppFinderTest::quitsWithAPanelOpen()
{
    m_world->recording().startNormal();
    QVERIFY(becomesTrue([&] {
        const QQuickItem *item = m_window->activeFocusItem();
        while (item && !item->inherits("QQuickPopupItem"))
            item = item->parentItem();
        return item != nullptr;
    }));
    m_world.reset();
}

LUMARO_APP_TEST_MAIN(AppFinderTest)
#include "tst_app_finder.moc"
