// Processor time of playing a film, Lumaro, mpv and a bare libmpv window by turns in windows of the
// same size.  bench_playback_cpu APP [--seconds N] [--rounds N]

#include "bench/playback/PlayerRun.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/VirtualDisplay.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr double limit = 1.15;
/// A player that leaves out pictures saves work; processor times are comparable only when each
/// shows at least this share of the most that one of them does.
constexpr double leastPictureShare = 0.95;
/// The film is 75 s long and its player must not reach the end.
constexpr int longest = 65;

using Load = PlayerRun::Load;

/// One round: Lumaro, mpv and the bare window in the same place.
struct Round
{
    Load lumaro;
    Load mpv;
    Load peer;
};

std::expected<Load, QString> measure(const Screen &screen, const PlayerCommand &command,
                                     int seconds)
{
    PlayerRun run(screen);
    const auto load = run.startAndMeasure(command, std::chrono::seconds(seconds));
    if (!load)
        return load;
    std::printf("  %s: %.2f s in %d s, %.1f pictures a second\n", qPrintable(command.name),
                load->processorTime.count(), seconds, load->pictureRate);
    std::fflush(stdout);
    return load;
}

std::expected<Round, QString> measureRound(const Screen &screen, const QString &app,
                                           const QString &file, int seconds)
{
    const auto lumaro = measure(screen, lumaroCommand(app, file), seconds);
    if (!lumaro)
        return std::unexpected(lumaro.error());
    const auto mpv = measure(screen, mpvCommand(file, lumaro->window), seconds);
    if (!mpv)
        return std::unexpected(mpv.error());
    const auto peer = measure(screen, peerCommand(file, lumaro->window), seconds);
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

std::expected<QList<Round>, QString> measureRounds(const QString &app, int seconds, int count)
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
        const auto round = measureRound(*screen, app, *file, seconds);
        if (!round)
            return std::unexpected(round.error());
        rounds.append(*round);
    }
    return rounds;
}

double medianTime(const QList<Round> &rounds, Load Round::*player)
{
    QList<double> times;
    for (const Round &round : rounds)
        times.append((round.*player).processorTime.count());
    return median(times);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption secondsOption(u"seconds"_s, u"How long each plays, at most 65."_s,
                                           u"N"_s, u"60"_s);
    const QCommandLineOption roundsOption(u"rounds"_s, u"How often each plays."_s, u"N"_s, u"1"_s);
    parser.addOptions({secondsOption, roundsOption});
    parser.addHelpOption();
    parser.addPositionalArgument(u"app"_s, u"Lumaro's program file."_s);
    parser.process(application);
    const int seconds = parser.value(secondsOption).toInt();
    const int rounds = parser.value(roundsOption).toInt();
    if (parser.positionalArguments().size() != 1 || seconds < 1 || seconds > longest || rounds < 1)
        parser.showHelp(2);

    const auto display = VirtualDisplay::start();
    const QTemporaryDir settings;
    preparePlayerEnvironment(settings.path());
    const auto measured = display
        ? measureRounds(parser.positionalArguments().first(), seconds, rounds)
        : std::unexpected(display.error());
    if (!measured) {
        std::fprintf(stderr, "processor time: %s\n", qPrintable(measured.error()));
        return 2;
    }
    const double lumaro = medianTime(*measured, &Round::lumaro);
    const double toPeer = lumaro / medianTime(*measured, &Round::peer);
    const double toMpv = lumaro / medianTime(*measured, &Round::mpv);
    std::printf("processor time: %.2f times a bare libmpv window with the same render path (limit: "
                "at most %g); %.2f times mpv --vo=gpu\n",
                toPeer, limit, toMpv);
    return toPeer <= limit ? 0 : 1;
}
