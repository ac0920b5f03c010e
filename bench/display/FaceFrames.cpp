#include "bench/display/FaceFrames.h"

#include <QImage>
#include <QPainter>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

constexpr QSize frameSize(1920, 1080);
const QString pages = u"/usr/share/doc/opencv-doc/opencv4/html/"_s;
const QString samples = u"/usr/share/doc/opencv-doc/examples/data/"_s;
const QString photos = u"/usr/lib/python3/dist-packages/skimage/data/"_s;

/// A photograph's cut-out, and where the face is in it.
struct Portrait
{
    QString file;
    QRect cutOut;
    QRect face;
};

/// A sheet of portraits of equal size, each with its face in the middle.
QList<Portrait> sheet(const QString &file, int columns, int rows, QSize size)
{
    QList<Portrait> portraits;
    const QSizeF tile(double(size.width()) / columns, double(size.height()) / rows);
    for (int i = 0; i < columns * rows; ++i) {
        const QRect cutOut = QRectF(i % columns * tile.width(), i / columns * tile.height(),
                                    tile.width(), tile.height())
                                 .toRect()
                                 .adjusted(2, 2, -2, -2);
        QRect face(QPoint(), QSize(int(cutOut.height() * 0.65), int(cutOut.height() * 0.65)));
        face.moveCenter(cutOut.center());
        portraits.append({file, cutOut, face});
    }
    return portraits;
}

QList<Portrait> frontalPortraits()
{
    return QList<Portrait>{
               {photos + u"astronaut.png"_s, {120, 0, 220, 260}, {170, 60, 110, 110}},
               {pages + u"face_swapped.jpg"_s, {60, 10, 200, 220}, {110, 60, 90, 90}},
               {pages + u"julia_facedetect_sample.jpg"_s,
                {130, 90, 240, 260},
                {185, 150, 130, 130}},
           }
    + sheet(pages + u"facereg.jpg"_s, 2, 2, {200, 200})
        + sheet(pages + u"2.jpg"_s, 8, 3, {730, 276}) + sheet(pages + u"3.jpg"_s, 6, 2, {415, 139});
}

QList<Portrait> turnedPortraits()
{
    return {
        {photos + u"camera.png"_s, {80, 20, 220, 220}, {140, 70, 80, 80}},
        {samples + u"messi5.jpg"_s, {200, 60, 110, 110}, {236, 92, 34, 38}},
        {samples + u"basketball1.png"_s, {20, 50, 130, 150}, {62, 90, 50, 50}},
        {samples + u"basketball1.png"_s, {450, 0, 180, 200}, {505, 30, 75, 75}},
    };
}

QStringList backgrounds()
{
    return {samples + u"aloeL.jpg"_s,        samples + u"building.jpg"_s,
            samples + u"fruits.jpg"_s,       samples + u"home.jpg"_s,
            samples + u"leuvenA.jpg"_s,      samples + u"stuff.jpg"_s,
            samples + u"board.jpg"_s,        samples + u"butterfly.jpg"_s,
            samples + u"squirrel_cls.jpg"_s, pages + u"detect_test2.jpg"_s,
            photos + u"coffee.png"_s,        photos + u"chelsea.png"_s,
            photos + u"rocket.jpg"_s,        photos + u"motorcycle_left.png"_s};
}

QImage background(const QString &file)
{
    const QImage image(file);
    const QImage scaled =
        image.scaled(frameSize, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    return scaled.copy(QRect({}, frameSize)).convertToFormat(QImage::Format_RGB32);
}

FaceFrame frameOf(const QImage &image, const QRectF &face)
{
    return {.picture = {.width = image.width(),
                        .height = image.height(),
                        .bytesPerLine = image.bytesPerLine(),
                        .bytes = QByteArray(reinterpret_cast<const char *>(image.constBits()),
                                            image.sizeInBytes())},
            .face = face};
}

/// Puts the portrait somewhere; `number` says where.
FaceFrame compose(const Portrait &portrait, const QImage &behind, double faceHeight, int number,
                  bool mirrored)
{
    const double scale = faceHeight * frameSize.height() / portrait.face.height();
    const QImage cutOut =
        QImage(portrait.file)
            .copy(portrait.cutOut)
            .scaled(portrait.cutOut.size() * scale, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .mirrored(mirrored, false);
    QRectF face(QPointF(portrait.face.topLeft() - portrait.cutOut.topLeft()) * scale,
                QSizeF(portrait.face.size()) * scale);
    if (mirrored)
        face.moveLeft(cutOut.width() - face.right());
    const QPoint place(number * 397 % std::max(1, frameSize.width() - cutOut.width()),
                       number * 211 % std::max(1, frameSize.height() - cutOut.height()));
    QImage image = behind;
    QPainter(&image).drawImage(place, cutOut);
    return frameOf(image, face.translated(place));
}

} // namespace

std::expected<QList<FaceFrame>, QString> faceFrames(FaceKind kind, double faceHeight)
{
    QList<QImage> behind;
    for (const QString &file : backgrounds()) {
        behind.append(background(file));
        if (behind.last().isNull())
            return std::unexpected(QString(file
                                           + u" is missing: install opencv-doc and "
                                             "python3-skimage."_s));
    }
    QList<FaceFrame> frames;
    if (kind == FaceKind::None) {
        for (const QImage &image : behind)
            frames.append(frameOf(image, {}));
        return frames;
    }
    const bool isTurned = kind == FaceKind::Turned;
    for (const Portrait &portrait : isTurned ? turnedPortraits() : frontalPortraits()) {
        for (const bool mirrored : {false, true}) {
            if (mirrored && !isTurned)
                continue;
            const int number = int(frames.size()) + 1;
            frames.append(
                compose(portrait, behind.at(number % behind.size()), faceHeight, number, mirrored));
        }
    }
    return frames;
}

} // namespace lumaro
