#include "finder/SnifferNetworkMonitor.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>
#include <QTimeZone>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;
using Type = DetectedStream::StreamType;

namespace {

/// A monitor and the time it sees.
struct World
{
    QDateTime now{QDate(2026, 1, 2), QTime(3, 4), QTimeZone::utc()};
    SnifferNetworkMonitor monitor{[this] { return now; }};

    void see(const QString &address, const std::optional<QString> &name = std::nullopt,
             bool consolidate = false, const std::optional<QString> &text = std::nullopt)
    {
        monitor.observe(QUrl(address), std::nullopt, text, name, consolidate);
    }
    const DetectedStream &at(qsizetype index) const { return monitor.streams()[index]; }
    QStringList addresses() const
    {
        QStringList list;
        for (const DetectedStream &stream : monitor.streams())
            list.append(stream.url.toString());
        return list;
    }
};

} // namespace

class SnifferNetworkMonitorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsNewestFirst();
    void notesAgainWhatIsListed_data();
    void notesAgainWhatIsListed();
    void keepsWhatIsKnown();
    void consolidatesByName_data();
    void consolidatesByName();
    void cleansNames_data();
    void cleansNames();
    void ignoresWhileNotSniffing();
    void takesMessages_data();
    void takesMessages();
    void findsAsAWalkWould();
    void clears();
};

void SnifferNetworkMonitorTest::listsNewestFirst()
{
    World world;
    QSignalSpy changes(&world.monitor, &SnifferNetworkMonitor::streamsChanged);
    world.see(u"https://h/a.m3u8"_s);
    world.see(u"https://h/page.html"_s);
    world.see(u"https://h/b.m3u8"_s);
    QCOMPARE(world.addresses(), (QStringList{u"https://h/b.m3u8"_s, u"https://h/a.m3u8"_s}));
    QCOMPARE(changes.size(), 2);
    QVERIFY(world.at(0).id != world.at(1).id);
    QVERIFY(!world.at(0).id.isNull());
    QVERIFY(!world.at(0).displayName);
    QVERIFY(!world.at(0).bandwidth);

    world.see(u"https://h/a.m3u8"_s);
    QCOMPARE(world.addresses(), (QStringList{u"https://h/a.m3u8"_s, u"https://h/b.m3u8"_s}));
}

void SnifferNetworkMonitorTest::notesAgainWhatIsListed_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<bool>("same");
    const QString a = u"https://host.tv/Live/a.m3u8?t=1"_s;
    QTest::newRow("host and fragment") << a << u"HTTPS://HOST.tv/Live/a.m3u8?t=1#x"_s << true;
    QTest::newRow("empty fragment") << a << u"https://host.tv/Live/a.m3u8?t=1#"_s << true;
    QTest::newRow("token") << a << u"https://host.tv/Live/a.m3u8?t=2"_s << false;
    QTest::newRow("case of the path") << a << u"https://host.tv/live/a.m3u8?t=1"_s << false;
    QTest::newRow("port") << a << u"https://host.tv:444/Live/a.m3u8?t=1"_s << false;
    QTest::newRow("scheme") << a << u"http://host.tv/Live/a.m3u8?t=1"_s << false;
    QTest::newRow("user") << a << u"https://U@host.tv/Live/a.m3u8?t=1"_s << false;
}

void SnifferNetworkMonitorTest::notesAgainWhatIsListed()
{
    QFETCH(const QString, first);
    QFETCH(const QString, second);
    QFETCH(const bool, same);
    World world;
    world.see(first);
    world.see(u"https://other/b.m3u8"_s);
    const QUuid id = world.at(1).id;
    world.now = world.now.addSecs(60);
    world.see(second);
    QCOMPARE(world.monitor.streams().size(), same ? 2 : 3);
    QCOMPARE(world.at(0).id == id, same);
    QCOMPARE(world.at(0).url, QUrl(same ? first : second));
    QCOMPARE(world.at(0).detectedAt, world.now);
}

