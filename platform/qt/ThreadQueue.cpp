#include "platform/qt/ThreadQueue.h"

#include <future>

#include <pthread.h>

namespace lumaro {

ThreadQueue::ThreadQueue(const QString &label)
    : m_thread([this, label] { run(label); })
{
}

ThreadQueue::~ThreadQueue()
{
    {
        const std::scoped_lock lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

void ThreadQueue::post(std::function<void()> work)
{
    {
        const std::scoped_lock lock(m_mutex);
        m_work.push_back(std::move(work));
    }
    m_changed.notify_one();
}

void ThreadQueue::drain()
{
    std::promise<void> done;
    post([&done] { done.set_value(); });
    done.get_future().wait();
}

void ThreadQueue::run(const QString &label)
{
#ifdef __linux__
    // The kernel keeps 15 characters.
    pthread_setname_np(pthread_self(), label.right(15).toLatin1().constData());
#endif
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_ending || !m_work.empty(); });
        if (m_work.empty())
            return;
        auto work = std::move(m_work.front());
        m_work.pop_front();
        lock.unlock();
        work();
        // What it held goes without the lock.
        work = nullptr;
        lock.lock();
    }
}

} // namespace lumaro
