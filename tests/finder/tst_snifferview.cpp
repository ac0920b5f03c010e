#include "finder/PageScripts.h"
#include "finder/SnifferViewModel.h"
#include "finder/SnifferWindowController.h"
#include "tests/fakes/FakeContentRuleListStore.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/fakes/FakeProxyConfigurationTarget.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"
#include "tests/fakes/FakeWebView.h"
#include "tests/fakes/FakeWorkspace.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

using KeyWindow = SnifferWindowController::KeyWindow;
using Happen = void (*)(FakeWebView &view);
using Streams = SnifferDetectedStreamsModel;

Q_DECLARE_METATYPE(lumaro::SnifferWindowController::KeyWindow)
Q_DECLARE_METATYPE(Happen)

namespace {

struct World
{
    QTemporaryDir folder;
    FakeUserDefaults defaults;
    FakeScheduler scheduler;
    FakeFilePanels panels;
    FakeHttpClient http;
    FakeWorkspace workspace;
    FakeContentRuleListStore rules;
    FakeProxyConfigurationTarget target;
    NotificationCenter notifications;
    SnifferAdBlocker blocker{defaults, scheduler, rules};
    SnifferProxyManager proxy{defaults, scheduler, target};
    SnifferSavedWebsiteStore websites{defaults, scheduler, panels};
    LocalM3UStore library{defaults, scheduler};
    M3U8DownloadManager downloads{
        {http, scheduler, scheduler, defaults, panels, workspace, {folder.path()}}};
    QStringList opened;
    QStringList posted;
    SnifferViewModel finder{{.blocker = blocker,
                             .proxy = proxy,
                             .websites = websites,
                             .library = library,
                             .downloads = downloads,
                             .notifications = notifications,
                             .panels = panels,
                             .scheduler = scheduler,
                             .onOpenStream = [this](const QUrl &url, const QString &name) {
                                 opened.append(name + u' ' + url.toString());
                             }}};
    SnifferWindowController window{{*finder.tabs(), notifications, defaults, scheduler}};
    FakeWebView view{u"https://site.example/watch"_s};

    World()
    {
        QObject::connect(&notifications, &NotificationCenter::posted, &notifications,
                         [this](const QString &name) { posted.append(name); });
    }
    SnifferManager &tab() { return *finder.tabs()->selectedTab(); }
    /// The selected tab shows `view`.
    void attach() { finder.attach(&tab(), &view); }
    void detect(const QString &address, const QString &name = {})
    {
        tab().networkMonitor()->observe(QUrl(address), {}, {}, name, false);
    }
    QVariant shown(int row, int role) const
    {
        Streams &streams = *const_cast<SnifferViewModel &>(finder).streams();
        return streams.data(streams.index(row), role);
    }
};

} // namespace

/// What the finder's window does, without a browser.
class SnifferViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void viewServesItsTab();
    void serversMustAnswer_data();
    void serversMustAnswer();
    void viewsGo();
    void streamsOfTheSelectedTab();
    void manyStreams();
    void streamActions();
    void streamNames_data();
    void streamNames();
    void failedDownloadsAreTold();
    void stars();
    void streamsAreNoFiles();
    void asksWhereToSave();
    void closingHides();
    void losingTheKeyboard_data();
    void savingsWaitForEachOther();
    void savingsWaitForOtherPanels();
    void uploadsAreAnswered_data();
    void uploadsAreAnswered();
    void panelsKeepTheWindow();
    void losingTheKeyboard();
    void framesAreRemembered();
};

