#pragma once

#include "platform/DefaultsValue.h"

#include <QObject>

namespace lumaro {

class PlayerModel;

/// Gives the player the volume of the last time, and keeps it for the next. Main thread.
class VolumeMemory : public QObject
{
    Q_OBJECT

public:
    /// All arguments outlive it.
    VolumeMemory(PlayerModel &player, UserDefaults &defaults, Scheduler &scheduler,
                 QObject *parent = nullptr);

private:
    void recall();
    void store();

    PlayerModel &m_player;
    DefaultsValue m_stored;
};

} // namespace lumaro
