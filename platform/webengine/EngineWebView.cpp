#include "platform/webengine/EngineWebView.h"

namespace lumaro {

namespace {

/// What the web itself is made of, and what a page makes of it. Files and other programs are not
/// for pages to reach.
bool isForPages(const QUrl &url)
{
    static const QStringList schemes{QStringLiteral("http"), QStringLiteral("https"),
                                     QStringLiteral("about"), QStringLiteral("blob"),
                                     QStringLiteral("data")};
    return schemes.contains(url.scheme());
}

/// Of an error of the engine's network (net_error_list.h of Chromium), for the user.
QString descriptionOf(const QWebEngineLoadingInfo &info)
{
    switch (info.errorCode()) {
    case -105:
    case -137:
        return EngineWebView::tr("There is no server of that name.");
    case -106:
        return EngineWebView::tr("This computer is not connected to the internet.");
    case -100:
    case -101:
    case -102:
    case -104:
    case -109:
        return EngineWebView::tr("The server cannot be reached.");
    case -7:
    case -118:
        return EngineWebView::tr("The server takes too long to answer.");
    case -111:
    case -115:
    case -120:
    case -130:
        return EngineWebView::tr("The proxy cannot be reached, or does not do what it is asked.");
    case -20:
    case -27:
        return EngineWebView::tr("The ad blocker does not let this page through.");
    case -310:
        return EngineWebView::tr("The page leads round in circles.");
    case -324:
        return EngineWebView::tr("The server sent nothing.");
    default:
        break;
    }
    if (info.errorDomain() == QWebEngineLoadingInfo::CertificateErrorDomain)
        return EngineWebView::tr("The server could not prove who it is.");
    return EngineWebView::tr("The page could not be loaded (%1).").arg(info.errorString());
}

} // namespace

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
        if (*used == MessageChannel::Use::InPage)
            m_subFrameUsed.reset();
        else
            m_subFrameUsed = std::chrono::steady_clock::now();
    } else if (const auto posted = m_channel.read(message)) {
        Q_EMIT messageReceived(posted->handler, posted->body);
    }
}

bool EngineWebView::lastUsedFrameIsMain() const
{
    // The engine does not tell which frame asks. Frames of other sites may only move the page while
    // a use by the user is fresh, which in this engine is for five seconds.
    constexpr std::chrono::seconds freshness{5};
    return !m_subFrameUsed || std::chrono::steady_clock::now() - *m_subFrameUsed > freshness;
}

void EngineWebView::tellLoading(const QWebEngineLoadingInfo &info)
{
    switch (info.status()) {
    case QWebEngineLoadingInfo::LoadStartedStatus:
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
    if (info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain)
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
    action.sourceIsMainFrame = !isPagesOwn || lastUsedFrameIsMain();
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
               .sourceIsMainFrame = lastUsedFrameIsMain()});
    else if (isForPages(url))
        Q_EMIT newWindowRequested(url);
}

} // namespace lumaro
