#include "bench/playback/PlayerRun.h"

#include "bench/report/ProcessMemory.h"

#include <QDir>

#include <ctime>
#include <thread>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

constexpr auto patience = 30s;
constexpr auto pollInterval = 1ms;
/// Often enough to see each of 30 pictures a second, seldom enough to leave the players alone.
constexpr auto watchInterval = 8ms;
/// Starting up has an end some time after the first picture.
constexpr auto settlingTime = 2s;

std::optional<Seconds> processorTimeSoFar(pid_t process)
{
    clockid_t clock{};
    timespec time{};
    if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0)
        return std::nullopt;
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// False when `condition` stays false for too long or `process` ends.
template <typename Condition>
bool waitFor(ChildProcess &process, Condition condition)
{
    const auto deadline = PlayerRun::Clock::now() + patience;
    while (!condition()) {
        if (PlayerRun::Clock::now() > deadline || !process.isRunning())
            return false;
        std::this_thread::sleep_for(pollInterval);
    }
    return true;
}

/// How often the picture changes within `duration`.
int watchPictures(const Screen &screen, Seconds duration)
{
    const auto end = PlayerRun::Clock::now() + duration;
    size_t last = screen.picture();
    int changes = 0;
    while (PlayerRun::Clock::now() < end) {
        std::this_thread::sleep_for(watchInterval);
        const size_t picture = screen.picture();
        changes += picture != std::exchange(last, picture) ? 1 : 0;
    }
    return changes;
}

} // namespace

Measured<void> PlayerRun::start(const PlayerCommand &command)
{
    const auto started = m_process.start(command.program, command.arguments, {});
    if (!started)
        return std::unexpected(started.error());
    return {};
}

Measured<PlayerRun::Start> PlayerRun::startUntilColor(const PlayerCommand &command, QRgb color)
{
    if (m_screen.shows(color))
        return std::unexpected(u"The screen already shows the picture that is waited for."_s);
    const auto begin = Clock::now();
    if (const auto started = start(command); !started)
        return std::unexpected(started.error());
    if (!waitFor(m_process, [&] { return m_screen.shows(color); }))
        return std::unexpected(QString(command.name + u" shows no picture."_s));
    const Seconds time = Clock::now() - begin;
    return Start{.time = time,
                 .window = m_screen.window().value_or(QRect()),
                 .peakMemory = peakMemory(m_process.processId())};
}

Measured<PlayerRun::Load> PlayerRun::startAndMeasure(const PlayerCommand &command, Seconds duration)
{
    if (const auto started = start(command); !started)
        return std::unexpected(started.error());
    // A window that appears is one change; a film that plays is many.
    constexpr int changesOfFilm = 10;
    int changes = 0;
    size_t last = m_screen.picture();
    const bool moves = waitFor(m_process, [&] {
        const size_t picture = m_screen.picture();
        changes += picture != std::exchange(last, picture) ? 1 : 0;
        return changes >= changesOfFilm;
    });
    if (!moves)
        return std::unexpected(QString(command.name + u" shows no moving picture."_s));
    std::this_thread::sleep_for(settlingTime);

    const QRect window = m_screen.window().value_or(QRect());
    const auto before = processorTimeSoFar(m_process.processId());
    const int pictures = watchPictures(m_screen, duration);
    const qint64 memory = peakMemory(m_process.processId());
    if (!before || !m_process.isRunning())
        return std::unexpected(QString(command.name + u" ended while it was measured."_s));
    // The total of an ended process contains its children, which its clock does not.
    if (const auto ended = end(); !ended)
        return std::unexpected(ended.error());
    return Load{.processorTime = Seconds(m_process.processorTime()) - *before,
                .pictureRate = pictures / duration.count(),
                .window = window,
                .peakMemory = memory};
}

Measured<PlayerRun::Idle> PlayerRun::startAndIdle(const PlayerCommand &command)
{
    if (const auto started = start(command); !started)
        return std::unexpected(started.error());
    if (!waitFor(m_process, [&] { return m_screen.window().has_value(); }))
        return std::unexpected(QString(command.name + u" shows no window."_s));
    std::this_thread::sleep_for(settlingTime);
    const Idle idle{.window = m_screen.window().value_or(QRect()),
                    .peakMemory = peakMemory(m_process.processId())};
    if (!m_process.isRunning())
        return std::unexpected(QString(command.name + u" ended while it was measured."_s));
    if (const auto ended = end(); !ended)
        return std::unexpected(ended.error());
    return idle;
}

Measured<void> PlayerRun::end()
{
    m_process.stop(5s);
    const auto deadline = Clock::now() + patience;
    while (m_screen.window()) {
        if (Clock::now() > deadline)
            return std::unexpected(u"A window stays on the screen after its player's end."_s);
        std::this_thread::sleep_for(pollInterval);
    }
    return {};
}

void preparePlayerEnvironment(const QString &folder)
{
    for (const char *name : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME"})
        qputenv(name, QDir(folder).absolutePath().toLocal8Bit());
    qputenv("LIBVA_DRIVER_NAME", "none");
    qputenv("VDPAU_DRIVER", "none");
    qputenv("CUDA_VISIBLE_DEVICES", "-1");
}

} // namespace lumaro
