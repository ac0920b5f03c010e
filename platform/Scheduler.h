#pragma once

#include "platform/Async.h"

#include <chrono>
#include <functional>
#include <optional>
#include <type_traits>

namespace lumaro {

/// The main thread's clock, its delays, and the way to do work elsewhere. Everything that waits
/// goes through it, so that tests move the time themselves. Main thread only, except for the
/// work given to runInBackground.
class Scheduler
{
public:
    using Duration = std::chrono::nanoseconds;
    using TimePoint = std::chrono::steady_clock::time_point;
    using TimerId = quint64;

    Scheduler() = default;
    Scheduler(const Scheduler &) = delete;
    Scheduler &operator=(const Scheduler &) = delete;
    virtual ~Scheduler() = default;

    /// Monotonic time.
    virtual TimePoint now() const = 0;

    /// Calls `action` once on the main thread when `delay` has passed.
    virtual TimerId callAfter(Duration delay, std::function<void()> action) = 0;

    /// Withdraws a call that has not been made yet; otherwise does nothing.
    virtual void cancel(TimerId timer) = 0;

    /// Runs `work` on another thread, then `done` on the main thread.
    virtual void runInBackground(std::function<void()> work, std::function<void()> done) = 0;

    /// Waits for `duration`; false as soon as `stop` is requested.
    Task<bool> sleep(Duration duration, std::stop_token stop);

    /// Runs `work` on another thread and returns its result on the main thread. The work cannot
    /// be interrupted; a stale result is for the caller to drop.
    template <typename Work>
    Task<std::invoke_result_t<Work>> inBackground(Work work)
    {
        using Result = std::invoke_result_t<Work>;
        const OneShot<Result> finished;
        const auto result = std::make_shared<std::optional<Result>>();
        runInBackground([result, work = std::move(work)] { result->emplace(work()); },
                        [result, finished] { finished.complete(std::move(**result)); });
        co_return co_await finished;
    }

    /// The same, but ends with nothing as soon as `stop` is requested. The work goes on for nobody.
    template <typename Work>
    Task<std::optional<std::invoke_result_t<Work>>> inBackground(Work work, std::stop_token stop)
    {
        using Result = std::optional<std::invoke_result_t<Work>>;
        const OneShot<Result> finished;
        const auto result = std::make_shared<Result>();
        runInBackground([result, work = std::move(work)] { result->emplace(work()); },
                        [result, finished] { finished.complete(std::move(*result)); });
        const std::stop_callback whenStopped(stop, [finished] { finished.complete({}); });
        co_return co_await finished;
    }
};

} // namespace lumaro
