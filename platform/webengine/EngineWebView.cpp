#include "platform/webengine/EngineWebView.h"

namespace lumaro {

EngineWebView::EngineWebView(EngineProfile &profile, const QStringList &messageHandlers,
                             QObject *parent)
    : PageView(parent)
    , m_profile(profile)
    , m_channel(messageHandlers)
{
}

EngineWebView::~EngineWebView()
{
    m_profile.interceptor().setLists(this, {});
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
    m_profile.interceptor().setLists(this, m_lists);
    Q_EMIT scriptsChanged();
}

void EngineWebView::removeAllContentRuleLists()
{
    if (m_lists.isEmpty())
        return;
    m_lists.clear();
    m_profile.interceptor().setLists(this, m_lists);
    Q_EMIT scriptsChanged();
}

void EngineWebView::readConsole(const QString &message)
{
    if (const auto posted = m_channel.read(message))
        Q_EMIT messageReceived(posted->handler, posted->body);
}

} // namespace lumaro
