#include "display/SmartReframe.h"
#include "tests/display/DisplayWorld.h"

#include <QTest>

#include <cmath>

using namespace std::chrono_literals;
using namespace lumaro;
using Mode = PortraitDisplayMode;

namespace {

FaceObservation face(double middle, double size)
{
    return {.boundingBox = {middle - size / 2, 0.5, size, size}};
}

bool isNear(double left, double right)
{
    return std::abs(left - right) < 1e-12;
}

} // namespace

/// The follower in its view, whose time the test moves.
class SmartReframeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void targetsTheLargestFace_data();
    void targetsTheLargestFace();
    void movesAPartOfTheWayEachTick();
    void driftsBackWithoutFaces();
    void failedDetectionIsAPictureWithoutFaces();
    void leavesThePanAloneWithoutAPicture();
    void ticksOnlyInSmart();
    void oneDetectionAtATime();
    void resultThatComesTooLateIsDropped();
    void viewMayGoDuringADetection();
    void aDetectionHoldsNoOutput();

private:
    void tick()
    {
        m_world->scheduler.advance(smartReframe::tickInterval);
        m_world->scheduler.runBackground();
    }
    double pan() const { return m_view->horizontalPan(); }
    std::shared_ptr<FakeVideoOutput> output() const { return m_world->player.videoOutput.lock(); }

    std::unique_ptr<DisplayWorld> m_world;
    std::unique_ptr<PlayerHostingView> m_view;
};

void SmartReframeTest::init()
{
    m_world = std::make_unique<DisplayWorld>();
    m_view = std::make_unique<PlayerHostingView>(m_world->services);
    m_view->setSize({400, 300});
    m_view->setPlayer(&m_world->player);
    m_world->openVideo();
    m_world->detector->result = QList{face(0.9, 0.1)};
    m_view->setDisplayMode(Mode::smart);
}

void SmartReframeTest::cleanup()
{
    m_view.reset();
    m_world.reset();
}

void SmartReframeTest::targetsTheLargestFace_data()
{
    QTest::addColumn<QList<FaceObservation>>("faces");
    QTest::addColumn<double>("target");
    using Faces = QList<FaceObservation>;
    QTest::newRow("nobody") << Faces{} << 0.0;
    QTest::newRow("left edge") << Faces{face(0, 0.1)} << 1.0;
    QTest::newRow("middle") << Faces{face(0.5, 0.1)} << 0.0;
    QTest::newRow("to the right") << Faces{face(0.9, 0.1)} << -0.8;
    QTest::newRow("beyond the left edge") << Faces{face(-0.2, 0.5)} << 1.0;
    QTest::newRow("beyond the right edge") << Faces{face(1.3, 0.7)} << -1.0;
    QTest::newRow("largest last") << Faces{face(0.1, 0.1), face(0.75, 0.2)} << -0.5;
    QTest::newRow("largest by area, not by width")
        << Faces{{{0, 0, 0.4, 0.1}}, {{0.65, 0, 0.2, 0.4}}} << -0.5;
    QTest::newRow("first of equal ones") << Faces{face(0.75, 0.25), face(0.25, 0.25)} << -0.5;
}

void SmartReframeTest::targetsTheLargestFace()
{
    QFETCH(const QList<FaceObservation>, faces);
    QFETCH(const double, target);
    QVERIFY(isNear(smartReframe::targetPan(faces), target));
}

void SmartReframeTest::movesAPartOfTheWayEachTick()
{
    m_world->scheduler.advance(449ms);
    QCOMPARE(m_world->scheduler.pendingBackgroundWork(), 0);
    m_world->scheduler.advance(1ms);
    m_world->scheduler.runBackground();
    QVERIFY(isNear(pan(), -0.28));
    tick();
    QVERIFY(isNear(pan(), -0.462));
    tick();
    QVERIFY(isNear(pan(), -0.5803));
    QCOMPARE(QRectF(m_view->playerLayer()->position(), m_view->playerLayer()->size()),
             displayGeometry(Mode::smart, {400, 300}, pan(), {1920, 1080}).playerFrame);
}

