#pragma once

#include "platform/AtomicFile.h"

#include <QFile>

namespace lumaro {

/// The file a stream is saved to. It grows while a segment arrives, and falls back to its last
/// complete segment when it is given up, so that what stays behind can be played. Any thread, one
/// call after another; all of them wait for the file system.
class SegmentFile
{
public:
    SegmentFile() = default;
    ~SegmentFile();
    SegmentFile(const SegmentFile &) = delete;
    SegmentFile &operator=(const SegmentFile &) = delete;

    /// What has become of the file since it was made.
    enum class Fate {
        There, // perhaps moved or renamed
        FolderGone,
        Deleted,
    };

    /// Makes the file, which must not exist.
    std::expected<void, FileWriteError> create(const QString &path);

    /// Writes a part of a segment, before it returns. False when that is impossible; error() then
    /// says why.
    bool append(QByteArrayView bytes);
    /// What has been written so far is complete.
    void keep() { m_keptSize = m_size; }

    Fate fate() const;
    /// Leaves the complete segments on the disk. Some file systems, as those of other machines, say
    /// only now that there is no room.
    std::expected<void, FileWriteError> close();

    const std::optional<FileWriteError> &error() const { return m_error; }

private:
    FileWriteError currentError() const;

    QFile m_file;
    qint64 m_size = 0;
    qint64 m_keptSize = 0;
    std::optional<FileWriteError> m_error;
};

} // namespace lumaro
