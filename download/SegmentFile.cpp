#include "download/SegmentFile.h"

#include <QDir>
#include <QFileInfo>

#include <sys/stat.h>

namespace lumaro {

SegmentFile::~SegmentFile()
{
    // Who wants to hear of a failure has closed it.
    (void)close();
}

std::expected<void, FileWriteError> SegmentFile::create(const QString &path)
{
    const std::scoped_lock lock(m_mutex);
    m_file.setFileName(path);
    // Without a buffer of its own, an error belongs to the segment that meets it.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        return std::unexpected(currentError());
    return {};
}

bool SegmentFile::append(QByteArrayView bytes)
{
    const std::scoped_lock lock(m_mutex);
    // It was given up while this call was on its way.
    if (!m_file.isOpen())
        return false;
    while (!bytes.isEmpty()) {
        const qint64 written = m_file.write(bytes.data(), bytes.size());
        if (written <= 0) {
            m_error = currentError();
            return false;
        }
        m_size += written;
        bytes = bytes.sliced(written);
    }
    return true;
}

void SegmentFile::keep()
{
    const std::scoped_lock lock(m_mutex);
    m_keptSize = m_size;
}

std::optional<FileWriteError> SegmentFile::error() const
{
    const std::scoped_lock lock(m_mutex);
    return m_error;
}

SegmentFile::Fate SegmentFile::fate() const
{
    const std::scoped_lock lock(m_mutex);
    // The open file would go on growing where nobody finds it.
    if (!QFileInfo(m_file).dir().exists())
        return Fate::FolderGone;
    struct stat status{};
    const bool isDeleted = fstat(m_file.handle(), &status) == 0 && status.st_nlink == 0;
    return isDeleted ? Fate::Deleted : Fate::There;
}

std::expected<void, FileWriteError> SegmentFile::close()
{
    const std::scoped_lock lock(m_mutex);
    if (!m_file.isOpen())
        return {};
    std::expected<void, FileWriteError> result;
    if (m_size != m_keptSize) {
        if (m_file.resize(m_keptSize))
            m_size = m_keptSize;
        else
            result = std::unexpected(currentError());
    }
    m_file.close();
    if (result && m_file.error() != QFileDevice::NoError)
        result = std::unexpected(currentError());
    return result;
}

FileWriteError SegmentFile::currentError() const
{
    using Kind = FileWriteError::Kind;
    switch (m_file.error()) {
    case QFileDevice::ResourceError:
        return {Kind::NoSpace, m_file.errorString()};
    case QFileDevice::OpenError:
    case QFileDevice::PermissionsError:
        return {Kind::NotPermitted, m_file.errorString()};
    default:
        return {Kind::Failed, m_file.errorString()};
    }
}

} // namespace lumaro
