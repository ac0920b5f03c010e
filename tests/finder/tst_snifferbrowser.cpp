#include "finder/DownloadTexts.h"
#include "finder/PageScripts.h"
#include "finder/SnifferAdBlocker.h"
#include "finder/SnifferBrowserTabs.h"
#include "finder/SnifferCoordinator.h"
#include "finder/SnifferSavedWebsiteStore.h"
#include "tests/fakes/FakeContentRuleListStore.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"
#include "tests/fakes/FakeWebView.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

Q_DECLARE_METATYPE(lumaro::NavigationAction)
Q_DECLARE_METATYPE(lumaro::NavigationDecision)

namespace {

struct World
{
    FakeUserDefaults defaults;
    FakeScheduler scheduler;
    FakeFilePanels panels;
    FakeContentRuleListStore rules;
    SnifferSavedWebsiteStore websites{defaults, scheduler, panels};
    SnifferAdBlocker blocker{defaults, scheduler, rules};
    FakeWebView view;
    SnifferManager manager{websites};

    World() { manager.setWebView(&view); }
    void type(const QString &text)
    {
        manager.setAddress(text);
        manager.go();
    }
};

const QString handler = QString::fromUtf16(resourceMessageHandler);

NavigationAction action(const QString &address, NavigationAction::Target target, bool isLinkClick,
                        bool sourceIsMainFrame = true)
{
    return {QUrl(address), target, isLinkClick, sourceIsMainFrame};
}

} // namespace

/// One tab's browser, what its view may do, and the tabs.
class SnifferBrowserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goes_data();
    void goes();
    void refusesAddresses_data();
    void refusesAddresses();
    void passesButtonsOn();
    void followsTheView();
    void clears();
    void goesOnItsOwnOnceThereIsAView();
    void outlivesItsView();

    void decides_data();
    void decides();
    void opensNoWindows();
    void reportsWhatItSees();

    void scriptsKnowMoreThanTheBrowser();
    void floodsAreNotListed();
    void tabsComeAndGo();
    void closedTabsComeBack();
    void closingSelectsTheNext_data();
    void closingSelectsTheNext();
    void closedTabsFallSilent();
    void tabsHaveTitles();

    void tellsHowLongADownloadTook_data();
    void tellsHowLongADownloadTook();
};

void SnifferBrowserTest::goes_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("loaded");
    QTest::addColumn<QString>("shown");
    const auto row = [](const QString &typed, const QString &loaded, const QString &shown) {
        QTest::newRow(qPrintable(typed)) << typed << loaded << shown;
    };
    row(u" site.example\n"_s, u"https://site.example"_s, u"https://site.example"_s);
    row(u"site.example/"_s, u"https://site.example/"_s, u"https://site.example"_s);
    row(u"HTTP://Site.example/?q"_s, u"http://site.example/?q"_s, u"http://site.example/?q"_s);
    row(u"site.example/a/"_s, u"https://site.example/a/"_s, u"https://site.example/a/"_s);
    row(u"site.example/#x"_s, u"https://site.example/#x"_s, u"https://site.example/#x"_s);
    row(u"localhost:8080/a b"_s, u"https://localhost:8080/a%20b"_s,
        u"https://localhost:8080/a%20b"_s);
    row(u"bücher.example"_s, u"https://xn--bcher-kva.example"_s,
        u"https://xn--bcher-kva.example"_s);
}

void SnifferBrowserTest::goes()
{
    QFETCH(const QString, typed);
    QFETCH(const QString, loaded);
    World world;
    world.type(u"ftp://x"_s);
    world.type(typed);
    QCOMPARE(world.view.log, QStringList{u"load "_s + loaded});
    QTEST(world.manager.address(), "shown");
    QCOMPARE(world.manager.errorMessage(), QString());
}

void SnifferBrowserTest::refusesAddresses_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("error");
    const QString invalid = u"Enter a valid HTTP or HTTPS address."_s;
    QTest::newRow("ftp") << u"ftp://site.example"_s << invalid;
    QTest::newRow("file") << u"file:///etc/passwd"_s << invalid;
    QTest::newRow("no host") << u"https://"_s << invalid;
    QTest::newRow("broken") << u"https://[1"_s << invalid;
    QTest::newRow("script") << u"javascript://alert(1)"_s << invalid;
    QTest::newRow("spaces") << u" \n "_s << QString();
}

