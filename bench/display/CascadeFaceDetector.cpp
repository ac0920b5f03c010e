#include "bench/display/CascadeFaceDetector.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>

#include <algorithm>
#include <cmath>

namespace lumaro {

namespace {

using Faces = std::vector<cv::Rect>;

/// The cascades' own windows have no fewer pixels.
constexpr int smallestWindow = 20;

bool load(cv::CascadeClassifier &cascade, const QString &file)
{
    return file.isEmpty() || cascade.load(LUMARO_CASCADE_FOLDER "/" + file.toStdString());
}

cv::Mat grayPicture(const PixelBuffer &picture, int height)
{
    // OpenCV has no read-only view.
    const cv::Mat bgra(picture.height, picture.width, CV_8UC4,
                       const_cast<char *>(picture.bytes.constData()), size_t(picture.bytesPerLine));
    cv::Mat small = bgra;
    if (height > 0 && picture.height > height) {
        const int width =
            std::max(1, int(std::lround(double(picture.width) * height / picture.height)));
        // Colours go after it, for there is less to convert then.
        cv::resize(bgra, small, {width, height}, 0, 0, cv::INTER_AREA);
    }
    cv::Mat gray;
    cv::cvtColor(small, gray, cv::COLOR_BGRA2GRAY);
    cv::equalizeHist(gray, gray);
    return gray;
}

void append(Faces &faces, const Faces &more)
{
    for (const cv::Rect &face : more) {
        const cv::Point middle = (face.tl() + face.br()) / 2;
        const bool isKnown = std::ranges::any_of(
            faces, [middle](const cv::Rect &known) { return known.contains(middle); });
        if (!isKnown)
            faces.push_back(face);
    }
}

void mirror(Faces &faces, int width)
{
    for (cv::Rect &face : faces)
        face.x = width - face.x - face.width;
}

FaceObservation observation(const cv::Rect &face, cv::Size picture)
{
    const double width = picture.width;
    const double height = picture.height;
    return {.boundingBox = {face.x / width, 1 - (face.y + face.height) / height, face.width / width,
                            face.height / height}};
}

} // namespace

struct CascadeFaceDetector::Cascades
{
    cv::CascadeClassifier frontal;
    cv::CascadeClassifier profile;
};

CascadeFaceDetector::CascadeFaceDetector()
    : CascadeFaceDetector(Options())
{
}

CascadeFaceDetector::CascadeFaceDetector(Options options)
    : m_options(std::move(options))
{
}

CascadeFaceDetector::~CascadeFaceDetector() = default;

FaceDetector::Result CascadeFaceDetector::detect(const PixelBuffer &picture)
{
    if (picture.width <= 0 || picture.height <= 0)
        return QList<FaceObservation>();
    try {
        if (!m_cascades) {
            auto cascades = std::make_unique<Cascades>();
            if (!load(cascades->frontal, m_options.frontalCascade)
                || !load(cascades->profile, m_options.profileCascade))
                return std::unexpected(FaceDetectorError::Unavailable);
            cv::setNumThreads(1);
            m_cascades = std::move(cascades);
        }
        cv::Mat gray = grayPicture(picture, m_options.height);
        const int smallest = std::max(smallestWindow, int(gray.rows * m_options.smallestFace));
        const auto find = [&](cv::CascadeClassifier &cascade, int neighbours) {
            Faces found;
            if (!cascade.empty())
                cascade.detectMultiScale(gray, found, m_options.scaleStep, neighbours, 0,
                                         {smallest, smallest});
            return found;
        };
        Faces faces = find(m_cascades->frontal, m_options.frontalNeighbours);
        // Looking for profiles costs twice as much again.
        if (faces.empty() && !m_cascades->profile.empty()) {
            append(faces, find(m_cascades->profile, m_options.profileNeighbours));
            cv::flip(gray, gray, 1);
            Faces right = find(m_cascades->profile, m_options.profileNeighbours);
            mirror(right, gray.cols);
            append(faces, right);
        }
        QList<FaceObservation> observations;
        for (const cv::Rect &face : faces)
            observations.append(observation(face, gray.size()));
        return observations;
    } catch (const cv::Exception &) {
        return std::unexpected(FaceDetectorError::Failed);
    }
}

} // namespace lumaro
