#include "platform/ffmpeg/NewFile.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace lumaro::ffmpeg {

namespace {

/// As for any new file; the user's mask takes from it.
constexpr mode_t permissions = 0666;

} // namespace

NewFile::NewFile(const QString &path)
    : m_descriptor(::open(QFile::encodeName(path).constData(),
                          O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, permissions))
    , m_error(m_descriptor < 0 ? AVERROR(errno) : 0)
{
}

NewFile::~NewFile()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

int NewFile::open(AVFormatContext &output) const
{
    if (m_error < 0)
        return m_error;
    // FFmpeg takes no descriptor of a file in which it may go back.
    const QByteArray url = "file:/proc/self/fd/" + QByteArray::number(m_descriptor);
    return avio_open(&output.pb, url.constData(), AVIO_FLAG_WRITE);
}

bool NewFile::reachesTheDisk() const
{
    return fsync(m_descriptor) == 0;
}

void NewFile::truncate(qint64 size) const
{
    // What cannot be cut off stays.
    [[maybe_unused]] const int result = ftruncate(m_descriptor, size);
}

} // namespace lumaro::ffmpeg