void SnifferBrowserTest::refusesAddresses()
{
    QFETCH(const QString, typed);
    World world;
    world.type(typed);
    QTEST(world.manager.errorMessage(), "error");
    // What was typed can be mended.
    QCOMPARE(world.manager.address(), typed);
    QVERIFY(world.view.log.isEmpty());
}

void SnifferBrowserTest::passesButtonsOn()
{
    World world;
    world.manager.goBack();
    world.manager.goForward();
    world.type(u"ftp://x"_s);
    world.manager.reload();
    QCOMPARE(world.manager.errorMessage(), QString());
    world.manager.stopLoading();
    world.manager.pauseAllMedia();
    QCOMPARE(world.view.log,
             (QStringList{u"back"_s, u"forward"_s, u"reload"_s, u"stop"_s, u"pause"_s,
                          mediaPauseScript()}));
}

void SnifferBrowserTest::followsTheView()
{
    World world;
    const QSignalSpy moved(&world.manager, &SnifferManager::navigationStateChanged);
    world.view.mayGoBack = true;
    world.manager.update(QUrl(u"https://site.example/"_s), true, std::nullopt);
    QVERIFY(world.manager.isLoading() && world.manager.canGoBack());
    QVERIFY(!world.manager.canGoForward());
    QCOMPARE(world.manager.address(), u"https://site.example"_s);
    QCOMPARE(world.websites.websites().size(), 0);

    world.manager.update(QUrl(u"https://site.example/"_s), false, u"Site"_s);
    QVERIFY(!world.manager.isLoading());
    QCOMPARE(world.manager.pageTitle(), u"Site"_s);
    QCOMPARE(world.websites.websites().size(), 1);
    QCOMPARE(world.websites.websites().first().visitCount, 1);
    QCOMPARE(world.websites.websites().first().title, u"Site"_s);
    QCOMPARE(moved.count(), 1);

    // The empty page is no place to have been.
    world.manager.update(QUrl(u"about:blank"_s), false, QString());
    QCOMPARE(world.manager.address(), u"https://site.example"_s);
    QCOMPARE(world.websites.websites().size(), 1);
}

void SnifferBrowserTest::clears()
{
    World world;
    world.manager.update(QUrl(u"https://site.example/x"_s), false, u"Site"_s);
    world.manager.update(QUrl(u"https://site.example/y"_s), true, std::nullopt);
    world.manager.clearAddress();
    QCOMPARE(world.view.log, (QStringList{u"stop"_s, mediaStopScript(), u"empty page"_s}));
    QCOMPARE(world.manager.address(), QString());
    QCOMPARE(world.manager.pageTitle(), QString());
    QVERIFY(!world.manager.isLoading());
}

void SnifferBrowserTest::goesOnItsOwnOnceThereIsAView()
{
    World world;
    const QUrl url(u"https://later.example/x"_s);
    for (const bool userWasFaster : {false, true}) {
        SnifferManager manager(world.websites);
        FakeWebView view;
        QVERIFY(!manager.wantsView());
        manager.navigate(url);
        QCOMPARE(manager.address(), url.toString());
        QVERIFY(manager.wantsView());
        if (userWasFaster)
            manager.navigate(QUrl(u"https://other.example/"_s));
        manager.setWebView(&view);
        QCOMPARE(view.log.contains(u"load "_s + url.toString()), !userWasFaster);
    }
}

void SnifferBrowserTest::outlivesItsView()
{
    World world;
    {
        FakeWebView view;
        view.mayGoBack = true;
        world.manager.setWebView(&view);
        QVERIFY(world.manager.canGoBack());
    }
    world.type(u"site.example"_s);
    world.manager.goBack();
    world.manager.clearAddress();
    world.manager.refreshNavigationState();
    QVERIFY(!world.manager.canGoBack());
}

