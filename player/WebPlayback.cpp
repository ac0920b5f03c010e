#include "player/WebPlayback.h"

#include <QCoreApplication>
#include <QVariantList>

#include <array>
#include <cmath>

namespace lumaro {

namespace {

/// Seconds; streams that never end have told times of years.
constexpr double longestTime = 1e9;
constexpr double largestError = 1e6;

/// `state` is one of the numbers that YouTube's player has for its states (YT.PlayerState); the
/// other script uses them too.
std::optional<bool> isPlaying(double state)
{
    constexpr double ended = 0;
    constexpr double playing = 1;
    constexpr double paused = 2;
    constexpr double buffering = 3;
    constexpr double cued = 5;
    if (state == playing || state == buffering)
        return true;
    if (state == ended || state == paused || state == cued)
        return false;
    return std::nullopt;
}

double secondsOrNone(double value)
{
    return std::isfinite(value) && value > 0 && value <= longestTime ? value : 0;
}

bool isNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

} // namespace

std::optional<WebPlayback> readWebPlayback(const QVariant &answer)
{
    if (answer.typeId() != QMetaType::QVariantList)
        return std::nullopt;
    const QVariantList values = answer.toList();
    std::array<double, 5> numbers{};
    if (values.size() != qsizetype(numbers.size()))
        return std::nullopt;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (!isNumber(values[qsizetype(i)]))
            return std::nullopt;
        numbers[i] = values[qsizetype(i)].toDouble();
    }
    const auto [stage, time, duration, state, error] = numbers;
    if (stage != 0 && stage != 1 && stage != 2)
        return std::nullopt;
    return WebPlayback{.stage = WebPlayback::Stage(int(stage)),
                       .time = secondsOrNone(time),
                       .duration = secondsOrNone(duration),
                       .isPlaying = isPlaying(state),
                       .error = std::abs(error) <= largestError ? int(error) : 0};
}

QString youTubePlaybackScript()
{
    return QStringLiteral(R"js((function () {
    if (typeof YT !== 'object' || YT === null)
        return [0, 0, 0, -1, 0];
    if (typeof player !== 'object' || player === null)
        return [1, 0, 0, -1, 0];
    if (!player.getPlayerState)
        return [1, 0, 0, -1, varnFailure];
    var state = Number(player.getPlayerState());
    if (state === 1 || state === 3)
        varnFailure = 0;
    return [2, Number(player.getCurrentTime()), Number(player.getDuration()), state, varnFailure];
})())js");
}

QString videoPlaybackScript()
{
    return QStringLiteral(R"js((function () {
    var v = document.querySelector('video');
    if (!v)
        return [1, 0, 0, -1, 0];
    return [2, v.currentTime, isFinite(v.duration) ? v.duration : 0,
            v.ended ? 0 : v.paused ? 2 : 1, v.error ? v.error.code : 0];
})())js");
}

QString youTubeErrorText(int error)
{
    switch (error) {
    case 2:
        return QCoreApplication::translate("WebPlayback",
                                           "YouTube knows no video at this address.");
    case 100:
        return QCoreApplication::translate("WebPlayback",
                                           "This video has been removed, or is private.");
    case 101:
    case 150:
        return QCoreApplication::translate(
            "WebPlayback", "The owner of this video allows it on YouTube's own site only.");
    default:
        return QCoreApplication::translate("WebPlayback",
                                           "YouTube cannot play this video here (error %1).")
            .arg(error);
    }
}

} // namespace lumaro
