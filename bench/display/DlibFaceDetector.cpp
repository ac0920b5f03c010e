#include "bench/display/DlibFaceDetector.h"

#include <dlib/image_processing/frontal_face_detector.h>
#include <dlib/image_transforms.h>

namespace lumaro {

struct DlibFaceDetector::Detector
{
    dlib::frontal_face_detector find = dlib::get_frontal_face_detector();
};

DlibFaceDetector::DlibFaceDetector(int factor)
    : m_factor(factor)
    , m_detector(std::make_unique<Detector>())
{
}

DlibFaceDetector::~DlibFaceDetector() = default;

FaceDetector::Result DlibFaceDetector::detect(const PixelBuffer &picture)
{
    dlib::array2d<unsigned char> gray(picture.height, picture.width);
    for (int y = 0; y < picture.height; ++y) {
        const auto *row = reinterpret_cast<const unsigned char *>(picture.bytes.constData())
            + y * picture.bytesPerLine;
        for (int x = 0; x < picture.width; ++x)
            gray[y][x] = static_cast<unsigned char>(
                (29 * row[4 * x] + 150 * row[4 * x + 1] + 77 * row[4 * x + 2]) >> 8);
    }
    if (m_factor == 2)
        dlib::pyramid_up(gray);
    const double width = double(picture.width) * m_factor;
    const double height = double(picture.height) * m_factor;
    QList<FaceObservation> faces;
    for (const dlib::rectangle &face : m_detector->find(gray))
        faces.append(
            {.boundingBox = {double(face.left()) / width, 1 - double(face.bottom()) / height,
                             double(face.width()) / width, double(face.height()) / height}});
    return faces;
}

} // namespace lumaro
