#include "bench/playback/ProcessorTime.h"

#include "bench/playback/PlayerRun.h"
#include "tests/e2e/servers/MediaFixtures.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

/// A player that leaves out pictures saves work; processor times are comparable only when each
/// shows at least this share of the most that one of them does.
constexpr double leastPictureShare = 0.95;
/// The film is 75 s long and its player must not reach the end.
constexpr std::chrono::seconds playingTime(60);

using Load = PlayerRun::Load;

/// One round: Lumaro, mpv and the bare window in the same place.
struct Round
{
    Load lumaro;
    Load mpv;
    Load peer;
};

Measured<Load> measure(const Screen &screen, const PlayerCommand &command)
{
    // Whoever remembers how far a film was played would not begin at its beginning.
    const QTemporaryDir settings;
    preparePlayerEnvironment(settings.path());
    PlayerRun run(screen);
    const auto load = run.startAndMeasure(command, playingTime);
    if (!load)
        return load;
    say(u"%1: %2 s, %3 pictures a second"_s.arg(command.name)
            .arg(load->processorTime.count(), 0, 'f', 2)
            .arg(load->pictureRate, 0, 'f', 1));
    return load;
}

Measured<Round> measureRound(const Screen &screen, const QString &file)
{
    const auto lumaro = measure(screen, lumaroCommand(file));
    if (!lumaro)
        return std::unexpected(lumaro.error());
    const auto mpv = measure(screen, mpvCommand(file, lumaro->window));
    if (!mpv)
        return std::unexpected(mpv.error());
    const auto peer = measure(screen, peerCommand(file, lumaro->window));
    if (!peer)
        return std::unexpected(peer.error());

    if (mpv->window != lumaro->window || peer->window != lumaro->window)
        return std::unexpected(u"The windows differ."_s);
    const auto [least, most] =
        std::minmax({lumaro->pictureRate, mpv->pictureRate, peer->pictureRate});
    if (least < most * leastPictureShare)
        return std::unexpected(u"One of the players leaves out pictures."_s);
    return Round{.lumaro = *lumaro, .mpv = *mpv, .peer = *peer};
}

Measured<QList<Round>> measureRounds(int count)
{
    const auto file =
        MediaFixtures(QStringLiteral(LUMARO_FIXTURE_FOLDER)).path(Fixture::FullHdMovie);
    if (!file)
        return std::unexpected(file.error());
    const auto screen = Screen::open();
    if (!screen)
        return std::unexpected(u"There is no display."_s);

    QList<Round> rounds;
    while (rounds.size() < count) {
        const auto round = measureRound(*screen, *file);
        if (!round)
            return std::unexpected(round.error());
        rounds.append(*round);
    }
    return rounds;
}

template <typename Value>
auto medianOf(const QList<Round> &rounds, Load Round::*player, Value Load::*value)
{
    QList<Value> values;
    for (const Round &round : rounds)
        values.append(round.*player.*value);
    return median(values);
}

} // namespace

QList<Row> measureProcessorTime(int rounds)
{
    const auto measured = measureRounds(rounds);
    const auto compared = [&](const QString &what, Load Round::*peer, std::optional<Limit> limit) {
        Row row{.what = what, .ratio = 0, .limit = limit};
        if (!measured) {
            row.ratio = std::unexpected(measured.error());
            return row;
        }
        const auto time = [&](Load Round::*player) {
            return medianOf(*measured, player, &Load::processorTime);
        };
        row.ratio = time(&Round::lumaro) / time(peer);
        row.detail = u"%1 s, the peer %2 s, of %3 s"_s.arg(time(&Round::lumaro).count(), 0, 'f', 1)
                         .arg(time(peer).count(), 0, 'f', 1)
                         .arg(playingTime.count());
        row.memory = Memory{.own = medianOf(*measured, &Round::lumaro, &Load::peakMemory),
                            .peer = medianOf(*measured, peer, &Load::peakMemory)};
        return row;
    };
    return {compared(u"processor time of playing 1080p, to a bare libmpv window"_s, &Round::peer,
                     Limit{Limit::Kind::AtMost, 1.15}),
            compared(u"processor time of playing 1080p, to mpv --vo=gpu"_s, &Round::mpv, {})};
}

} // namespace lumaro
