#pragma once

#include "platform/MediaControls.h"

#include <QList>

namespace lumaro {

/// Remembers what it is told, and lets the test give the commands.
class FakeMediaControls final : public MediaControls
{
public:
    void setCommands(MediaCommands *newCommands) override { commands = newCommands; }
    void publish(const MediaControlsState &state) override { states.append(state); }
    void announceSeek(std::chrono::microseconds position) override
    {
        seeks.append(double(position.count()) / 1e6);
    }

    MediaCommands *commands = nullptr;
    QList<MediaControlsState> states;
    /// Seconds.
    QList<double> seeks;
};

} // namespace lumaro
