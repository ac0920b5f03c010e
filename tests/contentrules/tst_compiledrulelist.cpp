#include "platform/contentrules/CompiledRuleList.h"

#include <QJSEngine>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <random>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;
using Kind = ContentRuleListError::Kind;

namespace {

/// "trigger members | action members" as a rule's JSON text.
QString rule(const QString &trigger, const QString &action = uR"("type":"block")"_s)
{
    return u"{\"trigger\":{" + trigger + u"},\"action\":{" + action + u"}}";
}

QString hiding(const QString &trigger, const QString &selector)
{
    return rule(trigger, uR"("type":"css-display-none","selector":")"_s + selector + u"\""_s);
}

std::shared_ptr<const ContentRuleList> compiled(const QString &rules)
{
    const auto result = CompiledRuleList::compile(u'[' + rules + u']');
    return result ? result->list : nullptr;
}

bool blocks(const ContentRuleList &list, const QString &url,
            const QString &page = u"https://page.example/"_s,
            ResourceType type = ResourceType::Script)
{
    return list.blocks({QUrl(url), QUrl(page), type});
}

/// The selectors that the list's script hides in a frame with `document` on `page`.
QStringList hidden(const ContentRuleList &list, const QString &document, const QString &page = {})
{
    QJSEngine engine;
    const QUrl url(document);
    engine.evaluate(
        u"var sheet = '';"
        "var location = { href: '%1', hostname: '%2', ancestorOrigins: %3 };"
        "function URL(origin) { this.hostname = origin.replace(/^https:../, ''); }"
        "var document = {"
        "    createElementNS: function () { return {}; },"
        "    documentElement: {"
        "        appendChild: function (style) { sheet = style.textContent; } } };"_s.arg(
            document, url.host(),
            page.isEmpty() ? u"[]"_s : u"['https://inner.tv','"_s + page + u"']"_s));
    const QJSValue result = engine.evaluate(list.hidingScript());
    if (result.isError())
        return {result.toString()};
    QStringList selectors = engine.globalObject()
                                .property(u"sheet"_s)
                                .toString()
                                .split(u" { display: none !important; }\n"_s);
    selectors.removeLast();
    return selectors;
}

} // namespace

class CompiledRuleListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void appliesConditions_data();
    void appliesConditions();
    void caseCountsWhenAsked();
    void looksAtWebAddressesOnly_data();
    void looksAtWebAddressesOnly();
    void hides_data();
    void hides();
    void refuses_data();
    void refuses();
    void refusesTooMany();
    void survivesHostileAddresses();
    void survivesDamagedRules();
};

void CompiledRuleListTest::appliesConditions_data()
{
    QTest::addColumn<QString>("trigger"); // beside the filter
    QTest::addColumn<QString>("page");
    QTest::addColumn<ResourceType>("type");
    QTest::addColumn<bool>("blocked"); // https://cdn.ads.example/x
    const QString other = u"https://page.example/"_s;
    const auto script = ResourceType::Script;
    QTest::newRow("no condition") << QString() << other << script << true;
    QTest::newRow("type") << uR"("resource-type":["image","script"])"_s << other << script << true;
    QTest::newRow("another type") << uR"("resource-type":["image","font"])"_s << other << script
                                  << false;
    QTest::newRow("document by default") << QString() << other << ResourceType::Document << true;
    QTest::newRow("raw includes sockets")
        << uR"("resource-type":["raw"])"_s << other << ResourceType::WebSocket << true;
    QTest::newRow("fetch does not")
        << uR"("resource-type":["fetch"])"_s << other << ResourceType::WebSocket << false;
    QTest::newRow("third party") << uR"("load-type":["third-party"])"_s << u"https://page.tv/"_s
                                 << script << true;
    QTest::newRow("not third party")
        << uR"("load-type":["third-party"])"_s << u"https://www.ads.example/"_s << script << false;
    QTest::newRow("first party") << uR"("load-type":["first-party"])"_s
                                 << u"https://www.ads.example/"_s << script << true;
    QTest::newRow("either party") << uR"("load-type":["first-party","third-party"])"_s
                                  << u"https://page.tv/"_s << script << true;
    QTest::newRow("no page") << uR"("load-type":["third-party"])"_s << QString() << script << false;
    QTest::newRow("on the domain")
        << uR"("if-domain":["a.tv","page.example"])"_s << other << script << true;
    QTest::newRow("below the domain")
        << uR"("if-domain":["page.example"])"_s << u"https://m.page.example/"_s << script << false;
    QTest::newRow("below the starred domain")
        << uR"("if-domain":["*page.example"])"_s << u"https://m.Page.example/"_s << script << true;
    QTest::newRow("on the starred domain")
        << uR"("if-domain":["*page.example"])"_s << other << script << true;
    QTest::newRow("ends like the starred domain")
        << uR"("if-domain":["*page.example"])"_s << u"https://mypage.example/"_s << script << false;
    QTest::newRow("not on the domain")
        << uR"("unless-domain":["*page.example"])"_s << other << script << false;
    QTest::newRow("elsewhere") << uR"("unless-domain":["*page.example"])"_s << u"https://page.tv/"_s
                               << script << true;
    QTest::newRow("elsewhere, no page")
        << uR"("unless-domain":["*page.example"])"_s << QString() << script << true;
}

