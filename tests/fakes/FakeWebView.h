#pragma once

#include "platform/PageView.h"

#include <QList>
#include <QStringList>

#include <functional>

namespace lumaro {

/// A web view that remembers what was done to it.
class FakeWebView final : public PageView
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
    void load(const QUrl &url) override
    {
        address = url.toString(QUrl::FullyEncoded);
        log.append(QStringLiteral("load ") + address);
    }
    void stopLoading() override { log.append(QStringLiteral("stop")); }
    void loadEmptyPage() override { log.append(QStringLiteral("empty page")); }
    bool canGoBack() const override { return mayGoBack; }
    bool canGoForward() const override { return mayGoForward; }
    void pauseAllMediaPlayback() override { log.append(QStringLiteral("pause")); }
    void goBack() override { log.append(QStringLiteral("back")); }
    void goForward() override { log.append(QStringLiteral("forward")); }
    void addContentRuleList(std::shared_ptr<const ContentRuleList> list) override
    {
        lists.append(list);
    }
    void removeAllContentRuleLists() override { lists.clear(); }
    void setUserScripts(const QStringList &scripts) override { userScripts = scripts; }
    void setNavigationPolicy(NavigationPolicy newPolicy) override { policy = newPolicy; }

    QString address;
    QStringList log;
    QStringList userScripts;
    NavigationPolicy policy;
    bool mayGoBack = false;
    bool mayGoForward = false;
    QList<std::shared_ptr<const ContentRuleList>> lists;
    /// Called by reload().
    std::function<void()> reloaded;
};

} // namespace lumaro
