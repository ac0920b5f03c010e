#include "display/DisplayGeometry.h"

#include <QTest>

#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;
using Mode = lumaro::PortraitDisplayMode;

Q_DECLARE_METATYPE(lumaro::PortraitDisplayMode)

namespace {

/// To the last bit, unlike QRectF's own comparison.
bool isExactly(const QRectF &rect, double x, double y, double width, double height)
{
    return rect.x() == x && rect.y() == y && rect.width() == width && rect.height() == height;
}

bool isNear(const QRectF &left, const QRectF &right)
{
    constexpr double near = 1e-9;
    return std::abs(left.x() - right.x()) < near && std::abs(left.y() - right.y()) < near
        && std::abs(left.width() - right.width()) < near
        && std::abs(left.height() - right.height()) < near;
}

constexpr QSizeF fullHd(1920, 1080);

/// Where the picture lies in the view, however it is drawn.
QRectF pictureInView(Mode mode, QSizeF view, double pan, QSizeF video)
{
    const DisplayGeometry geometry = displayGeometry(mode, view, pan, video);
    return pictureRect(geometry.playerFrame, videoGravity(mode), video)
        .translated(geometry.cropFrame.topLeft());
}

} // namespace

class DisplayGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeViewInNormal();
    void columnIsNineToSixteen_data();
    void columnIsNineToSixteen();
    void fillsBeforeTheSizeIsKnown();
    void tallPictureIsCentred();
    void flatViewComparesTheBareWidth();
    void rotatesAQuarterTurn();
    void fillAndRotateCoverTheColumn_data();
    void fillAndRotateCoverTheColumn();
    void placesThePicture_data();
    void placesThePicture();
    void dragsAcrossAThirdOfTheView();
};

void DisplayGeometryTest::wholeViewInNormal()
{
    const auto geometry = displayGeometry(Mode::normal, {1120.5, 700}, 0.7, fullHd);
    QVERIFY(isExactly(geometry.cropFrame, 0, 0, 1120.5, 700));
    QVERIFY(isExactly(geometry.playerFrame, 0, 0, 1120.5, 700));
    QVERIFY(!geometry.cropMasksToBounds);
    QCOMPARE(geometry.playerRotation, 0.0);
    QCOMPARE(videoGravity(Mode::normal), VideoGravity::resizeAspect);
}

void DisplayGeometryTest::columnIsNineToSixteen_data()
{
    QTest::addColumn<QSizeF>("view");
    QTest::addColumn<QRectF>("column");
    QTest::newRow("just as tall") << QSizeF(900, 1600) << QRectF(0, 0, 900, 1600);
    QTest::newRow("wide") << QSizeF(1120, 700) << QRectF(363.125, 0, 393.75, 700);
    QTest::newRow("narrower than a column") << QSizeF(400, 1600) << QRectF(-250, 0, 900, 1600);
    QTest::newRow("nothing") << QSizeF(0, 0) << QRectF(0, 0, 0, 0);
}

void DisplayGeometryTest::columnIsNineToSixteen()
{
    QFETCH(const QSizeF, view);
    QFETCH(const QRectF, column);
    for (const Mode mode : {Mode::fill, Mode::rotate, Mode::manual, Mode::smart}) {
        const auto geometry = displayGeometry(mode, view, 0, fullHd);
        QVERIFY(
            isExactly(geometry.cropFrame, column.x(), column.y(), column.width(), column.height()));
        QVERIFY(geometry.cropMasksToBounds);
        QCOMPARE(videoGravity(mode), VideoGravity::resizeAspectFill);
    }
}

void DisplayGeometryTest::fillsBeforeTheSizeIsKnown()
{
    const auto filled = displayGeometry(Mode::fill, {1120, 700}, 0.5, fullHd);
    QVERIFY(isNear(filled.playerFrame, {-25.59375, -45.5, 444.9375, 791}));
    for (const QSizeF size : {QSizeF(0, 0), QSizeF(), QSizeF(1920, 0), QSizeF(0, 1080)}) {
        QCOMPARE(displayGeometry(Mode::manual, {1120, 700}, 0.5, size), filled);
        QCOMPARE(displayGeometry(Mode::smart, {1120, 700}, 0.5, size), filled);
    }
}

void DisplayGeometryTest::tallPictureIsCentred()
{
    const QSizeF tall(1080, 2400);
    const auto geometry = displayGeometry(Mode::manual, {900, 1600}, 0, tall);
    QVERIFY(isNear(geometry.playerFrame, {-58.5, -330, 1017, 2260}));
    QCOMPARE(displayGeometry(Mode::manual, {900, 1600}, -0.8, tall), geometry);
}

