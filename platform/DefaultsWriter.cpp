#include "platform/DefaultsWriter.h"

#include <mutex>

namespace lumaro {

/// The newest value, where the main thread leaves it and either thread picks it up.
class DefaultsWriter::Slot
{
public:
    Slot(UserDefaults &defaults, const QString &key)
        : m_defaults(defaults)
        , m_key(key)
    {
    }

    void put(Encode encode)
    {
        // What it replaces may be large; it goes after the lock.
        const std::lock_guard lock(m_newestMutex);
        std::swap(m_newest, encode);
    }

    /// Stores the newest value, if there is one, when a store in progress has ended.
    Result storeNewest()
    {
        const std::lock_guard lock(m_storing);
        if (m_closed)
            return {};
        const Encode encode = take();
        if (!encode)
            return {};
        const Result result = m_defaults.setData(m_key, encode());
        if (!result)
            putBack(encode);
        return result;
    }

    /// Nothing touches the defaults any more.
    void close()
    {
        const std::lock_guard lock(m_storing);
        m_closed = true;
    }

private:
    Encode take()
    {
        const std::lock_guard lock(m_newestMutex);
        return std::exchange(m_newest, {});
    }

    void putBack(const Encode &encode)
    {
        const std::lock_guard lock(m_newestMutex);
        if (!m_newest)
            m_newest = encode;
    }

    UserDefaults &m_defaults;
    const QString m_key;
    std::mutex m_storing;
    bool m_closed = false;
    std::mutex m_newestMutex;
    Encode m_newest;
};

DefaultsWriter::DefaultsWriter(UserDefaults &defaults, Scheduler &scheduler, const QString &key,
                               std::function<void(const Result &)> finished)
    : m_scheduler(scheduler)
    , m_finished(std::move(finished))
    , m_slot(std::make_shared<Slot>(defaults, key))
{
}

DefaultsWriter::~DefaultsWriter()
{
    m_lifetime.request_stop();
    // Who wants to hear of a failure flushes first.
    [[maybe_unused]] const Result result = flush();
    m_slot->close();
}

void DefaultsWriter::write(Encode encode)
{
    m_slot->put(std::move(encode));
    m_hasNewer = true;
    if (!m_running)
        start();
}

void DefaultsWriter::start()
{
    m_running = true;
    m_hasNewer = false;
    const auto result = std::make_shared<Result>();
    m_scheduler.runInBackground([slot = m_slot, result] { *result = slot->storeNewest(); },
                                [this, result, stop = m_lifetime.get_token()] {
                                    if (!stop.stop_requested())
                                        finish(*result);
                                });
}

void DefaultsWriter::finish(const Result &result)
{
    m_running = false;
    if (m_hasNewer)
        start();
    m_finished(result);
}

DefaultsWriter::Result DefaultsWriter::flush()
{
    return m_slot->storeNewest();
}

} // namespace lumaro