void CompiledRuleListTest::appliesConditions()
{
    QFETCH(const QString, trigger);
    QFETCH(const QString, page);
    QFETCH(const ResourceType, type);
    // The filter decides how the rule is found.
    for (const QString &filter : {u".*"_s, u"ads\\\\.example"_s, u"[a-z]+\\\\.[a-z]+"_s, u"x$"_s}) {
        const QString more = trigger.isEmpty() ? QString() : u',' + trigger;
        const auto list = compiled(rule(u"\"url-filter\":\""_s + filter + u"\""_s + more));
        QVERIFY(list);
        QTEST(blocks(*list, u"https://cdn.ads.example/x"_s, page, type), "blocked");
        const auto nowhere = compiled(rule(u"\"url-filter\":\"nowhere\""_s + more));
        QVERIFY(!blocks(*nowhere, u"https://cdn.ads.example/x"_s, page, type));
    }
}

void CompiledRuleListTest::caseCountsWhenAsked()
{
    const QString filter = u"\"url-filter\":\"/Ad[s]?/\""_s;
    const auto insensitive = compiled(rule(filter));
    const auto sensitive = compiled(rule(filter + u",\"url-filter-is-case-sensitive\":true"_s));
    QVERIFY(blocks(*insensitive, u"https://h/aDs/"_s));
    QVERIFY(!blocks(*sensitive, u"https://h/aDs/"_s));
    QVERIFY(blocks(*sensitive, u"https://h/Ads/"_s));
}

void CompiledRuleListTest::looksAtWebAddressesOnly_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("blocked");
    QTest::newRow("https") << u"https://h/ad"_s << true;
    QTest::newRow("socket") << u"wss://h/ad"_s << true;
    QTest::newRow("data") << u"data:text/plain,ad"_s << false;
    QTest::newRow("own file") << u"file:///ad"_s << false;
    QTest::newRow("blank page") << u"about:blank"_s << false;
    QTest::newRow("empty") << QString() << false;
}

void CompiledRuleListTest::looksAtWebAddressesOnly()
{
    QFETCH(const QString, address);
    const auto list = compiled(rule(u"\"url-filter\":\".*\""_s));
    QTEST(blocks(*list, address), "blocked");
}

void CompiledRuleListTest::hides_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("page"); // empty: the document is the page
    QTest::addColumn<QString>("selectors");
    QTest::newRow("any") << u"https://a.tv/"_s << QString() << u".ad, [id^='ad_']"_s;
    QTest::newRow("filter") << u"https://a.tv/SPORT"_s << QString()
                            << u".ad, [id^='ad_'] a[href=\"}\"]"_s;
    QTest::newRow("fragment") << u"https://a.tv/#sport"_s << QString() << u".ad, [id^='ad_']"_s;
    QTest::newRow("domain") << u"https://www.news.example/"_s << QString()
                            << u".ad, [id^='ad_'] #top > a"_s;
    QTest::newRow("frame on a page of the domain")
        << u"https://a.tv/"_s << u"https://news.example"_s
        << u".ad, [id^='ad_'] #top > a .stranger"_s;
    QTest::newRow("not a subdomain")
        << u"https://badnews.example/x"_s << QString() << u".ad, [id^='ad_']"_s;
    QTest::newRow("frame of the same site")
        << u"https://cdn.a.tv/"_s << u"https://www.a.tv"_s << u".ad, [id^='ad_']"_s;
    QTest::newRow("frame that the page wrote")
        << u"about:srcdoc"_s << u"https://1.2.3.4"_s << u".ad, [id^='ad_'] .stranger"_s;
    QTest::newRow("upper case") << u"https://a.tv/Case"_s << QString()
                                << u".ad, [id^='ad_'] .case"_s;
}

