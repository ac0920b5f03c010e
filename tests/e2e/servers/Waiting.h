#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>

namespace lumaro {

/// In milliseconds: as long as the slowest machine may take.
inline constexpr int longestWait = 30'000;

/// Waits for `condition`, as long as the slowest machine may take. Events are handled as soon as
/// they come, as in the program: QTest::qWaitFor sleeps between them, which slows a browser's many
/// events to a tenth of their speed.
template <typename Condition>
bool becomesTrue(Condition condition)
{
    constexpr std::chrono::milliseconds betweenLooks{10};
    const QDeadlineTimer deadline(longestWait);
    bool isTrue = condition();
    if (isTrue)
        return true;
    // What was to be deleted outside of any loop, the loop would leave.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QEventLoop loop;
    QTimer looks;
    QObject::connect(&looks, &QTimer::timeout, &loop, [&] {
        isTrue = condition();
        if (isTrue || deadline.hasExpired())
            loop.quit();
    });
    looks.start(betweenLooks);
    loop.exec();
    return isTrue;
}

/// Handles events for as long as `time`.
inline void letPass(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace lumaro
