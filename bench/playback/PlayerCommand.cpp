#include "bench/playback/PlayerCommand.h"

#include "bench/report/Measure.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

PlayerCommand lumaroCommand(const QString &file)
{
    return {u"lumaro"_s, lumaroProgram(), file.isEmpty() ? QStringList() : QStringList{file}};
}

// A virtual display has none but a software renderer, which mpv takes only when told to.
PlayerCommand mpvCommand(const QString &file, const QRect &window)
{
    const QString geometry = u"--geometry=%1x%2+%3+%4"_s.arg(window.width())
                                 .arg(window.height())
                                 .arg(window.x())
                                 .arg(window.y());
    QStringList arguments{
        u"--no-config"_s,   u"--vo=gpu"_s, u"--gpu-sw"_s,    u"--hwdec=no"_s,
        u"--osd-level=0"_s, u"--no-osc"_s, u"--no-border"_s, u"--no-keepaspect-window"_s,
        u"--no-terminal"_s, geometry};
    if (file.isEmpty())
        arguments << u"--idle"_s << u"--force-window"_s;
    else
        arguments << file;
    return {u"mpv --vo=gpu"_s, u"mpv"_s, arguments};
}

PlayerCommand peerCommand(const QString &file, const QRect &window)
{
    return {u"bare libmpv window"_s,
            QCoreApplication::applicationDirPath() + u"/bench_playback_peer"_s,
            {file, QString::number(window.x()), QString::number(window.y()),
             QString::number(window.width()), QString::number(window.height())}};
}

} // namespace lumaro
