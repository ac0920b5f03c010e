#pragma once

#include <QDateTime>

#include <functional>

namespace lumaro {

/// The time of day, for what is shown or stored with its time; delays go through Scheduler.
using WallClock = std::function<QDateTime()>;

inline WallClock systemClock()
{
    return [] { return QDateTime::currentDateTimeUtc(); };
}

} // namespace lumaro
