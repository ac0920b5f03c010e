#include "display/PlayerLayerView.h"
#include "tests/display/DisplayWorld.h"

#include <QQuickWindow>
#include <QSignalSpy>
#include <QStyleHints>
#include <QTest>

#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;
using Mode = PortraitDisplayMode;

namespace {

QRectF frame(const QQuickItem *item)
{
    return {item->position(), item->size()};
}

constexpr QPoint middle(200, 150);

} // namespace

class PlayerHostingViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void surfaceCoversOnlyWhatIsSeen();
    void pictureIsWhereItsLayerIs();
    void oldPictureStaysInPlace();
    void pictureMayGoFirst();
    void sizeThatIsLearntLaterCounts();
    void fillScreenChangesNothing();
    void panIsKeptButInFillAndRotate();

    void tapsTheCurrentItem();
    void layerViewRegistersItsSurface();

    void clicksAreToldWithTheirWindow();
    void doubleClickAsksForFullScreen();
    void pansByAmounts();
    void doubleClickDoesNotPan();
    void draggingEndsWithTheMode();

private:
    void drag(int from, int to);

    std::unique_ptr<DisplayWorld> m_world;
    std::unique_ptr<QQuickWindow> m_window;
    PlayerHostingView *m_view = nullptr;
};

void PlayerHostingViewTest::init()
{
    m_world = std::make_unique<DisplayWorld>();
    m_window = std::make_unique<QQuickWindow>();
    m_window->resize(400, 300);
    m_view = new PlayerHostingView(m_world->services, m_window->contentItem());
    m_view->setSize({400, 300});
    m_view->setPlayer(&m_world->player);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void PlayerHostingViewTest::cleanup()
{
    m_window.reset();
    m_world.reset();
}

void PlayerHostingViewTest::drag(int from, int to)
{
    QTest::mousePress(m_window.get(), Qt::LeftButton, {}, {from, 150});
    QTest::mouseMove(m_window.get(), {(from + to) / 2, 150});
    QTest::mouseMove(m_window.get(), {to, 150});
    QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, {to, 150});
    // The next press is none of a double click.
    QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval());
}

void PlayerHostingViewTest::surfaceCoversOnlyWhatIsSeen()
{
    m_world->openVideo();
    FakeSurface surface;
    m_view->setPicture(&surface);
    QCOMPARE(surface.parentItem(), m_view->playerLayer());
    for (const Mode mode : allPortraitDisplayModes) {
        m_view->setDisplayMode(mode);
        for (const QSizeF size : {QSizeF(400, 300), QSizeF(90, 640), QSizeF(333, 217)}) {
            m_view->setSize(size);
            const QRectF covered = surface.mapRectToScene(surface.boundingRect());
            const QRectF seen = m_view->boundingRect() & frame(m_view->cropLayer());
            QVERIFY(covered.adjusted(-1e-6, -1e-6, 1e-6, 1e-6).contains(seen));
            QVERIFY(seen.adjusted(-1, -1, 1, 1).contains(covered));
            // Whole pixels.
            for (const double edge : {covered.left(), covered.top(), covered.right()})
                QVERIFY(std::abs(edge - std::round(edge)) < 1e-9);
        }
    }
}

void PlayerHostingViewTest::pictureIsWhereItsLayerIs()
{
    m_world->openVideo();
    FakeSurface surface;
    m_view->setPicture(&surface);
    QCOMPARE(surface.placement, VideoPlacement());
    m_view->setDisplayMode(Mode::manual);
    drag(100, 142);
    QVERIFY(m_view->horizontalPan() > 0.2);
    const QRectF covered = frame(&surface);
    const auto [fills, zoom, offset] = surface.placement;
    QVERIFY(fills);
    // Undoes what the surface is told; the picture is as high as the surface when it fills it.
    const double width = covered.height() * zoom * 16 / 9;
    const QPointF centre =
        covered.center() + QPointF(offset.x() * width, offset.y() * width * 9 / 16);
    QVERIFY(std::abs(width - m_view->playerLayer()->width()) < 1e-6);
    QVERIFY((centre - m_view->playerLayer()->boundingRect().center()).manhattanLength() < 1e-6);
    m_view->setDisplayMode(Mode::normal);
    QCOMPARE(surface.placement, VideoPlacement());
}

