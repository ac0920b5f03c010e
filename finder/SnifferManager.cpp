#include "finder/SnifferManager.h"

#include "finder/PageScripts.h"
#include "finder/SnifferSavedWebsiteStore.h"
#include "finder/WebAddress.h"

namespace lumaro {

SnifferManager::SnifferManager(SnifferSavedWebsiteStore &websites, WallClock clock, QObject *parent)
    : QObject(parent)
    , m_websites(websites)
    , m_networkMonitor(std::move(clock))
{
}

void SnifferManager::setWebView(PageView *view)
{
    m_webView = view;
    refreshNavigationState();
    if (view && !m_automaticNavigation.isEmpty())
        navigate(QUrl(m_automaticNavigation));
}

// Where to go

void SnifferManager::go()
{
    m_automaticNavigation.clear();
    const QString text = m_address.trimmed();
    if (text.isEmpty())
        return;
    if (const auto url = webUrl(text))
        load(*url);
    else
        setErrorMessage(tr("Enter a valid HTTP or HTTPS address."));
}

void SnifferManager::navigate(const QUrl &url)
{
    m_automaticNavigation.clear();
    load(url);
}

void SnifferManager::load(const QUrl &url)
{
    setErrorMessage(QString());
    setAddress(displayAddress(url));
    if (m_webView)
        m_webView->load(url);
    else
        m_automaticNavigation = url;
    if (!std::exchange(m_wantsView, true))
        Q_EMIT wantsViewChanged();
}

void SnifferManager::goBack()
{
    setErrorMessage(QString());
    if (m_webView)
        m_webView->goBack();
}

void SnifferManager::goForward()
{
    setErrorMessage(QString());
    if (m_webView)
        m_webView->goForward();
}

void SnifferManager::reload()
{
    setErrorMessage(QString());
    if (m_webView)
        m_webView->reload();
}

void SnifferManager::stopLoading()
{
    if (m_webView)
        m_webView->stopLoading();
}

void SnifferManager::clearAddress()
{
    m_automaticNavigation.clear();
    if (m_webView) {
        m_webView->stopLoading();
        m_webView->evaluate(mediaStopScript());
        m_webView->loadEmptyPage();
    }
    setAddress(QString());
    setShownPage(QUrl());
    setPageTitle(QString());
    setErrorMessage(QString());
    setIsLoading(false);
}

void SnifferManager::pauseAllMedia()
{
    if (!m_webView)
        return;
    m_webView->pauseAllMediaPlayback();
    m_webView->evaluate(mediaPauseScript());
}

// What the view tells

void SnifferManager::update(const QUrl &url, bool loading, const std::optional<QString> &title)
{
    setIsLoading(loading);
    refreshNavigationState();
    setShownPage(isPage(url) ? url : QUrl());
    if (!isPage(url))
        return;
    setAddress(displayAddress(url));
    if (!title)
        return;
    setPageTitle(*title);
    // Once for each page that came.
    m_websites.recordVisit(url.toString(QUrl::FullyEncoded), *title);
}

void SnifferManager::follow(const QUrl &url)
{
    if (m_isLoading || !isPage(url))
        return;
    setShownPage(url);
    setAddress(displayAddress(url));
}

void SnifferManager::fail(const QUrl &url, const QString &description)
{
    update(url, false, std::nullopt);
    setErrorMessage(description);
}

void SnifferManager::refreshNavigationState()
{
    const bool back = m_webView && m_webView->canGoBack();
    const bool forward = m_webView && m_webView->canGoForward();
    if (back == m_canGoBack && forward == m_canGoForward)
        return;
    m_canGoBack = back;
    m_canGoForward = forward;
    Q_EMIT navigationStateChanged();
}

// Properties

void SnifferManager::setAddress(const QString &text)
{
    if (std::exchange(m_address, text) != text)
        Q_EMIT addressChanged();
}

void SnifferManager::setShownPage(const QUrl &url)
{
    if (m_shownPage == url)
        return;
    m_shownPage = url;
    Q_EMIT shownPageChanged();
}

void SnifferManager::setPageTitle(const QString &title)
{
    if (std::exchange(m_pageTitle, title) != title)
        Q_EMIT pageTitleChanged();
}

void SnifferManager::setIsLoading(bool loading)
{
    if (std::exchange(m_isLoading, loading) != loading)
        Q_EMIT isLoadingChanged();
}

void SnifferManager::setErrorMessage(const QString &message)
{
    if (std::exchange(m_errorMessage, message) != message)
        Q_EMIT errorMessageChanged();
}

} // namespace lumaro
