#pragma once

#include <QRect>
#include <QString>
#include <QStringList>

namespace lumaro {

/// A player to be measured, playing one file, or none when its name is empty.
struct PlayerCommand
{
    QString name;
    QString program;
    QStringList arguments;
};

/// Lumaro, in a window of the size that it chooses.
PlayerCommand lumaroCommand(const QString &file);
/// mpv in a window at `window`, with nothing drawn over the picture.
PlayerCommand mpvCommand(const QString &file, const QRect &window);
/// The bare libmpv window, which lies beside the measuring program.
PlayerCommand peerCommand(const QString &file, const QRect &window);

} // namespace lumaro
