#pragma once

#include "platform/AtomicFile.h"

#include <QFile>

namespace lumaro {

/// The file a stream is saved to. It grows while a segment arrives, and falls back to its last
/// complete segment when it is given up, so that what stays behind can be played.
class SegmentFile
{
public:
    SegmentFile() = default;
    ~SegmentFile();
    SegmentFile(const SegmentFile &) = delete;
    SegmentFile &operator=(const SegmentFile &) = delete;

    /// Makes the file, which must not exist.
    std::expected<void, FileWriteError> create(const QString &path);

    /// Writes a part of a segment, before it returns. False when that is impossible; error() then
    /// says why. Any thread, one call after another.
    bool append(QByteArrayView bytes);
    /// What has been written so far is complete.
    void keep() { m_keptSize = m_size; }

    /// The folder that the file was made in is still there.
    bool folderExists() const;
    /// Somebody has deleted the file.
    bool isDeleted() const;

    const std::optional<FileWriteError> &error() const { return m_error; }

private:
    FileWriteError currentError() const;

    QFile m_file;
    qint64 m_size = 0;
    qint64 m_keptSize = 0;
    std::optional<FileWriteError> m_error;
};

} // namespace lumaro