void DisplayGeometryTest::flatViewComparesTheBareWidth()
{
    // Its column of 0.28125 x 0.5 points is wider than this picture in shape, but not as a number.
    const auto geometry = displayGeometry(Mode::manual, {100, 0.5}, 0, {0.4, 1});
    QVERIFY(isNear(geometry.playerFrame, {-0.013, -0.0325, 0.226, 0.565}));
    QCOMPARE(displayGeometry(Mode::manual, {100, 0}, 0, fullHd).playerFrame.size(), QSizeF(0, 0));
}

void DisplayGeometryTest::rotatesAQuarterTurn()
{
    const auto geometry = displayGeometry(Mode::rotate, {1120, 700}, 1, fullHd);
    QCOMPARE(geometry.playerRotation, 90.0);
    QCOMPARE(geometry.playerFrame.size(), QSizeF(700, 393.75));
    QCOMPARE(geometry.playerFrame.center(), QPointF(196.875, 350));
}

void DisplayGeometryTest::fillAndRotateCoverTheColumn_data()
{
    QTest::addColumn<QSizeF>("video");
    QTest::newRow("wide") << QSizeF(1920, 800);
    QTest::newRow("square") << QSizeF(500, 500);
    QTest::newRow("tall") << QSizeF(1080, 2400);
    QTest::newRow("thin") << QSizeF(1, 1000);
}

void DisplayGeometryTest::fillAndRotateCoverTheColumn()
{
    QFETCH(const QSizeF, video);
    const QSizeF view(1120, 700);
    for (const Mode mode : {Mode::fill, Mode::manual, Mode::smart}) {
        for (const double pan : {-1.0, 0.0, 0.3, 1.0})
            QVERIFY(pictureInView(mode, view, pan, video).contains(QRectF(364, 0, 392, 700)));
    }
    const auto rotated = displayGeometry(Mode::rotate, view, 0, video);
    QVERIFY(pictureRect(rotated.playerFrame, videoGravity(Mode::rotate), video)
                .adjusted(-1e-9, -1e-9, 1e-9, 1e-9)
                .contains(rotated.playerFrame));
}

void DisplayGeometryTest::placesThePicture_data()
{
    QTest::addColumn<QRectF>("picture");
    QTest::addColumn<QRectF>("surface");
    QTest::addColumn<double>("zoom");
    QTest::addColumn<QPointF>("offset");
    QTest::newRow("fits") << QRectF(0, 10, 160, 90) << QRectF(0, 0, 160, 110) << 90.0 / 110
                          << QPointF(0, 0);
    QTest::newRow("twice, its left half")
        << QRectF(0, 0, 320, 180) << QRectF(0, 0, 160, 90) << 2.0 << QPointF(0.25, 0.25);
    QTest::newRow("filled") << QRectF(-100, 0, 300, 100) << QRectF(0, 0, 100, 100) << 1.0
                            << QPointF(0, 0);
    QTest::newRow("nothing") << QRectF() << QRectF(0, 0, 100, 100) << 1.0 << QPointF(0, 0);
    QTest::newRow("nowhere") << QRectF(0, 0, 100, 100) << QRectF() << 1.0 << QPointF(0, 0);
}

void DisplayGeometryTest::placesThePicture()
{
    QFETCH(const QRectF, picture);
    QFETCH(const QRectF, surface);
    QFETCH(const double, zoom);
    QFETCH(const QPointF, offset);
    const VideoPlacement placement = fillingPlacement(picture, surface);
    QVERIFY(placement.fills);
    QCOMPARE(placement.zoom, zoom);
    QCOMPARE(placement.offset, offset);
}

void DisplayGeometryTest::dragsAcrossAThirdOfTheView()
{
    QCOMPARE(draggedPan(0, 350, 1000), 1.0);
    QCOMPARE(draggedPan(0, -175, 1000), -0.5);
    QCOMPARE(draggedPan(0.25, -35, 1000), 0.15);
    QCOMPARE(draggedPan(0.9, 900, 1000), 1.0);
    QCOMPARE(draggedPan(-0.9, -900, 1000), -1.0);
    QCOMPARE(draggedPan(0, 0.5, 0), 0.5);
    QCOMPARE(draggedPan(0, 0.5, 2.5), 0.5);
}

QTEST_APPLESS_MAIN(DisplayGeometryTest)
#include "tst_displaygeometry.moc"
