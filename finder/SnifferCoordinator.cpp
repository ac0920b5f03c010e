#include "finder/SnifferCoordinator.h"

#include "finder/HLSDetector.h"
#include "finder/SnifferAdBlocker.h"

namespace lumaro {

namespace {

constexpr qsizetype mostRemembered = 256;
/// What a message takes from the page to here, and more.
constexpr std::chrono::milliseconds messageDelay{300};

/// A page that asks for a window gets its own place for what it could go to by itself. Engines let
/// no page go to a data: address, whose content could claim to be anybody's.
NavigationDecision loadHere(const QUrl &url)
{
    const bool may = url.scheme() == u"http" || url.scheme() == u"https" || url == emptyPage();
    return may ? NavigationDecision::LoadHere : NavigationDecision::Cancel;
}

} // namespace

SnifferCoordinator::SnifferCoordinator(SnifferManager &manager, const SnifferAdBlocker &blocker,
                                       Scheduler &scheduler, QObject *parent)
    : QObject(parent)
    , m_manager(&manager)
    , m_blocker(blocker)
    , m_messages(scheduler)
    , m_noting(scheduler)
{
}

NavigationDecision SnifferCoordinator::decide(const NavigationAction &action)
{
    if (action.url.isEmpty())
        return NavigationDecision::Allow;
    report(action.url, std::nullopt);
    return judge(action);
}

NavigationDecision SnifferCoordinator::judge(const NavigationAction &action) const
{
    using enum NavigationDecision;
    using Target = NavigationAction::Target;

    if (!m_blocker.isEnabled())
        return action.target == Target::NewWindow ? loadHere(action.url) : Allow;
    if (m_blocker.isAdOrPopupURL(action.url))
        return Cancel;

    const PageView *const view = m_manager ? m_manager->webView() : nullptr;
    const QString current = view ? view->url().host().toLower() : QString();
    const QString target = action.url.host().toLower();
    const bool areKnown = !current.isEmpty() && !target.isEmpty();
    const bool isSameSite = areKnown && SnifferAdBlocker::isSameOrSubdomain(current, target);
    switch (action.target) {
    case Target::NewWindow:
        return isSameSite && action.isLinkClick ? LoadHere : Cancel;
    case Target::SubFrame:
        return Allow;
    case Target::MainFrame:
        break;
    }
    if (!areKnown || isSameSite)
        return Allow;
    // A frame does not take the page to another site.
    if (!action.sourceIsMainFrame)
        return Cancel;
    const bool isPaidFor =
        action.isLinkClick && m_blocker.isSuspiciousCrossDomainRedirect(current, action.url);
    return isPaidFor ? Cancel : Allow;
}

NavigationDecision SnifferCoordinator::decideNewWindow(const QUrl &url)
{
    if (m_blocker.isEnabled())
        return NavigationDecision::Cancel;
    report(url, std::nullopt);
    return loadHere(url);
}

void SnifferCoordinator::receiveMessage(const QString &handler, const QVariant &body)
{
    const auto message = m_messages.read(handler, body);
    if (!message || !m_manager)
        return;
    if (m_told.size() >= mostRemembered)
        m_told.clear();
    m_told.insert(message->url);
    m_manager->networkMonitor()->observe(*message, m_manager->pageTitle());
}

bool SnifferCoordinator::admits(const QUrl &url, const std::optional<QString> &contentType)
{
    return HLSDetector::inspect(url, contentType, std::nullopt).isHLS && m_messages.admits(url);
}

void SnifferCoordinator::report(const QUrl &url, const std::optional<QString> &contentType)
{
    if (admits(url, contentType))
        note(url, contentType);
}

void SnifferCoordinator::note(const QUrl &url, const std::optional<QString> &contentType)
{
    if (m_manager)
        m_manager->networkMonitor()->observe(url, contentType, std::nullopt, m_manager->pageTitle(),
                                             false);
}

void SnifferCoordinator::reportData(const QUrl &url)
{
    if (m_held.contains(url) || m_held.size() >= mostRemembered || !admits(url, std::nullopt))
        return;
    m_held.append(url);
    if (!m_noting.isPending())
        m_noting.start(messageDelay, [this] { noteHeld(); });
}

void SnifferCoordinator::noteHeld()
{
    const QList<QUrl> held = std::exchange(m_held, {});
    for (const QUrl &url : held) {
        if (!m_told.contains(url))
            note(url, std::nullopt);
    }
}

} // namespace lumaro
