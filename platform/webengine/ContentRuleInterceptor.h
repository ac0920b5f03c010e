#pragma once

#include "platform/ContentRuleList.h"

#include <QWebEngineUrlRequestInterceptor>

#include <QHash>
#include <QMutex>

namespace lumaro {

/// Blocks what the web views' content rules block, in every frame. The engine does not tell which
/// view asks, so the rules of one view hold for all that share its profile.
class ContentRuleInterceptor final : public QWebEngineUrlRequestInterceptor
{
    Q_OBJECT

public:
    using Lists = QList<std::shared_ptr<const ContentRuleList>>;

    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    /// In place of those that `view` had. Main thread.
    void setLists(const void *view, const Lists &lists);

    void interceptRequest(QWebEngineUrlRequestInfo &info) override;

Q_SIGNALS:
    /// A page of the site `firstParty`, or a worker of it, loads data or media. Pictures, scripts
    /// and the like are not told.
    void dataRequested(const QUrl &url, const QUrl &firstParty);

private:
    bool blocks(const ContentRequest &request);

    QHash<const void *, Lists> m_listsOfViews;
    // The engine may ask on a thread of its own.
    QMutex m_mutex;
    /// Those of all views, each once.
    Lists m_lists;
};

} // namespace lumaro
