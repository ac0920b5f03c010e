// Start-up, processor time and memory of a player, Lumaro against mpv and a bare libmpv window.
//   bench_playback [ROUNDS]

#include "bench/playback/Idling.h"
#include "bench/playback/ProcessorTime.h"
#include "bench/playback/StartUp.h"
#include "tests/e2e/servers/VirtualDisplay.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const int startUps = roundsAsked(argc, argv, 9);
    const int films = roundsAsked(argc, argv, 1);
    const auto display = VirtualDisplay::start();
    if (!display)
        return report(u"playback"_s, {{u"playback"_s, std::unexpected(display.error())}});
    return report(u"playback"_s,
                  QList<Row>{measureStartUp(startUps)} + measureProcessorTime(films)
                      + QList<Row>{measureIdling()});
}