void SnifferViewTest::viewServesItsTab()
{
    World world;
    world.tab().navigate(QUrl(u"https://site.example/watch"_s));
    world.attach();
    QCOMPARE(world.view.log, QStringList{u"load https://site.example/watch"_s});
    QCOMPARE(
        world.view.userScripts,
        (QStringList{resourceReporterScript(), adBlockerFlagScript(true), popupOverrideScript()}));
    Q_EMIT world.view.loadStarted();
    QVERIFY(world.tab().isLoading());
    Q_EMIT world.view.loadFinished(u"Watch"_s);
    QVERIFY(!world.tab().isLoading());
    QCOMPARE(world.websites.websites().size(), 1);
    Q_EMIT world.view.titleChanged(u"(1) Watch"_s);
    QCOMPARE(world.tab().pageTitle(), u"(1) Watch"_s);
    QCOMPARE(world.websites.websites().first().title, u"Watch"_s);

    Q_EMIT world.view.messageReceived(
        QString::fromUtf16(resourceMessageHandler),
        QVariantMap{{u"url"_s, u"https://cdn.example/a.m3u8"_s}, {u"title"_s, u"Live"_s}});
    Q_EMIT world.view.responseReceived(QUrl(u"https://cdn.example/b"_s),
                                       u"application/x-mpegURL"_s);
    Q_EMIT world.view.responseReceived(QUrl(u"https://cdn.example/c"_s), u"text/html"_s);
    QCOMPARE(world.finder.streams()->count(), 2);

    Q_EMIT world.view.loadFailed(u"No such server."_s);
    QCOMPARE(world.tab().errorMessage(), u"No such server."_s);
    // A script that follows the switch would otherwise be there for the next page only.
    world.blocker.setEnabled(false);
    QCOMPARE(world.view.userScripts.value(1), adBlockerFlagScript(false));
}

void SnifferViewTest::serversMustAnswer_data()
{
    QTest::addColumn<Happen>("happens"); // a moment before the time is up
    QTest::addColumn<bool>("isStopped");
    const auto row = [](const char *name, Happen happens, bool isStopped) {
        QTest::newRow(name) << happens << isStopped;
    };
    row("silence", [](FakeWebView &) { }, true);
    row("another title", [](FakeWebView &view) { Q_EMIT view.titleChanged(u"X"_s); }, true);
    row("an answer", [](FakeWebView &view) { Q_EMIT view.answerBegan(); }, false);
    row("the page", [](FakeWebView &view) { Q_EMIT view.loadFinished(u"X"_s); }, false);
    row("an error", [](FakeWebView &view) { Q_EMIT view.loadFailed({}); }, false);
    row("the user stops it", [](FakeWebView &view) { Q_EMIT view.loadStopped(); }, false);
    row("it goes elsewhere", [](FakeWebView &view) { Q_EMIT view.loadStarted(); }, false);
}

void SnifferViewTest::serversMustAnswer()
{
    QFETCH(const Happen, happens);
    QFETCH(const bool, isStopped);
    World world;
    world.attach();
    Q_EMIT world.view.loadStarted();
    world.view.log.clear();
    world.scheduler.advance(std::chrono::seconds(59));
    happens(world.view);
    const bool isLoading = world.tab().isLoading();
    world.scheduler.advance(std::chrono::seconds(1));
    QCOMPARE(world.view.log, isStopped ? QStringList{u"stop"_s} : QStringList());
    QCOMPARE(world.tab().errorMessage(),
             isStopped ? u"The server takes too long to answer."_s : QString());
    QCOMPARE(world.tab().isLoading(), isLoading && !isStopped);
    // Nor is a page that stands given up later.
    world.scheduler.advance(std::chrono::seconds(58));
    QCOMPARE(world.view.log.size(), isStopped ? 1 : 0);
}

void SnifferViewTest::viewsGo()
{
    World world;
    {
        auto view = std::make_unique<FakeWebView>(u"https://site.example/"_s);
        world.finder.attach(&world.tab(), view.get());
        QVERIFY(world.tab().webView());
    }
    world.tab().navigate(QUrl(u"https://site.example/2"_s));
    world.blocker.setEnabled(false);

    // And the other way round: the tab goes first.
    world.attach();
    world.finder.tabs()->closeRow(0);
    Q_EMIT world.view.loadFinished(u"Late"_s);
    Q_EMIT world.view.responseReceived(QUrl(u"https://h/a.m3u8"_s), u"x"_s);
    QVERIFY(world.view.policy({QUrl(u"https://h/a.m3u8"_s)}));
    QCOMPARE(world.finder.streams()->count(), 0);
}

void SnifferViewTest::streamsOfTheSelectedTab()
{
    World world;
    const QAbstractItemModelTester tester(world.finder.streams());
    QSignalSpy counts(world.finder.streams(), &Streams::countChanged);
    world.detect(u"https://h/a.m3u8"_s, u"A"_s);
    world.detect(u"https://h/b.m3u8"_s, u"B"_s);
    QCOMPARE(world.shown(0, Streams::NameRole), u"B"_s);
    world.detect(u"https://h/a.m3u8"_s, u"A"_s);
    QCOMPARE(world.shown(0, Streams::NameRole), u"A"_s);
    QCOMPARE(counts.count(), 2);
    world.finder.tabs()->addTab();
    QCOMPARE(world.finder.streams()->count(), 0);
    world.finder.tabs()->selectNext(1);
    QCOMPARE(world.finder.streams()->count(), 2);
    world.finder.tabs()->closeRow(0);
    QCOMPARE(world.finder.streams()->count(), 0);
}

