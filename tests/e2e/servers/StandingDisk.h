#pragma once

#include <QDir>
#include <QFileInfo>

#include <array>

#include <fcntl.h>
#include <unistd.h>

namespace lumaro {

/// A disk that stands still: what this process writes to an open file goes into a pipe that nobody
/// reads, and when that is full, whoever writes waits as long as this lives. Signals of broken
/// pipes are to be ignored.
class StandingDisk
{
public:
    explicit StandingDisk(const QString &file)
    {
        std::array<int, 2> ends{-1, -1};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            return;
        m_readEnd = ends[0];
        for (const QFileInfo &link :
             QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::Files)) {
            if (link.symLinkTarget() == file)
                m_isInPlace = dup2(ends[1], link.fileName().toInt()) >= 0;
        }
        close(ends[1]);
    }
    ~StandingDisk() { close(m_readEnd); }
    StandingDisk(const StandingDisk &) = delete;
    StandingDisk &operator=(const StandingDisk &) = delete;

    bool isInPlace() const { return m_isInPlace; }

private:
    int m_readEnd = -1;
    bool m_isInPlace = false;
};

} // namespace lumaro
