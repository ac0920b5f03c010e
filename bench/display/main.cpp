// A tick of the face's follower on a frame of 1920x1080 against the same detector on the whole
// frame, and pictures shown in smart mode against normal mode.  bench_display [ROUNDS]

#include "bench/display/FaceFrames.h"
#include "bench/playback/PlayerRun.h"
#include "bench/report/Report.h"
#include "platform/dlib/DlibFaceDetector.h"
#include "platform/qt/FileUserDefaults.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/VirtualDisplay.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr qsizetype frameCount = 24;
constexpr std::chrono::seconds playingTime(12);

struct Detection
{
    Seconds medianTime{};
    int found = 0;
};

Detection detect(FaceDetector &detector, const QList<FaceFrame> &frames)
{
    Detection result;
    QList<Seconds> times;
    (void)detector.detect(frames.first().picture);
    for (const FaceFrame &frame : frames) {
        const auto start = std::chrono::steady_clock::now();
        const auto faces = detector.detect(frame.picture).value_or(QList<FaceObservation>());
        times.append(std::chrono::steady_clock::now() - start);
        result.found += std::ranges::any_of(faces, [&](const FaceObservation &face) {
            const QPointF middle = face.boundingBox.center();
            return frame.face.contains(
                QPointF(middle.x() * frame.picture.width, (1 - middle.y()) * frame.picture.height));
        });
    }
    result.medianTime = median(times);
    return result;
}

QList<Row> measureTicks()
{
    const QString what = u"detection tick on 1080p, to the whole frame"_s;
    QList<FaceFrame> frames;
    for (const double height : {0.05, 0.1, 0.2, 0.3, 0.4}) {
        const auto some = faceFrames(FaceKind::Frontal, height);
        if (!some)
            return {{what, std::unexpected(some.error())}};
        frames += some->first(frameCount);
    }
    DlibFaceDetector follower;
    DlibFaceDetector full({.halvings = 0});
    const Detection small = detect(follower, frames);
    const Detection large = detect(full, frames);
    // Those of the first height, for which all steps from coarse to fine are needed.
    const QList<FaceFrame> distant = frames.first(frameCount);
    const Detection smallDistant = detect(follower, distant);
    const Detection largeDistant = detect(full, distant);
    const auto compared = [](const Detection &own, const Detection &peer) -> QString {
        return milliseconds(own.medianTime) + u", the whole "_s + milliseconds(peer.medianTime);
    };
    return {{what, small.medianTime / large.medianTime, compared(small, large),
             Limit{Limit::Kind::AtMost, 0.34}},
            {what + u", faces of 5 % only"_s, smallDistant.medianTime / largeDistant.medianTime,
             compared(smallDistant, largeDistant)},
            {u"faces found, to the whole frame"_s, double(small.found) / large.found,
             u"%1 and %2 of %3"_s.arg(small.found).arg(large.found).arg(frames.size()),
             Limit{Limit::Kind::AtLeast, 1}}};
}

/// The film played with the mode called `title`.
Measured<PlayerRun::Load> play(const QString &file, const QString &title)
{
    const QTemporaryDir settings;
    preparePlayerEnvironment(settings.path());
    if (!FileUserDefaults(settings.path() + u"/lumaro"_s)
             .setData(u"Lumaro.MainWindow.DisplayMode"_s, title.toUtf8()))
        return std::unexpected(u"The mode cannot be stored."_s);
    const auto screen = Screen::open();
    if (!screen)
        return std::unexpected(u"There is no display."_s);
    PlayerRun run(*screen);
    return run.startAndMeasure(lumaroCommand(file), playingTime);
}

struct Mode
{
    QString title;
    QList<double> pictureRates{};
    QList<qint64> memory{};
};

Row measureRates(int rounds)
{
    Row row{u"pictures shown, smart to normal"_s, 0, {}, Limit{Limit::Kind::AtLeast, 0.99}};
    const auto file =
        MediaFixtures(QStringLiteral(LUMARO_FIXTURE_FOLDER)).path(Fixture::CountedMovie);
    if (!file) {
        row.ratio = std::unexpected(file.error());
        return row;
    }
    Mode normal{u"Normal"_s};
    Mode smart{u"Smart Reframe"_s};
    for (int round = 0; round < rounds; ++round) {
        for (Mode *mode : {&normal, &smart}) {
            const auto load = play(*file, mode->title);
            if (!load) {
                row.ratio = std::unexpected(load.error());
                return row;
            }
            say(u"%1: %2 pictures a second"_s.arg(mode->title).arg(load->pictureRate, 0, 'f', 1));
            mode->pictureRates.append(load->pictureRate);
            mode->memory.append(load->peakMemory);
        }
    }
    row.ratio = median(smart.pictureRates) / median(normal.pictureRates);
    row.detail = u"%1 a second, normal %2"_s.arg(median(smart.pictureRates), 0, 'f', 1)
                     .arg(median(normal.pictureRates), 0, 'f', 1);
    row.memory = Memory{.own = median(smart.memory), .peer = median(normal.memory)};
    return row;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const int rounds = roundsAsked(argc, argv, 3);
    QList<Row> rows = measureTicks();
    if (const auto display = VirtualDisplay::start())
        rows.append(measureRates(rounds));
    else
        rows.append({u"pictures shown, smart to normal"_s, std::unexpected(display.error())});
    return report(u"display"_s, rows);
}
