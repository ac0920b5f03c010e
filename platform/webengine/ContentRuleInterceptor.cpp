#include "platform/webengine/ContentRuleInterceptor.h"

#include <QSet>

#include <algorithm>

namespace lumaro {

namespace {

ResourceType typeOf(QWebEngineUrlRequestInfo::ResourceType type)
{
    using Info = QWebEngineUrlRequestInfo;
    switch (type) {
    case Info::ResourceTypeMainFrame:
    case Info::ResourceTypeSubFrame:
    case Info::ResourceTypeNavigationPreloadMainFrame:
    case Info::ResourceTypeNavigationPreloadSubFrame:
        return ResourceType::Document;
    case Info::ResourceTypeStylesheet:
        return ResourceType::StyleSheet;
    case Info::ResourceTypeScript:
    case Info::ResourceTypeWorker:
    case Info::ResourceTypeSharedWorker:
    case Info::ResourceTypeServiceWorker:
        return ResourceType::Script;
    case Info::ResourceTypeImage:
    case Info::ResourceTypeFavicon:
        return ResourceType::Image;
    case Info::ResourceTypeFontResource:
        return ResourceType::Font;
    case Info::ResourceTypeMedia:
        return ResourceType::Media;
    case Info::ResourceTypePing:
    case Info::ResourceTypeCspReport:
        return ResourceType::Ping;
    case Info::ResourceTypeWebSocket:
        return ResourceType::WebSocket;
    default:
        return ResourceType::Raw;
    }
}

} // namespace

void ContentRuleInterceptor::setLists(const void *view, const Lists &lists)
{
    if (lists.isEmpty())
        m_listsOfViews.remove(view);
    else
        m_listsOfViews.insert(view, lists);
    QSet<std::shared_ptr<const ContentRuleList>> all;
    for (const Lists &some : std::as_const(m_listsOfViews))
        all += QSet(some.begin(), some.end());
    const QMutexLocker lock(&m_mutex);
    m_lists = all.values();
}

void ContentRuleInterceptor::interceptRequest(QWebEngineUrlRequestInfo &info)
{
    const ResourceType type = typeOf(info.resourceType());
    const bool isBlocked = blocks({info.requestUrl(), info.firstPartyUrl(), type});
    info.block(isBlocked);
    if (!isBlocked && (type == ResourceType::Raw || type == ResourceType::Media))
        Q_EMIT dataRequested(info.requestUrl(), info.firstPartyUrl());
}

bool ContentRuleInterceptor::blocks(const ContentRequest &request)
{
    Lists lists;
    {
        const QMutexLocker lock(&m_mutex);
        lists = m_lists;
    }
    return std::ranges::any_of(std::as_const(lists),
                               [&request](const auto &list) { return list->blocks(request); });
}

} // namespace lumaro
