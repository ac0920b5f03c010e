#pragma once

#include <QString>

#include <atomic>

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

/// Puts an ordinary MP4 file, with its index in front, in the fragmented one's place, once it is
/// surely on the disk. Where that cannot be done, for want of room as a rule, or when `abandoned`
/// becomes true, the file stays as it was. Blocks as long as copying takes.
void makeOrdinary(const FragmentedMp4 &file, const std::atomic<bool> &abandoned);

/// Removes from the folder the copies that dead processes left there.
void removeAbandonedCopies(const QString &folder);

} // namespace lumaro
