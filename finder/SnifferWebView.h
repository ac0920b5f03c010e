#pragma once

#include "finder/SnifferCoordinator.h"
#include "platform/DelayedTask.h"

namespace lumaro {

class SnifferProxyManager;

/// Makes a page view the view of one tab: gives it its scripts, decides where it may go, and tells
/// the tab's browser what it does. Main thread.
class SnifferWebView : public QObject
{
    Q_OBJECT

public:
    /// What all tabs share. It outlives them.
    struct Environment
    {
        SnifferAdBlocker &blocker;
        SnifferProxyManager &proxy;
        Scheduler &scheduler;
    };

    /// Belongs to `view` and goes with it; the browser may go before.
    SnifferWebView(PageView &view, SnifferManager &manager, Environment environment);
    ~SnifferWebView() override;

private:
    bool mayGo(const NavigationAction &action);
    void updateScripts();
    void openWindow(const QUrl &url);
    void update(bool loading, const std::optional<QString> &title);
    void begin();
    void giveUp();

    PageView &m_view;
    QPointer<SnifferManager> m_manager;
    SnifferAdBlocker &m_blocker;
    SnifferProxyManager &m_proxy;
    SnifferCoordinator m_coordinator;
    /// For a server that does not answer.
    DelayedTask m_timeout;
};

} // namespace lumaro
