#include "recording/RecordingDuration.h"

#include <QLocale>
#include <QRegularExpression>

#include <array>
#include <cmath>
#include <utility>

namespace lumaro {

namespace {

constexpr double minute = 60;
constexpr double hour = 3600;
constexpr double shortest = 1;
constexpr double longest = 999 * hour;

/// In the order in which a text is compared with them.
constexpr std::array<std::pair<QStringView, double>, 10> units{{
    {u"hours", hour},
    {u"hour", hour},
    {u"hrs", hour},
    {u"hr", hour},
    {u"h", hour},
    {u"minutes", minute},
    {u"minute", minute},
    {u"mins", minute},
    {u"min", minute},
    {u"m", minute},
}};

std::optional<double> decimalNumber(QStringView text)
{
    static const QRegularExpression grammar(
        QStringLiteral(R"(\A[+-]?([0-9]+\.?[0-9]*|\.[0-9]+)(e[+-]?[0-9]+)?\z)"));
    bool isNumber = grammar.match(text).hasMatch();
    const double number = isNumber ? QLocale::c().toDouble(text, &isNumber) : 0;
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<double> parseRecordingDuration(const QString &text)
{
    const QString cleaned = text.toLower().replace(u',', u'.').remove(u' ');
    for (const auto &[unit, length] : units) {
        if (!cleaned.endsWith(unit))
            continue;
        const auto number = decimalNumber(QStringView(cleaned).chopped(unit.size()));
        const double seconds = number.value_or(0) * length;
        return seconds >= shortest && seconds <= longest ? std::optional(seconds) : std::nullopt;
    }
    return std::nullopt;
}

QString formatDuration(double seconds)
{
    const qint64 whole = qint64(std::max(seconds, 0.0));
    const qint64 minutes = whole / 60 % 60;
    const qint64 hours = whole / 3600;
    return hours == 0 ? QString::asprintf("%02d:%02d", int(minutes), int(whole % 60))
                      : QString::asprintf("%lld:%02d:%02d", static_cast<long long>(hours),
                                          int(minutes), int(whole % 60));
}

} // namespace lumaro
