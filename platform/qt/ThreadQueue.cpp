#include "platform/qt/ThreadQueue.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

#include <pthread.h>

namespace lumaro {

struct ThreadQueue::State
{
    bool isIdle() const { return work.empty() && !isBusy; }

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> work;
    bool isBusy = false;
    bool ending = false;
};

ThreadQueue::ThreadQueue(const QString &label, std::chrono::milliseconds patience)
    : m_patience(patience)
    , m_state(std::make_shared<State>())
    , m_thread([state = m_state, label] { run(*state, label); })
{
}

ThreadQueue::~ThreadQueue()
{
    drain();
    bool isIdle = false;
    {
        const std::scoped_lock lock(m_state->mutex);
        m_state->ending = true;
        isIdle = m_state->isIdle();
    }
    m_state->changed.notify_all();
    if (isIdle)
        m_thread.join();
    else
        m_thread.detach();
}

void ThreadQueue::post(std::function<void()> work)
{
    {
        const std::scoped_lock lock(m_state->mutex);
        m_state->work.push_back(std::move(work));
    }
    m_state->changed.notify_all();
}

void ThreadQueue::drain()
{
    // What is dropped goes without the lock.
    std::deque<std::function<void()>> dropped;
    const auto begin = std::chrono::steady_clock::now();
    std::unique_lock lock(m_state->mutex);
    if (!m_state->changed.wait_until(lock, begin + m_patience,
                                     [this] { return m_state->isIdle(); }))
        dropped = std::exchange(m_state->work, {});
    const auto waited = std::chrono::steady_clock::now() - begin;
    m_patience -= std::min(m_patience, std::chrono::floor<std::chrono::milliseconds>(waited));
    lock.unlock();
}

void ThreadQueue::run(State &state, const QString &label)
{
#ifdef __linux__
    // The kernel keeps 15 characters.
    pthread_setname_np(pthread_self(), label.right(15).toLatin1().constData());
#endif
    std::unique_lock lock(state.mutex);
    while (true) {
        state.changed.wait(lock, [&] { return state.ending || !state.work.empty(); });
        if (state.work.empty())
            return;
        auto work = std::move(state.work.front());
        state.work.pop_front();
        state.isBusy = true;
        lock.unlock();
        work();
        // What it held goes without the lock.
        work = nullptr;
        lock.lock();
        state.isBusy = false;
        state.changed.notify_all();
    }
}

} // namespace lumaro
