#pragma once

#include "bench/playback/PlayerCommand.h"
#include "bench/playback/Screen.h"
#include "bench/report/Measure.h"
#include "tests/e2e/servers/ChildProcess.h"

namespace lumaro {

/// A player that has been started and is watched on the screen. Blocks; errors are English
/// sentences.
class PlayerRun
{
public:
    using Clock = std::chrono::steady_clock;

    explicit PlayerRun(const Screen &screen)
        : m_screen(screen)
    {
    }

    struct Start
    {
        Seconds time{}; ///< from before the process existed
        QRect window{};
        qint64 peakMemory = 0; ///< bytes
    };
    /// Starts the player and waits until the middle of the screen is `color`.
    Measured<Start> startUntilColor(const PlayerCommand &command, QRgb color);

    struct Load
    {
        Seconds processorTime{};
        double pictureRate = 0; ///< changes seen on the screen, a second
        QRect window{};
        qint64 peakMemory = 0; ///< bytes
    };
    /// Starts the player, waits until its picture moves and it has settled, and measures it for
    /// `duration` from then on. The player is ended.
    Measured<Load> startAndMeasure(const PlayerCommand &command, Seconds duration);

    struct Idle
    {
        QRect window{};
        qint64 peakMemory = 0; ///< bytes
    };
    /// Starts the player, waits until its window has settled, and ends it.
    Measured<Idle> startAndIdle(const PlayerCommand &command);

    /// Ends the player and waits until its picture is gone.
    Measured<void> end();

private:
    Measured<void> start(const PlayerCommand &command);

    const Screen &m_screen;
    ChildProcess m_process;
};

/// So that each player decodes with the processor and none meets the user's settings.
void preparePlayerEnvironment(const QString &folder);

} // namespace lumaro