void SnifferNetworkMonitorTest::keepsWhatIsKnown()
{
    World world;
    const QString address = u"https://h/a.m3u8"_s;
    world.see(address);
    world.see(address, u"News"_s, false, u"#EXTM3U\n#EXT-X-STREAM-INF:"_s);
    world.see(address, u"video"_s);
    QCOMPARE(world.at(0).type, Type::Master);
    QCOMPARE(world.at(0).displayName, u"News"_s);
    world.see(address, u"Sport"_s, false, u"#EXTM3U\n#EXTINF:1,"_s);
    QCOMPARE(world.at(0).type, Type::Variant);
    QCOMPARE(world.at(0).displayName, u"Sport"_s);
    QCOMPARE(world.monitor.streams().size(), 1);
}

void SnifferNetworkMonitorTest::consolidatesByName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("consolidate");
    QTest::addColumn<QStringList>("addresses");
    const QString a = u"https://h/a.m3u8"_s;
    const QString b = u"https://h/b.m3u8"_s;
    QTest::newRow("same name") << u" Server  1 "_s << true << QStringList{a};
    QTest::newRow("not asked to") << u"Server 1"_s << false << QStringList{b, a};
    QTest::newRow("case counts") << u"server 1"_s << true << QStringList{b, a};
    QTest::newRow("nameless") << u"video"_s << true << QStringList{b, a};
}

void SnifferNetworkMonitorTest::consolidatesByName()
{
    QFETCH(const QString, name);
    QFETCH(const bool, consolidate);
    World world;
    world.see(u"https://h/a.m3u8"_s, name == u"video"_s ? name : u"Server 1"_s);
    world.see(u"https://h/b.m3u8"_s, name, consolidate);
    QTEST(world.addresses(), "addresses");
    // What joined it under its name is not known by its own address.
    if (world.monitor.streams().size() == 1) {
        world.see(u"https://h/b.m3u8"_s);
        QCOMPARE(world.monitor.streams().size(), 2);
    }
}

void SnifferNetworkMonitorTest::cleansNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("cleaned"); // null: none
    QTest::newRow("white space") << u"\t The\u00a0 big\n\n film "_s << u"The big film"_s;
    QTest::newRow("Video") << u"Video"_s << QString();
    QTest::newRow("video in spaces") << u"  video "_s << QString();
    QTest::newRow("more than video") << u"Video 1"_s << u"Video 1"_s;
    QTest::newRow("spaces") << u" \n "_s << QString();
    QTest::newRow("120") << QString(120, u'x') << QString(120, u'x');
    QTest::newRow("121") << QString(121, u'x') << QString();
    QTest::newRow("120 after cleaning")
        << u"  "_s + QString(120, u'x') + u"  "_s << QString(120, u'x');
    QTest::newRow("120 of two units each") << u"😀"_s.repeated(120) << u"😀"_s.repeated(120);
    QTest::newRow("121 of two units each") << u"😀"_s.repeated(121) << QString();
    QTest::newRow("one endless character") << u"a"_s + QString(100000, QChar(0x301)) << QString();
}

void SnifferNetworkMonitorTest::cleansNames()
{
    QFETCH(const QString, name);
    World world;
    world.see(u"https://h/a.m3u8"_s, name);
    QTEST(world.at(0).displayName.value_or(QString()), "cleaned");
}

void SnifferNetworkMonitorTest::ignoresWhileNotSniffing()
{
    World world;
    world.monitor.setSniffing(false);
    world.see(u"https://h/a.m3u8"_s, u"n"_s, true, u"#EXTM3U"_s);
    world.monitor.observe(ResourceMessage{QUrl(u"https://h/a.m3u8"_s), u"n"_s, true}, {});
    QCOMPARE(world.monitor.streams().size(), 0);
    world.monitor.setSniffing(true);
    world.see(u"https://h/a.m3u8"_s);
    QCOMPARE(world.monitor.streams().size(), 1);
}