/// Pages may load playlists by the thousand: what happens to one is told of its row, and nobody is
/// asked about the others.
void SnifferViewTest::manyStreams()
{
    World world;
    Streams &streams = *world.finder.streams();
    const auto address = [](int i) { return u"https://h/live.m3u8?_HLS_msn=%1"_s.arg(i); };
    constexpr int many = 3000;
    for (int i = 0; i < many; ++i)
        world.detect(address(i));

    QSignalSpy inserts(&streams, &Streams::rowsInserted);
    QSignalSpy moves(&streams, &Streams::rowsMoved);
    QSignalSpy resets(&streams, &Streams::modelReset);
    QSignalSpy changes(&streams, &Streams::dataChanged);
    const auto changedRows = [&] {
        int rows = 0;
        for (const QVariantList &change : std::as_const(changes)) {
            for (int row = change[0].toModelIndex().row(); row <= change[1].toModelIndex().row();
                 ++row) {
                if (streams.addressAt(row) != address(10))
                    return -1;
                ++rows;
            }
        }
        return rows;
    };
    world.detect(address(many));
    QCOMPARE(inserts.size(), 1);
    QCOMPARE(changes.size(), 0);
    world.detect(address(10));
    QCOMPARE(moves.size(), 1);
    QCOMPARE(changedRows(), 1);
    changes.clear();
    world.detect(address(11));
    changes.clear();

    // What the library read for its first question would be what it was then.
    FakeUserDefaults stored;
    {
        FakeScheduler scheduler;
        LocalM3UStore library(stored, scheduler);
        library.save(QUrl(address(10)), {});
    }
    world.defaults.values = stored.values;
    QVERIFY(world.shown(1, Streams::IsSavedRole).toBool());
    QVERIFY(!world.shown(0, Streams::IsSavedRole).toBool());

    streams.download(1);
    QCOMPARE(changedRows(), 1);
    streams.stopDownload(1);
    world.scheduler.runBackground();
    QVERIFY(changedRows() > 1);
    QCOMPARE(inserts.size(), 1);
    QCOMPARE(moves.size(), 2);
    QCOMPARE(resets.size(), 0);
}

void SnifferViewTest::streamActions()
{
    World world;
    Streams &streams = *world.finder.streams();
    QSignalSpy notices(&world.finder, &SnifferViewModel::notice);
    world.detect(u"https://h/a.m3u8?token=1"_s, u"News"_s);
    streams.play(0);
    QCOMPARE(world.opened, QStringList{u"News https://h/a.m3u8?token=1"_s});
    QCOMPARE(streams.addressAt(0), u"https://h/a.m3u8?token=1"_s);

    QCOMPARE(world.shown(0, Streams::SaveHelpRole), u"Save to Local M3U"_s);
    streams.save(0);
    QVERIFY(world.library.contains(QUrl(u"https://h/a.m3u8?token=1"_s)));
    QCOMPARE(world.library.entries().name(0), "News");
    QCOMPARE(notices.count(), 1);
    QCOMPARE(world.shown(0, Streams::SaveHelpRole),
             u"Saved to Local M3U (Click to open in Player)"_s);
    QCOMPARE(world.posted, QStringList());
    streams.save(0);
    QCOMPARE(world.posted, QStringList{QString::fromUtf16(notification::openLocalM3UTab)});
    QCOMPARE(world.library.entries().size(), 1);

    for (const int row : {-1, 1}) {
        streams.play(row);
        streams.save(row);
        streams.download(row);
        QCOMPARE(streams.addressAt(row), QString());
    }
    QCOMPARE(world.opened.size(), 1);
}

void SnifferViewTest::streamNames_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown");
    QTest::newRow("named") << u"https://h/a.m3u8"_s << u"News"_s << u"News"_s;
    QTest::newRow("file") << u"https://h/x/a%20b.m3u8?c"_s << QString() << u"a b.m3u8"_s;
    QTest::newRow("host") << u"https://h/?u=a.m3u8"_s << u"video"_s << u"h"_s;
}

