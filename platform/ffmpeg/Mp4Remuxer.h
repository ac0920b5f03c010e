#pragma once

#include <QString>

namespace lumaro {

/// What an MP4 file in fragments holds.
struct FragmentedMp4
{
    QString path;
    qint64 packets = 0;
    /// Pictures a second, for how long the last one is shown.
    int pictureRate = 0;
    /// A track without any packets is left out.
    bool hasAudio = false;
};

/// Puts an ordinary MP4 file, with its index in front, in the fragmented one's place. False when
/// that cannot be done, for want of room as a rule; then the file stays as it was. Blocks as long
/// as copying takes.
bool makeOrdinary(const FragmentedMp4 &file);

} // namespace lumaro
