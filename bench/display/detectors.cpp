// Recall, false alarms and time of face detectors on frames composed of photographs, as a table for
// docs/FACES.md.  bench_display_detectors

#include "bench/display/CascadeFaceDetector.h"
#include "bench/display/FaceFrames.h"
#include "platform/dlib/DlibFaceDetector.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

struct Candidate
{
    const char *name;
    std::shared_ptr<FaceDetector> detector;
};

struct Score
{
    int frames = 0;
    int found = 0;
    int falseAlarms = 0;
    /// The largest face of the answer is the one that is there: what the follower goes by.
    int followed = 0;
    QList<double> milliseconds;
};

bool matches(const FaceObservation &seen, const QRectF &face, const PixelBuffer &picture)
{
    const QRectF box(
        seen.boundingBox.x() * picture.width, (1 - seen.boundingBox.bottom()) * picture.height,
        seen.boundingBox.width() * picture.width, seen.boundingBox.height() * picture.height);
    return face.contains(box.center()) && box.height() > face.height() / 2
        && box.height() < face.height() * 2.2;
}

Score score(FaceDetector &detector, const QList<FaceFrame> &frames)
{
    Score result;
    for (const FaceFrame &frame : frames) {
        const auto start = std::chrono::steady_clock::now();
        const auto faces = detector.detect(frame.picture).value_or(QList<FaceObservation>());
        const std::chrono::duration<double, std::milli> time =
            std::chrono::steady_clock::now() - start;
        result.milliseconds.append(time.count());
        ++result.frames;
        const auto isThere = [&](const FaceObservation &face) {
            return matches(face, frame.face, frame.picture);
        };
        const auto hits = std::ranges::count_if(faces, isThere);
        result.found += hits > 0 ? 1 : 0;
        result.falseAlarms += int(faces.size() - hits);
        const auto largest = std::ranges::max_element(faces, {}, [](const FaceObservation &face) {
            return face.boundingBox.width() * face.boundingBox.height();
        });
        result.followed += largest != faces.end() && isThere(*largest) ? 1 : 0;
    }
    std::ranges::sort(result.milliseconds);
    return result;
}

std::shared_ptr<FaceDetector> cascade(int height, const QString &frontal, const QString &profile,
                                      double step = 1.15, int neighbours = 3,
                                      int profileNeighbours = 4)
{
    return std::make_shared<CascadeFaceDetector>(
        CascadeFaceDetector::Options{.height = height,
                                     .smallestFace = 0.045,
                                     .frontalCascade = frontal,
                                     .profileCascade = profile,
                                     .scaleStep = step,
                                     .frontalNeighbours = neighbours,
                                     .profileNeighbours = profileNeighbours});
}

std::shared_ptr<FaceDetector> frontal(int halvings, double threshold)
{
    return std::make_shared<DlibFaceDetector>(
        DlibFaceDetector::Options{.halvings = halvings, .threshold = threshold});
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QString alt2 = u"haarcascades/haarcascade_frontalface_alt2.xml"_s;
    const QString standard = u"haarcascades/haarcascade_frontalface_default.xml"_s;
    const QString lbp = u"lbpcascades/lbpcascade_frontalface_improved.xml"_s;
    const QString profile = u"haarcascades/haarcascade_profileface.xml"_s;
    const Candidate candidates[] = {
        {"dlib frontal, 1080 rows", frontal(0, 0)},
        {"dlib frontal, coarse to fine", frontal(2, 0)},
        {"dlib frontal, coarse to fine, from -0.2", frontal(2, -0.2)},
        {"dlib frontal, coarse to fine, from -0.4", frontal(2, -0.4)},
        {"LBP improved, 540 rows", cascade(540, lbp, {})},
        {"Haar default, 540 rows", cascade(540, standard, {})},
        {"Haar alt2, 540 rows", cascade(540, alt2, {})},
        {"Haar alt2, then profile, 480 rows", cascade(480, alt2, profile)},
        {"Haar alt2, then profile, 1080 rows", cascade(0, alt2, profile)},
    };
    std::printf(
        "| Detector | 5 %% | 8 %% | 12 %% | 25 %% | turned, 12 %% | followed | false alarms "
        "per frame | ms |\n|---|---|---|---|---|---|---|---|---|\n");
    QList<QList<FaceFrame>> sets;
    for (const double height : {0.05, 0.08, 0.12, 0.25}) {
        const auto frames = faceFrames(FaceKind::Frontal, height);
        if (!frames) {
            std::fprintf(stderr, "%s\n", qPrintable(frames.error()));
            return 2;
        }
        sets.append(*frames);
    }
    sets.append(faceFrames(FaceKind::Turned, 0.12).value_or(QList<FaceFrame>()));
    sets.append(faceFrames(FaceKind::None, 0).value_or(QList<FaceFrame>()));
    for (const Candidate &candidate : candidates) {
        std::printf("| %s", candidate.name);
        int frames = 0;
        int alarms = 0;
        int followed = 0;
        int withFace = 0;
        QList<double> times;
        for (const auto &set : sets) {
            const Score result = score(*candidate.detector, set);
            frames += result.frames;
            alarms += result.falseAlarms;
            followed += result.followed;
            times += result.milliseconds;
            if (&set != &sets.last()) {
                withFace += result.frames;
                std::printf(" | %d/%d", result.found, result.frames);
            }
            std::fflush(stdout);
        }
        std::ranges::sort(times);
        std::printf(" | %d/%d | %.2f | %.0f |\n", followed, withFace, double(alarms) / frames,
                    times.at(times.size() / 2));
        std::fflush(stdout);
    }
    return 0;
}
