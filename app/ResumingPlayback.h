#pragma once

#include "platform/Async.h"
#include "player/ResumePositions.h"

#include <QObject>

#include <stop_token>

namespace lumaro {

class MediaPlayer;
class PlayerModel;

/// Plays a long file on from where it was left. Streams, files from the network, short files and
/// those left near their beginning or end begin anew. Main thread.
class ResumingPlayback : public QObject
{
    Q_OBJECT

public:
    /// Seconds: a file is long beyond the first, and has begun after the second.
    static constexpr double shortest = 600;
    static constexpr double earliest = 30;
    /// In parts of the length: from here on a film is over.
    static constexpr double latest = 0.95;
    /// Seconds of playback that are lost at most when the process is ended by force.
    static constexpr double storeInterval = 60;

    /// All arguments outlive it.
    ResumingPlayback(PlayerModel &player, MediaPlayer &mediaPlayer, ResumePositions &positions,
                     Scheduler &scheduler, QObject *parent = nullptr);
    ~ResumingPlayback() override;

    /// What plays now leaves no trace.
    void forget();

private:
    /// A file from its opening to its leaving.
    struct Viewing
    {
        FileIdentity file;
        /// Where it goes on, in seconds.
        std::optional<double> resumeAt;
        double position = 0;
        double storedPosition = 0;
    };

    Task<> begin();
    void resume();
    void start();
    void announce();
    void follow();
    void keepPosition();
    void end();

    PlayerModel &m_player;
    MediaPlayer &m_mediaPlayer;
    ResumePositions &m_positions;
    Scheduler &m_scheduler;
    /// Ends with the item.
    std::stop_source m_looking;
    std::optional<Viewing> m_viewing;
    bool m_hasStarted = false;
    double m_duration = 0;
};

} // namespace lumaro
