#pragma once

#include "platform/WebView.h"

#include <QList>
#include <QStringList>

#include <functional>

namespace lumaro {

/// A web view that remembers what was done to it.
class FakeWebView final : public WebView
{
public:
    explicit FakeWebView(const QString &shownAddress = {})
        : address(shownAddress)
    {
    }

    void evaluate(const QString &script) override { log.append(script); }
    QUrl url() const override { return QUrl(address); }
    void reload() override
    {
        log.append(QStringLiteral("reload"));
        if (reloaded)
            reloaded();
    }
    void addContentRuleList(std::shared_ptr<const ContentRuleList> list) override
    {
        lists.append(list);
    }
    void removeAllContentRuleLists() override { lists.clear(); }

    QString address;
    QStringList log;
    QList<std::shared_ptr<const ContentRuleList>> lists;
    /// Called by reload().
    std::function<void()> reloaded;
};

} // namespace lumaro
