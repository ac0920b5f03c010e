#include "finder/SnifferBlockListModel.h"
#include "finder/SnifferProxySettingsModel.h"
#include "finder/SnifferWebListModel.h"
#include "platform/contentrules/CompilingRuleListStore.h"
#include "platform/qt/QtScheduler.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeProxyConfigurationTarget.h"
#include "tests/fakes/FakeUserDefaults.h"
#include "ui/Style.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

void fill(SnifferAdBlocker &blocker, SnifferSavedWebsiteStore &websites)
{
    for (int i = 1; i <= 20; ++i)
        blocker.addDomain(u"ads%1.example"_s.arg(i));
    blocker.addDomain(u"a.very.long.domain.name.that.does.not.fit.into.the.list.at.all.example"_s);
    for (int i = 1; i <= 12; ++i)
        websites.recordVisit(u"https://video%1.example/watch?v=%1"_s.arg(i),
                             u"Watching video %1"_s.arg(i));
    websites.save(u"https://tv.example"_s, u"All channels of the world"_s, true);
    websites.save(u"https://news.example/live"_s, {}, true);
    websites.recordVisit(u"https://news.example/live"_s, u"News, live and in full length"_s);
}

} // namespace

// lumaro_finder_gallery [--empty]: LUMARO_THEME=light shows the light theme.
int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    applyStyle();

    FakeUserDefaults defaults;
    FakeFilePanels panels;
    FakeProxyConfigurationTarget target;
    QtScheduler scheduler;
    CompilingRuleListStore rules(scheduler);
    SnifferAdBlocker blocker(defaults, scheduler, rules);
    SnifferBlockListModel blockList(blocker);
    SnifferProxyManager proxy(defaults, scheduler, target);
    SnifferProxySettingsModel proxySettings(proxy);
    SnifferSavedWebsiteStore websites(defaults, scheduler, panels);
    SnifferWebListModel webList(websites);
    if (!QGuiApplication::arguments().contains(u"--empty"_s))
        fill(blocker, websites);

    QQmlApplicationEngine engine;
    engine.addImportPath(u"qrc:/qt/qml"_s);
    engine.setInitialProperties({
        {u"blockList"_s, QVariant::fromValue(&blockList)},
        {u"proxySettings"_s, QVariant::fromValue(&proxySettings)},
        {u"webList"_s, QVariant::fromValue(&webList)},
    });
    engine.load(QUrl(u"qrc:/qt/qml/Lumaro/FinderGallery/Gallery.qml"_s));
    return engine.rootObjects().isEmpty() ? 1 : QGuiApplication::exec();
}