void SnifferBrowserTest::decides_data()
{
    using enum NavigationDecision;
    using enum NavigationAction::Target;
    QTest::addColumn<QString>("page");
    QTest::addColumn<NavigationAction>("action");
    QTest::addColumn<NavigationDecision>("whileOn");
    QTest::addColumn<NavigationDecision>("whileOff");
    const QString page = u"https://www.site.example/watch"_s;
    const QString same = u"https://cdn.site.example/x"_s;
    const QString other = u"https://other.test/x"_s;
    const QString paid = u"https://other.test/x?utm_source=a"_s;
    const QString ad = u"https://www.site.example/pagead/x"_s;
    const auto row = [&](const char *name, const NavigationAction &action,
                         NavigationDecision whileOn, NavigationDecision whileOff = Allow) {
        QTest::newRow(name) << page << action << whileOn << whileOff;
    };
    row("nothing", action({}, NewWindow, true), Allow);
    row("ad", action(ad, MainFrame, true), Cancel);
    row("ad in a frame", action(ad, SubFrame, false, false), Cancel);
    row("ad as media", action(ad + u".m3u8"_s, SubFrame, false, false), Allow);
    row("frame takes the page elsewhere", action(other, MainFrame, false, false), Cancel);
    row("frame takes the page on", action(same, MainFrame, false, false), Allow);
    row("link to the same site", action(same, MainFrame, true), Allow);
    row("link elsewhere", action(other, MainFrame, true), Allow);
    row("link that pays", action(paid, MainFrame, true), Cancel);
    row("script goes where it pays", action(paid, MainFrame, false), Allow);
    row("frame", action(paid, SubFrame, true, false), Allow);
    row("window for the same site", action(same, NewWindow, true), LoadHere, LoadHere);
    row("window by a script", action(same, NewWindow, false), Cancel, LoadHere);
    row("window elsewhere", action(other, NewWindow, true), Cancel, LoadHere);
    row("window for nobody", action(u"about:blank"_s, NewWindow, true), Cancel, LoadHere);
    row("window for a text", action(u"data:text/html,x"_s, NewWindow, true), Cancel, Cancel);
    row("window for an object", action(u"blob:https://www.site.example/1"_s, NewWindow, true),
        Cancel, Cancel);
    QTest::newRow("first page") << QString() << action(paid, MainFrame, true) << Allow << Allow;
    QTest::newRow("first page by a frame")
        << QString() << action(other, MainFrame, false, false) << Allow << Allow;
    QTest::newRow("window without a page")
        << QString() << action(other, NewWindow, true) << Cancel << LoadHere;
}

void SnifferBrowserTest::decides()
{
    QFETCH(const QString, page);
    QFETCH(const NavigationAction, action);
    World world;
    world.view.address = page;
    SnifferCoordinator coordinator(world.manager, world.blocker, world.scheduler);
    QTEST(coordinator.decide(action), "whileOn");
    world.blocker.setEnabled(false);
    QTEST(coordinator.decide(action), "whileOff");
    // Whoever is asked about a tab that is gone, answers.
    world.manager.setWebView(nullptr);
    coordinator.decide(action);
}

void SnifferBrowserTest::opensNoWindows()
{
    World world;
    SnifferCoordinator coordinator(world.manager, world.blocker, world.scheduler);
    const QUrl stream(u"https://h/a.m3u8"_s);
    QCOMPARE(coordinator.decideNewWindow(stream), NavigationDecision::Cancel);
    QVERIFY(world.manager.networkMonitor()->streams().isEmpty());
    world.blocker.setEnabled(false);
    QCOMPARE(coordinator.decideNewWindow(stream), NavigationDecision::LoadHere);
    QCOMPARE(world.manager.networkMonitor()->streams().size(), 1);
    QCOMPARE(coordinator.decideNewWindow(QUrl(u"data:text/html,x"_s)), NavigationDecision::Cancel);
}

void SnifferBrowserTest::reportsWhatItSees()
{
    World world;
    world.manager.update(QUrl(u"https://site.example/x"_s), false, u"The page"_s);
    auto manager = std::make_unique<SnifferManager>(world.websites);
    manager->update(QUrl(u"https://site.example/x"_s), false, u"The page"_s);
    SnifferCoordinator coordinator(*manager, world.blocker, world.scheduler);
    const SnifferNetworkMonitor &monitor = *manager->networkMonitor();
    // What is cancelled was seen all the same.
    coordinator.decide(
        action(u"https://h/pagead/1.m3u8"_s, NavigationAction::Target::NewWindow, false));
    coordinator.report(QUrl(u"https://h/2"_s), u"application/vnd.apple.mpegurl"_s);
    coordinator.report(QUrl(u"https://h/page"_s), u"text/html"_s);
    coordinator.receiveMessage(handler,
                               QVariantMap{{u"url"_s, u"https://h/3.m3u8"_s},
                                           {u"title"_s, u"Clicked"_s},
                                           {u"selected"_s, true}});
    coordinator.receiveMessage(u"other"_s, u"https://h/4.m3u8"_s);
    QStringList seen;
    for (const DetectedStream &stream : monitor.streams())
        seen.append(stream.url.path() + u' ' + stream.displayName.value_or(QString()));
    QCOMPARE(seen,
             (QStringList{u"/3.m3u8 Clicked"_s, u"/2 The page"_s, u"/pagead/1.m3u8 The page"_s}));

    manager.reset();
    coordinator.report(QUrl(u"https://h/5.m3u8"_s), std::nullopt);
    coordinator.receiveMessage(handler, u"https://h/6.m3u8"_s);
}

