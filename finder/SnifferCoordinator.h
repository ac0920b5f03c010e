#pragma once

#include "finder/SnifferManager.h"
#include "platform/DelayedTask.h"

#include <QSet>

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
    /// The page or a worker of its site loads data. A script's own message about it knows more, so
    /// that is waited for.
    void reportData(const QUrl &url);
    /// A user script posted to a handler, or the page in its name.
    void receiveMessage(const QString &handler, const QVariant &body);

private:
    NavigationDecision judge(const NavigationAction &action) const;
    bool admits(const QUrl &url, const std::optional<QString> &contentType);
    void note(const QUrl &url, const std::optional<QString> &contentType);
    void noteHeld();

    QPointer<SnifferManager> m_manager;
    const SnifferAdBlocker &m_blocker;
    ResourceMessageReader m_messages;
    /// What scripts told lately.
    QSet<QUrl> m_told;
    /// What waits for a script's message.
    QList<QUrl> m_held;
    DelayedTask m_noting;
};

} // namespace lumaro
