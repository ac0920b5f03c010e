#include "tests/fakes/FakeScheduler.h"

#include <algorithm>

namespace lumaro {

Scheduler::TimerId FakeScheduler::callAfter(Duration delay, std::function<void()> action)
{
    m_calls.emplace(m_now + delay, Call{++m_lastId, std::move(action)});
    return m_lastId;
}

void FakeScheduler::cancel(TimerId timer)
{
    std::erase_if(m_calls, [timer](const auto &call) { return call.second.id == timer; });
}

void FakeScheduler::runInBackground(std::function<void()> work, std::function<void()> done)
{
    m_background.push_back({std::move(work), std::move(done)});
}

void FakeScheduler::advance(Duration duration)
{
    const TimePoint end = m_now + duration;
    while (!m_calls.empty() && m_calls.begin()->first <= end) {
        m_now = m_calls.begin()->first;
        makeOneCall();
    }
    m_now = end;
}

void FakeScheduler::makeOneCall()
{
    Q_ASSERT(!m_calls.empty() && m_calls.begin()->first <= m_now);
    m_calls.extract(m_calls.begin()).mapped().action();
}

void FakeScheduler::runNewestBackground()
{
    if (!m_background.empty()) {
        m_background.push_front(std::move(m_background.back()));
        m_background.pop_back();
    }
    runBackground();
}

void FakeScheduler::runBackground()
{
    while (!m_background.empty())
        runOneBackground();
}

void FakeScheduler::runOneBackground()
{
    const Work next = std::move(m_background.front());
    m_background.pop_front();
    next.work();
    next.done();
}

} // namespace lumaro
