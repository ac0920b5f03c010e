#include "finder/SnifferAdBlocker.h"
#include "platform/contentrules/CompilingRuleListStore.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"
#include "tests/fakes/FakeWebView.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

/// The rules from the ad blocker's text to the web view's decision.
class CompilingRuleListStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blocksWhatTheBlockerSays_data();
    void blocksWhatTheBlockerSays();
    void compilesWhateverCanBeAdded();
    void endsPromptlyWhenStopped();
};

void CompilingRuleListStoreTest::blocksWhatTheBlockerSays_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("blocked");
    QTest::newRow("domain") << u"https://cdn.ads.example/x.js"_s << true;
    QTest::newRow("dot is a dot") << u"https://adsxexample.tv/x.js"_s << false;
    QTest::newRow("path") << u"https://a.tv/PAGEAD/x"_s << true;
    QTest::newRow("popunder") << u"https://a.tv/popunder123.js"_s << true;
    // Left to the test of where a page leads.
    QTest::newRow("banner") << u"https://a.tv/ads/banner"_s << false;
    QTest::newRow("stream") << u"https://a.tv/live.m3u8"_s << false;
}

void CompilingRuleListStoreTest::blocksWhatTheBlockerSays()
{
    QFETCH(const QString, address);
    FakeUserDefaults defaults;
    FakeScheduler scheduler;
    CompilingRuleListStore store(scheduler);
    SnifferAdBlocker blocker(defaults, scheduler, store);
    FakeWebView view;
    blocker.registerAndApply(&view);
    blocker.addDomain(u"ads.example"_s);
    QCOMPARE(view.lists.size(), 0);
    scheduler.runBackground();
    QCOMPARE(view.lists.size(), 1);
    const QUrl page(u"https://a.tv/"_s);
    QTEST(view.lists[0]->blocks({QUrl(address), page, ResourceType::Script}), "blocked");
    QVERIFY(view.lists[0]->hidingScript().contains(u".ad, .ads, "));
}

void CompilingRuleListStoreTest::compilesWhateverCanBeAdded()
{
    FakeUserDefaults defaults;
    FakeScheduler scheduler;
    CompilingRuleListStore store(scheduler);
    SnifferAdBlocker blocker(defaults, scheduler, store);
    FakeWebView view;
    blocker.registerAndApply(&view);
    for (char16_t c = 1; c < 0x180; ++c) {
        blocker.addDomain(u"a"_s + QChar(c) + u"b.example"_s);
        blocker.addDomain(QChar(c) + u".example"_s);
    }
    QVERIFY(blocker.blockedDomains().size() > 70);
    scheduler.runBackground();
    QVERIFY(!blocker.isCompiling());
    QCOMPARE(view.lists.size(), 1);
    QVERIFY(view.lists[0]->blocks({QUrl(u"https://a-b.example/"_s), {}, ResourceType::Image}));
}

void CompilingRuleListStoreTest::endsPromptlyWhenStopped()
{
    FakeScheduler scheduler;
    CompilingRuleListStore store(scheduler);
    std::stop_source stop;
    std::optional<ContentRuleListStore::Result> result;
    const ContentRuleListStore::Rules rules = [] { return u"[]"_s; };
    const auto compiling = store.compile(u"x"_s, rules, stop.get_token());
    const auto take = [&]() -> Task<> { result = co_await compiling; };
    take();
    QVERIFY(!result);
    stop.request_stop();
    QVERIFY(result);
    QCOMPARE(result->error().kind, ContentRuleListError::Kind::Cancelled);
    scheduler.runBackground();
}

QTEST_GUILESS_MAIN(CompilingRuleListStoreTest)
#include "tst_compilingruleliststore.moc"
