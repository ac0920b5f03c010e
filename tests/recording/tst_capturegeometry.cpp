#include "recording/CaptureGeometry.h"

#include <QTest>

using namespace lumaro;

namespace {

constexpr auto normal = PlayerRecordingQuality::normal;
constexpr auto hd = PlayerRecordingQuality::hd;
constexpr quint32 window = 7;
const ShareableItem left{.identifier = 1, .frame = {0, 0, 1000, 800}};
const ShareableItem right{.identifier = 2, .frame = {1000, -200, 1920, 1080}};

ShareableContent withWindowAt(const QRectF &frame)
{
    return {.displays = {left, right},
            .windows = {{.identifier = 3, .frame = {0, 0, 10, 10}},
                        {.identifier = window, .frame = frame}}};
}

} // namespace

Q_DECLARE_METATYPE(PlayerRecordingQuality)

class CaptureGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outputHasEvenSides_data();
    void outputHasEvenSides();
    void placesTheRectangle_data();
    void placesTheRectangle();
    void refuses_data();
    void refuses();
};

void CaptureGeometryTest::outputHasEvenSides_data()
{
    QTest::addColumn<QSizeF>("points");
    QTest::addColumn<double>("scale");
    QTest::addColumn<PlayerRecordingQuality>("quality");
    QTest::addColumn<QSize>("pixels");
    QTest::newRow("scale 2") << QSizeF(901, 507) << 2.0 << normal << QSize(1802, 1014);
    QTest::newRow("scale 1") << QSizeF(901, 507) << 1.0 << normal << QSize(900, 506);
    QTest::newRow("between") << QSizeF(901, 507) << 1.25 << normal << QSize(1126, 634);
    QTest::newRow("smallest") << QSizeF(0.4, 1) << 1.0 << normal << QSize(2, 2);
    QTest::newRow("enlarged") << QSizeF(901, 507) << 2.0 << hd << QSize(1918, 1080);
    QTest::newRow("reduced") << QSizeF(3840, 2160) << 1.0 << hd << QSize(1920, 1080);
    QTest::newRow("upright") << QSizeF(608, 1080) << 1.0 << hd << QSize(1080, 1918);
    QTest::newRow("square") << QSizeF(500, 500) << 1.0 << hd << QSize(1080, 1080);
    QTest::newRow("a strip") << QSizeF(9, 4000) << 1.0 << hd << QSize(4, 1920);
}

void CaptureGeometryTest::outputHasEvenSides()
{
    QFETCH(const QSizeF, points);
    QFETCH(const double, scale);
    QFETCH(const PlayerRecordingQuality, quality);
    QFETCH(const QSize, pixels);
    QCOMPARE(outputDimensions(points, scale, quality), pixels);
}

void CaptureGeometryTest::placesTheRectangle_data()
{
    QTest::addColumn<QRectF>("frame");
    QTest::addColumn<QRectF>("rect"); // from the window's lower left
    QTest::addColumn<int>("display");
    QTest::addColumn<QRectF>("placed");
    QTest::newRow("whole window") << QRectF(100, 50, 640, 360) << QRectF(0, 0, 640, 360) << 1
                                  << QRectF(100, 50, 640, 360);
    QTest::newRow("upwards becomes downwards")
        << QRectF(100, 50, 640, 360) << QRectF(40, 100, 600, 250) << 1 << QRectF(140, 60, 600, 250);
    QTest::newRow("other display")
        << QRectF(1500, 0, 640, 360) << QRectF(0, 0, 640, 360) << 2 << QRectF(500, 200, 640, 360);
    QTest::newRow("larger part on the right")
        << QRectF(900, 0, 640, 360) << QRectF(0, 0, 640, 360) << 2 << QRectF(0, 200, 540, 360);
    QTest::newRow("exact tie") << QRectF(900, 0, 200, 100) << QRectF(0, 0, 200, 100) << 1
                               << QRectF(900, 0, 100, 100);
    QTest::newRow("off to the left and below")
        << QRectF(-300, 700, 640, 360) << QRectF(0, 0, 640, 360) << 1 << QRectF(0, 700, 340, 100);
    QTest::newRow("just enough") << QRectF(0, 0, 640, 360) << QRectF(0, 0, 8.5, 8.5) << 1
                                 << QRectF(0, 351.5, 8.5, 8.5);
}

void CaptureGeometryTest::placesTheRectangle()
{
    QFETCH(const QRectF, frame);
    QFETCH(const QRectF, rect);
    QFETCH(const int, display);
    QFETCH(const QRectF, placed);
    const auto area = captureArea(withWindowAt(frame), window, rect);
    QVERIFY(area);
    QCOMPARE(area->display, quint32(display));
    QCOMPARE(area->rect, placed);
}

void CaptureGeometryTest::refuses_data()
{
    QTest::addColumn<QRectF>("frame");
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("error");
    const QRectF all(0, 0, 640, 360);
    QTest::newRow("no such window") << all << all << 8 << int(RecorderError::playerWindowNotFound);
    QTest::newRow("off all displays")
        << QRectF(5000, 0, 640, 360) << all << 7 << int(RecorderError::playerDisplayNotFound);
    QTest::newRow("beside a display")
        << QRectF(-640, 0, 640, 360) << all << 7 << int(RecorderError::playerDisplayNotFound);
    QTest::newRow("8 points left")
        << QRectF(-632, 0, 640, 360) << all << 7 << int(RecorderError::invalidCaptureArea);
    QTest::newRow("8 points high")
        << all << QRectF(0, 0, 640, 8) << 7 << int(RecorderError::invalidCaptureArea);
    QTest::newRow("surface off screen") << QRectF(-500, 0, 640, 360) << QRectF(0, 0, 400, 360) << 7
                                        << int(RecorderError::invalidCaptureArea);
}

void CaptureGeometryTest::refuses()
{
    QFETCH(const QRectF, frame);
    QFETCH(const QRectF, rect);
    QFETCH(const int, number);
    QFETCH(const int, error);
    const auto area = captureArea(withWindowAt(frame), quint32(number), rect);
    QVERIFY(!area);
    QCOMPARE(int(area.error()), error);
}

QTEST_APPLESS_MAIN(CaptureGeometryTest)
#include "tst_capturegeometry.moc"
