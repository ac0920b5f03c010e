#include "bench/report/Report.h"

#include "bench/report/ProcessMemory.h"

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

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

QString ratioText(std::optional<double> ratio)
{
    return ratio ? QString::number(*ratio, 'f', 2) : u"-"_s;
}

int status(const Row &row)
{
    if (!row.ratio)
        return 2;
    return !row.limit || keeps(*row.ratio, *row.limit) ? 0 : 1;
}

QString result(const Row &row)
{
    switch (status(row)) {
    case 0:
        return row.limit ? u"kept"_s : u"-"_s;
    case 1:
        return u"MISSED"_s;
    default:
        return u"NOT MEASURED"_s;
    }
}

QString detail(const Row &row)
{
    const QString text = (row.ratio ? row.detail : row.ratio.error()).simplified();
    return text.isEmpty() ? u"-"_s : text;
}

} // namespace

int roundsAsked(int argc, char *const argv[], int usual)
{
    if (argc == 1)
        return usual;
    bool isNumber = false;
    const int rounds = QByteArray(argv[1]).toInt(&isNumber);
    if (argc == 2 && isNumber && rounds > 0)
        return rounds;
    std::fprintf(stderr, "usage: %s [ROUNDS]\n", argv[0]);
    std::exit(2); // NOLINT(concurrency-mt-unsafe): there is no other thread yet
}

int report(const QString &group, const QList<Row> &rows)
{
    int worst = 0;
    for (const Row &row : rows) {
        const Memory memory = row.memory.value_or(Memory{.own = peakMemory(getpid())});
        const auto toPeer =
            memory.peer ? std::optional(double(memory.own) / double(*memory.peer)) : std::nullopt;
        const auto ratio = row.ratio ? std::optional(*row.ratio) : std::nullopt;
        const QStringList parts{group,
                                row.what,
                                ratioText(ratio),
                                text(row.limit),
                                result(row),
                                row.ratio ? megabytes(memory.own) : u"-"_s,
                                ratioText(row.ratio ? toPeer : std::nullopt),
                                detail(row)};
        std::printf("%s\n", parts.join(u'\t').toUtf8().constData());
        worst = std::max(worst, status(row));
    }
    return worst;
}

} // namespace lumaro
