#pragma once

#include "platform/Scheduler.h"

#include <QString>
#include <QUrl>
#include <QVariant>

#include <optional>

namespace lumaro {

/// The name under which the resource reporter script posts its messages.
inline constexpr char16_t resourceMessageHandler[] = u"m3u8SnifferResource";

/// What the resource reporter script says of an address that the page loads.
struct ResourceMessage
{
    QUrl url;
    std::optional<QString> title;
    /// The title names what the user clicked last.
    bool selected = false;

    bool operator==(const ResourceMessage &) const = default;
};

/// Reads the messages of one web view. Any page can post whatever and as much as it likes: what is
/// malformed, too long or too much in too short a time is dropped. Main thread.
class ResourceMessageReader
{
public:
    /// In UTF-16 code units.
    static constexpr qsizetype maximumAddressLength = 16384;
    static constexpr qsizetype maximumTitleLength = 4096;
    /// What may come at once, and per second in the long run, also in code units.
    static constexpr qsizetype burst = 256 * 1024;
    static constexpr qsizetype perSecond = 16 * 1024;
    /// What a message costs beside its texts.
    static constexpr qsizetype overhead = 128;

    /// `scheduler` outlives the reader.
    explicit ResourceMessageReader(Scheduler &scheduler);

    /// `body` is a dictionary with url, title and selected, or just the address. Empty for what is
    /// to be ignored.
    std::optional<ResourceMessage> read(QStringView handler, const QVariant &body);

    /// Whether an address that the browser itself saw may be noted; charged like a message.
    bool admits(const QUrl &url);

private:
    bool admit(qsizetype length);

    Scheduler &m_scheduler;
    Scheduler::TimePoint m_refilled;
    double m_budget = burst;
};

} // namespace lumaro
