#pragma once

#include "platform/Scheduler.h"
#include "platform/UserDefaults.h"

#include <stop_token>

namespace lumaro {

/// Keeps one value of the user defaults up to date without holding up the main thread. Of the
/// values it is given the newest ends up stored; older ones may be skipped, none overtakes another.
/// Whoever destroys it waits until the newest is stored. Main thread.
class DefaultsWriter
{
public:
    using Result = std::expected<void, UserDefaultsError>;
    /// Makes the value, on any thread; runs again when the value could not be stored.
    using Encode = std::function<QByteArray()>;

    /// `defaults` and `scheduler` outlive the writer. `finished` is told how each attempt ended.
    DefaultsWriter(UserDefaults &defaults, Scheduler &scheduler, const QString &key,
                   std::function<void(const Result &)> finished);
    ~DefaultsWriter();
    DefaultsWriter(const DefaultsWriter &) = delete;
    DefaultsWriter &operator=(const DefaultsWriter &) = delete;

    /// Stores the value soon, in the background. One that could not be stored waits for the next
    /// call, of whichever function.
    void write(Encode encode);
    /// Stores the newest value, unless it is, before it returns.
    Result flush();

private:
    class Slot;

    void start();
    void finish(const Result &result);

    Scheduler &m_scheduler;
    std::function<void(const Result &)> m_finished;
    std::shared_ptr<Slot> m_slot;
    bool m_running = false;
    /// A value was given since the running attempt began.
    bool m_hasNewer = false;
    std::stop_source m_lifetime;
};

} // namespace lumaro
