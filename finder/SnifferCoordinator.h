#pragma once

#include "finder/SnifferManager.h"

namespace lumaro {

class SnifferAdBlocker;

enum class NavigationDecision {
    Allow,
    Cancel,
    /// Instead, the tab's own view goes there.
    LoadHere,
};

/// Decides what a tab's view may do, and tells the tab's browser what is seen there. Main thread.
class SnifferCoordinator : public QObject
{
    Q_OBJECT

public:
    /// `blocker` and `scheduler` outlive the coordinator; the browser may go before.
    SnifferCoordinator(SnifferManager &manager, const SnifferAdBlocker &blocker,
                       Scheduler &scheduler, QObject *parent = nullptr);

    NavigationDecision decide(const NavigationAction &action);
    /// The page's script asks for a window of its own.
    NavigationDecision decideNewWindow(const QUrl &url);
    /// Something was asked for, or answered with this media type; an answer is always allowed.
    void report(const QUrl &url, const std::optional<QString> &contentType);
    /// A user script posted to a handler, or the page in its name.
    void receiveMessage(const QString &handler, const QVariant &body);

private:
    NavigationDecision judge(const NavigationAction &action) const;

    QPointer<SnifferManager> m_manager;
    const SnifferAdBlocker &m_blocker;
    ResourceMessageReader m_messages;
};

} // namespace lumaro
