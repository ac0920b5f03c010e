#pragma once

#include "platform/PageView.h"
#include "platform/webengine/EngineProfile.h"
#include "platform/webengine/MessageChannel.h"

#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// A web view of Qt WebEngine, for models. An EngineView shows it: it tells what happens there and
/// does what is asked for here. Main thread.
class EngineWebView : public PageView
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by whoever has the models.")
    /// What the view shows or loads, as it tells.
    Q_PROPERTY(QUrl url READ url WRITE setUrl NOTIFY urlChanged)
    /// Where the view could go, as it tells.
    Q_PROPERTY(bool canGoBack READ canGoBack WRITE setCanGoBack NOTIFY historyChanged)
    Q_PROPERTY(bool canGoForward READ canGoForward WRITE setCanGoForward NOTIFY historyChanged)
    /// For every frame, at document start, in this order.
    Q_PROPERTY(QStringList scripts READ scripts NOTIFY scriptsChanged)

public:
    /// The user scripts may post to the handlers. `profile` outlives the view.
    EngineWebView(EngineProfile &profile, const QStringList &messageHandlers,
                  QObject *parent = nullptr);
    ~EngineWebView() override;

    QUrl url() const override { return m_url; }
    void setUrl(const QUrl &url);
    void load(const QUrl &url) override { Q_EMIT loadRequested(url); }
    void stopLoading() override { Q_EMIT stopRequested(); }
    void loadEmptyPage() override { load(emptyPage()); }
    bool canGoBack() const override { return m_canGoBack; }
    void setCanGoBack(bool can);
    bool canGoForward() const override { return m_canGoForward; }
    void setCanGoForward(bool can);
    void goBack() override { Q_EMIT backRequested(); }
    void goForward() override { Q_EMIT forwardRequested(); }
    void reload() override { Q_EMIT reloadRequested(); }
    void evaluate(const QString &script) override { Q_EMIT evaluationRequested(script); }

    /// For every frame that is loaded from now on, before the page's own scripts.
    void setUserScripts(const QStringList &scripts);
    QStringList scripts() const;

    void addContentRuleList(std::shared_ptr<const ContentRuleList> list) override;
    void removeAllContentRuleLists() override;

    /// What the page writes to its console.
    Q_INVOKABLE void readConsole(const QString &message);

Q_SIGNALS:
    void urlChanged();
    void scriptsChanged();
    void historyChanged();
    void loadRequested(const QUrl &url);
    void stopRequested();
    void backRequested();
    void forwardRequested();
    void reloadRequested();
    void evaluationRequested(const QString &script);
    /// Any page can have this sent, with whatever it likes.
    void messageReceived(const QString &handler, const QVariant &body);

private:
    EngineProfile &m_profile;
    MessageChannel m_channel;
    QUrl m_url;
    bool m_canGoBack = false;
    bool m_canGoForward = false;
    QStringList m_userScripts;
    ContentRuleInterceptor::Lists m_lists;
};

} // namespace lumaro
