#include "finder/DownloadTexts.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace lumaro {

QString formattedDownloadDuration(double seconds)
{
    constexpr qint64 minute = 60;
    // A clock that was set back, or worse, is no reason to say nonsense.
    const double sane = std::isfinite(seconds) ? std::clamp(seconds, 0.0, 1e9) : 0;
    const qint64 whole = std::llround(sane);
    if (whole < minute)
        return QCoreApplication::translate("DownloadTexts", "Downloaded in %1 sec")
            .arg(std::max<qint64>(whole, 1));
    if (whole % minute == 0)
        return QCoreApplication::translate("DownloadTexts", "Downloaded in %1 min")
            .arg(whole / minute);
    return QCoreApplication::translate("DownloadTexts", "Downloaded in %1 min %2 sec")
        .arg(whole / minute)
        .arg(whole % minute);
}

} // namespace lumaro
