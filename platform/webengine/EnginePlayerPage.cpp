#include "platform/webengine/EnginePlayerPage.h"

#include "platform/webengine/PageErrors.h"

#include <QCoreApplication>
#include <QJSValue>

namespace lumaro {

namespace {

const QUrl &emptyPage()
{
    static const QUrl url(QStringLiteral("about:blank"));
    return url;
}

} // namespace

void EnginePlayerPage::load(const QUrl &url)
{
    begin({.url = url, .html = {}});
}

void EnginePlayerPage::loadHtml(const QString &html, const QUrl &base)
{
    begin({.url = base, .html = html});
}

void EnginePlayerPage::begin(Load load)
{
    m_answers.clear();
    m_load = std::move(load);
    if (m_stage == Stage::Unused)
        goOn();
    else if (m_stage != Stage::Leaving)
        leave();
}

void EnginePlayerPage::leave()
{
    m_stage = Stage::Leaving;
    m_ownLoad = emptyPage();
    Q_EMIT loadRequested(m_ownLoad);
}

void EnginePlayerPage::goOn()
{
    m_stage = Stage::Loading;
    m_wasSentAway = false;
    // The engine makes an address of the page's text; pages themselves cannot go to such.
    m_ownLoad = m_load.html ? QUrl(QStringLiteral("data:")) : m_load.url;
    if (m_load.html)
        Q_EMIT htmlRequested(*m_load.html, m_load.url);
    else
        Q_EMIT loadRequested(m_load.url);
}

void EnginePlayerPage::evaluate(const QString &script)
{
    if (m_stage != Stage::Leaving)
        Q_EMIT evaluationRequested(script);
}

void EnginePlayerPage::ask(const QString &script, World world, Answer answer)
{
    m_answers[++m_lastQuestion] = std::move(answer);
    // A document that is about to go is only asked whether it still moves.
    const QString question = m_stage == Stage::Leaving ? QStringLiteral("undefined") : script;
    Q_EMIT asked(m_lastQuestion, question, world == World::Isolated);
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
    using Info = QWebEngineLoadingInfo;
    if (info.status() == Info::LoadStartedStatus)
        return;
    if (m_stage == Stage::Leaving) {
        if (info.url() != emptyPage())
            return;
        if (info.status() == Info::LoadSucceededStatus)
            goOn();
        else
            leave();
        return;
    }
    if (info.status() == Info::LoadSucceededStatus)
        finish();
    else if (info.status() == Info::LoadStoppedStatus)
        lookWhatIsThere();
    else if (isErrorPage(info))
        fail(QCoreApplication::translate("EnginePlayerPage", "The site answers with an error (%1).")
                 .arg(info.errorCode()));
    else
        fail(descriptionOf(info));
}

void EnginePlayerPage::lookWhatIsThere()
{
    if (m_stage != Stage::Loading)
        return;
    ask(QStringLiteral("location.href"), World::Isolated, [this](const QVariant &address) {
        if (m_stage != Stage::Loading)
            return;
        if (address.toString() != emptyPage().toString())
            finish();
        else if (m_wasSentAway)
            fail(QCoreApplication::translate(
                "EnginePlayerPage", "The site leads to another page in place of its player."));
        else
            fail(QCoreApplication::translate("EnginePlayerPage",
                                             "What the site sends is not a page."));
    });
}

void EnginePlayerPage::finish()
{
    m_stage = Stage::Loaded;
    Q_EMIT loadFinished();
}

void EnginePlayerPage::fail(const QString &description)
{
    m_stage = Stage::Loaded;
    Q_EMIT loadFailed(description);
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
    m_wasSentAway = m_wasSentAway || (!accepted && request->isMainFrame());
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