void SnifferBrowserTest::scriptsKnowMoreThanTheBrowser()
{
    World world;
    world.manager.update(QUrl(u"https://site.example/x"_s), false, u"The page"_s);
    SnifferCoordinator coordinator(world.manager, world.blocker, world.scheduler);
    const auto name = [](const QString &url) {
        return QVariantMap{{u"url"_s, url}, {u"title"_s, u"Clicked"_s}, {u"selected"_s, true}};
    };
    // Two qualities under one name, which the browser sees first and again.
    for (const QString &url : {u"https://h/1.m3u8"_s, u"https://h/2.m3u8"_s}) {
        coordinator.reportData(QUrl(url));
        coordinator.receiveMessage(handler, name(url));
        world.scheduler.advance(std::chrono::seconds(1));
        coordinator.reportData(QUrl(url));
    }
    world.scheduler.advance(std::chrono::seconds(1));
    const auto &streams = world.manager.networkMonitor()->streams();
    QCOMPARE(streams.size(), 1);
    QCOMPARE(streams.first().displayName, u"Clicked"_s);
    // A worker's, of which no script tells.
    coordinator.reportData(QUrl(u"https://h/worker.m3u8"_s));
    QCOMPARE(streams.size(), 1);
    world.scheduler.advance(std::chrono::seconds(1));
    QCOMPARE(streams.size(), 2);
}

