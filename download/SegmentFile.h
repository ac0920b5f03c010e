#pragma once

#include "platform/AtomicFile.h"

#include <QFile>

#include <atomic>
#include <mutex>

namespace lumaro {

/// The file a stream is saved to. It grows while a segment arrives, and falls back to its last
/// complete segment when it is given up, so that what stays behind can be played. Any thread. All
/// calls but size() wait for the file system, and for each other.
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
    void keep();

    Fate fate() const;
    /// Leaves the complete segments on the disk. Some file systems, as those of other machines, say
    /// only now that there is no room.
    std::expected<void, FileWriteError> close();

    std::optional<FileWriteError> error() const;

    /// In bytes, as far as it has been written. At once.
    qint64 size() const { return m_size; }

private:
    FileWriteError currentError() const;

    mutable std::mutex m_mutex;
    QFile m_file;
    std::atomic<qint64> m_size = 0;
    qint64 m_keptSize = 0;
    std::optional<FileWriteError> m_error;
};

} // namespace lumaro
