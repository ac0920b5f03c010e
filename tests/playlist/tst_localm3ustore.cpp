#include "playlist/AddressReader.h"
#include "playlist/LocalM3UStore.h"
#include "playlist/PlaylistEntryCoding.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QString key = LocalM3UStore::defaultsKey;

PlaylistEntry entry(const QString &name, const QString &address)
{
    return {.id = QUuid::createUuid(),
            .name = name,
            .url = QUrl(address),
            .logoURL = QUrl(u"http://l/a.png"_s),
            .groupTitle = u"Group"_s,
            .countryCode = u"DE"_s};
}

QStringList names(const PlaylistEntries &entries)
{
    QStringList names;
    for (qsizetype i = 0; i < entries.size(); ++i)
        names.append(entries.name(i).toString());
    return names;
}

struct World
{
    FakeScheduler scheduler;
    FakeUserDefaults defaults;
    std::unique_ptr<LocalM3UStore> store = std::make_unique<LocalM3UStore>(defaults, scheduler);

    /// As the next launch finds it.
    void restart()
    {
        store.reset();
        store = std::make_unique<LocalM3UStore>(defaults, scheduler);
    }
    QByteArray stored() const { return defaults.values.value(key); }
};

} // namespace

class LocalM3UStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesWhatIsSaved_data();
    void namesWhatIsSaved();
    void savingAgainMovesToTheTop();
    void savingAnEntryKeepsItsValues();
    void containsByAbsoluteString_data();
    void containsByAbsoluteString();
    void findsWhateverChanges();
    void survivesTheNextLaunch();
    void waitsForWhatIsStored();
    void whatIsSavedLoadsAgain();
    void startsEmptyOnBadData_data();
    void startsEmptyOnBadData();
    void savingEarlyKeepsBadDataAside();
};

void LocalM3UStoreTest::namesWhatIsSaved_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("name");
    QTest::newRow("given") << u"http://h/a.m3u8"_s << u" \n News\t"_s << u"News"_s;
    QTest::newRow("blank") << u"http://h/live/channel.m3u8"_s << u" \n"_s << u"channel"_s;
    QTest::newRow("escapes") << u"http://h/live/news%20hd.m3u8?x=1"_s << QString() << u"news hd"_s;
    QTest::newRow("several dots") << u"http://h/a.b.c"_s << QString() << u"a.b"_s;
    QTest::newRow("no extension") << u"http://h/live/"_s << QString() << u"live"_s;
    QTest::newRow("only an extension") << u"http://h/.m3u8"_s << QString() << u".m3u8"_s;
    QTest::newRow("no path") << u"http://h.example"_s << QString() << u"h.example"_s;
    QTest::newRow("root") << u"https://h.example/"_s << QString() << u"h.example"_s;
    QTest::newRow("nothing") << u"data:"_s << QString() << u"Stream"_s;
}

void LocalM3UStoreTest::namesWhatIsSaved()
{
    QFETCH(const QString, address);
    QFETCH(const QString, given);
    World world;
    world.store->save(QUrl(address), given);
    const PlaylistEntry saved = world.store->entries().at(0);
    QTEST(saved.name, "name");
    QCOMPARE(saved.url, QUrl(address));
    QVERIFY(!saved.id.isNull());
    QVERIFY(!saved.logoURL && !saved.groupTitle && !saved.countryCode);
}

void LocalM3UStoreTest::savingAgainMovesToTheTop()
{
    World world;
    const PlaylistEntry twin = entry(u"Twin"_s, u"http://h/a"_s);
    world.store->setEntries(
        PlaylistEntries::fromList({entry(u"B"_s, u"http://h/b"_s), entry(u"A"_s, u"http://h/a"_s),
                                   entry(u"C"_s, u"http://h/c"_s), twin}));
    QSignalSpy changed(world.store.get(), &LocalM3UStore::entriesChanged);
    world.store->save(QUrl(u"http://h/a"_s), u"New"_s);
    QCOMPARE(names(world.store->entries()), (QStringList{u"New"_s, u"B"_s, u"C"_s, u"Twin"_s}));
    QVERIFY(!world.store->entries().at(0).logoURL);
    QCOMPARE(world.store->entries().at(3), twin);
    QCOMPARE(changed.count(), 1);
}