void SnifferViewTest::streamNames()
{
    QFETCH(const QString, address);
    QFETCH(const QString, name);
    World world;
    world.detect(address, name);
    QTEST(world.shown(0, Streams::NameRole).toString(), "shown");
}

/// Even if some of it is there.
void SnifferViewTest::failedDownloadsAreTold()
{
    World world;
    QSignalSpy notices(&world.finder, &SnifferViewModel::notice);
    world.detect(u"https://h/a.m3u8"_s);
    const QByteArray playlist = "#EXTM3U\n#EXTINF:4,\n1.ts\n#EXTINF:4,\n2.ts\n#EXT-X-ENDLIST\n";
    for (const bool isShown : {false, true}) {
        world.finder.setProperty("isShown", isShown);
        world.finder.streams()->download(0);
        world.scheduler.runBackground();
        world.http.respond(QUrl(u"https://h/a.m3u8"_s), 200, playlist);
        world.scheduler.runBackground();
        world.http.respond(QUrl(u"https://h/1.ts"_s), 200, "1");
        world.scheduler.runBackground();
        world.http.respond(QUrl(u"https://h/2.ts"_s), 403, {});
        world.scheduler.runBackground();
        QVERIFY(world.shown(0, Streams::JobHasFailedRole).toBool());
        QVERIFY(world.shown(0, Streams::CanRevealRole).toBool());
        QCOMPARE(notices.size(), isShown ? 1 : 0);
    }
    QCOMPARE(notices.first().first().toString(), world.downloads.errorMessage());
    world.downloads.dismissError();
    QCOMPARE(notices.size(), 1);
}

void SnifferViewTest::stars()
{
    World world;
    QVERIFY(!world.finder.canStar());
    world.finder.toggleStar();
    world.attach();
    Q_EMIT world.view.loadFinished(u"Watch"_s);
    QSignalSpy changes(&world.finder, &SnifferViewModel::toolbarChanged);
    QVERIFY(world.finder.canStar() && !world.finder.isStarred());
    world.finder.toggleStar();
    QVERIFY(world.finder.isStarred());
    QVERIFY(!changes.isEmpty());
    world.finder.tabs()->addTab();
    QVERIFY(!world.finder.canStar() && !world.finder.isStarred());
    world.finder.openWebsite(u"site.example"_s, false);
    QCOMPARE(world.tab().address(), u"https://site.example"_s);
    world.finder.openWebsite(u"file:///etc/passwd"_s, true);
    QCOMPARE(world.finder.tabs()->count(), 2);
}