void PlayerHostingViewTest::oldPictureStaysInPlace()
{
    m_world->openVideo();
    FakeSurface surface;
    m_view->setPicture(&surface);
    m_view->setDisplayMode(Mode::fill);
    const VideoPlacement before = surface.placement;
    // Its last picture is shown until the next item has one.
    m_world->player.replaceItem(QUrl(u"file:///next.mp4"_s));
    m_world->player.changePictureSize({});
    QVERIFY(std::abs(surface.placement.zoom - before.zoom) < 0.01);
    QCOMPARE(surface.placement.fills, before.fills);
    QCOMPARE(surface.placement.offset, before.offset);
}

void PlayerHostingViewTest::pictureMayGoFirst()
{
    auto picture = std::make_unique<FakeSurface>();
    m_view->setPicture(picture.get());
    picture.reset();
    m_view->setSize({20, 20});
    m_view->setDisplayMode(Mode::fill);
}

void PlayerHostingViewTest::sizeThatIsLearntLaterCounts()
{
    m_view->setDisplayMode(Mode::manual);
    m_world->player.replaceItem(QUrl(u"file:///video.mp4"_s));
    QCOMPARE(frame(m_view->playerLayer()),
             displayGeometry(Mode::fill, {400, 300}, 0, {}).playerFrame);
    m_world->player.changePictureSize({1920, 1080});
    QCOMPARE(frame(m_view->playerLayer()),
             displayGeometry(Mode::manual, {400, 300}, 0, {1920, 1080}).playerFrame);
}

void PlayerHostingViewTest::fillScreenChangesNothing()
{
    m_world->openVideo();
    m_view->setDisplayMode(Mode::manual);
    const QRectF before = frame(m_view->playerLayer());
    m_view->setFillScreen(true);
    QVERIFY(m_view->fillScreen());
    QCOMPARE(frame(m_view->playerLayer()), before);
    QCOMPARE(m_view->gravity(), VideoGravity::resizeAspectFill);
}

void PlayerHostingViewTest::panIsKeptButInFillAndRotate()
{
    m_world->openVideo();
    m_view->setDisplayMode(Mode::manual);
    drag(100, 170);
    QCOMPARE(m_view->horizontalPan(), 0.5);
    for (const Mode mode : {Mode::normal, Mode::smart, Mode::manual, Mode::manual}) {
        m_view->setDisplayMode(mode);
        QCOMPARE(m_view->horizontalPan(), 0.5);
    }
    for (const Mode mode : {Mode::fill, Mode::rotate}) {
        m_view->setDisplayMode(mode);
        QCOMPARE(m_view->horizontalPan(), 0.0);
        m_view->setDisplayMode(Mode::manual);
        drag(100, 170);
    }
}

void PlayerHostingViewTest::tapsTheCurrentItem()
{
    FakeMediaPlayer &player = m_world->player;
    QVERIFY(player.videoOutput.expired());
    m_world->openVideo();
    const auto first = player.videoOutput;
    QCOMPARE(first.lock()->item, player.currentItem());
    m_view->setPlayer(&player);
    QCOMPARE(player.videoOutput.lock(), first.lock());
    m_world->openVideo();
    QVERIFY(first.expired());
    QCOMPARE(player.videoOutput.lock()->item, player.currentItem());
    player.removeItem();
    QCOMPARE(player.videoOutput.lock()->item, 0U);
    m_world->openVideo();
    delete m_view;
    QVERIFY(player.videoOutput.expired());
}