void SmartReframeTest::driftsBackWithoutFaces()
{
    tick();
    m_world->detector->result = QList<FaceObservation>();
    const double before = pan();
    tick();
    QVERIFY(isNear(pan(), before * 0.65));
    tick();
    QVERIFY(isNear(pan(), before * 0.65 * 0.65));
}

void SmartReframeTest::failedDetectionIsAPictureWithoutFaces()
{
    tick();
    m_world->detector->result = std::unexpected(FaceDetectorError::Failed);
    tick();
    QVERIFY(isNear(pan(), -0.28 * 0.65));
}

void SmartReframeTest::leavesThePanAloneWithoutAPicture()
{
    tick();
    const double before = pan();
    output()->hasNew = false;
    tick();
    QCOMPARE(m_world->detector->calls, 1);
    output()->hasNew = true;
    output()->picture.reset();
    tick();
    QCOMPARE(m_world->detector->calls, 1);
    m_world->player.time.reset();
    tick();
    QCOMPARE(pan(), before);
}

void SmartReframeTest::ticksOnlyInSmart()
{
    m_world->scheduler.advance(300ms);
    m_view->setDisplayMode(Mode::smart);
    m_world->scheduler.advance(150ms);
    m_world->scheduler.runBackground();
    QCOMPARE(m_world->detector->calls, 1);
    for (const Mode mode : {Mode::manual, Mode::normal, Mode::fill, Mode::rotate}) {
        m_view->setDisplayMode(Mode::smart);
        m_view->setDisplayMode(mode);
        QCOMPARE(m_world->scheduler.pendingCalls(), 0);
    }
    tick();
    QCOMPARE(m_world->detector->calls, 1);
}

void SmartReframeTest::oneDetectionAtATime()
{
    m_world->scheduler.advance(smartReframe::tickInterval * 5);
    QCOMPARE(m_world->scheduler.pendingBackgroundWork(), 1);
    m_world->scheduler.runBackground();
    QVERIFY(isNear(pan(), -0.28));
    tick();
    QCOMPARE(m_world->detector->calls, 2);
}

void SmartReframeTest::resultThatComesTooLateIsDropped()
{
    m_world->scheduler.advance(smartReframe::tickInterval);
    m_view->setDisplayMode(Mode::fill);
    m_view->setDisplayMode(Mode::smart);
    m_world->scheduler.runBackground();
    QCOMPARE(pan(), 0.0);
    m_world->scheduler.advance(smartReframe::tickInterval);
    m_world->openVideo();
    m_world->scheduler.runBackground();
    QCOMPARE(pan(), 0.0);
    tick();
    QVERIFY(isNear(pan(), -0.28));
}

void SmartReframeTest::viewMayGoDuringADetection()
{
    m_world->scheduler.advance(smartReframe::tickInterval);
    m_view.reset();
    m_world->scheduler.runBackground();
    // The picture was still being copied.
    QCOMPARE(m_world->detector->calls, 0);
    QCOMPARE(m_world->scheduler.pendingCalls(), 0);
}

/// What the player has behind it could not go before the detector is done.
void SmartReframeTest::aDetectionHoldsNoOutput()
{
    FakeScheduler idle;
    PlayerViewServices services{m_world->scheduler, idle, m_world->notifications, m_world->surfaces,
                                m_world->detector};
    m_view = std::make_unique<PlayerHostingView>(services);
    m_view->setPlayer(&m_world->player);
    m_view->setDisplayMode(Mode::smart);
    tick();
    QCOMPARE(idle.pendingBackgroundWork(), 1);
    QVERIFY(!m_world->player.videoOutput.expired());
    m_view.reset();
    QVERIFY(m_world->player.videoOutput.expired());
    idle.runBackground();
    QCOMPARE(m_world->detector->calls, 1);
}

QTEST_MAIN(SmartReframeTest)
#include "tst_smartreframe.moc"
