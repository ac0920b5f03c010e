#pragma once

#include "player/ResumePositions.h"

#include <QObject>

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
                     QObject *parent = nullptr);
    ~ResumingPlayback() override;

private:
    /// A file from its opening to its leaving.
    struct Viewing
    {
        FileIdentity file;
        /// Where it goes on, in seconds.
        std::optional<double> resumeAt;
        bool hasStarted = false;
        double position = 0;
        double storedPosition = 0;
    };

    void begin();
    void resume();
    void announce();
    void follow();
    void keepPosition();
    void end();

    PlayerModel &m_player;
    MediaPlayer &m_mediaPlayer;
    ResumePositions &m_positions;
    std::optional<Viewing> m_viewing;
    double m_duration = 0;
};

} // namespace lumaro
