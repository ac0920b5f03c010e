#pragma once

#include "bench/report/Measure.h"

#include <optional>

namespace lumaro {

/// What a ratio must keep.
struct Limit
{
    enum class Kind { AtLeast, AtMost, Below } kind;
    double value;
};

/// The most memory that was resident at once, in bytes.
struct Memory
{
    qint64 own = 0;
    std::optional<qint64> peer{};
};

/// One line of the benchmarks' table.
struct Row
{
    QString what;
    Measured<double> ratio;
    QString detail{};
    /// Without one, the row is for information.
    std::optional<Limit> limit{};
    /// Without any, that of the program which reports.
    std::optional<Memory> memory{};
};

/// A command line is empty or says how often to repeat each measure; `usual` times otherwise.
/// Ends the program when it says anything else.
int roundsAsked(int argc, char *const argv[], int usual);

/// Prints the rows for bench/run, their parts between tabs: group, what, ratio, limit, result,
/// memory, memory to the peer's, detail. The program's exit status: 0 when every limit is kept, 1
/// when one is missed, 2 when something could not be measured.
int report(const QString &group, const QList<Row> &rows);

} // namespace lumaro
