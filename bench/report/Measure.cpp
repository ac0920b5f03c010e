#include "bench/report/Measure.h"

#include <QCoreApplication>
#include <QDir>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

QString milliseconds(Seconds time)
{
    return u"%1 ms"_s.arg(time.count() * 1000, 0, 'f', 1);
}

QString megabytes(qint64 bytes)
{
    return u"%1 MB"_s.arg(double(bytes) / 1e6, 0, 'f', 1);
}

QString lumaroProgram()
{
    // The benchmarks lie in folders of their own beside the application's.
    return qEnvironmentVariable(
        "LUMARO_BENCH_APP",
        QDir::cleanPath(QCoreApplication::applicationDirPath() + u"/../../app/lumaro"_s));
}

void say(const QString &progress)
{
    std::fprintf(stderr, "  %s\n", qPrintable(progress));
}

} // namespace lumaro
