#include "finder/DownloadTexts.h"

#include <algorithm>
#include <cmath>

namespace lumaro {

QString formattedDownloadDuration(double seconds)
{
    constexpr qint64 minute = 60;
    // A clock that was set back, or worse, is no reason to say nonsense.
    const double sane = std::isfinite(seconds) ? std::clamp(seconds, 0.0, 1e9) : 0;
    const qint64 whole = std::llround(sane);
    const QString begin = QStringLiteral("Downloaded in ");
    if (whole < minute)
        return begin + QString::number(std::max<qint64>(whole, 1)) + u" sec";
    const QString minutes = begin + QString::number(whole / minute) + u" min";
    return whole % minute == 0 ? minutes
                               : minutes + u' ' + QString::number(whole % minute) + u" sec";
}

} // namespace lumaro
