#pragma once

#include "platform/MediaSamples.h"

#include <algorithm>

namespace lumaro {

/// Chooses among pictures that come at any rate those to take, so that no more than one is taken
/// in each interval in the long run. Pictures that come at just that rate are all taken, even when
/// they come unevenly.
class FramePacer
{
public:
    explicit FramePacer(MediaTime interval)
        : m_interval(interval)
    {
    }

    bool takes(MediaTime now)
    {
        const MediaTime tolerance = m_interval / 4;
        if (m_begun && now + tolerance < m_due)
            return false;
        m_due = m_begun ? std::max(m_due, now - m_interval / 2) + m_interval : now + m_interval;
        m_begun = true;
        return true;
    }

private:
    MediaTime m_interval;
    MediaTime m_due{};
    bool m_begun = false;
};

} // namespace lumaro
