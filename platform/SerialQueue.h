#pragma once

#include <QString>

#include <functional>
#include <memory>

namespace lumaro {

/// Does one piece of work after the other, in the order in which they were posted, away from the
/// main thread. Destroying it waits until all of them are done, as drain() does.
class SerialQueue
{
public:
    SerialQueue() = default;
    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;
    virtual ~SerialQueue() = default;

    /// From any thread.
    virtual void post(std::function<void()> work) = 0;
    /// Waits until all that has been posted is done. Not from the queue itself. A queue that is
    /// held up for too long, as by a disk that stands still, drops what has not begun.
    virtual void drain() = 0;
};

/// Makes a queue; the label helps whoever looks at a process's threads.
using SerialQueueFactory = std::function<std::unique_ptr<SerialQueue>(const QString &label)>;

} // namespace lumaro
