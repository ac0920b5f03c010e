#include "app/WindowPlacement.h"
#include "platform/WindowFrame.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"

#include <QTest>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

using State = WindowPlacement::State;

namespace {

const QString key = u"Lumaro.MainWindow.Placement"_s;
const QRect first(0, 0, 1280, 800);
const QRect second(1280, 0, 1920, 1080);
const QRect somewhere(100, 120, 900, 600);

struct World
{
    FakeScheduler scheduler;
    FakeUserDefaults defaults;
    std::unique_ptr<WindowPlacement> placement =
        std::make_unique<WindowPlacement>(defaults, scheduler);

    void restart()
    {
        placement.reset();
        scheduler.runBackground();
        placement = std::make_unique<WindowPlacement>(defaults, scheduler);
    }
    void rest() { scheduler.advance(WindowPlacement::storeDelay); }
};

} // namespace

class WindowPlacementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void comesBack();
    void staysWhereAScreenIs_data();
    void staysWhereAScreenIs();
    void passingStatesAreNotKept_data();
    void passingStatesAreNotKept();
    void closingKeepsTheLastMove();
    void readsWhateverIsStored_data();
    void readsWhateverIsStored();
    void constrainsFrames_data();
    void constrainsFrames();
};

void WindowPlacementTest::comesBack()
{
    World world;
    world.placement->note(somewhere, State::Normal);
    world.rest();
    world.restart();
    QCOMPARE(world.placement->frame({first}), std::optional(somewhere));
    QVERIFY(!world.placement->isMaximized());

    // Maximised, it keeps the place that it goes back to.
    world.placement->note(first, State::Maximized);
    world.rest();
    world.restart();
    QVERIFY(world.placement->isMaximized());
    QCOMPARE(world.placement->frame({first}), std::optional(somewhere));
    world.placement->note(somewhere, State::Normal);
    world.rest();
    world.restart();
    QVERIFY(!world.placement->isMaximized());
}

void WindowPlacementTest::staysWhereAScreenIs_data()
{
    QTest::addColumn<QRect>("frame");
    QTest::addColumn<QList<QRect>>("screens");
    QTest::addColumn<QRect>("placed");
    const QList<QRect> both{first, second};
    const int bar = WindowPlacement::titleBarHeight;
    QTest::newRow("as it was") << somewhere << both << somewhere;
    QTest::newRow("on the second screen")
        << somewhere.translated(1400, 0) << both << somewhere.translated(1400, 0);
    QTest::newRow("its screen is gone")
        << somewhere.translated(1400, 0) << QList{first} << QRect(380, 120, 900, 600);
    QTest::newRow("between screens, more on the second")
        << QRect(1000, 200, 900, 600) << both << QRect(1280, 200, 900, 600);
    QTest::newRow("above the screen")
        << QRect(100, -500, 900, 600) << both << QRect(100, bar, 900, 600);
    QTest::newRow("its title bar above the screen")
        << QRect(0, 0, 900, 600) << both << QRect(0, bar, 900, 600);
    QTest::newRow("fills the screen, and has no title bar")
        << first << both << QRect(0, bar, 1280, 800 - bar);
    QTest::newRow("larger than the screen")
        << QRect(0, 0, 4000, 3000) << QList{first} << QRect(0, bar, 1280, 800 - bar);
    QTest::newRow("far away") << QRect(900'000, 900'000, 900, 600) << QList{first}
                              << QRect(380, 200, 900, 600);
}

void WindowPlacementTest::staysWhereAScreenIs()
{
    QFETCH(const QRect, frame);
    QFETCH(const QList<QRect>, screens);
    World world;
    world.placement->note(frame, State::Normal);
    world.rest();
    QTEST(world.placement->frame(screens).value_or(QRect()), "placed");
    QCOMPARE(world.placement->frame({}), std::nullopt);
}

void WindowPlacementTest::passingStatesAreNotKept_data()
{
    QTest::addColumn<State>("state");
    QTest::newRow("full screen or minimised") << State::Passing;
    QTest::newRow("maximised") << State::Maximized;
}

void WindowPlacementTest::passingStatesAreNotKept()
{
    QFETCH(const State, state);
    World world;
    world.placement->note(somewhere, State::Normal);
    world.rest();
    // The window's new size comes before the news of its state.
    world.placement->note(first, State::Normal);
    world.placement->note(first, state);
    world.rest();
    QCOMPARE(world.placement->frame({first}), std::optional(somewhere));
    QCOMPARE(world.placement->isMaximized(), state == State::Maximized);
}

void WindowPlacementTest::closingKeepsTheLastMove()
{
    World world;
    world.placement->note(somewhere, State::Normal);
    world.placement->note({}, State::Hidden);
    world.restart();
    QCOMPARE(world.placement->frame({first}), std::optional(somewhere));
    // So does ending without closing.
    world.placement->note(somewhere.translated(7, 0), State::Normal);
    world.restart();
    QCOMPARE(world.placement->frame({first}), std::optional(somewhere.translated(7, 0)));
}

void WindowPlacementTest::readsWhateverIsStored_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("no JSON") << QByteArray("\xff\xfe");
    QTest::newRow("a list") << QByteArray("[1,2,3,4]");
    QTest::newRow("texts") << QByteArray(R"({"x":"1","y":"2","width":"900","height":"600"})");
    QTest::newRow("without size") << QByteArray(R"({"x":1,"y":2})");
    QTest::newRow("negative size") << QByteArray(R"({"x":1,"y":2,"width":-900,"height":600})");
    QTest::newRow("no integers") << QByteArray(R"({"x":1,"y":2,"width":1e300,"height":0.5})");
}

void WindowPlacementTest::readsWhateverIsStored()
{
    QFETCH(const QByteArray, stored);
    World world;
    world.defaults.values.insert(key, stored);
    world.restart();
    QCOMPARE(world.placement->frame({first}), std::nullopt);
}

void WindowPlacementTest::constrainsFrames_data()
{
    QTest::addColumn<QRect>("frame");
    QTest::addColumn<QRect>("placed");
    QTest::newRow("inside") << QRect(200, 50, 900, 700) << QRect(200, 50, 900, 700);
    QTest::newRow("left above") << QRect(-500, -500, 900, 700) << QRect(100, 0, 900, 700);
    QTest::newRow("right below") << QRect(2000, 900, 900, 700) << QRect(480, 100, 900, 700);
    QTest::newRow("too large") << QRect(0, 0, 3000, 2000) << QRect(100, 0, 1280, 800);
}

void WindowPlacementTest::constrainsFrames()
{
    QFETCH(const QRect, frame);
    QTEST(constrainedFrame(frame, {100, 0, 1280, 800}), "placed");
}

QTEST_GUILESS_MAIN(WindowPlacementTest)
#include "tst_windowplacement.moc"