void SnifferNetworkMonitorTest::takesMessages_data()
{
    QTest::addColumn<QString>("title"); // null: none
    QTest::addColumn<QString>("name");
    QTest::newRow("title") << u"Server 2"_s << u"Server 2"_s;
    QTest::newRow("blank title") << u" \n"_s << u"The page"_s;
    QTest::newRow("no title") << QString() << u"The page"_s;
}

void SnifferNetworkMonitorTest::takesMessages()
{
    QFETCH(const QString, title);
    World world;
    const auto optional = title.isNull() ? std::nullopt : std::optional(title);
    world.monitor.observe(ResourceMessage{QUrl(u"https://h/a.m3u8"_s), optional, false},
                          u"The page"_s);
    world.monitor.observe(ResourceMessage{QUrl(u"https://h/b.m3u8"_s), optional, true},
                          u"The page"_s);
    QTEST(world.at(0).displayName.value_or(QString()), "name");
    QCOMPARE(world.addresses(), QStringList{u"https://h/a.m3u8"_s});
    // The script has no media type to show.
    world.monitor.observe(ResourceMessage{QUrl(u"https://h/c"_s), optional, false}, {});
    QCOMPARE(world.monitor.streams().size(), 1);
}

/// Many sightings of many streams, of which some share their names, against the plain rule: the
/// first in the list that matches.
void SnifferNetworkMonitorTest::findsAsAWalkWould()
{
    World world;
    QList<std::pair<QString, QString>> expected; // addresses and names
    QRandomGenerator random(7);
    qsizetype from = 0;
    connect(&world.monitor, &SnifferNetworkMonitor::streamSeen,
            [&from](qsizetype place) { from = place; });
    for (int i = 0; i < 3000; ++i) {
        const QString address = u"https://h/live.m3u8?_HLS_msn=%1"_s.arg(random.bounded(400));
        const QString name =
            random.bounded(4) == 0 ? QString() : QString::number(random.bounded(30));
        const bool consolidate = random.bounded(3) == 0;
        const auto matches = [&](const std::pair<QString, QString> &stream) {
            return stream.first == address
                || (consolidate && !name.isEmpty() && stream.second == name);
        };
        const auto found = std::ranges::find_if(expected, matches);
        const qsizetype place = found == expected.end() ? -1 : found - expected.begin();
        auto stream = place < 0 ? std::pair(address, QString()) : expected.takeAt(place);
        if (!name.isEmpty())
            stream.second = name;
        expected.prepend(stream);

        world.see(address, name, consolidate);
        QCOMPARE(from, place);
        QCOMPARE(world.at(0).url.toString(), expected.first().first);
        QCOMPARE(world.at(0).displayName.value_or(QString()), expected.first().second);
        QCOMPARE(world.monitor.streams().size(), expected.size());
    }
    QVERIFY(expected.size() > 50);
    for (qsizetype i = 0; i < expected.size(); ++i)
        QCOMPARE(world.monitor.indexOf(QUrl(expected[i].first + u"#later")), i);
    QCOMPARE(world.monitor.indexOf(QUrl(u"https://h/other.m3u8"_s)), -1);
}

void SnifferNetworkMonitorTest::clears()
{
    World world;
    world.see(u"https://h/a.m3u8"_s, u"A"_s);
    world.monitor.clear();
    QSignalSpy changes(&world.monitor, &SnifferNetworkMonitor::streamsChanged);
    world.monitor.clear();
    QCOMPARE(changes.size(), 0);
    QCOMPARE(world.monitor.indexOf(QUrl(u"https://h/a.m3u8"_s)), -1);
    world.see(u"https://h/b.m3u8"_s, u"A"_s, true);
    world.see(u"https://h/a.m3u8"_s);
    QCOMPARE(world.addresses(), (QStringList{u"https://h/a.m3u8"_s, u"https://h/b.m3u8"_s}));
}

QTEST_GUILESS_MAIN(SnifferNetworkMonitorTest)
#include "tst_sniffernetworkmonitor.moc"
