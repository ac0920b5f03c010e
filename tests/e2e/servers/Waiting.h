#pragma once

#include <qtestsupport_core.h>

namespace lumaro {

/// In milliseconds: as long as the slowest machine may take.
inline constexpr int longestWait = 30'000;

/// Waits for `condition`, as long as the slowest machine may take.
template <typename Condition>
bool becomesTrue(Condition condition)
{
    return QTest::qWaitFor(condition, longestWait);
}

} // namespace lumaro
