#include "bench/report/Report.h"

#include <algorithm>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

bool keeps(double ratio, Limit limit)
{
    switch (limit.kind) {
    case Limit::Kind::AtLeast:
        return ratio >= limit.value;
    case Limit::Kind::AtMost:
        return ratio <= limit.value;
    case Limit::Kind::Below:
        return ratio < limit.value;
    }
    Q_UNREACHABLE();
}

QString text(std::optional<Limit> limit)
{
    if (!limit)
        return u"-"_s;
    switch (limit->kind) {
    case Limit::Kind::AtLeast:
        return u"at least %1"_s.arg(limit->value);
    case Limit::Kind::AtMost:
        return u"at most %1"_s.arg(limit->value);
    case Limit::Kind::Below:
        return u"below %1"_s.arg(limit->value);
    }
    Q_UNREACHABLE();
}

int status(const Row &row)
{
    if (!row.ratio)
        return 2;
    return !row.limit || keeps(*row.ratio, *row.limit) ? 0 : 1;
}

} // namespace

QString milliseconds(Seconds time)
{
    return u"%1 ms"_s.arg(time.count() * 1000, 0, 'f', 1);
}

int report(const QString &title, const QList<Row> &rows)
{
    int result = 0;
    std::printf("  %-52s %8s  %-12s %s\n", qPrintable(title), "ratio", "limit", "");
    for (const Row &row : rows) {
        const QString ratio = row.ratio ? QString::number(*row.ratio, 'f', 2) : u"?"_s;
        std::printf("  %-52s %8s  %-12s %s%s\n", qPrintable(row.what), qPrintable(ratio),
                    qPrintable(text(row.limit)), status(row) == 1 ? "MISSED: " : "",
                    qPrintable(row.ratio ? row.detail : row.ratio.error()));
        result = std::max(result, status(row));
    }
    return result;
}

} // namespace lumaro
