#pragma once

#include "platform/SerialQueue.h"

#include <chrono>
#include <memory>
#include <thread>

namespace lumaro {

/// A serial queue with a thread of its own. Whoever drains or destroys it waits for `patience` in
/// all; work that is under way even then ends with the process.
class ThreadQueue final : public SerialQueue
{
public:
    explicit ThreadQueue(const QString &label,
                         std::chrono::milliseconds patience = std::chrono::seconds(5));
    ~ThreadQueue() override;

    void post(std::function<void()> work) override;
    void drain() override;

private:
    struct State;

    static void run(State &state, const QString &label);

    std::chrono::milliseconds m_patience;
    /// Shared with the thread.
    std::shared_ptr<State> m_state;
    std::thread m_thread;
};

} // namespace lumaro