void LocalM3UStoreTest::savingAnEntryKeepsItsValues()
{
    World world;
    world.store->save(QUrl(u"http://h/a"_s), u"Old"_s);
    world.store->save(QUrl(u"http://h/b"_s), u"Other"_s);
    const PlaylistEntry channel = entry(u"Channel"_s, u"http://h/a"_s);
    world.store->save(channel);
    QCOMPARE(names(world.store->entries()), (QStringList{u"Channel"_s, u"Other"_s}));
    QCOMPARE(world.store->entries().at(0), channel);
}

void LocalM3UStoreTest::containsByAbsoluteString_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("found");
    QTest::newRow("same") << u"http://h/%C3%BC?x=1#f"_s << true;
    QTest::newRow("same, not escaped") << u"http://h/ü?x=1#f"_s << true;
    QTest::newRow("other query") << u"http://h/%C3%BC?x=2#f"_s << false;
    QTest::newRow("other scheme") << u"https://h/%C3%BC?x=1#f"_s << false;
    QTest::newRow("no fragment") << u"http://h/%C3%BC?x=1"_s << false;
    QTest::newRow("beginning") << u"http://h/"_s << false;
    QTest::newRow("empty") << QString() << false;
}

void LocalM3UStoreTest::containsByAbsoluteString()
{
    QFETCH(const QString, address);
    World world;
    world.store->save(QUrl(u"http://h/ü?x=1#f"_s), {});
    world.store->save(QUrl(u"http://h/b"_s), {});
    QTEST(world.store->contains(QUrl(address)), "found");
    world.scheduler.runBackground();
    world.restart();
    QTEST(world.store->contains(QUrl(address)), "found");
    world.store->setEntries({});
    QVERIFY(!world.store->contains(QUrl(address)));
}

void LocalM3UStoreTest::findsWhateverChanges()
{
    World world;
    QRandomGenerator random(1);
    const auto address = [&] { return u"http://h/%1"_s.arg(random.bounded(12)); };
    const auto someEntry = [&] { return entry(u"E"_s, address()); };
    QList<PlaylistEntries> before;
    for (int round = 0; round < 600; ++round) {
        const PlaylistEntries &entries = world.store->entries();
        const qsizetype at = random.bounded(int(entries.size()) + 1);
        const qsizetype removed = at == entries.size() ? 0 : random.bounded(2);
        if (round % 150 == 0)
            world.store->setEntries(
                PlaylistEntries::fromList({someEntry(), someEntry(), someEntry(), someEntry()}));
        else if (round % 7 == 0)
            world.store->setEntries(before.at(random.bounded(int(before.size()))));
        else if (random.bounded(3) == 0)
            world.store->save(someEntry());
        else
            world.store->setEntries(entries.replacing(at, removed,
                                                      entries.size() < 10 && random.bounded(3) > 0
                                                          ? QList{someEntry()}
                                                          : QList<PlaylistEntry>()));
        before.append(world.store->entries());
        const QList<PlaylistEntry> all = world.store->entries().toList();
        for (int number = 0; number < 12; ++number) {
            const QUrl url(u"http://h/%1"_s.arg(number));
            const auto found = std::ranges::find(all, url, &PlaylistEntry::url);
            QCOMPARE(world.store->indexOf(url), found == all.end() ? -1 : found - all.begin());
        }
    }
}

void LocalM3UStoreTest::survivesTheNextLaunch()
{
    World world;
    QCOMPARE(world.store->entries(), PlaylistEntries());
    world.store->save(entry(u"\"A\"\n😀"_s, u"http://h/a b"_s));
    world.store->save(QUrl(u"http://h/b"_s), u"B"_s);
    QCOMPARE(world.stored(), QByteArray());
    world.scheduler.runBackground();
    QCOMPARE(world.defaults.writes, 1);
    const PlaylistEntries saved = world.store->entries();
    world.restart();
    QCOMPARE(world.store->entries(), saved);

    // And so does what is changed after it.
    world.store->save(QUrl(u"http://h/c"_s), u"C"_s);
    world.scheduler.runBackground();
    const PlaylistEntries changed = world.store->entries();
    world.restart();
    QCOMPARE(names(world.store->entries()), (QStringList{u"C"_s, u"B"_s, u"\"A\"\n😀"_s}));
    QCOMPARE(world.store->entries(), changed);
}

