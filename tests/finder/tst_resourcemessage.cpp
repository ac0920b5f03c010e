#include "finder/ResourceMessage.h"
#include "tests/fakes/FakeScheduler.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;
using namespace std::chrono_literals;

class ResourceMessageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsBothForms_data();
    void readsBothForms();
    void ignoresWhatIsNone_data();
    void ignoresWhatIsNone();
    void boundsSize();
    void boundsRate_data();
    void boundsRate();
};

void ResourceMessageTest::readsBothForms_data()
{
    const QString address = u"https://h/a.m3u8"_s;
    const QUrl url(address);
    QTest::addColumn<QVariant>("body");
    QTest::addColumn<ResourceMessage>("message");
    QTest::newRow("string") << QVariant(address) << ResourceMessage{url, {}, false};
    QTest::newRow("dictionary") << QVariant(
        QVariantMap{{u"url"_s, address}, {u"title"_s, u"T"_s}, {u"selected"_s, true}})
                                << ResourceMessage{url, u"T"_s, true};
    QTest::newRow("url alone") << QVariant(QVariantMap{{u"url"_s, address}})
                               << ResourceMessage{url, {}, false};
    QTest::newRow("wrong types") << QVariant(
        QVariantMap{{u"url"_s, address}, {u"title"_s, 5}, {u"selected"_s, 1}})
                                 << ResourceMessage{url, {}, false};
    QTest::newRow("selected as text")
        << QVariant(QVariantMap{{u"url"_s, address}, {u"selected"_s, u"true"_s}})
        << ResourceMessage{url, {}, false};
    QTest::newRow("further keys") << QVariant(
        QVariantMap{{u"url"_s, address}, {u"x"_s, QVariantList{1}}})
                                  << ResourceMessage{url, {}, false};
}

void ResourceMessageTest::readsBothForms()
{
    QFETCH(const QVariant, body);
    FakeScheduler scheduler;
    ResourceMessageReader reader(scheduler);
    const auto message = reader.read(u"m3u8SnifferResource", body);
    QVERIFY(message);
    QTEST(*message, "message");
}

void ResourceMessageTest::ignoresWhatIsNone_data()
{
    QTest::addColumn<QString>("handler");
    QTest::addColumn<QVariant>("body");
    const QString handler = u"m3u8SnifferResource"_s;
    const QString address = u"https://h/a.m3u8"_s;
    const auto with = [](const QVariant &url) { return QVariant(QVariantMap{{u"url"_s, url}}); };
    QTest::newRow("another handler") << u"m3u8snifferresource"_s << QVariant(address);
    QTest::newRow("nothing") << handler << QVariant();
    QTest::newRow("number") << handler << QVariant(7);
    QTest::newRow("list") << handler << QVariant(QVariantList{address});
    QTest::newRow("no url") << handler << QVariant(QVariantMap{{u"title"_s, address}});
    QTest::newRow("url is a number") << handler << with(7);
    QTest::newRow("url is a dictionary") << handler << with(QVariantMap{{u"url"_s, address}});
    QTest::newRow("empty") << handler << with(QString());
    QTest::newRow("not an address") << handler << with(u"https://a b/c.m3u8"_s);
    QTest::newRow("relative") << handler << with(u"/a.m3u8"_s);
    QTest::newRow("file") << handler << with(u"file:///home/user/a.m3u8"_s);
    QTest::newRow("script") << handler << with(u"javascript:alert(1)//.m3u8"_s);
    QTest::newRow("no host") << handler << with(u"https:///a.m3u8"_s);
    QTest::newRow("null character") << handler << with(u"https://h\0x/a.m3u8"_s);
}

void ResourceMessageTest::ignoresWhatIsNone()
{
    QFETCH(const QString, handler);
    QFETCH(const QVariant, body);
    FakeScheduler scheduler;
    ResourceMessageReader reader(scheduler);
    QVERIFY(!reader.read(handler, body));
}

void ResourceMessageTest::boundsSize()
{
    FakeScheduler scheduler;
    ResourceMessageReader reader(scheduler);
    const QString start = u"https://h/"_s;
    const auto address = [&](qsizetype length) {
        return QVariant(start + QString(length - start.size(), u'a'));
    };
    QVERIFY(reader.read(resourceMessageHandler, address(reader.maximumAddressLength)));
    QVERIFY(!reader.read(resourceMessageHandler, address(reader.maximumAddressLength + 1)));

    const QVariantMap body{{u"url"_s, u"https://h/a.m3u8"_s},
                           {u"title"_s, QString(reader.maximumTitleLength + 1, u't')}};
    QCOMPARE(reader.read(resourceMessageHandler, body)->title->size(), reader.maximumTitleLength);
}

void ResourceMessageTest::boundsRate_data()
{
    QTest::addColumn<QVariant>("body");
    QTest::addColumn<bool>("leavesRoom");
    QTest::newRow("nothing") << QVariant() << true;
    QTest::newRow("no address") << QVariant(u"x"_s) << true;
    QTest::newRow("huge title") << QVariant(
        QVariantMap{{u"url"_s, u"https://h/a.m3u8"_s}, {u"title"_s, QString(100000, u't')}})
                                << true;
    QTest::newRow("many addresses") << QVariant(u"https://h/a.m3u8"_s) << false;
}

void ResourceMessageTest::boundsRate()
{
    QFETCH(const QVariant, body);
    const QVariant genuine(u"https://h/b.m3u8?"_s + QString(500, u'x'));
    FakeScheduler scheduler;
    ResourceMessageReader reader(scheduler);
    for (int i = 0; i < 10000; ++i)
        reader.read(resourceMessageHandler, body);
    QTEST(reader.read(resourceMessageHandler, genuine).has_value(), "leavesRoom");
    // Even when cheap ones fill every gap, the sum stays within the bound.
    int admitted = 0;
    while (admitted < 10000 && reader.read(resourceMessageHandler, genuine))
        ++admitted;
    QVERIFY(admitted * (500 + ResourceMessageReader::overhead) <= ResourceMessageReader::burst);
    QVERIFY(!reader.read(resourceMessageHandler, genuine));

    scheduler.advance(1s);
    QVERIFY(reader.read(resourceMessageHandler, genuine));
    scheduler.advance(24h);
    admitted = 0;
    while (admitted < 10000 && reader.read(resourceMessageHandler, genuine))
        ++admitted;
    QVERIFY(admitted > 100);
    QVERIFY(admitted < 1000);
}

QTEST_GUILESS_MAIN(ResourceMessageTest)
#include "tst_resourcemessage.moc"
