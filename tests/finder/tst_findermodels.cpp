#include "finder/SnifferBlockListModel.h"
#include "finder/SnifferProxySettingsModel.h"
#include "finder/SnifferWebListModel.h"
#include "tests/fakes/FakeContentRuleListStore.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeProxyConfigurationTarget.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"
#include "tests/fakes/FakeWebView.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>
#include <QTimeZone>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

struct World
{
    FakeUserDefaults defaults;
    FakeScheduler scheduler;
    FakeContentRuleListStore rules;
    FakeProxyConfigurationTarget target;
    FakeFilePanels panels;
    QDateTime now{QDate(2026, 1, 2), QTime(3, 4), QTimeZone::utc()};

    SnifferAdBlocker blocker{defaults, scheduler, rules};
    SnifferBlockListModel blockList{blocker};
    SnifferProxyManager proxy{defaults, scheduler, target};
    SnifferProxySettingsModel proxySettings{proxy};
    SnifferSavedWebsiteStore websites{defaults, scheduler, panels, [this] { return now; }};
    SnifferWebListModel webList{websites};

    QAbstractItemModelTester blockListTester{
        &blockList, QAbstractItemModelTester::FailureReportingMode::QtTest};
    QAbstractItemModelTester webListTester{&webList,
                                           QAbstractItemModelTester::FailureReportingMode::QtTest};
};

class TextModel : public RowListModel<QString>
{
public:
    using RowListModel::putFirst;
    using RowListModel::resetRows;
    QVariant data(const QModelIndex &index, int role) const override
    {
        return role == Qt::DisplayRole && index.isValid() ? rows().value(index.row()) : QVariant();
    }
};

QStringList texts(const QAbstractItemModel &model, int role)
{
    QStringList list;
    for (int row = 0; row < model.rowCount(); ++row)
        list.append(model.index(row, 0).data(role).toString());
    return list;
}

} // namespace

class FinderModelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void putsRowsFirst_data();
    void putsRowsFirst();
    void listsDomainsNewestFirst();
    void searchesDomains_data();
    void searchesDomains();
    void saysWhyADomainIsRefused();
    void saysWhyNoDomainIsShown();
    void removesDomains();
    void listsWebsites();
    void searchesWebsites_data();
    void searchesWebsites();
    void saysWhyNoWebsiteIsShown();
    void clearsWhatTheTabSays();
    void movesOnlyWhatChanged();
    void switchTakesEffectAtOnce();
    void editsTakeEffectWhenConfirmed();
    void presetsAreLocal();
};

void FinderModelsTest::putsRowsFirst_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("row");
    QTest::addColumn<QStringList>("after");
    // What is announced.
    QTest::addColumn<int>("inserted");
    QTest::addColumn<int>("moved");
    QTest::addColumn<int>("changed");
    QTest::newRow("new") << -1 << u"n"_s << QStringList{u"n"_s, u"a"_s, u"b"_s, u"c"_s} << 1 << 0
                         << 0;
    QTest::newRow("first again") << 0 << u"a"_s << QStringList{u"a"_s, u"b"_s, u"c"_s} << 0 << 0
                                 << 0;
    QTest::newRow("first, changed")
        << 0 << u"a2"_s << QStringList{u"a2"_s, u"b"_s, u"c"_s} << 0 << 0 << 1;
    QTest::newRow("middle") << 1 << u"b"_s << QStringList{u"b"_s, u"a"_s, u"c"_s} << 0 << 1 << 0;
    QTest::newRow("last, changed")
        << 2 << u"c2"_s << QStringList{u"c2"_s, u"a"_s, u"b"_s} << 0 << 1 << 1;
}

