#pragma once

#include <QObject>

namespace lumaro {

class KeepAwake;
class PlayerModel;

/// Keeps the screen awake while a moving picture plays; not while it is paused or stopped, nor for
/// sound, with a cover or without. Main thread.
class WakefulPlayback : public QObject
{
    Q_OBJECT

public:
    /// Both outlive it.
    WakefulPlayback(const PlayerModel &player, KeepAwake &screen, QObject *parent = nullptr);
    ~WakefulPlayback() override;

private:
    void update();
    void setAwake(bool awake);

    const PlayerModel &m_player;
    KeepAwake &m_screen;
    bool m_isAwake = false;
};

} // namespace lumaro
