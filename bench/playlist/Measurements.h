#pragma once

#include "bench/report/Measure.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace lumaro {

// Each function blocks until it has measured.

struct Parsing
{
    qsizetype entries = 0;
    Seconds time{}; ///< from bytes to entries
    qint64 memory = 0; ///< of the peer's process at its peak, in bytes
};

/// The best of `rounds`: whatever else the machine does can only add time.
Measured<Parsing> measureParsing(const QByteArray &list, int rounds);
/// Also makes a value of every entry.
Measured<Parsing> measureParsingToValues(const QByteArray &list, int rounds);
/// By iptv-playlist-parser.
Measured<Parsing> measurePeer(const QString &file, int rounds);

/// The most memory of a process that reads a file from bytes to entries, in bytes.
struct ReadingMemory
{
    qint64 added = 0; ///< by reading
    qint64 whole = 0;
};
Measured<ReadingMemory> measureReadingMemory(const QString &file);
/// What that process is asked by, before the file's name, and does. Returns its exit status.
constexpr const char *printMemoryOption = "--print-memory";
int printReadingMemory(const QString &file);

struct Keystroke
{
    QString text; ///< the search text that it made
    Seconds time{};
};

/// Types several search texts into a channel list and removes them again; the slowest keystroke by
/// the median of `rounds`.
Measured<Keystroke> measureSlowestKeystroke(const QByteArray &list, int rounds);

} // namespace lumaro