void PlayerHostingViewTest::layerViewRegistersItsSurface()
{
    struct View : PlayerLayerView
    {
        using PlayerLayerView::componentComplete;
    };
    const auto make = [this] {
        auto view = std::make_unique<View>();
        view->setSize({400, 300});
        view->setProperty("services", QVariant::fromValue(&m_world->services));
        view->setProperty("player", QVariant::fromValue<MediaPlayer *>(&m_world->player));
        view->setProperty("displayMode", QVariant::fromValue(Mode::fill));
        view->componentComplete();
        return view;
    };
    const PlayerSurfaceRegistry &surfaces = m_world->surfaces;
    auto first = make();
    QCOMPARE(first->hostingView()->displayMode(), Mode::fill);
    QCOMPARE(surfaces.currentSurface(), first->hostingView());
    auto second = make();
    QCOMPARE(surfaces.currentSurface(), second->hostingView());
    first->setProperty("fillScreen", true);
    QVERIFY(first->hostingView()->fillScreen());
    QCOMPARE(surfaces.currentSurface(), first->hostingView());
    second.reset();
    QCOMPARE(surfaces.currentSurface(), first->hostingView());
    // While something else shows what plays.
    first->setProperty("recordable", false);
    first->setProperty("fillScreen", false);
    QCOMPARE(surfaces.currentSurface(), nullptr);
    first->setProperty("recordable", true);
    QCOMPARE(surfaces.currentSurface(), first->hostingView());
    first.reset();
    QCOMPARE(surfaces.currentSurface(), nullptr);
}

void PlayerHostingViewTest::clicksAreToldWithTheirWindow()
{
    const QSignalSpy posted(&m_world->notifications, &NotificationCenter::posted);
    QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, {50, 50});
    QCOMPARE(posted.count(), 1);
    QCOMPARE(posted[0][0].toString(), u"Lumaro.playerSurfaceClicked"_s);
    QCOMPARE(posted[0][1].value<QObject *>(), m_window.get());
    QTest::mouseClick(m_window.get(), Qt::RightButton, {}, {50, 50});
    QCOMPARE(posted.count(), 1);
}

void PlayerHostingViewTest::doubleClickAsksForFullScreen()
{
    const QSignalSpy asked(m_view, &PlayerHostingView::fullScreenToggleRequested);
    const QSignalSpy posted(&m_world->notifications, &NotificationCenter::posted);
    QTest::mouseDClick(m_window.get(), Qt::LeftButton, {}, {50, 50});
    QCOMPARE(asked.count(), 1);
    QCOMPARE(posted.count(), 1);
    // However often it is clicked.
    QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, {50, 50});
    QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, {50, 50});
    QCOMPARE(posted.count(), 3);
    QCOMPARE(asked.count(), 1);
    QTest::mouseDClick(m_window.get(), Qt::RightButton, {}, {50, 50});
    QCOMPARE(asked.count(), 1);
}

void PlayerHostingViewTest::pansByAmounts()
{
    m_world->openVideo();
    m_view->panBy(0.5);
    QCOMPARE(m_view->horizontalPan(), 0.0);
    m_view->setDisplayMode(Mode::manual);
    m_view->panBy(0.75);
    QCOMPARE(m_view->horizontalPan(), 0.75);
    m_view->panBy(0.75);
    QCOMPARE(m_view->horizontalPan(), 1.0);
    m_view->panBy(-3);
    QCOMPARE(m_view->horizontalPan(), -1.0);
}

void PlayerHostingViewTest::doubleClickDoesNotPan()
{
    m_view->setDisplayMode(Mode::manual);
    const QSignalSpy asked(m_view, &PlayerHostingView::fullScreenToggleRequested);
    QTest::mouseDClick(m_window.get(), Qt::LeftButton, {}, middle);
    QTest::mouseMove(m_window.get(), middle + QPoint(90, 0));
    QCOMPARE(asked.count(), 1);
    QCOMPARE(m_view->horizontalPan(), 0.0);
}

void PlayerHostingViewTest::draggingEndsWithTheMode()
{
    m_view->setDisplayMode(Mode::manual);
    QTest::mousePress(m_window.get(), Qt::LeftButton, {}, middle);
    m_view->setDisplayMode(Mode::smart);
    m_view->setDisplayMode(Mode::manual);
    QTest::mouseMove(m_window.get(), middle + QPoint(90, 0));
    QCOMPARE(m_view->horizontalPan(), 0.0);
    QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, middle);
}

QTEST_MAIN(PlayerHostingViewTest)
#include "tst_playerhostingview.moc"
