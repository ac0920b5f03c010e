// Recording a film while it plays, and ffmpeg grabbing the same picture from the X server with the
// same encoder settings, by turns. Either slows the player itself, whose drawing shares the memory
// and the caches with the encoder, so that the processor time of the player counts for both.
//   bench_recording [ROUNDS]

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
#include <ctime>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;

namespace {

constexpr std::chrono::seconds length(10);
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
    double playing = 0; ///< the player's processor seconds
    double recording = 0; ///< the same
    double grabbing = 0; ///< the player's and ffmpeg's
    double added = 0; ///< to playing, by recording 30 frames a second
    double peer = 0; ///< to playing, by grabbing as many
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
    Bench(Application &application, QString folder)
        : m_application(application)
        , m_window(qobject_cast<QQuickWindow *>(application.engine().rootObjects().value(0)))
        , m_folder(std::move(folder))
    {
        QObject::connect(
            m_window, &QQuickWindow::frameSwapped, m_window, [this] { ++m_shown; },
            Qt::DirectConnection);
    }

    Measured<Round> run(const QString &film)
    {
        Round round;
        m_window->setGeometry(0, 0, 1280, 720);
        m_application.window().setSidebarVisible(false);
        m_application.open({film}, {});
        if (!playsFromStart())
            return std::unexpected(u"The film does not play."_s);
        const double begin = processorTime();
        wait(length);
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
        if (!playsFromStart())
            return std::unexpected(u"The film does not play."_s);
        m_application.recording().startNormal();
        pressReturn(); // in the panel, which proposes a file in the folder
        if (!becomesTrue([&] { return controller.state() == PlayerRecordingState::recording; }))
            return std::unexpected(u"Nothing is recorded: "_s + controller.errorMessage());
        const double begin = processorTime();
        const int shown = m_shown;
        wait(length);
        const int possible = std::min(m_shown - shown, int(length.count() * 30));
        round.recording = processorTime() - begin;
        m_application.recording().stop();
        if (!becomesTrue([&] { return controller.state() == PlayerRecordingState::idle; }))
            return std::unexpected(u"The recording does not end."_s);
        m_application.recording().dismissNotice();
        const int frames = framesIn(controller.lastSavedURL().toLocalFile());
        round.captured = double(frames) / std::max(possible, 1);
        round.added = forAllFrames(round.recording - round.playing, frames);
        static const QRegularExpression time(u"per grabbed ([0-9.]+)"_s);
        round.renderThread = time.match(lastAccount).captured(1).toDouble() / 1e6;
        return {};
    }

    Measured<void> grab(Round &round)
    {
        if (!playsFromStart())
            return std::unexpected(u"The film does not play."_s);
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
                                           QString::number((length + 2s).count()),
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
        wait(1s); // until it grabs
        const double begin = processorTime();
        wait(length);
        const double player = processorTime() - begin;
        if (!becomesTrue([&] { return !ffmpeg.isRunning(); }) || ffmpeg.exitCode() != 0)
            return std::unexpected(u"ffmpeg failed."_s);
        const double grabber = forAllFrames(
            std::chrono::duration<double>(ffmpeg.processorTime()).count(), framesIn(file));
        round.grabbing = player + grabber;
        round.peer = round.grabbing - round.playing;
        return {};
    }

    /// Each part is measured with the same pictures, when the controls have faded.
    bool playsFromStart()
    {
        m_application.player().seek(0);
        return becomesTrue([&] {
            const double time = m_application.player().currentTime();
            return time > 4 && time < 6;
        });
    }

    void pressReturn()
    {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, Qt::Key_Return, Qt::NoModifier, u"\r"_s);
            QCoreApplication::sendEvent(m_window, &event);
        }
    }

    /// What 30 frames a second would have cost: a busy machine makes both leave some out.
    double forAllFrames(double cost, int frames) const
    {
        return cost * (double(length.count()) * 30 / std::max(frames, 1));
    }

    Application &m_application;
    QQuickWindow *m_window;
    QString m_folder;
    std::atomic<int> m_shown = 0;
};

Measured<QList<Round>> measure(int rounds)
{
    const auto film = MediaFixtures(QStringLiteral(LUMARO_FIXTURE_FOLDER)).path(Fixture::Movie);
    if (!film)
        return std::unexpected(film.error());
    const QTemporaryDir folder;
    Application application(
        {folder.path() + u"/settings", folder.path() + u"/cache", {folder.path()}, folder.path()});
    if (!application.show())
        return std::unexpected(u"The window cannot be shown."_s);
    Bench bench(application, folder.path());
    QList<Round> done;
    while (done.size() < rounds) {
        const auto round = bench.run(*film);
        if (!round)
            return std::unexpected(round.error());
        say(u"playing %1 s, recording too %2 s, x11grab beside it %3 s; captured %4"_s
                .arg(round->playing, 0, 'f', 2)
                .arg(round->recording, 0, 'f', 2)
                .arg(round->grabbing, 0, 'f', 2)
                .arg(round->captured, 0, 'f', 3));
        done.append(*round);
    }
    return done;
}

} // namespace

int main(int argc, char *argv[])
{
    const int rounds = roundsAsked(argc, argv, 3);
    const auto display = VirtualDisplay::start();
    if (!display)
        return report(u"recording"_s,
                      {{u"recording 1280x720"_s, std::unexpected(display.error())}});
    // No sound on either side.
    qputenv("PULSE_SERVER", "unix:/nowhere");
    qputenv("QT_LOGGING_RULES", "lumaro.capture.debug=true");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &context, const QString &text) {
        if (qstrcmp(context.category, "lumaro.capture") == 0)
            lastAccount = text;
    });
    Application::prepare();
    const QGuiApplication qt(argc, argv);
    const auto measured = measure(rounds);
    const auto over =
        [&measured](const std::function<double(const Round &)> &value) -> Measured<double> {
        if (!measured)
            return std::unexpected(measured.error());
        QList<double> values;
        for (const Round &round : *measured)
            values.append(value(round));
        return median(values);
    };
    const auto text = [&over](auto value, int digits) {
        return QString::number(over(value).value_or(0), 'f', digits);
    };
    const auto added = [](const Round &round) { return round.added; };
    const auto peer = [](const Round &round) { return round.peer; };
    const auto renderThread = [](const Round &round) { return round.renderThread * 1000; };
    using enum Limit::Kind;
    return report(
        u"recording"_s,
        {{u"frames captured, of those shown up to 30 a second"_s,
          over([](const Round &r) { return r.captured; }), u"1280x720, %1 s"_s.arg(length.count()),
          Limit{AtLeast, leastCaptured}},
         {u"processor time added, to ffmpeg -f x11grab"_s,
          over([](const Round &r) { return r.added / r.peer; }),
          u"%1 s, the peer %2 s, for %3 s"_s.arg(text(added, 2), text(peer, 2)).arg(length.count()),
          Limit{AtMost, mostToPeer}},
         {u"render thread for a captured frame, of a frame's interval"_s,
          over([](const Round &r) { return r.renderThread / frameInterval; }),
          text(renderThread, 1) + u" ms"_s}});
}
