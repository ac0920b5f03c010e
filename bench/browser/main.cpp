// How much longer a page takes because the stream finder watches it and blocks advertising.
//   bench_browser [ROUNDS]

#include "bench/report/Report.h"
#include "finder/SnifferViewModel.h"
#include "platform/contentrules/CompilingRuleListStore.h"
#include "platform/qt/QtScheduler.h"
#include "tests/e2e/servers/NginxServer.h"
#include "tests/e2e/servers/Waiting.h"
#include "tests/e2e/webengine/EngineProgram.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeProxyConfigurationTarget.h"
#include "tests/fakes/FakeUserDefaults.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr int requests = 500;
/// For one page.
constexpr std::chrono::seconds patience{60};

/// Loads everything, half of it by scripts and half by elements, and then says so.
QByteArray page()
{
    return "<!doctype html><title>loading</title><body><script>"
           "const all = [];"
           "for (let i = 0; i < "
        + QByteArray::number(requests / 2)
        + "; ++i) {"
          "    all.push(fetch('/data/' + i).then(r => r.text()));"
          "    all.push(new Promise(done => {"
          "        const image = new Image(); image.onload = image.onerror = done;"
          "        image.src = '/picture/' + i + '.svg'; document.body.append(image); }));"
          "}"
          "Promise.all(all).then(() => { document.title = location.search; });"
          "</script>";
}

/// Waits in an event loop: the engine's work is among its events, and polling holds that up.
bool waitForTitle(const QObject &views, const char *property, const QString &title)
{
    QEventLoop loop;
    QTimer limit;
    limit.setSingleShot(true);
    QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&views, SIGNAL(titleChanged()), &loop, SLOT(quit()));
    limit.start(patience);
    while (views.property(property) != title && limit.isActive())
        loop.exec();
    return limit.isActive();
}

/// The median with the finder's scripts and rules, and that without.
Measured<std::pair<Seconds, Seconds>> measure(int rounds)
{
    const auto site = NginxServer::start();
    if (!site)
        return std::unexpected(site.error());
    (*site)->writeFile(u"page.html"_s, page());
    for (int i = 0; i < requests / 2; ++i) {
        (*site)->writeFile(u"data/%1"_s.arg(i), QByteArray(200, 'x'));
        (*site)->writeFile(u"picture/%1.svg"_s.arg(i),
                           "<svg xmlns='http://www.w3.org/2000/svg' width='1' height='1'/>");
    }

    QQuickView window;
    window.engine()->addImportPath(u"qrc:/qt/qml"_s);
    window.setInitialProperties({{u"handlers"_s, SnifferViewModel::messageHandlers()}});
    window.setResizeMode(QQuickView::SizeRootObjectToView);
    window.setSource(QUrl::fromLocalFile(QStringLiteral(LUMARO_VIEWS)));
    window.resize(1100, 700);
    window.show();
    QQuickItem *const root = window.rootObject();
    if (!root) {
        const auto errors = window.errors();
        return std::unexpected(errors.isEmpty() ? u"There is no view."_s : errors[0].toString());
    }

    QtScheduler scheduler;
    FakeUserDefaults defaults;
    FakeProxyConfigurationTarget target;
    CompilingRuleListStore rules(scheduler);
    SnifferAdBlocker blocker(defaults, scheduler, rules);
    SnifferProxyManager proxy(defaults, scheduler, target);
    FakeFilePanels panels;
    SnifferSavedWebsiteStore websites(defaults, scheduler, panels);
    SnifferManager manager(websites);
    const SnifferWebView watching(*root->property("page").value<PageView *>(), manager,
                                  {blocker, proxy, scheduler});
    if (!becomesTrue([&] { return !blocker.isCompiling(); }))
        return std::unexpected(u"The rules are not compiled in time."_s);

    const auto timeOf = [&](bool isOwn, int round) -> std::optional<Seconds> {
        const QString mark = u"?%1"_s.arg(round);
        QElapsedTimer clock;
        clock.start();
        root->setProperty(isOwn ? "ownAddress" : "bareAddress",
                          (*site)->url(u"/page.html"_s + mark));
        const char *const title = isOwn ? "ownTitle" : "bareTitle";
        const bool isLoaded = waitForTitle(*root, title, mark);
        return isLoaded ? std::optional(Seconds(double(clock.nsecsElapsed()) / 1e9)) : std::nullopt;
    };
    QList<Seconds> own;
    QList<Seconds> bare;
    // The first round starts the engine.
    for (int round = 0; round <= rounds; ++round) {
        // Each goes first as often as the other.
        for (const bool isOwn : {round % 2 == 0, round % 2 != 0}) {
            const auto time = timeOf(isOwn, round);
            if (!time)
                return std::unexpected(u"The page does not load in time."_s);
            if (round > 0)
                (isOwn ? own : bare).append(*time);
        }
    }
    return std::pair(median(own), median(bare));
}

Row loading(int rounds)
{
    const auto times = measure(rounds);
    Row row{u"page with %1 requests, watched to bare"_s.arg(requests),
            0,
            {},
            Limit{Limit::Kind::AtMost, 1.05}};
    if (times) {
        row.ratio = times->first / times->second;
        row.detail = milliseconds(times->first) + u", bare " + milliseconds(times->second);
    } else {
        row.ratio = std::unexpected(times.error());
    }
    return row;
}

} // namespace

int main(int argc, char *argv[])
{
    const int rounds = roundsAsked(argc, argv, 15);
    return runWithEngine(argc, argv, [rounds] { return report(u"browser"_s, {loading(rounds)}); });
}
