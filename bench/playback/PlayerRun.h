#pragma once

#include "bench/playback/PlayerCommand.h"
#include "bench/playback/Screen.h"
#include "tests/e2e/servers/ChildProcess.h"

namespace lumaro {

/// A player that has been started and is watched on the screen. Blocks; errors are English
/// sentences.
class PlayerRun
{
public:
    using Clock = std::chrono::steady_clock;
    using Duration = std::chrono::duration<double>;
    template <typename T>
    using Result = std::expected<T, QString>;

    explicit PlayerRun(const Screen &screen)
        : m_screen(screen)
    {
    }

    struct Start
    {
        Duration time; ///< from before the process existed
        QRect window;
    };
    /// Starts the player and waits until the middle of the screen is `color`.
    Result<Start> startUntilColor(const PlayerCommand &command, QRgb color);

    struct Load
    {
        Duration processorTime;
        double pictureRate = 0; ///< changes seen on the screen, a second
        QRect window;
    };
    /// Starts the player, waits until its picture moves and it has settled, and measures it for
    /// `duration` from then on. The player is ended.
    Result<Load> startAndMeasure(const PlayerCommand &command, Duration duration);

    /// Ends the player and waits until its picture is gone.
    Result<void> end();

private:
    Result<void> start(const PlayerCommand &command);

    const Screen &m_screen;
    ChildProcess m_process;
};

/// So that each player decodes with the processor and none meets the user's settings.
void preparePlayerEnvironment(const QString &folder);

double median(QList<double> values);

} // namespace lumaro
