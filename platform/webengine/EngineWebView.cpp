#include "platform/webengine/EngineWebView.h"

#include "platform/webengine/PageErrors.h"

namespace lumaro {

EngineWebView::~EngineWebView()
{
    if (m_profile)
        m_profile->interceptor().setLists(this, {});
}

void EngineWebView::setProfile(EngineProfile *profile)
{
    m_profile = profile;
    if (profile)
        connect(&profile->interceptor(), &ContentRuleInterceptor::dataRequested, this,
                [this](const QUrl &url, const QUrl &firstParty) {
                    if (isOfSite(firstParty))
                        Q_EMIT dataRequested(url);
                });
}

bool EngineWebView::isOfSite(const QUrl &site) const
{
    // The engine names a site by the part of the host that its owner has registered.
    const QString host = m_url.host();
    return !site.host().isEmpty() && (host == site.host() || host.endsWith(u'.' + site.host()));
}

void EngineWebView::load(const QUrl &url)
{
    m_subFrameUsed = false;
    Q_EMIT loadRequested(url);
}

void EngineWebView::setTitle(const QString &title)
{
    if (std::exchange(m_title, title) != title)
        Q_EMIT titleChanged(title);
}

void EngineWebView::setUrl(const QUrl &url)
{
    if (m_url == url)
        return;
    m_url = url;
    Q_EMIT urlChanged();
}

void EngineWebView::setCanGoBack(bool can)
{
    if (std::exchange(m_canGoBack, can) != can)
        Q_EMIT historyChanged();
}

void EngineWebView::setCanGoForward(bool can)
{
    if (std::exchange(m_canGoForward, can) != can)
        Q_EMIT historyChanged();
}

void EngineWebView::setUserScripts(const QStringList &scripts)
{
    if (m_userScripts == scripts)
        return;
    m_userScripts = scripts;
    Q_EMIT scriptsChanged();
}

QStringList EngineWebView::scripts() const
{
    QStringList scripts{m_channel.openingScript()};
    scripts += m_userScripts;
    scripts += MessageChannel::closingScript();
    for (const auto &list : m_lists) {
        if (const QString script = list->hidingScript(); !script.isEmpty())
            scripts += script;
    }
    return scripts;
}

void EngineWebView::addContentRuleList(std::shared_ptr<const ContentRuleList> list)
{
    m_lists.append(std::move(list));
    if (m_profile)
        m_profile->interceptor().setLists(this, m_lists);
    Q_EMIT scriptsChanged();
}

void EngineWebView::removeAllContentRuleLists()
{
    if (m_lists.isEmpty())
        return;
    m_lists.clear();
    if (m_profile)
        m_profile->interceptor().setLists(this, m_lists);
    Q_EMIT scriptsChanged();
}

void EngineWebView::readConsole(const QString &message)
{
    if (const auto used = m_channel.readUse(message)) {
        m_subFrameUsed = *used == MessageChannel::Use::InSubFrame;
    } else if (const auto posted = m_channel.read(message)) {
        Q_EMIT messageReceived(posted->handler, posted->body);
    }
}

void EngineWebView::tellLoading(const QWebEngineLoadingInfo &info)
{
    switch (info.status()) {
    case QWebEngineLoadingInfo::LoadStartedStatus:
        m_subFrameUsed = false;
        Q_EMIT loadStarted();
        return;
    case QWebEngineLoadingInfo::LoadStoppedStatus:
        Q_EMIT loadStopped();
        return;
    case QWebEngineLoadingInfo::LoadSucceededStatus:
        Q_EMIT loadFinished(m_title);
        return;
    case QWebEngineLoadingInfo::LoadFailedStatus:
        break;
    }
    // A page that tells of an error is a page.
    if (isErrorPage(info))
        Q_EMIT loadFinished(m_title);
    else
        Q_EMIT loadFailed(descriptionOf(info));
}

bool EngineWebView::mayGo(const NavigationAction &action) const
{
    return isForPages(action.url) && (!m_policy || m_policy(action));
}

void EngineWebView::decideNavigation(QWebEngineNavigationRequest *request)
{
    using Request = QWebEngineNavigationRequest;
    NavigationAction action{.url = request->url(),
                            .target = request->isMainFrame() ? NavigationAction::Target::MainFrame
                                                             : NavigationAction::Target::SubFrame,
                            .isLinkClick =
                                request->navigationType() == Request::LinkClickedNavigation};
    // What the user or the program asks for comes from no frame.
    const bool isPagesOwn = action.isLinkClick
        || request->navigationType() == Request::FormSubmittedNavigation
        || request->navigationType() == Request::OtherNavigation
        || request->navigationType() == Request::RedirectNavigation;
    // The engine does not tell which frame asks. It lets a frame of another site move the page once
    // the user has used that frame, and then at any time, so a page whose frame was used last is
    // taken at its frame's word.
    action.sourceIsMainFrame = !isPagesOwn || !m_subFrameUsed;
    if (mayGo(action))
        request->accept();
    else
        request->reject();
}

void EngineWebView::decideNewWindow(QWebEngineNewWindowRequest *request)
{
    const QUrl url = request->requestedUrl();
    // A window of a script's own comes without a click, or the ad blocker has taken it away.
    if (request->isUserInitiated())
        mayGo({.url = url,
               .target = NavigationAction::Target::NewWindow,
               .isLinkClick = true,
               .sourceIsMainFrame = !m_subFrameUsed});
    else if (isForPages(url))
        Q_EMIT newWindowRequested(url);
}

} // namespace lumaro
