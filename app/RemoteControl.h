#pragma once

#include "platform/DelayedTask.h"
#include "platform/MediaControls.h"

#include <QObject>

#include <stop_token>

namespace lumaro {

class MainWindowModel;
class PlayerModel;

/// Tells the desktop's media controls what plays, and does what they ask for. Main thread.
class RemoteControl : public QObject, public MediaCommands
{
    Q_OBJECT

public:
    /// An address from another program may be so long, in characters.
    static constexpr qsizetype maximumUriLength = 16'384;
    /// So much of a title is told.
    static constexpr qsizetype maximumTitleLength = 1'000;

    /// All arguments outlive the remote control.
    RemoteControl(PlayerModel &player, MainWindowModel &window, Scheduler &scheduler,
                  MediaControls &controls, QObject *parent = nullptr);
    ~RemoteControl() override;

    /// From now on commands are carried out.
    void start();

    void raise() override { Q_EMIT raiseRequested(); }
    void quit() override { Q_EMIT quitRequested(); }
    void setFullScreen(bool fullScreen) override;
    Q_INVOKABLE void play() override;
    Q_INVOKABLE void pause() override;
    Q_INVOKABLE void playPause() override;
    Q_INVOKABLE void stop() override;
    /// To the playlist's next channel, where a channel plays.
    Q_INVOKABLE void next() override { goToChannel(+1); }
    Q_INVOKABLE void previous() override { goToChannel(-1); }
    void seek(Microseconds offset) override;
    void setPosition(quint64 track, Microseconds position) override;
    void setVolume(double volume) override;
    Task<std::expected<void, QString>> openUri(QString uri) override;
    Microseconds position() const override;

Q_SIGNALS:
    void raiseRequested();
    void quitRequested();

private:
    bool isActive() const;
    bool canSeek() const;
    void goToChannel(int step);
    MediaControlsState state() const;
    void publishSoon();
    void beginTrack();
    void followPosition();
    void expectPosition(double seconds);
    void jumpTo(double seconds);

    PlayerModel &m_player;
    MainWindowModel &m_window;
    Scheduler &m_scheduler;
    MediaControls &m_controls;
    DelayedTask m_publishTask;
    quint64 m_track = 0;
    /// Where playback was, in seconds, and when; from there on it is expected to go on.
    double m_position = 0;
    Scheduler::TimePoint m_positionTime;
    std::stop_source m_lifetime;
};

} // namespace lumaro
