#pragma once

#include "platform/ffmpeg/Handles.h"

#include <QString>

namespace lumaro::ffmpeg {

/// A file that was not there before: in a folder of many users, what has its name may be a link to
/// anywhere. It stays the same file, whatever becomes of its name.
class NewFile
{
public:
    explicit NewFile(const QString &path);
    ~NewFile();
    NewFile(const NewFile &) = delete;
    NewFile &operator=(const NewFile &) = delete;

    /// 0, or FFmpeg's error when the file could not be made.
    int error() const { return m_error; }
    /// Has `output` write to it. A negative number is FFmpeg's error.
    int open(AVFormatContext &output) const;
    /// False when what has been written is not surely on the disk.
    bool reachesTheDisk() const;
    void truncate(qint64 size) const;

private:
    int m_descriptor;
    int m_error;
};

} // namespace lumaro::ffmpeg
