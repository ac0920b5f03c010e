#pragma once

#include "platform/DefaultsWriter.h"

#include <QJsonValue>

namespace lumaro {

/// One setting in the user defaults, stored as JSON text. Written in the background, the newest
/// value always last; a failure is logged. Main thread.
class DefaultsValue
{
public:
    /// `defaults` and `scheduler` outlive it.
    DefaultsValue(UserDefaults &defaults, Scheduler &scheduler, const QString &key);

    /// Undefined when nothing is stored or it cannot be read.
    QJsonValue read() const;
    void write(const QJsonValue &value);
    /// The same for one that takes its time to make; called on another thread, perhaps again.
    void write(std::function<QJsonValue()> makeValue);
    /// Keeps an unreadable value where nothing overwrites it; true if nothing is in the way of
    /// write() then.
    bool setAside();

private:
    UserDefaults &m_defaults;
    const QString m_key;
    DefaultsWriter m_writer;
};

} // namespace lumaro