void SnifferBrowserTest::floodsAreNotListed()
{
    World world;
    SnifferCoordinator coordinator(world.manager, world.blocker, world.scheduler);
    const auto &streams = world.manager.networkMonitor()->streams();
    const QStringList refused{u"data:audio/x,a.m3u8"_s, u"blob:https://h/a.m3u8"_s,
                              u"https://h/"_s + QString(20'000, u'a') + u".m3u8"_s};
    for (const QString &address : refused)
        coordinator.report(QUrl(address), u"application/vnd.apple.mpegurl"_s);
    QCOMPARE(streams.size(), 0);
    for (int i = 0; i < 50'000; ++i) {
        coordinator.report(QUrl(u"https://h/a.m3u8?%1"_s.arg(i)), std::nullopt);
        coordinator.reportData(QUrl(u"https://h/b.m3u8?%1"_s.arg(i)));
    }
    world.scheduler.advance(std::chrono::seconds(1));
    QVERIFY(streams.size() > 10 && streams.size() < 2'000);
}

void SnifferBrowserTest::tabsComeAndGo()
{
    World world;
    SnifferBrowserTabs tabs(world.websites);
    const QAbstractItemModelTester tester(&tabs);
    QCOMPARE(tabs.count(), 1);
    QCOMPARE(tabs.selectedRow(), 0);
    tabs.addTab(QUrl(u"https://a.example/"_s));
    tabs.addTab();
    QCOMPARE(tabs.selectedRow(), 2);
    QCOMPARE(tabs.index(1).data().toString(), u"https://a.example"_s);
    tabs.selectNext(1);
    QCOMPARE(tabs.selectedRow(), 0);
    tabs.selectNext(-1);
    QCOMPARE(tabs.selectedRow(), 2);
    tabs.selectRow(7);
    QCOMPARE(tabs.selectedRow(), 2);
    tabs.closeTab(QUuid::createUuid());
    QCOMPARE(tabs.count(), 3);

    const QUuid last = tabs.idAt(0);
    tabs.closeRow(2);
    tabs.closeRow(1);
    tabs.closeRow(0);
    QCOMPARE(tabs.count(), 1);
    QVERIFY(tabs.idAt(0) != last);
    QCOMPARE(tabs.selectedTabID(), tabs.idAt(0));
    QCOMPARE(tabs.selectedTab()->address(), QString());
}

void SnifferBrowserTest::closedTabsComeBack()
{
    World world;
    SnifferBrowserTabs tabs(world.websites);
    tabs.reopenTab();
    QCOMPARE(tabs.count(), 1);
    for (int i = 0; i < 12; ++i) {
        tabs.addTab();
        tabs.selectedTab()->update(QUrl(u"https://site.example/%1"_s.arg(i)), false, {});
        tabs.closeRow(1);
    }
    // An empty one has nothing to come back to.
    tabs.addTab();
    tabs.closeRow(1);
    for (int i = 0; i < 12; ++i)
        tabs.reopenTab();
    QCOMPARE(tabs.count(), 11);
    QCOMPARE(tabs.index(1).data().toString(), u"https://site.example/11"_s);
    QCOMPARE(tabs.index(10).data().toString(), u"https://site.example/2"_s);
    QCOMPARE(tabs.selectedRow(), 10);
}

void SnifferBrowserTest::closingSelectsTheNext_data()
{
    QTest::addColumn<int>("selected");
    QTest::addColumn<int>("closed");
    QTest::addColumn<int>("then"); // as they were numbered before
    QTest::newRow("first") << 0 << 0 << 1;
    QTest::newRow("middle") << 1 << 1 << 2;
    QTest::newRow("last") << 2 << 2 << 1;
    QTest::newRow("another before it") << 2 << 0 << 2;
    QTest::newRow("another after it") << 0 << 2 << 0;
}

void SnifferBrowserTest::closingSelectsTheNext()
{
    QFETCH(const int, selected);
    QFETCH(const int, closed);
    QFETCH(const int, then);
    World world;
    SnifferBrowserTabs tabs(world.websites);
    tabs.addTab();
    tabs.addTab();
    tabs.selectRow(selected);
    const QUuid expected = tabs.idAt(then);
    tabs.closeRow(closed);
    QCOMPARE(tabs.selectedTabID(), expected);
    QCOMPARE(tabs.idAt(tabs.selectedRow()), expected);
}

void SnifferBrowserTest::closedTabsFallSilent()
{
    World world;
    SnifferBrowserTabs tabs(world.websites);
    tabs.addTab();
    std::array<FakeWebView, 2> views;
    for (int row = 0; row < 2; ++row) {
        tabs.selectRow(row);
        tabs.selectedTab()->setWebView(&views[size_t(row)]);
    }
    tabs.pauseAllTabsMedia();
    tabs.closeRow(0);
    QCOMPARE(views[0].log,
             (QStringList{u"pause"_s, mediaPauseScript(), u"stop"_s, mediaStopScript(),
                          u"empty page"_s}));
    QCOMPARE(views[1].log, (QStringList{u"pause"_s, mediaPauseScript()}));
}

void SnifferBrowserTest::tabsHaveTitles()
{
    World world;
    SnifferBrowserTabs tabs(world.websites);
    const QSignalSpy changes(&tabs, &QAbstractItemModel::dataChanged);
    const auto title = [&tabs] { return tabs.index(0).data().toString(); };
    QCOMPARE(title(), u"New Tab"_s);
    const QUrl url(u"https://a.example/x"_s);
    tabs.selectedTab()->update(url, true, std::nullopt);
    QCOMPARE(title(), u"https://a.example/x"_s);
    tabs.selectedTab()->update(url, false, u" The\n page "_s);
    QCOMPARE(title(), u"The page"_s);
    QVERIFY(changes.count() >= 2);
}

void SnifferBrowserTest::tellsHowLongADownloadTook_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    const auto row = [](double seconds, const QString &text) {
        QTest::addRow("%g", seconds) << seconds << QString(u"Downloaded in " + text);
    };
    row(0, u"1 sec"_s);
    row(0.4, u"1 sec"_s);
    row(1.5, u"2 sec"_s);
    row(59.4, u"59 sec"_s);
    row(59.5, u"1 min"_s);
    row(61, u"1 min 1 sec"_s);
    row(120, u"2 min"_s);
    row(125, u"2 min 5 sec"_s);
    row(3725, u"62 min 5 sec"_s);
    row(-3, u"1 sec"_s);
    row(qInf(), u"1 sec"_s);
}

void SnifferBrowserTest::tellsHowLongADownloadTook()
{
    QFETCH(const double, seconds);
    QTEST(formattedDownloadDuration(seconds), "text");
}

QTEST_GUILESS_MAIN(SnifferBrowserTest)
#include "tst_snifferbrowser.moc"
