#pragma once

#include <QCoroTask>

#include <coroutine>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>

/// The project's one asynchronous idiom: an operation that takes time is a coroutine that returns
/// Task and, where it can be abandoned, takes a std::stop_token as its last parameter. When a stop
/// is requested the operation ends promptly with its "cancelled" outcome; it never just vanishes.
/// Coroutines start at once, run on the main thread and are resumed there. One that belongs to an
/// object must hold a stop token which that object's destructor stops, and touch nothing of the
/// object after a cancelled outcome.
///
/// GCC 12 destroys a closure or a braced value twice when it is a temporary of a co_await
/// expression, so neither may stand in one: start the operation, then await it.
namespace lumaro {

template <typename T = void>
using Task = QCoro::Task<T>;

/// The bridge from a callback to a coroutine: one side awaits it, the other completes it, once.
/// Copies share one state, so the completing side may outlive the awaiting one. Main thread only.
template <typename T>
class OneShot
{
public:
    /// Hands `value` to the waiting coroutine and resumes it before returning. Later calls have
    /// no effect.
    void complete(T value) const
    {
        // The resumed coroutine may destroy this very object; the state must outlive that.
        const std::shared_ptr<State> state = m_state;
        if (state->completed)
            return;
        state->completed = true;
        state->value.emplace(std::move(value));
        if (const auto waiting = std::exchange(state->waiting, nullptr))
            waiting.resume();
    }

    bool isCompleted() const { return m_state->completed; }

    bool await_ready() const noexcept { return m_state->completed; }
    void await_suspend(std::coroutine_handle<> waiting) const noexcept
    {
        m_state->waiting = waiting;
    }
    T await_resume() const { return *std::exchange(m_state->value, std::nullopt); }

private:
    struct State
    {
        std::optional<T> value;
        std::coroutine_handle<> waiting;
        bool completed = false;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace lumaro
