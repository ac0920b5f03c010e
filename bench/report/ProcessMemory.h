#pragma once

#include <QtGlobal>

#include <sys/types.h>

namespace lumaro {

/// The most memory that was resident at once in a program that runs, and what is now, in bytes; 0
/// without such a process. From /proc (proc(5)): getrusage(2) would also count what the process had
/// before it became this program, which is all that whoever started it had.
qint64 peakMemory(pid_t process);
qint64 residentMemory(pid_t process);

} // namespace lumaro
