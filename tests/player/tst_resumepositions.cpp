#include "player/ResumePositions.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QString key = u"Lumaro.Player.ResumePositions"_s;

FileIdentity film(int number)
{
    return {u"/films/%1.mp4"_s.arg(number), 1'000'000'000'000 + number, 1'700'000'000'000};
}

struct World
{
    FakeScheduler scheduler;
    FakeUserDefaults defaults;
    std::unique_ptr<ResumePositions> positions =
        std::make_unique<ResumePositions>(defaults, scheduler);

    void restart()
    {
        positions.reset();
        scheduler.runBackground();
        positions = std::make_unique<ResumePositions>(defaults, scheduler);
    }
};

} // namespace

class ResumePositionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsFilesByWhatTheyAre();
    void remembersForTheNextStart();
    void keepsTheNewest();
    void changedFilesTakeThePlaceOfTheOld();
    void readsWhateverIsStored_data();
    void readsWhateverIsStored();
};

void ResumePositionsTest::knowsFilesByWhatTheyAre()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a.mp4"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("abc");
    file.close();
    const auto identity = FileIdentity::of(QUrl::fromLocalFile(file.fileName()));
    QVERIFY(identity);
    QCOMPARE(identity->path, file.fileName());
    QCOMPARE(identity->size, 3);
    QCOMPARE(FileIdentity::of(QUrl::fromLocalFile(folder.path())), std::nullopt);
    QCOMPARE(FileIdentity::of(QUrl::fromLocalFile(u"/no/such.mp4"_s)), std::nullopt);
    QCOMPARE(FileIdentity::of(QUrl(u"http://h/a.mp4"_s)), std::nullopt);
    QCOMPARE(FileIdentity::of(QUrl::fromLocalFile(u"/dev/null"_s)), std::nullopt);
}

void ResumePositionsTest::remembersForTheNextStart()
{
    World world;
    world.positions->remember(film(1), 754.5);
    world.positions->remember(film(2), 100);
    world.positions->forget(film(2));
    world.restart();
    QCOMPARE(world.positions->position(film(1)), std::optional(754.5));
    QCOMPARE(world.positions->position(film(2)), std::nullopt);
    FileIdentity other = film(1);
    ++other.size;
    QCOMPARE(world.positions->position(other), std::nullopt);
    other = film(1);
    ++other.modified;
    QCOMPARE(world.positions->position(other), std::nullopt);
    world.positions->clear();
    world.restart();
    QCOMPARE(world.positions->position(film(1)), std::nullopt);
}

void ResumePositionsTest::keepsTheNewest()
{
    World world;
    for (int number = 1; number <= 200; ++number)
        world.positions->remember(film(number), number);
    // Seen again, it is no longer the oldest.
    world.positions->remember(film(1), 50);
    world.positions->remember(film(201), 201);
    world.restart();
    QCOMPARE(world.positions->position(film(1)), std::optional(50.0));
    QCOMPARE(world.positions->position(film(2)), std::nullopt);
    QCOMPARE(world.positions->position(film(3)), std::optional(3.0));
    QCOMPARE(world.positions->position(film(201)), std::optional(201.0));
}

void ResumePositionsTest::changedFilesTakeThePlaceOfTheOld()
{
    World world;
    FileIdentity changed = film(1);
    changed.size = 7;
    world.positions->remember(film(1), 100);
    world.positions->remember(changed, 200);
    QCOMPARE(world.positions->position(film(1)), std::nullopt);
    QCOMPARE(world.positions->position(changed), std::optional(200.0));
}

void ResumePositionsTest::readsWhateverIsStored_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<bool>("setAside");
    QTest::newRow("no JSON") << QByteArray("\xff\0[", 3) << true;
    QTest::newRow("an object") << QByteArray("{}") << true;
    QTest::newRow("other things") << QByteArray(R"([1,null,"a",{},{"path":"/films/1.mp4"}])")
                                  << false;
    QTest::newRow("no time to go to")
        << QByteArray(R"([{"path":"/films/1.mp4","size":1000000000001,"modified":1700000000000,
                           "seconds":-5}])")
        << false;
    QTest::newRow("a time that no film has")
        << QByteArray(R"([{"path":"/films/1.mp4","size":1000000000001,"modified":1700000000000,
                           "seconds":1e300}])")
        << false;
}

void ResumePositionsTest::readsWhateverIsStored()
{
    QFETCH(const QByteArray, stored);
    World world;
    world.positions.reset();
    world.defaults.values.insert(key, stored);
    world.positions = std::make_unique<ResumePositions>(world.defaults, world.scheduler);
    QCOMPARE(world.positions->position(film(1)), std::nullopt);
    QTEST(!world.defaults.setAsideValues.isEmpty(), "setAside");
    world.positions->remember(film(1), 10);
    world.restart();
    QCOMPARE(world.positions->position(film(1)), std::optional(10.0));
}

QTEST_GUILESS_MAIN(ResumePositionsTest)
#include "tst_resumepositions.moc"
