#pragma once

#include <QList>
#include <QString>

#include <chrono>
#include <expected>
#include <optional>

namespace lumaro {

/// Errors are English sentences.
template <typename T>
using Measured = std::expected<T, QString>;

using Seconds = std::chrono::duration<double>;

/// What a ratio must keep.
struct Limit
{
    enum class Kind { AtLeast, AtMost, Below } kind;
    double value;
};

/// One line of a benchmark's report.
struct Row
{
    QString what;
    Measured<double> ratio;
    QString detail;
    /// Without one, the row is for information.
    std::optional<Limit> limit;
};

QString milliseconds(Seconds time);

/// Prints the rows under `title`. The program's exit status: 0 when every limit is kept, 1 when one
/// is missed, 2 when something could not be measured.
int report(const QString &title, const QList<Row> &rows);

} // namespace lumaro
