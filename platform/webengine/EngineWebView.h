#pragma once

#include "platform/PageView.h"
#include "platform/webengine/EngineProfile.h"
#include "platform/webengine/MessageChannel.h"

#include <QWebEngineLoadingInfo>
#include <QWebEngineNavigationRequest>
#include <QWebEngineNewWindowRequest>
#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// A web view of Qt WebEngine, for models. An EngineView shows it: it tells what happens there and
/// does what is asked for here. Main thread.
class EngineWebView : public PageView
{
    Q_OBJECT
    QML_ELEMENT
    /// What the view shares with others; set once, before anything else.
    Q_PROPERTY(lumaro::EngineProfile *profile READ profile WRITE setProfile)
    /// The message handlers' names, which are identifiers; set once, before anything else.
    Q_PROPERTY(QStringList messageHandlers WRITE setMessageHandlers READ messageHandlers)
    /// What the view shows or loads, as it tells.
    Q_PROPERTY(QUrl url READ url WRITE setUrl NOTIFY urlChanged)
    /// The page's title, as the view tells.
    Q_PROPERTY(QString title READ title WRITE setTitle)
    /// Where the view could go, as it tells.
    Q_PROPERTY(bool canGoBack READ canGoBack WRITE setCanGoBack NOTIFY historyChanged)
    Q_PROPERTY(bool canGoForward READ canGoForward WRITE setCanGoForward NOTIFY historyChanged)
    /// For every frame, at document start, out of the page's reach and before all others.
    Q_PROPERTY(QString isolatedScript READ isolatedScript CONSTANT)
    /// For every frame, at document start, in this order.
    Q_PROPERTY(QStringList scripts READ scripts NOTIFY scriptsChanged)

public:
    using PageView::PageView;
    ~EngineWebView() override;

    EngineProfile *profile() const { return m_profile; }
    void setProfile(EngineProfile *profile);
    QStringList messageHandlers() const { return m_channel.handlers(); }
    void setMessageHandlers(const QStringList &names) { m_channel.setHandlers(names); }
    const QString &title() const { return m_title; }
    void setTitle(const QString &title);

    QUrl url() const override { return m_url; }
    void setUrl(const QUrl &url);
    void load(const QUrl &url) override;
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
    void pauseAllMediaPlayback() override { Q_EMIT pauseRequested(m_channel.pausingScript()); }

    void setUserScripts(const QStringList &scripts) override;
    void setNavigationPolicy(NavigationPolicy policy) override { m_policy = std::move(policy); }
    QString isolatedScript() const { return m_channel.receivingScript(); }
    QStringList scripts() const;

    void addContentRuleList(std::shared_ptr<const ContentRuleList> list) override;
    void removeAllContentRuleLists() override;

    // What the view tells and asks.

    /// What the page writes to its console.
    Q_INVOKABLE void readConsole(const QString &message);
    Q_INVOKABLE void tellLoading(const QWebEngineLoadingInfo &info);
    /// The server has begun to answer, or asks who the user is.
    Q_INVOKABLE void tellAnswer() { Q_EMIT answerBegan(); }
    Q_INVOKABLE void decideNavigation(QWebEngineNavigationRequest *request);
    Q_INVOKABLE void decideNewWindow(QWebEngineNewWindowRequest *request);

Q_SIGNALS:
    void scriptsChanged();
    void loadRequested(const QUrl &url);
    void stopRequested();
    void backRequested();
    void forwardRequested();
    void reloadRequested();
    void evaluationRequested(const QString &script);
    /// To be run where the isolated script runs.
    void pauseRequested(const QString &script);

private:
    bool mayGo(const NavigationAction &action) const;
    bool isOfSite(const QUrl &site) const;

    QPointer<EngineProfile> m_profile;
    MessageChannel m_channel;
    NavigationPolicy m_policy;
    /// The user last clicked or pressed a key in a frame of the page rather than the page itself.
    bool m_subFrameUsed = false;
    QUrl m_url;
    QString m_title;
    bool m_canGoBack = false;
    bool m_canGoForward = false;
    QStringList m_userScripts;
    ContentRuleInterceptor::Lists m_lists;
};

} // namespace lumaro
