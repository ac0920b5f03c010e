#include "player/VolumeMemory.h"
#include "tests/fakes/FakeUserDefaults.h"
#include "tests/player/PlayerWorld.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QString key = u"Lumaro.Player.Volume"_s;

} // namespace

class VolumeMemoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comesBack_data();
    void comesBack();
    void readsWhateverIsStored_data();
    void readsWhateverIsStored();
};

void VolumeMemoryTest::comesBack_data()
{
    QTest::addColumn<double>("volume");
    QTest::addColumn<bool>("muted");
    QTest::newRow("quieter") << 0.35 << false;
    QTest::newRow("muted") << 0.35 << true;
    QTest::newRow("silent") << 0.0 << true;
    QTest::newRow("silent but not muted") << 0.0 << false;
    QTest::newRow("full and muted") << 1.0 << true;
}

void VolumeMemoryTest::comesBack()
{
    QFETCH(const double, volume);
    QFETCH(const bool, muted);
    FakeUserDefaults defaults;
    {
        PlayerWorld world;
        const VolumeMemory memory(world.model, defaults, world.scheduler);
        world.model.setVolume(volume);
        if (world.model.isMuted() != muted)
            world.model.toggleMute();
        world.scheduler.runBackground();
    }
    PlayerWorld next;
    const VolumeMemory memory(next.model, defaults, next.scheduler);
    QCOMPARE(next.model.volume(), volume);
    QCOMPARE(next.model.isMuted(), muted);
    QVERIFY(next.player.log.contains(u"volume %1"_s.arg(volume)));
}

void VolumeMemoryTest::readsWhateverIsStored_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<double>("volume");
    QTest::newRow("nothing") << QByteArray() << 1.0;
    QTest::newRow("no JSON") << QByteArray("loud") << 1.0;
    QTest::newRow("a list") << QByteArray("[0.5]") << 1.0;
    QTest::newRow("a text") << QByteArray(R"({"volume":"0.5"})") << 1.0;
    QTest::newRow("too loud") << QByteArray(R"({"volume":7})") << 1.0;
    QTest::newRow("negative") << QByteArray(R"({"volume":-7})") << 0.0;
    QTest::newRow("without mute") << QByteArray(R"({"volume":0.5})") << 0.5;
}

void VolumeMemoryTest::readsWhateverIsStored()
{
    QFETCH(const QByteArray, stored);
    FakeUserDefaults defaults;
    defaults.values.insert(key, stored);
    PlayerWorld world;
    const VolumeMemory memory(world.model, defaults, world.scheduler);
    QTEST(world.model.volume(), "volume");
}

QTEST_GUILESS_MAIN(VolumeMemoryTest)
#include "tst_volumememory.moc"
