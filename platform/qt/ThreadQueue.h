#pragma once

#include "platform/SerialQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace lumaro {

/// A serial queue with a thread of its own.
class ThreadQueue final : public SerialQueue
{
public:
    explicit ThreadQueue(const QString &label);
    ~ThreadQueue() override;

    void post(std::function<void()> work) override;
    void drain() override;

private:
    void run(const QString &label);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_work;
    bool m_ending = false;
    std::thread m_thread;
};

} // namespace lumaro
