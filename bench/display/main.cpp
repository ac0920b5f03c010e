// A tick of the face's follower on a frame of 1920x1080 against the same detector on the whole
// frame, and pictures shown in smart mode against normal mode.  bench_display APP [--seconds N]

#include "bench/display/FaceFrames.h"
#include "bench/playback/PlayerRun.h"
#include "bench/report/Report.h"
#include "platform/dlib/DlibFaceDetector.h"
#include "platform/qt/FileUserDefaults.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/VirtualDisplay.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr qsizetype frameCount = 24;
constexpr int rounds = 3;

struct Detection
{
    double medianTime = 0;
    int found = 0;
};

Detection detect(FaceDetector &detector, const QList<FaceFrame> &frames)
{
    Detection result;
    QList<double> times;
    (void)detector.detect(frames.first().picture);
    for (const FaceFrame &frame : frames) {
        const auto start = std::chrono::steady_clock::now();
        const auto faces = detector.detect(frame.picture).value_or(QList<FaceObservation>());
        times.append(Seconds(std::chrono::steady_clock::now() - start).count());
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
    const QString what = u"detection tick, 1080p, to the whole frame"_s;
    QList<FaceFrame> frames;
    for (const double height : {0.05, 0.1, 0.2, 0.3, 0.4}) {
        const auto some = faceFrames(FaceKind::Frontal, height);
        if (!some)
            return {Row{what, std::unexpected(some.error()), {}, {}}};
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
    return {Row{what, small.medianTime / large.medianTime,
                milliseconds(Seconds(small.medianTime)) + u" and "_s
                    + milliseconds(Seconds(large.medianTime)),
                Limit{Limit::Kind::AtMost, 0.34}},
            Row{u"the same, faces of 5 % only"_s,
                smallDistant.medianTime / largeDistant.medianTime,
                milliseconds(Seconds(smallDistant.medianTime)) + u" and "_s
                    + milliseconds(Seconds(largeDistant.medianTime)),
                {}},
            Row{u"faces found, to the whole frame"_s, double(small.found) / large.found,
                u"%1 and %2 of %3"_s.arg(small.found).arg(large.found).arg(frames.size()),
                Limit{Limit::Kind::AtLeast, 1}}};
}

/// Pictures a second in the middle of the window, with the mode called `title`.
Measured<double> pictureRate(const QString &app, const QString &file, const QString &title,
                             int seconds)
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
    const auto load = run.startAndMeasure(lumaroCommand(app, file), std::chrono::seconds(seconds));
    if (!load)
        return std::unexpected(load.error());
    return load->pictureRate;
}

Row measureRates(const QString &app, int seconds)
{
    Row row{u"pictures shown, smart to normal"_s, 0, {}, Limit{Limit::Kind::AtLeast, 0.99}};
    const auto file =
        MediaFixtures(QStringLiteral(LUMARO_FIXTURE_FOLDER)).path(Fixture::FullHdMovie);
    if (!file) {
        row.ratio = std::unexpected(file.error());
        return row;
    }
    QList<double> normal;
    QList<double> smart;
    for (int round = 0; round < rounds; ++round) {
        for (const auto &[title, rates] :
             {std::pair(u"Normal"_s, &normal), std::pair(u"Smart Reframe"_s, &smart)}) {
            const auto rate = pictureRate(app, *file, title, seconds);
            if (!rate) {
                row.ratio = std::unexpected(rate.error());
                return row;
            }
            rates->append(*rate);
        }
    }
    row.ratio = median(smart) / median(normal);
    row.detail = u"%1 and %2 a second, medians of %3"_s.arg(median(smart), 0, 'f', 1)
                     .arg(median(normal), 0, 'f', 1)
                     .arg(rounds);
    return row;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption secondsOption(u"seconds"_s, u"How long each mode plays, at most 60."_s,
                                           u"N"_s, u"12"_s);
    parser.addOption(secondsOption);
    parser.addHelpOption();
    parser.addPositionalArgument(u"app"_s, u"Lumaro's program file."_s);
    parser.process(application);
    const int seconds = parser.value(secondsOption).toInt();
    if (parser.positionalArguments().size() != 1 || seconds < 1 || seconds > 60)
        parser.showHelp(2);

    QList<Row> rows = measureTicks();
    const auto display = VirtualDisplay::start();
    if (display)
        rows += measureRates(parser.positionalArguments().first(), seconds);
    else
        rows += Row{u"pictures shown, smart to normal"_s, std::unexpected(display.error()), {}, {}};
    return report(u"display modes"_s, rows);
}
