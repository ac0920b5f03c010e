#include "platform/dlib/DlibFaceDetector.h"

#include <dlib/image_processing/frontal_face_detector.h>

#include <algorithm>
#include <exception>

namespace lumaro {

namespace {

using GrayPicture = dlib::array2d<unsigned char>;

/// More rows would only show faces that are too small to follow.
constexpr int maximumRows = 1200;

/// The picture in grey, each pixel the average of `factor` times `factor`.
GrayPicture grayPicture(const PixelBuffer &picture, int factor)
{
    const int width = picture.width / factor;
    const int height = picture.height / factor;
    const auto *bytes = reinterpret_cast<const unsigned char *>(picture.bytes.constData());
    // The parts of blue, green and red in what the eye sees, in 256ths.
    const unsigned divisor = 256U * unsigned(factor) * unsigned(factor);
    GrayPicture gray(height, width);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            unsigned sum = 0;
            for (int row = y * factor; row < (y + 1) * factor; ++row) {
                const auto *pixel = bytes + row * picture.bytesPerLine + qsizetype(x) * factor * 4;
                for (int column = 0; column < factor; ++column, pixel += 4)
                    sum += 29U * pixel[0] + 150U * pixel[1] + 77U * pixel[2];
            }
            gray[y][x] = static_cast<unsigned char>(sum / divisor);
        }
    }
    return gray;
}

FaceObservation observation(const dlib::rectangle &face, const GrayPicture &picture)
{
    const auto width = double(picture.nc());
    const auto height = double(picture.nr());
    return {.boundingBox = {double(face.left()) / width, 1 - double(face.bottom() + 1) / height,
                            double(face.width()) / width, double(face.height()) / height}};
}

} // namespace

struct DlibFaceDetector::Detector
{
    dlib::frontal_face_detector find = dlib::get_frontal_face_detector();
};

DlibFaceDetector::DlibFaceDetector()
    : DlibFaceDetector(Options())
{
}

DlibFaceDetector::DlibFaceDetector(Options options)
    : m_options(options)
{
}

DlibFaceDetector::~DlibFaceDetector() = default;

FaceDetector::Result DlibFaceDetector::detect(const PixelBuffer &picture)
{
    QList<FaceObservation> faces;
    const int largestFactor = std::min(picture.width, picture.height);
    if (largestFactor < 1)
        return faces;
    try {
        if (!m_detector)
            m_detector = std::make_unique<Detector>();
        const int smallestFactor = (picture.height + maximumRows - 1) / maximumRows;
        for (int halvings = m_options.halvings; halvings >= 0 && faces.isEmpty(); --halvings) {
            const GrayPicture gray =
                grayPicture(picture, std::min(smallestFactor << halvings, largestFactor));
            for (const dlib::rectangle &face : m_detector->find(gray, m_options.threshold))
                faces.append(observation(face, gray));
        }
    } catch (const std::exception &) {
        return std::unexpected(FaceDetectorError::Failed);
    }
    return faces;
}

} // namespace lumaro
