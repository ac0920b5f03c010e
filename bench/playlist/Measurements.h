#pragma once

#include "bench/report/Report.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace lumaro {

// Each function blocks until it has measured.

struct Parsing
{
    qsizetype entries = 0;
    Seconds time{}; ///< from bytes to entries
};

/// The best of `rounds`: whatever else the machine does can only add time.
Measured<Parsing> measureParsing(const QByteArray &list, int rounds);
/// Also makes a value of every entry.
Measured<Parsing> measureParsingToValues(const QByteArray &list, int rounds);
/// By iptv-playlist-parser, which is installed in `folder`.
Measured<Parsing> measurePeer(const QString &folder, const QString &script, const QString &file,
                              int rounds);

/// The most memory that a process takes for reading `file` from bytes to entries, in bytes.
Measured<qint64> measurePeakMemory(const QString &file);
/// What that process does: prints the number. Returns its exit status.
int printPeakMemory(const QString &file);

struct Keystroke
{
    QString text; ///< the search text that it made
    Seconds time{};
};

/// Types several search texts into a channel list and removes them again; the slowest keystroke by
/// the median of `rounds`.
Measured<Keystroke> measureSlowestKeystroke(const QByteArray &list, int rounds);

} // namespace lumaro
