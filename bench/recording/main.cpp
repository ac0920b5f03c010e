// Recording a film while it plays, and ffmpeg grabbing the same picture from the X server with the
// same encoder settings, by turns.  bench_recording [SECONDS]

#include "app/Application.h"
#include "bench/report/Report.h"
#include "tests/e2e/servers/ChildProcess.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/VirtualDisplay.h"

#include <QGuiApplication>
#include <QProcess>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <ctime>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

constexpr int rounds = 3;
constexpr double mostToPeer = 1.1;
constexpr double leastCaptured = 0.95;
constexpr double frameInterval = 1.0 / 30;

/// The stream's own account of its last capture.
QString lastAccount;

double processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

void wait(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

template <typename Condition>
bool becomesTrue(Condition condition)
{
    for (int i = 0; i < 300 && !condition(); ++i)
        wait(100ms);
    return condition();
}

struct Round
{
    double playing = 0; ///< processor seconds
    double recording = 0;
    double added = 0; ///< by recording 30 frames a second
    double peer = 0; ///< for as many
    double captured = 0; ///< of the frames that could be
    double renderThread = 0; ///< seconds for each captured frame
};

int framesIn(const QString &file)
{
    QProcess probe;
    probe.start(u"ffprobe"_s,
                {u"-v"_s, u"error"_s, u"-select_streams"_s, u"v"_s, u"-count_packets"_s,
                 u"-show_entries"_s, u"stream=nb_read_packets"_s, u"-of"_s, u"csv=p=0"_s, file});
    probe.waitForFinished();
    return QString::fromLatin1(probe.readAllStandardOutput()).remove(u',').trimmed().toInt();
}

class Bench
{
public:
    Bench(Application &application, QString folder, std::chrono::seconds length)
        : m_application(application)
        , m_window(qobject_cast<QQuickWindow *>(application.engine().rootObjects().value(0)))
        , m_folder(std::move(folder))
        , m_length(length)
    {
        QObject::connect(
            m_window, &QQuickWindow::frameSwapped, m_window, [this] { ++m_shown; },
            Qt::DirectConnection);
    }

    Measured<Round> run(const QString &film)
    {
        m_window->setGeometry(0, 0, 1280, 720);
        m_application.window().setSidebarVisible(false);
        m_application.open(film, {});
        // Starting up has an end, and the controls fade.
        if (!becomesTrue([&] { return m_application.player().currentTime() > 4; }))
            return std::unexpected(u"The film does not play."_s);
        Round round;
        double begin = processorTime();
        wait(m_length);
        round.playing = processorTime() - begin;
        if (const auto recorded = record(round); !recorded)
            return std::unexpected(recorded.error());
        if (const auto grabbed = grab(round); !grabbed)
            return std::unexpected(grabbed.error());
        m_application.player().stop();
        return round;
    }

private:
    Measured<void> record(Round &round)
    {
        auto &controller = *m_application.recording().controller();
        const QString file = m_folder + u"/recording.mp4";
        m_application.recording().startNormal();
        m_application.panels().accept(QUrl::fromLocalFile(file));
        Q_EMIT m_application.panels().withdrawn();
        m_application.panels().replace();
        if (!becomesTrue([&] { return controller.state() == PlayerRecordingState::recording; }))
            return std::unexpected(u"Nothing is recorded: "_s + controller.errorMessage());
        const double begin = processorTime();
        const int shown = m_shown;
        wait(m_length);
        const int possible = std::min(m_shown - shown, int(m_length.count() * 30));
        round.recording = processorTime() - begin;
        m_application.recording().stop();
        if (!becomesTrue([&] { return controller.state() == PlayerRecordingState::idle; }))
            return std::unexpected(u"The recording does not end."_s);
        const int frames = framesIn(file);
        round.captured = double(frames) / std::max(possible, 1);
        round.added = forAllFrames(round.recording - round.playing, frames);
        static const QRegularExpression time(u"per grabbed ([0-9.]+)"_s);
        round.renderThread = time.match(lastAccount).captured(1).toDouble() / 1e6;
        return {};
    }

    Measured<void> grab(Round &round)
    {
        const QString file = m_folder + u"/grabbed.mp4";
        ChildProcess ffmpeg;
        const auto started = ffmpeg.start(u"ffmpeg"_s,
                                          {u"-y"_s,
                                           u"-v"_s,
                                           u"error"_s,
                                           u"-f"_s,
                                           u"x11grab"_s,
                                           u"-framerate"_s,
                                           u"30"_s,
                                           u"-video_size"_s,
                                           u"1280x720"_s,
                                           u"-draw_mouse"_s,
                                           u"0"_s,
                                           u"-i"_s,
                                           qEnvironmentVariable("DISPLAY"),
                                           u"-t"_s,
                                           QString::number(m_length.count()),
                                           u"-pix_fmt"_s,
                                           u"yuv420p"_s,
                                           u"-c:v"_s,
                                           u"libx264"_s,
                                           u"-preset"_s,
                                           u"superfast"_s,
                                           u"-profile:v"_s,
                                           u"high"_s,
                                           u"-b:v"_s,
                                           u"5529600"_s,
                                           u"-g"_s,
                                           u"60"_s,
                                           u"-thread_type"_s,
                                           u"slice"_s,
                                           u"-bf"_s,
                                           u"0"_s,
                                           file},
                                          {});
        if (!started)
            return std::unexpected(started.error());
        if (!becomesTrue([&] { return !ffmpeg.isRunning(); }) || ffmpeg.exitCode() != 0)
            return std::unexpected(u"ffmpeg failed."_s);
        round.peer = forAllFrames(std::chrono::duration<double>(ffmpeg.processorTime()).count(),
                                  framesIn(file));
        return {};
    }

    /// What 30 frames a second would have cost: a busy machine makes both leave some out.
    double forAllFrames(double cost, int frames) const
    {
        return cost * (double(m_length.count()) * 30 / std::max(frames, 1));
    }

    Application &m_application;
    QQuickWindow *m_window;
    QString m_folder;
    std::chrono::seconds m_length;
    std::atomic<int> m_shown = 0;
};

double median(QList<double> values)
{
    std::ranges::sort(values);
    return values.at(values.size() / 2);
}

Measured<QList<Round>> measure(std::chrono::seconds length)
{
    const auto film = MediaFixtures(QStringLiteral(LUMARO_FIXTURE_FOLDER)).path(Fixture::Movie);
    if (!film)
        return std::unexpected(film.error());
    const QTemporaryDir folder;
    Application application(
        {folder.path() + u"/settings", folder.path() + u"/cache", {folder.path()}, folder.path()});
    if (!application.show())
        return std::unexpected(u"The window cannot be shown."_s);
    Bench bench(application, folder.path(), length);
    QList<Round> done;
    while (done.size() < rounds) {
        const auto round = bench.run(*film);
        if (!round)
            return std::unexpected(round.error());
        std::printf("  playing %.2f s, recording too %.2f s, x11grab %.2f s; captured %.3f\n",
                    round->playing, round->recording, round->peer, round->captured);
        std::fflush(stdout);
        done.append(*round);
    }
    return done;
}

} // namespace

