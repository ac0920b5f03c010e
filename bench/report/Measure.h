#pragma once

#include <QList>
#include <QString>

#include <algorithm>
#include <chrono>
#include <expected>

namespace lumaro {

/// Errors are English sentences.
template <typename T>
using Measured = std::expected<T, QString>;

using Seconds = std::chrono::duration<double>;

template <typename Work>
Seconds timeOf(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::steady_clock::now() - start;
}

/// Of at least one value; the upper of two in the middle.
template <typename T>
T median(QList<T> values)
{
    const auto middle = values.begin() + values.size() / 2;
    std::ranges::nth_element(values, middle);
    return *middle;
}

QString milliseconds(Seconds time);
QString megabytes(qint64 bytes);

/// Lumaro's program file; LUMARO_BENCH_APP names another to be measured in its place.
QString lumaroProgram();

/// What a program is doing, for whoever waits.
void say(const QString &progress);

} // namespace lumaro