void SnifferViewTest::streamsAreNoFiles()
{
    World world;
    world.attach();
    QVERIFY(world.finder.takesDownload(&world.view, QUrl(u"https://h/live"_s),
                                       u"application/vnd.apple.mpegurl"_s));
    QVERIFY(world.finder.takesDownload(&world.view, QUrl(u"https://h/a.m3u8"_s), u"x/y"_s));
    QVERIFY(!world.finder.takesDownload(&world.view, QUrl(u"https://h/a.zip"_s), u"x/zip"_s));
    QVERIFY(!world.finder.takesDownload(nullptr, QUrl(u"https://h/a.zip"_s), u"x/zip"_s));
    QCOMPARE(world.finder.streams()->count(), 2);

    // Beyond what a page may have listed, nobody is asked where to save, but told.
    const QSignalSpy notices(&world.finder, &SnifferViewModel::notice);
    int taken = 0;
    while (notices.isEmpty() && taken < 50'000)
        QVERIFY(world.finder.takesDownload(&world.view, QUrl(u"https://h/a.m3u8?%1"_s.arg(++taken)),
                                           u"x/y"_s));
    QCOMPARE(world.finder.streams()->count(), 2 + taken - 1);
    QCOMPARE(notices.first().first().toString(),
             u"The page loads more streams than can be listed."_s);
}

void SnifferViewTest::asksWhereToSave()
{
    World world;
    QSignalSpy cancelled(&world.finder, &SnifferViewModel::savingCancelled);
    QSignalSpy notices(&world.finder, &SnifferViewModel::notice);
    const QString part = world.folder.filePath(u"1.part"_s);
    const QString place = world.folder.filePath(u"b.zip"_s);
    const auto write = [&part] {
        QFile file(part);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("content");
    };
    const int first = world.finder.beginSaving(u"../../evil/a.zip"_s);
    QCOMPARE(world.panels.saveRequests.last().proposedName, u"a.zip"_s);
    QCOMPARE(cancelled.takeFirst(), QVariantList{first});
    QVERIFY(!world.finder.isSaving(first));
    // What had come in time goes.
    write();
    world.finder.finishSaving(first, part);
    QVERIFY(!QFile::exists(part));

    world.panels.choice = QUrl::fromLocalFile(place);
    const int second = world.finder.beginSaving(QString());
    QVERIFY(second != first);
    write();
    world.finder.finishSaving(second, part);
    world.scheduler.runBackground();
    QVERIFY(QFile::exists(place) && !QFile::exists(part));
    QCOMPARE(notices.takeFirst(), QVariantList{u"Saved: b.zip"_s});

    const int third = world.finder.beginSaving(u"c"_s);
    world.finder.abandonSaving(third, u"The server is gone."_s);
    world.finder.abandonSaving(third, u"Again."_s);
    QCOMPARE(notices.size(), 1);
    world.finder.finishSaving(world.finder.beginSaving(u"d"_s), u"/nowhere/1.part"_s);
    world.scheduler.runBackground();
    QVERIFY(notices.last().first().toString().startsWith(u"Could not save b.zip: "_s));
    QVERIFY(QFile::exists(place));
}

void SnifferViewTest::closingHides()
{
    World world;
    world.attach();
    world.window.show();
    QVERIFY(world.window.isShown());
    QVERIFY(!world.window.windowShouldClose());
    QVERIFY(world.window.isShown());
    world.view.log.clear();
    world.scheduler.advance({});
    QVERIFY(!world.window.isShown());
    QCOMPARE(world.posted, QStringList{QString::fromUtf16(notification::snifferWindowDidClose)});
    QCOMPARE(world.view.log, (QStringList{u"pause"_s, mediaPauseScript()}));
    QCOMPARE(world.finder.tabs()->count(), 1);

    // Who changes their mind at once is not left without the window.
    world.window.show();
    world.window.windowShouldClose();
    world.window.show();
    world.scheduler.advance(std::chrono::seconds(1));
    QVERIFY(world.window.isShown());
}

void SnifferViewTest::losingTheKeyboard_data()
{
    QTest::addColumn<QList<KeyWindow>>("keys");
    QTest::addColumn<bool>("isShown");
    using enum KeyWindow;
    QTest::newRow("main window") << QList{Other} << false;
    QTest::newRow("own panel") << QList{OwnPanel} << true;
    QTest::newRow("another program") << QList{None} << true;
    QTest::newRow("there and back") << QList{None, Finder} << true;
    QTest::newRow("main window and back") << QList{Other, Finder} << true;
    QTest::newRow("main window, then a panel") << QList{Other, OwnPanel} << true;
    QTest::newRow("from another program to the main window") << QList{None, Other} << false;
}

void SnifferViewTest::savingsWaitForEachOther()
{
    World world;
    QSignalSpy cancelled(&world.finder, &SnifferViewModel::savingCancelled);
    int second = 0;
    world.panels.choice = QUrl::fromLocalFile(world.folder.filePath(u"a.zip"_s));
    world.panels.whileOpen = [&] {
        second = world.finder.beginSaving(u"b.zip"_s);
        QCOMPARE(world.panels.saveRequests.size(), 1);
        QVERIFY(world.finder.isSaving(second) && !world.finder.hasPlace(second));
    };
    const int first = world.finder.beginSaving(u"a.zip"_s);
    QVERIFY(world.finder.hasPlace(first) && world.finder.hasPlace(second));
    QCOMPARE(world.panels.saveRequests.last().proposedName, u"b.zip"_s);

    // A page may ask on and on; Cancel answers all that waits.
    world.panels.choice.reset();
    world.panels.whileOpen = [&] {
        for (int i = 0; i < 20; ++i)
            world.finder.beginSaving(u"c.zip"_s);
    };
    const int flood = world.finder.beginSaving(u"c.zip"_s);
    QCOMPARE(world.panels.saveRequests.size(), 3);
    QCOMPARE(cancelled.size(), 5);
    for (int saving = flood; saving <= flood + 20; ++saving)
        QVERIFY(!world.finder.isSaving(saving));
}

void SnifferViewTest::savingsWaitForOtherPanels()
{
    World world;
    QSignalSpy cancelled(&world.finder, &SnifferViewModel::savingCancelled);
    world.panels.choice = QUrl::fromLocalFile(world.folder.filePath(u"b.zip"_s));
    world.finder.setPanelOpen(true);
    const int gone = world.finder.beginSaving(u"a.zip"_s);
    const int wanted = world.finder.beginSaving(u"b.zip"_s);
    world.scheduler.advance(std::chrono::minutes(1));
    QVERIFY(world.panels.saveRequests.isEmpty());
    QVERIFY(world.finder.isSaving(wanted));
    world.finder.abandonSaving(gone, {});
    world.finder.setPanelOpen(false);
    // The other's answer has yet to be taken.
    QVERIFY(world.panels.saveRequests.isEmpty());
    world.scheduler.advance({});
    QCOMPARE(world.panels.saveRequests.size(), 1);
    QVERIFY(world.finder.hasPlace(wanted));
    QVERIFY(cancelled.isEmpty());
}

void SnifferViewTest::uploadsAreAnswered_data()
{
    QTest::addColumn<bool>("isPanelOpen");
    QTest::addColumn<QString>("choice");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<int>("notices");
    QTest::newRow("chosen") << false << u"/home/a.png"_s << u"/home/a.png"_s << 0;
    QTest::newRow("cancelled") << false << QString() << QString() << 0;
    QTest::newRow("another panel is open") << true << u"/home/a.png"_s << QString() << 1;
}

void SnifferViewTest::uploadsAreAnswered()
{
    QFETCH(const bool, isPanelOpen);
    QFETCH(const QString, choice);
    QFETCH(const QString, answer);
    World world;
    QSignalSpy chosen(&world.finder, &SnifferViewModel::uploadChosen);
    QSignalSpy notices(&world.finder, &SnifferViewModel::notice);
    if (!choice.isEmpty())
        world.panels.choice = QUrl::fromLocalFile(choice);
    world.finder.setPanelOpen(isPanelOpen);
    const int upload = world.finder.beginUpload();
    // Nobody could tell yet which one it is for.
    QVERIFY(chosen.isEmpty());
    world.scheduler.advance({});
    QCOMPARE(chosen, (QList<QVariantList>{{upload, answer}}));
    QTEST(int(notices.size()), "notices");
    QCOMPARE(world.panels.requests.isEmpty(), isPanelOpen);
}

void SnifferViewTest::panelsKeepTheWindow()
{
    World world;
    world.window.show();
    world.window.setProperty("hasSheet", true);
    world.window.keyWindowChanged(KeyWindow::Other);
    world.window.windowShouldClose();
    world.scheduler.advance({});
    QVERIFY(world.window.isShown());
    world.window.setProperty("hasSheet", false);
    world.window.windowShouldClose();
    world.scheduler.advance({});
    QVERIFY(!world.window.isShown());
}

void SnifferViewTest::losingTheKeyboard()
{
    QFETCH(const QList<KeyWindow>, keys);
    World world;
    world.window.show();
    for (const KeyWindow key : keys)
        world.window.keyWindowChanged(key);
    world.scheduler.advance({});
    QTEST(world.window.isShown(), "isShown");
}

void SnifferViewTest::framesAreRemembered()
{
    World world;
    const QRect frame(10, 20, 900, 700);
    world.window.setFrame({});
    world.window.setFrame(frame);
    world.scheduler.runBackground();
    const SnifferWindowController next(
        {*world.finder.tabs(), world.notifications, world.defaults, world.scheduler});
    QCOMPARE(next.frame(), frame);
    world.defaults.values.insert(u"Lumaro.M3U8SnifferWindow"_s, R"({"x":1,"width":"wide"})");
    const SnifferWindowController broken(
        {*world.finder.tabs(), world.notifications, world.defaults, world.scheduler});
    QVERIFY(broken.frame().isEmpty());
    QCOMPARE(broken.placedFrame({0, 0, 1920, 1080}, {1100, 800}), QRect(410, 140, 1100, 800));
}

QTEST_GUILESS_MAIN(SnifferViewTest)
#include "tst_snifferview.moc"