int main(int argc, char *argv[])
{
    const auto display = VirtualDisplay::start();
    if (!display) {
        std::fprintf(stderr, "%s\n", qPrintable(display.error()));
        return 2;
    }
    // No sound on either side.
    qputenv("PULSE_SERVER", "unix:/nowhere");
    qputenv("QT_LOGGING_RULES", "lumaro.capture.debug=true");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &context, const QString &text) {
        if (qstrcmp(context.category, "lumaro.capture") == 0)
            lastAccount = text;
    });
    Application::prepare();
    const QGuiApplication qt(argc, argv);
    const int seconds = argc > 1 ? std::clamp(std::atoi(argv[1]), 1, 15) : 10;
    const auto measured = measure(std::chrono::seconds(seconds));
    const auto over =
        [&measured](const std::function<double(const Round &)> &value) -> Measured<double> {
        if (!measured)
            return std::unexpected(measured.error());
        QList<double> values;
        for (const Round &round : *measured)
            values.append(value(round));
        return median(values);
    };
    return report(u"recording 1280x720"_s,
                  {{.what = u"frames captured, of those shown up to 30 a second"_s,
                    .ratio = over([](const Round &r) { return r.captured; }),
                    .detail = {},
                    .limit = Limit{Limit::Kind::AtLeast, leastCaptured}},
                   {.what = u"processor time added, to ffmpeg -f x11grab"_s,
                    .ratio = over([](const Round &r) { return r.added / r.peer; }),
                    .detail = {},
                    .limit = Limit{Limit::Kind::AtMost, mostToPeer}},
                   {.what = u"render thread's time for a captured frame, of a frame's interval"_s,
                    .ratio = over([](const Round &r) { return r.renderThread / frameInterval; }),
                    .detail = {},
                    .limit = std::nullopt}});
}
