#pragma once

#include <QString>

namespace lumaro {

/// Keeps the screen from going dark while somebody watches. Main thread; nothing blocks, and where
/// a desktop knows no such thing nothing happens.
class KeepAwake
{
public:
    KeepAwake() = default;
    KeepAwake(const KeepAwake &) = delete;
    KeepAwake &operator=(const KeepAwake &) = delete;
    virtual ~KeepAwake() = default;

    /// From now on, for `reason`, which the desktop may show.
    virtual void keepAwake(const QString &reason) = 0;
    /// No longer; so it is at the beginning, and when the process ends.
    virtual void release() = 0;
};

} // namespace lumaro
