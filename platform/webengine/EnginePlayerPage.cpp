#include "platform/webengine/EnginePlayerPage.h"

#include "platform/webengine/PageErrors.h"

#include <QCoreApplication>
#include <QJSValue>

namespace lumaro {

void EnginePlayerPage::load(const QUrl &url)
{
    m_answers.clear();
    m_ownLoad = url;
    Q_EMIT loadRequested(url);
}

void EnginePlayerPage::loadHtml(const QString &html, const QUrl &base)
{
    m_answers.clear();
    // The engine makes an address of the page's text; pages themselves cannot go to such.
    m_ownLoad = QUrl(QStringLiteral("data:"));
    Q_EMIT htmlRequested(html, base);
}

void EnginePlayerPage::ask(const QString &script, World world, Answer answer)
{
    m_answers[++m_lastQuestion] = std::move(answer);
    Q_EMIT asked(m_lastQuestion, script, world == World::Isolated);
}

void EnginePlayerPage::answer(int question, const QVariant &value)
{
    const Answer answer = m_answers.take(question);
    if (!answer)
        return;
    // Of objects and arrays, QML hands on its own value.
    answer(value.metaType() == QMetaType::fromType<QJSValue>() ? value.value<QJSValue>().toVariant()
                                                               : value);
}

void EnginePlayerPage::tellLoading(const QWebEngineLoadingInfo &info)
{
    switch (info.status()) {
    case QWebEngineLoadingInfo::LoadSucceededStatus:
        Q_EMIT loadFinished();
        return;
    case QWebEngineLoadingInfo::LoadFailedStatus:
        if (info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain)
            Q_EMIT loadFailed(QCoreApplication::translate("EnginePlayerPage",
                                                          "The site answers with an error (%1).")
                                  .arg(info.errorCode()));
        else
            Q_EMIT loadFailed(descriptionOf(info));
        return;
    case QWebEngineLoadingInfo::LoadStartedStatus:
    case QWebEngineLoadingInfo::LoadStoppedStatus:
        return;
    }
}

bool EnginePlayerPage::isOwnLoad(const QUrl &url)
{
    const bool isHtml = m_ownLoad.scheme() == u"data";
    if (m_ownLoad.isEmpty() || (isHtml ? url.scheme() != u"data" : url != m_ownLoad))
        return false;
    m_ownLoad.clear();
    return true;
}

bool EnginePlayerPage::mayGo(const NavigationAction &action) const
{
    return isForPages(action.url) && m_policy && m_policy(action);
}

void EnginePlayerPage::decideNavigation(QWebEngineNavigationRequest *request)
{
    using Request = QWebEngineNavigationRequest;
    const bool accepted = (request->isMainFrame() && isOwnLoad(request->url()))
        || mayGo({.url = request->url(),
                  .target = request->isMainFrame() ? NavigationAction::Target::MainFrame
                                                   : NavigationAction::Target::SubFrame,
                  .isLinkClick = request->navigationType() == Request::LinkClickedNavigation});
    if (accepted)
        request->accept();
    else
        request->reject();
}

void EnginePlayerPage::decideNewWindow(QWebEngineNewWindowRequest *request)
{
    (void)mayGo({.url = request->requestedUrl(),
                 .target = NavigationAction::Target::NewWindow,
                 .isLinkClick = request->isUserInitiated()});
}

} // namespace lumaro