void CompiledRuleListTest::hides()
{
    QFETCH(const QString, document);
    QFETCH(const QString, page);
    QFETCH(const QString, selectors);
    const auto list = compiled(
        (QStringList{
             hiding(u"\"url-filter\":\".*\""_s, u".ad, [id^='ad_']"_s),
             rule(u"\"url-filter\":\"blocked\""_s),
             hiding(u"\"url-filter\":\".*\",\"if-domain\":[\"*news.example\"]"_s, u"#top > a"_s),
             hiding(u"\"url-filter\":\"(football|sport)\""_s, u"a[href=\\\"}\\\"]"_s),
             hiding(u"\"url-filter\":\".*\",\"resource-type\":[\"image\"]"_s, u".image"_s),
             hiding(u"\"url-filter\":\".*\",\"load-type\":[\"third-party\"]"_s, u".stranger"_s),
             hiding(uR"("url-filter":"/Case","url-filter-is-case-sensitive":true)"_s, u".case"_s),
             hiding(uR"("url-filter":"/case","url-filter-is-case-sensitive":true)"_s, u".no"_s),
         })
            .join(u','));
    QVERIFY(list);
    QCOMPARE(hidden(*list, document, page).join(u' '), selectors);
    QVERIFY(!blocks(*list, u"https://a.tv/"_s));
    QVERIFY(blocks(*list, u"https://a.tv/blocked"_s));
    QCOMPARE(compiled(rule(u"\"url-filter\":\"a\""_s))->hidingScript(), QString());
}

void CompiledRuleListTest::refuses_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<Kind>("kind");
    QTest::addColumn<int>("place");
    const auto whole = [](const char *name, const QString &source, Kind kind, int place = -1) {
        QTest::newRow(name) << source << kind << place;
    };
    const QString good = rule(u"\"url-filter\":\"a\""_s);
    const auto second = [&good](const char *name, const QString &bad, Kind kind) {
        QTest::newRow(name) << u'[' + good + u',' + bad + u']' << kind << 1;
    };
    whole("empty", QString(), Kind::NotAList);
    whole("object", u"{}"_s, Kind::NotAList);
    whole("broken", u"[{"_s, Kind::NotAList);
    whole("deep", QString(5000, u'['), Kind::NotAList);
    second("number", u"1"_s, Kind::NotAList);
    second("no trigger", u"{\"action\":{\"type\":\"block\"}}"_s, Kind::BadTrigger);
    second("trigger is a text", u"{\"trigger\":\"a\",\"action\":{\"type\":\"block\"}}"_s,
           Kind::BadTrigger);
    second("filter is a number", rule(u"\"url-filter\":1"_s), Kind::BadTrigger);
    second("case is a text", rule(uR"("url-filter":"a","url-filter-is-case-sensitive":"no")"_s),
           Kind::BadTrigger);
    second("filter is wrong", rule(u"\"url-filter\":\"(a\""_s), Kind::BadFilter);
    second("filter is empty", rule(u"\"url-filter\":\"\""_s), Kind::BadFilter);
    second("filter is not ASCII", rule(u"\"url-filter\":\"ü\""_s), Kind::BadFilter);
    second("filter is too large", rule(u"\"url-filter\":\""_s + u"[ab]"_s.repeated(3000) + u"\""_s),
           Kind::TooLarge);
    const auto trigger = [&second](const char *name, const QString &more) {
        second(name, rule(u"\"url-filter\":\"a\","_s + more), Kind::BadTrigger);
    };
    trigger("unknown type", uR"("resource-type":["script","Script"])"_s);
    trigger("no types", uR"("resource-type":[])"_s);
    trigger("type is a text", uR"("resource-type":"script")"_s);
    trigger("unknown party", uR"("load-type":["second-party"])"_s);
    trigger("both domain lists", uR"("if-domain":["a"],"unless-domain":["b"])"_s);
    trigger("no domains", uR"("if-domain":[])"_s);
    trigger("domain in upper case", uR"("if-domain":["A.tv"])"_s);
    trigger("domain is not ASCII", uR"("unless-domain":["ü.tv"])"_s);
    trigger("domain is a star", uR"("if-domain":["*"])"_s);
    trigger("domain is a number", uR"("if-domain":[1])"_s);
    trigger("condition we do not know", uR"("if-top-url":["a"])"_s);
    const auto action = [&second](const char *name, const QString &members, Kind kind) {
        second(name, rule(u"\"url-filter\":\"a\""_s, members), kind);
    };
    action("no type", QString(), Kind::BadAction);
    action("unknown action", uR"("type":"explode")"_s, Kind::BadAction);
    action("no selector", uR"("type":"css-display-none")"_s, Kind::BadSelector);
    for (const char *selector :
         {"", " ", "a{", "a}", "a } body { color: red", "a;b", "[x", "x]", "(x]", ")", "'a",
          "a\\\\", "a /* b", "@import", "<style>", "a\\u0000", "[a=\\\"b]"})
        action(selector,
               uR"("type":"css-display-none","selector":")"_s + QLatin1StringView(selector)
                   + u"\""_s,
               Kind::BadSelector);
}

