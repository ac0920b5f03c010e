#include "bench/playback/Idling.h"

#include "bench/playback/PlayerRun.h"

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

Row measureIdling()
{
    Row row{u"memory with nothing open, to mpv --idle --force-window"_s, 0};
    const auto screen = Screen::open();
    if (!screen) {
        row.ratio = std::unexpected(u"There is no display."_s);
        return row;
    }
    const QTemporaryDir settings;
    preparePlayerEnvironment(settings.path());
    PlayerRun run(*screen);
    const auto lumaro = run.startAndIdle(lumaroCommand({}));
    if (!lumaro) {
        row.ratio = std::unexpected(lumaro.error());
        return row;
    }
    const auto mpv = run.startAndIdle(mpvCommand({}, lumaro->window));
    if (!mpv) {
        row.ratio = std::unexpected(mpv.error());
        return row;
    }
    row.ratio = double(lumaro->peakMemory) / double(mpv->peakMemory);
    row.memory = Memory{.own = lumaro->peakMemory, .peer = mpv->peakMemory};
    row.detail = u"mpv "_s + megabytes(mpv->peakMemory);
    return row;
}

} // namespace lumaro
