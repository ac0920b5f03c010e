// From the start of the process to the first frame of a film on the screen, Lumaro and mpv by turns
// in windows of the same size.  bench_playback_startup APP [--rounds N]

#include "bench/playback/PlayerRun.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/VirtualDisplay.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr double limit = 2;

struct Times
{
    QList<double> lumaro;
    QList<double> mpv;
};

std::expected<PlayerRun::Start, QString> measure(const Screen &screen, const PlayerCommand &command)
{
    PlayerRun run(screen);
    auto start = run.startUntilColor(command, MediaFixtures::solidColor);
    if (!start)
        return start;
    if (const auto ended = run.end(); !ended)
        return std::unexpected(ended.error());
    return start;
}

std::expected<Times, QString> measureRounds(const QString &app, int rounds)
{
    const auto file =
        MediaFixtures(QStringLiteral(LUMARO_FIXTURE_FOLDER)).path(Fixture::SolidColor);
    if (!file)
        return std::unexpected(file.error());
    const auto screen = Screen::open();
    if (!screen)
        return std::unexpected(u"There is no display."_s);

    // The first two fill the caches and do not count.
    const PlayerCommand lumaro = lumaroCommand(app, *file);
    const auto first = measure(*screen, lumaro);
    if (!first)
        return std::unexpected(first.error());
    const PlayerCommand mpv = mpvCommand(*file, first->window);
    const auto second = measure(*screen, mpv);
    if (!second)
        return std::unexpected(second.error());
    if (second->window != first->window)
        return std::unexpected(u"The windows differ."_s);

    Times times;
    for (int round = 0; round < rounds; ++round) {
        for (const auto &[command, list] :
             {std::pair(&lumaro, &times.lumaro), std::pair(&mpv, &times.mpv)}) {
            const auto start = measure(*screen, *command);
            if (!start)
                return std::unexpected(start.error());
            list->append(start->time.count());
        }
    }
    return times;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption rounds(u"rounds"_s, u"How often each is started."_s, u"N"_s, u"9"_s);
    parser.addOption(rounds);
    parser.addHelpOption();
    parser.addPositionalArgument(u"app"_s, u"Lumaro's program file."_s);
    parser.process(application);
    if (parser.positionalArguments().size() != 1 || parser.value(rounds).toInt() < 1)
        parser.showHelp(2);

    const auto display = VirtualDisplay::start();
    const QTemporaryDir settings;
    preparePlayerEnvironment(settings.path());
    const auto times = display
        ? measureRounds(parser.positionalArguments().first(), parser.value(rounds).toInt())
        : std::unexpected(display.error());
    if (!times) {
        std::fprintf(stderr, "start to first frame: %s\n", qPrintable(times.error()));
        return 2;
    }
    const double lumaro = median(times->lumaro);
    const double mpv = median(times->mpv);
    std::printf("  lumaro %.0f ms, mpv --vo=gpu %.0f ms (medians of %d)\n", lumaro * 1000,
                mpv * 1000, parser.value(rounds).toInt());
    std::printf("start to first frame: %.2f times mpv --vo=gpu (limit: at most %g)\n", lumaro / mpv,
                limit);
    return lumaro / mpv <= limit ? 0 : 1;
}
