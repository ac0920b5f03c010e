#include "finder/SnifferWebView.h"

#include "finder/PageScripts.h"
#include "finder/SnifferAdBlocker.h"
#include "finder/SnifferProxyManager.h"

namespace lumaro {

namespace {

/// For the first bytes of a page to come.
constexpr std::chrono::seconds patience{60};

} // namespace

SnifferWebView::SnifferWebView(PageView &view, SnifferManager &manager, Environment environment)
    : QObject(&view)
    , m_view(view)
    , m_manager(&manager)
    , m_blocker(environment.blocker)
    , m_proxy(environment.proxy)
    , m_coordinator(manager, environment.blocker, environment.scheduler)
    , m_timeout(environment.scheduler)
{
    updateScripts();
    connect(&m_blocker, &SnifferAdBlocker::isEnabledChanged, this, &SnifferWebView::updateScripts);
    view.setNavigationPolicy([this](const NavigationAction &action) { return mayGo(action); });
    connect(&view, &PageView::loadStarted, this, &SnifferWebView::begin);
    connect(&view, &PageView::answerBegan, this, [this] { m_timeout.cancel(); });
    connect(&view, &PageView::loadFinished, this,
            [this](const QString &title) { update(false, title); });
    connect(&view, &PageView::loadStopped, this, [this] { update(false, std::nullopt); });
    connect(&view, &PageView::loadFailed, this, [this](const QString &description) {
        m_timeout.cancel();
        if (m_manager)
            m_manager->fail(m_view.url(), description);
    });
    connect(&view, &PageView::titleChanged, this, [this](const QString &title) {
        if (m_manager)
            m_manager->setPageTitle(title);
    });
    connect(&view, &PageView::urlChanged, this, [this] {
        if (m_manager)
            m_manager->follow(m_view.url());
    });
    connect(&view, &PageView::historyChanged, this, [this] {
        if (m_manager)
            m_manager->refreshNavigationState();
    });
    connect(&view, &PageView::newWindowRequested, this, &SnifferWebView::openWindow);
    connect(&view, &PageView::dataRequested, &m_coordinator, &SnifferCoordinator::reportData);
    connect(&view, &PageView::responseReceived, &m_coordinator, &SnifferCoordinator::report);
    connect(&view, &PageView::messageReceived, &m_coordinator, &SnifferCoordinator::receiveMessage);
    m_blocker.registerAndApply(&view);
    m_proxy.registerWebView(&view);
    manager.setWebView(&view);
}

SnifferWebView::~SnifferWebView()
{
    // The view is gone already, as far as these know.
    m_blocker.cleanRegisteredViews();
    m_proxy.cleanRegisteredViews();
}

void SnifferWebView::updateScripts()
{
    m_view.setUserScripts({resourceReporterScript(), adBlockerFlagScript(m_blocker.isEnabled()),
                           popupOverrideScript()});
}

bool SnifferWebView::mayGo(const NavigationAction &action)
{
    const NavigationDecision decision = m_coordinator.decide(action);
    if (decision == NavigationDecision::LoadHere)
        m_view.load(action.url);
    return decision == NavigationDecision::Allow;
}

void SnifferWebView::openWindow(const QUrl &url)
{
    if (m_coordinator.decideNewWindow(url) == NavigationDecision::LoadHere)
        m_view.load(url);
}

void SnifferWebView::begin()
{
    update(true, std::nullopt);
    m_timeout.start(patience, [this] { giveUp(); });
}

void SnifferWebView::giveUp()
{
    m_view.stopLoading();
    if (m_manager)
        m_manager->fail(m_view.url(), tr("The server takes too long to answer."));
}

void SnifferWebView::update(bool loading, const std::optional<QString> &title)
{
    m_timeout.cancel();
    if (m_manager)
        m_manager->update(m_view.url(), loading, title);
}

} // namespace lumaro
