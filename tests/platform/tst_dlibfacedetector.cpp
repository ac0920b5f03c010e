#include "platform/dlib/DlibFaceDetector.h"

#include <QImage>
#include <QTest>

#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

/// From the package opencv-doc; its one face is in the middle, a third from above.
const QString photo = u"/usr/share/doc/opencv-doc/opencv4/html/face_swapped.jpg"_s;

PixelBuffer bufferOf(const QImage &picture)
{
    const QImage image = picture.convertToFormat(QImage::Format_RGB32);
    return {.width = image.width(),
            .height = image.height(),
            .bytesPerLine = image.bytesPerLine(),
            .bytes =
                QByteArray(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes())};
}

/// The photograph, `height` pixels high, at `left` of a black picture of `size`.
QImage framed(QSize size, int height, int left)
{
    QImage frame(size, QImage::Format_RGB32);
    frame.fill(Qt::black);
    const QImage face = QImage(photo).scaledToHeight(height, Qt::SmoothTransformation);
    for (int y = 0; y < face.height(); ++y) {
        for (int x = 0; x < face.width(); ++x)
            frame.setPixel(left + x, y, face.pixel(x, y));
    }
    return frame;
}

} // namespace

class DlibFaceDetectorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsAFaceWhereItIs_data();
    void findsAFaceWhereItIs();
    void findsNobodyInEmptyPictures_data();
    void findsNobodyInEmptyPictures();
    void readsPaddedRows();
};

void DlibFaceDetectorTest::findsAFaceWhereItIs_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("left");
    QTest::newRow("close") << QSize(1280, 720) << 700 << 100;
    QTest::newRow("farther away, to the right") << QSize(1280, 720) << 360 << 900;
    QTest::newRow("small") << QSize(1280, 720) << 240 << 10;
    QTest::newRow("larger than the detector's pictures") << QSize(2560, 1440) << 1200 << 1300;
}

void DlibFaceDetectorTest::findsAFaceWhereItIs()
{
    QFETCH(const QSize, size);
    QFETCH(const int, height);
    QFETCH(const int, left);
    DlibFaceDetector detector;
    const auto faces = detector.detect(bufferOf(framed(size, height, left)));
    QVERIFY(faces);
    QCOMPARE(faces->size(), 1);
    const QPointF middle = faces->first().boundingBox.center();
    // In the photograph it is at 0.5 and a third from above.
    QVERIFY(std::abs(middle.x() * size.width() - (left + height * 0.5)) < height * 0.08);
    QVERIFY(std::abs((1 - middle.y()) * size.height() - height * 0.36) < height * 0.12);
}

void DlibFaceDetectorTest::findsNobodyInEmptyPictures_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(1, 1), QSize(3, 2000), QSize(2000, 3), QSize(640, 360)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void DlibFaceDetectorTest::findsNobodyInEmptyPictures()
{
    QFETCH(const QSize, size);
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::gray);
    DlibFaceDetector detector;
    const auto faces = detector.detect(bufferOf(image));
    QVERIFY(faces && faces->isEmpty());
    QVERIFY(detector.detect(PixelBuffer()).has_value());
}

void DlibFaceDetectorTest::readsPaddedRows()
{
    PixelBuffer picture = bufferOf(framed({640, 360}, 360, 200));
    QByteArray padded;
    for (int y = 0; y < picture.height; ++y)
        padded += picture.bytes.mid(y * picture.bytesPerLine, picture.bytesPerLine)
            + QByteArray(36, '\x7f');
    DlibFaceDetector detector;
    const auto plain = detector.detect(picture);
    picture.bytes = padded;
    picture.bytesPerLine += 36;
    QVERIFY(plain && !plain->isEmpty());
    QCOMPARE(detector.detect(picture).value_or(QList<FaceObservation>()), *plain);
}

QTEST_APPLESS_MAIN(DlibFaceDetectorTest)
#include "tst_dlibfacedetector.moc"
