#pragma once

#include "platform/ScriptRunner.h"

#include <QUrl>

#include <memory>

namespace lumaro {

class ContentRuleList;

/// The page with nothing in it.
inline QUrl emptyPage()
{
    return QUrl(QStringLiteral("about:blank"));
}

/// False for what a web view shows before it shows anything.
inline bool isPage(const QUrl &url)
{
    return !url.isEmpty() && url != emptyPage();
}

/// A web view as far as settings reach into it. Main thread.
class WebView : public ScriptRunner
{
    Q_OBJECT

public:
    using ScriptRunner::ScriptRunner;

    /// What it shows or loads; empty for nothing.
    virtual QUrl url() const = 0;
    virtual void reload() = 0;

    /// Whatever the view loads from now on follows the lists added.
    virtual void addContentRuleList(std::shared_ptr<const ContentRuleList> list) = 0;
    virtual void removeAllContentRuleLists() = 0;
};

} // namespace lumaro
