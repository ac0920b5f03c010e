#include "bench/playback/StartUp.h"

#include "bench/playback/PlayerRun.h"
#include "tests/e2e/servers/MediaFixtures.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

struct Times
{
    QList<double> lumaro;
    QList<double> mpv;
    /// Until the first picture.
    Memory memory;
};

Measured<PlayerRun::Start> measure(const Screen &screen, const PlayerCommand &command)
{
    PlayerRun run(screen);
    auto start = run.startUntilColor(command, MediaFixtures::solidColor);
    if (!start)
        return start;
    if (const auto ended = run.end(); !ended)
        return std::unexpected(ended.error());
    return start;
}

Measured<Times> measureRounds(int rounds)
{
    const auto file =
        MediaFixtures(QStringLiteral(LUMARO_FIXTURE_FOLDER)).path(Fixture::SolidColor);
    if (!file)
        return std::unexpected(file.error());
    const auto screen = Screen::open();
    if (!screen)
        return std::unexpected(u"There is no display."_s);

    // The first two fill the caches and do not count.
    const PlayerCommand lumaro = lumaroCommand(*file);
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
            (command == &lumaro ? times.memory.own : times.memory.peer.emplace()) =
                start->peakMemory;
        }
    }
    return times;
}

} // namespace

Row measureStartUp(int rounds)
{
    Row row{.what = u"start to the first picture, to mpv --vo=gpu"_s,
            .ratio = 0,
            .limit = Limit{Limit::Kind::AtMost, 2}};
    const QTemporaryDir settings;
    preparePlayerEnvironment(settings.path());
    const auto times = measureRounds(rounds);
    if (!times) {
        row.ratio = std::unexpected(times.error());
        return row;
    }
    const double lumaro = median(times->lumaro);
    const double mpv = median(times->mpv);
    row.ratio = lumaro / mpv;
    row.detail = u"%1, mpv %2, medians of %3"_s
                     .arg(milliseconds(Seconds(lumaro)), milliseconds(Seconds(mpv)))
                     .arg(rounds);
    row.memory = times->memory;
    return row;
}

} // namespace lumaro
