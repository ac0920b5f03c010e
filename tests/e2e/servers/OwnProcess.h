#pragma once

#include <QMap>
#include <QString>

namespace lumaro {

/// What the test's process holds at one moment.
struct OwnProcess
{
    /// Memory that is the process's alone and that the system could not read again from a file, in
    /// kilobytes: code that has been run is no burden. What the allocator keeps in reserve is given
    /// back first.
    qint64 memory = 0;
    /// What the process has asked of the allocator and not given back, in kilobytes; none where a
    /// sanitizer is the allocator. Unlike `memory`, it does not grow with gaps between the pieces.
    qint64 allocated = 0;
    int descriptors = 0;
    int threads = 0;
    /// Programs that it has started, and what those have started. Not those that have ended and are
    /// yet to be noticed.
    int descendants = 0;

    static OwnProcess now();
};

/// What the process's open descriptors are, and how many of each kind.
QMap<QString, int> ownDescriptors();

} // namespace lumaro