void LocalM3UStoreTest::waitsForWhatIsStored()
{
    World world;
    world.store->save(QUrl(u"http://h/a"_s), u"A"_s);
    world.restart();
    QSignalSpy loaded(world.store.get(), &LocalM3UStore::loaded);
    QSignalSpy changed(world.store.get(), &LocalM3UStore::entriesChanged);
    QVERIFY(world.store->isLoading());
    QVERIFY(world.store->contains(QUrl(u"http://h/a"_s)));
    QCOMPARE(names(world.store->entries()), QStringList{u"A"_s});
    QVERIFY(world.store->isLoading());
    world.scheduler.runBackground();
    QVERIFY(!world.store->isLoading());
    QCOMPARE(loaded.count(), 1);
    QCOMPARE(changed.count(), 0);

    // Neither is what was stored lost by storing early, nor by going early.
    world.restart();
    world.store->persist();
    world.restart();
    world.restart();
    QSignalSpy loadedAgain(world.store.get(), &LocalM3UStore::loaded);
    connect(world.store.get(), &LocalM3UStore::entriesChanged, this,
            [&] { QCOMPARE(loadedAgain.count(), 1); });
    world.store->save(QUrl(u"http://h/b"_s), u"B"_s);
    world.scheduler.runBackground();
    QCOMPARE(loadedAgain.count(), 1);
    world.restart();
    QCOMPARE(names(world.store->entries()), (QStringList{u"B"_s, u"A"_s}));
}

void LocalM3UStoreTest::whatIsSavedLoadsAgain()
{
    World world;
    // Encoded, this is three times as long.
    const QUrl endless(u"http://h/"_s + QString(AddressReader::maximumLength - 100, u'ü'));
    QVERIFY(endless.isValid());
    world.store->save(endless, u"endless"_s);
    // One that cannot be read back would take all others with it.
    for (const QString &address : {u""_s, u"http://[1/"_s})
        world.store->save(QUrl(address), u"none"_s);
    world.restart();
    QCOMPARE(names(world.store->entries()), QStringList{u"endless"_s});
    QVERIFY(world.store->contains(endless));
}

void LocalM3UStoreTest::startsEmptyOnBadData_data()
{
    QTest::addColumn<QByteArray>("data");
    const QByteArray good =
        encodeEntries(PlaylistEntries::fromList({entry(u"A"_s, u"http://h/a"_s)}));
    QTest::newRow("cut off") << good.chopped(1);
    QTest::newRow("more after it") << good + good;
    QTest::newRow("zeros") << QByteArray(good.size(), '\0');
    QTest::newRow("not UTF-8") << QByteArray(good).replace("\"A\"", "\"\xe9\"");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("entry without address") << QByteArray(good).replace("url", "uri");
}

void LocalM3UStoreTest::startsEmptyOnBadData()
{
    QFETCH(const QByteArray, data);
    World world;
    world.defaults.values.insert(key, data);
    world.restart();
    QVERIFY(world.store->entries().isEmpty());
    QCOMPARE(world.store->errorMessage(), QString());
    QCOMPARE(world.defaults.setAsideValues, QByteArrayList{data});

    world.store->save(QUrl(u"http://h/b"_s), u"B"_s);
    world.scheduler.runBackground();
    world.restart();
    QCOMPARE(names(world.store->entries()), QStringList{u"B"_s});
    QCOMPARE(world.defaults.setAsideValues.size(), 1);
}

void LocalM3UStoreTest::savingEarlyKeepsBadDataAside()
{
    World world;
    world.defaults.values.insert(key, "no library");
    world.restart();
    world.store->save(QUrl(u"http://h/b"_s), u"B"_s);
    world.restart();
    QCOMPARE(world.defaults.setAsideValues, QByteArrayList{"no library"});
    QCOMPARE(names(world.store->entries()), QStringList{u"B"_s});
}

QTEST_GUILESS_MAIN(LocalM3UStoreTest)
#include "tst_localm3ustore.moc"
