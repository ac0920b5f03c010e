#include "player/WakefulPlayback.h"
#include "tests/fakes/FakeKeepAwake.h"
#include "tests/player/PlayerWorld.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

struct World : PlayerWorld
{
    FakeKeepAwake screen;
    std::unique_ptr<WakefulPlayback> wakeful = std::make_unique<WakefulPlayback>(model, screen);

    void play(bool hasPicture)
    {
        model.playFile(QUrl::fromLocalFile(u"/a.mp4"_s));
        player.pictureSize = hasPicture ? QSize(1280, 720) : QSize();
        player.tick();
    }
};

} // namespace

class WakefulPlaybackTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wakesWhileAPicturePlays();
    void soundAloneWakesNobody();
    void coversWakeNobody();
    void sitesPlayersCount();
    void sleepsAfterwards_data();
    void sleepsAfterwards();
};

void WakefulPlaybackTest::wakesWhileAPicturePlays()
{
    World world;
    QVERIFY(!world.screen.isAwake);
    world.play(true);
    QVERIFY(world.screen.isAwake);
    for (int i = 0; i < 10; ++i)
        world.player.tick();
    QCOMPARE(world.screen.requests, 1);
    world.model.togglePlayback();
    QVERIFY(!world.screen.isAwake);
    world.model.togglePlayback();
    QVERIFY(world.screen.isAwake);
}

void WakefulPlaybackTest::soundAloneWakesNobody()
{
    World world;
    world.play(false);
    QVERIFY(world.model.isPlaying());
    QCOMPARE(world.screen.requests, 0);
}

void WakefulPlaybackTest::coversWakeNobody()
{
    World world;
    world.player.pictureIsCover = true;
    world.play(true);
    QCOMPARE(world.model.videoAspectRatio(), 1280. / 720);
    QCOMPARE(world.screen.requests, 0);
    // Nor is the next film taken for one.
    world.player.pictureIsCover = false;
    world.play(true);
    QVERIFY(world.screen.isAwake);
    // What plays may turn out to be one.
    world.player.pictureIsCover = true;
    world.player.tick();
    QVERIFY(!world.screen.isAwake);
}

void WakefulPlaybackTest::sitesPlayersCount()
{
    World world;
    world.model.openRemote(u"https://youtu.be/v"_s, {});
    QVERIFY(world.screen.isAwake);
    world.model.openRemote(u"https://ok.ru/video/1"_s, {});
    QVERIFY(world.screen.isAwake);
    world.model.togglePlayback();
    QVERIFY(!world.screen.isAwake);
}

void WakefulPlaybackTest::sleepsAfterwards_data()
{
    QTest::addColumn<std::function<void(World &)>>("end");
    using End = std::function<void(World &)>;
    QTest::newRow("stopped") << End([](World &w) { w.model.stop(); });
    QTest::newRow("over") << End([](World &w) {
        w.player.setRate(0);
        w.player.tick();
    });
    QTest::newRow("quit") << End([](World &w) { w.wakeful.reset(); });
    QTest::newRow("sound instead") << End([](World &w) { w.play(false); });
}

void WakefulPlaybackTest::sleepsAfterwards()
{
    QFETCH(const std::function<void(World &)>, end);
    World world;
    world.play(true);
    end(world);
    QVERIFY(!world.screen.isAwake);
}

QTEST_GUILESS_MAIN(WakefulPlaybackTest)
#include "tst_wakefulplayback.moc"