void CompiledRuleListTest::refuses()
{
    QFETCH(const QString, source);
    QFETCH(const Kind, kind);
    QFETCH(const int, place);
    const auto result = CompiledRuleList::compile(source);
    QVERIFY(!result);
    QCOMPARE(result.error(), (ContentRuleListError{kind, place}));
    QVERIFY(!result.error().description().isEmpty());
}

void CompiledRuleListTest::refusesTooMany()
{
    QString source(u'[');
    for (int i = 0; i <= 150'000; ++i)
        source += u"{},"_s;
    source.back() = u']';
    const auto result = CompiledRuleList::compile(source);
    QCOMPARE(result.error(), (ContentRuleListError{Kind::TooLarge, -1}));
}

void CompiledRuleListTest::survivesHostileAddresses()
{
    const auto list = compiled(rule(u"\"url-filter\":\"(a|aa)+b.*(a|b)*c\""_s) + u','
                               + rule(u"\"url-filter\":\"aaaa\",\"if-domain\":[\"x\"]"_s));
    QVERIFY(!blocks(*list, u"https://h/"_s + QString(1'000'000, u'a')));
    QVERIFY(!blocks(*list, u"https://"_s + u"a."_s.repeated(50'000)));
    QVERIFY(!blocks(*list, u"https://h/"_s, u"https://"_s + u"a."_s.repeated(50'000)));
    QVERIFY(!blocks(*list, u"https://h/\u0000\uffff%00%FF"_s));
}

void CompiledRuleListTest::survivesDamagedRules()
{
    const QString good = u'['
        + (QStringList{
               rule(
                   uR"("url-filter":"^https?://(a|b+)[^x-z]\\.c*$","load-type":["third-party"])"_s),
               rule(uR"("url-filter":".*(ads|\\/pagead/).*","if-domain":["*a.tv","b.tv"])"_s),
               hiding(uR"("url-filter":".*","resource-type":["document","raw"])"_s,
                      u".ad, [id^='ad_']"_s),
           })
              .join(u',')
        + u']';
    QVERIFY(CompiledRuleList::compile(good));
    std::mt19937 random(11);
    int compiledCount = 0;
    for (int i = 0; i < 4000; ++i) {
        QString bad = good;
        for (unsigned changes = 1 + random() % 3; changes > 0; --changes) {
            const auto at = qsizetype(random() % size_t(bad.size()));
            switch (random() % 4) {
            case 0:
                bad[at] = QChar(char16_t(random() % 128));
                break;
            case 1:
                bad.insert(at, QChar(u"()[]|*+?\\\"{},^$-"[random() % 16]));
                break;
            case 2:
                bad.remove(at, qsizetype(random() % 4));
                break;
            default:
                bad.insert(at, bad.mid(at, qsizetype(random() % 20)));
            }
        }
        const auto result = CompiledRuleList::compile(bad);
        if (!result)
            continue;
        ++compiledCount;
        blocks(*result->list, u"https://b.aad.s/pagead/x?ads"_s, u"https://m.a.tv/"_s);
        const QStringList selectors = hidden(*result->list, u"https://a.tv/"_s);
        QVERIFY2(!selectors.value(0).contains(u"Error:"), qPrintable(selectors.value(0)));
    }
    QVERIFY(compiledCount > 100);
}

QTEST_GUILESS_MAIN(CompiledRuleListTest)
#include "tst_compiledrulelist.moc"
