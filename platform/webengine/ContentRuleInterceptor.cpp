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
    const QMutexLocker lock(&m_mutex);
    if (lists.isEmpty())
        m_lists.remove(view);
    else
        m_lists.insert(view, lists);
}

void ContentRuleInterceptor::interceptRequest(QWebEngineUrlRequestInfo &info)
{
    info.block(blocks({info.requestUrl(), info.firstPartyUrl(), typeOf(info.resourceType())}));
}

bool ContentRuleInterceptor::blocks(const ContentRequest &request)
{
    QSet<std::shared_ptr<const ContentRuleList>> lists;
    {
        const QMutexLocker lock(&m_mutex);
        for (const Lists &some : std::as_const(m_lists))
            lists += QSet(some.begin(), some.end());
    }
    return std::ranges::any_of(lists,
                               [&request](const auto &list) { return list->blocks(request); });
}

} // namespace lumaro