void FinderModelsTest::putsRowsFirst()
{
    QFETCH(const int, from);
    QFETCH(const QString, row);
    QFETCH(const QStringList, after);
    TextModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.resetRows({u"a"_s, u"b"_s, u"c"_s});
    QSignalSpy inserts(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy moves(&model, &QAbstractItemModel::rowsMoved);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    const QPersistentModelIndex followed = model.index(std::max(from, 0));
    model.putFirst(from, row);
    QCOMPARE(texts(model, Qt::DisplayRole), after);
    QCOMPARE(followed.row(), from < 0 ? 1 : 0);
    QTEST(int(inserts.size()), "inserted");
    QTEST(int(moves.size()), "moved");
    QTEST(int(changes.size()), "changed");
}

void FinderModelsTest::listsDomainsNewestFirst()
{
    World world;
    QSignalSpy counts(&world.blockList, &SnifferBlockListModel::countChanged);
    QVERIFY(world.blockList.add(u"https://WWW.First.example/x"_s));
    QVERIFY(world.blockList.add(u"second.example"_s));
    QCOMPARE(texts(world.blockList, SnifferBlockListModel::DomainRole),
             (QStringList{u"second.example"_s, u"first.example"_s}));
    QCOMPARE(texts(world.blockList, SnifferBlockListModel::DeleteHelpRole).first(),
             u"Permanently delete second.example from Block List"_s);
    QCOMPARE(counts.size(), 2);
}

void FinderModelsTest::searchesDomains_data()
{
    QTest::addColumn<QString>("search");
    QTest::addColumn<QStringList>("shown");
    const QStringList all{u"c.tv"_s, u"ads.b.tv"_s, u"ads.a.tv"_s};
    QTest::newRow("nothing") << QString() << all;
    QTest::newRow("spaces") << u"  "_s << all;
    QTest::newRow("case") << u" ADS "_s << QStringList{u"ads.b.tv"_s, u"ads.a.tv"_s};
    QTest::newRow("none") << u"x"_s << QStringList();
    QTest::newRow("not an expression") << u".*"_s << QStringList();
}

void FinderModelsTest::searchesDomains()
{
    QFETCH(const QString, search);
    World world;
    for (const QString &domain : {u"ads.a.tv"_s, u"ads.b.tv"_s})
        world.blockList.add(domain);
    world.blockList.setSearchText(search);
    world.blockList.add(u"c.tv"_s);
    QTEST(texts(world.blockList, SnifferBlockListModel::DomainRole), "shown");
}

void FinderModelsTest::saysWhyADomainIsRefused()
{
    World world;
    const QString refusal = u"Enter a valid domain (e.g. adserver.com) not already in the list."_s;
    QVERIFY(!world.blockList.add(u"localhost"_s));
    QCOMPARE(world.blockList.errorText(), refusal);
    QVERIFY(world.blockList.add(u"a.tv"_s));
    QCOMPARE(world.blockList.errorText(), QString());
    QVERIFY(!world.blockList.add(u"a.tv"_s));
    QCOMPARE(world.blockList.errorText(), refusal);
    world.blockList.clearError();
    QCOMPARE(world.blockList.errorText(), QString());
}

void FinderModelsTest::saysWhyNoDomainIsShown()
{
    World world;
    QSignalSpy changes(&world.blockList, &SnifferBlockListModel::emptyTitleChanged);
    QCOMPARE(world.blockList.emptyTitle(), u"No domains in Block List."_s);
    QVERIFY(!world.blockList.emptyText().isEmpty());
    world.blockList.add(u"a.tv"_s);
    QCOMPARE(world.blockList.emptyTitle(), QString());
    world.blockList.setSearchText(u"x"_s);
    QCOMPARE(world.blockList.emptyTitle(), u"No matching domains found."_s);
    QCOMPARE(world.blockList.emptyText(), QString());
    world.blockList.removeAll();
    QCOMPARE(world.blockList.emptyTitle(), u"No domains in Block List."_s);
    QCOMPARE(changes.size(), 3);
}

void FinderModelsTest::removesDomains()
{
    World world;
    for (const QString &domain : {u"ads.a.tv"_s, u"b.tv"_s, u"ads.c.tv"_s})
        world.blockList.add(domain);
    world.blockList.setSearchText(u"ads"_s);
    QSignalSpy removed(&world.blockList, &QAbstractItemModel::rowsRemoved);
    world.blockList.remove(1);
    world.blockList.remove(1);
    world.blockList.remove(-1);
    QCOMPARE(removed.size(), 1);
    QCOMPARE(world.blocker.blockedDomains(), (QStringList{u"b.tv"_s, u"ads.c.tv"_s}));
}

void FinderModelsTest::listsWebsites()
{
    World world;
    QCOMPARE(world.webList.filterTabs(), (QStringList{u"Saved"_s, u"History"_s}));
    world.websites.recordVisit(u"a.tv"_s, u"A"_s);
    world.websites.recordVisit(u"a.tv"_s, u"A"_s);
    world.websites.recordVisit(u"b.tv"_s, {});
    world.websites.save(u"c.tv/x"_s, {}, true);
    QCOMPARE(texts(world.webList, SnifferWebListModel::TitleRole), QStringList{u"c.tv"_s});
    QCOMPARE(texts(world.webList, SnifferWebListModel::VisitsRole), QStringList{QString()});
    world.webList.setFilterTab(SnifferWebListModel::History);
    QCOMPARE(texts(world.webList, SnifferWebListModel::AddressRole),
             (QStringList{u"https://b.tv"_s, u"https://a.tv"_s}));
    QCOMPARE(texts(world.webList, SnifferWebListModel::VisitsRole),
             (QStringList{u"Visited once"_s, u"Visited 2 times"_s}));
    auto often = world.websites.websites().at(2);
    QCOMPARE(often.urlString, u"https://a.tv"_s);
    often.visitCount = qint64(1) << 31;
    world.websites.mergeImportedWebsites(WebList({often}));
    world.scheduler.runBackground();
    QCOMPARE(texts(world.webList, SnifferWebListModel::VisitsRole).value(1),
             u"Visited 2147483647 times"_s);
    world.webList.toggleFavorite(1);
    QVERIFY(world.websites.isFavorite(u"a.tv"_s));
    QCOMPARE(world.webList.rowCount(), 1);
    world.webList.remove(0);
    world.webList.remove(0);
    QCOMPARE(world.websites.websites().size(), 2);
}

void FinderModelsTest::searchesWebsites_data()
{
    QTest::addColumn<QString>("search");
    QTest::addColumn<QStringList>("titles");
    QTest::newRow("blank") << u" "_s << QStringList{u"b.tv"_s, u"Ärzte"_s};
    QTest::newRow("title, other case") << u"äRZ"_s << QStringList{u"Ärzte"_s};
    QTest::newRow("address, other case") << u" B.TV"_s << QStringList{u"b.tv"_s};
    QTest::newRow("scheme") << u"https"_s << QStringList{u"b.tv"_s, u"Ärzte"_s};
    QTest::newRow("none") << u"x"_s << QStringList();
}

void FinderModelsTest::searchesWebsites()
{
    QFETCH(const QString, search);
    World world;
    world.websites.save(u"a.tv"_s, u"Ärzte"_s, true);
    world.webList.setSearchText(search);
    world.websites.save(u"b.tv"_s, {}, true);
    QTEST(texts(world.webList, SnifferWebListModel::TitleRole), "titles");
}

void FinderModelsTest::saysWhyNoWebsiteIsShown()
{
    World world;
    QSignalSpy changes(&world.webList, &SnifferWebListModel::emptyTitleChanged);
    QCOMPARE(world.webList.emptyTitle(), u"No saved websites yet"_s);
    QCOMPARE(
        world.webList.emptyText(),
        u"Enter a website URL above and click the Star button to save sites for quick access."_s);
    world.webList.setFilterTab(SnifferWebListModel::History);
    QCOMPARE(world.webList.emptyTitle(), u"No browsing history yet"_s);
    QCOMPARE(world.webList.emptyText(),
             u"Websites you visit in the sniffer will appear here automatically."_s);
    world.webList.setSearchText(u"x"_s);
    QCOMPARE(world.webList.emptyTitle(), u"No websites found"_s);
    QCOMPARE(world.webList.emptyText(), QString());
    world.websites.recordVisit(u"x.tv"_s, {});
    QCOMPARE(world.webList.emptyTitle(), QString());
    QCOMPARE(changes.size(), 3);
}

void FinderModelsTest::clearsWhatTheTabSays()
{
    World world;
    QVERIFY(!world.webList.canClear());
    world.websites.save(u"a.tv"_s, {}, true);
    QVERIFY(world.webList.canClear());
    world.webList.setFilterTab(SnifferWebListModel::History);
    QVERIFY(!world.webList.canClear());
    world.websites.recordVisit(u"b.tv"_s, {});
    QVERIFY(world.webList.canClear());
    world.webList.clear();
    QCOMPARE(world.websites.websites().size(), 1);
    world.webList.setFilterTab(SnifferWebListModel::Saved);
    world.webList.clear();
    QCOMPARE(world.websites.websites().size(), 0);
}

void FinderModelsTest::movesOnlyWhatChanged()
{
    World world;
    for (int i = 0; i < 5; ++i)
        world.websites.save(u"%1.tv"_s.arg(i), {}, true);
    QSignalSpy removed(&world.webList, &QAbstractItemModel::rowsRemoved);
    QSignalSpy reset(&world.webList, &QAbstractItemModel::modelReset);
    world.websites.recordVisit(u"other.tv"_s, {});
    QCOMPARE(removed.size(), 0);
    world.webList.toggleFavorite(2);
    QCOMPARE(removed.size(), 1);
    QCOMPARE(removed[0][1].toInt(), 2);
    QCOMPARE(reset.size(), 0);
}

void FinderModelsTest::switchTakesEffectAtOnce()
{
    World world;
    FakeWebView page(u"https://a.tv"_s);
    world.proxy.registerWebView(&page);
    world.proxySettings.setEnabled(true);
    QCOMPARE(world.target.applied.last().size(), 1);
    QCOMPARE(page.log, QStringList{u"reload"_s});
    world.proxySettings.setEnabled(true);
    QCOMPARE(page.log.size(), 1);
    world.proxySettings.setEnabled(false);
    QCOMPARE(world.target.applied.last().size(), 0);
    QCOMPARE(page.log.size(), 2);
    // Without a port it makes no difference to the pages.
    world.proxy.setPortString({});
    world.proxySettings.setEnabled(true);
    QCOMPARE(page.log.size(), 2);
}

void FinderModelsTest::editsTakeEffectWhenConfirmed()
{
    World world;
    FakeWebView page(u"https://a.tv"_s);
    world.proxy.registerWebView(&page);
    world.proxySettings.setEnabled(true);
    page.log.clear();
    world.proxySettings.manager()->setHost(u"proxy.tv"_s);
    QCOMPARE(page.log.size(), 0);
    world.proxySettings.confirm();
    world.proxySettings.confirm();
    QCOMPARE(page.log.size(), 1);
    QCOMPARE(world.target.applied.last()[0].host, u"proxy.tv"_s);
    world.proxySettings.chooseType(1);
    QCOMPARE(world.target.applied.last()[0].protocol, ProxyConfiguration::Protocol::HttpConnect);
    world.proxySettings.chooseType(2);
    world.proxySettings.chooseType(-1);
    QCOMPARE(page.log.size(), 2);
}

void FinderModelsTest::presetsAreLocal()
{
    World world;
    world.proxy.setEnabled(true);
    const QStringList presets = world.proxySettings.presets();
    for (int i = 0; i < presets.size(); ++i) {
        world.proxy.setHost(u"elsewhere"_s);
        world.proxySettings.applyPreset(i);
        const ProxyConfiguration proxy = world.target.applied.last().value(0);
        QCOMPARE(proxy.host, u"127.0.0.1"_s);
        QVERIFY(presets[i].endsWith(u" · %1"_s.arg(proxy.port)));
    }
    const auto applied = world.target.applied.size();
    world.proxySettings.applyPreset(int(presets.size()));
    world.proxySettings.applyPreset(-1);
    QCOMPARE(world.target.applied.size(), applied);
}

QTEST_GUILESS_MAIN(FinderModelsTest)
#include "tst_findermodels.moc"
