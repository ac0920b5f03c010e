#pragma once

#include "platform/PlayerPage.h"

#include <QHash>
#include <QWebEngineLoadingInfo>
#include <QWebEngineNavigationRequest>
#include <QWebEngineNewWindowRequest>
#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// A player's page in Qt WebEngine. A PlayerPageView shows it: it tells what happens there and does
/// what is asked for here. Main thread.
class EnginePlayerPage : public PlayerPage
{
    Q_OBJECT
    QML_ELEMENT

public:
    using PlayerPage::PlayerPage;

    void evaluate(const QString &script) override { Q_EMIT evaluationRequested(script); }
    void load(const QUrl &url) override;
    void loadHtml(const QString &html, const QUrl &base) override;
    void ask(const QString &script, World world, Answer answer) override;
    void setNavigationPolicy(NavigationPolicy policy) override { m_policy = std::move(policy); }

    // What the view tells and asks.

    /// The value of the script of that number.
    Q_INVOKABLE void answer(int question, const QVariant &value);
    Q_INVOKABLE void tellLoading(const QWebEngineLoadingInfo &info);
    Q_INVOKABLE void decideNavigation(QWebEngineNavigationRequest *request);
    Q_INVOKABLE void decideNewWindow(QWebEngineNewWindowRequest *request);

Q_SIGNALS:
    void loadRequested(const QUrl &url);
    void htmlRequested(const QString &html, const QUrl &base);
    void evaluationRequested(const QString &script);
    void asked(int question, const QString &script, bool isolated);

private:
    bool isOwnLoad(const QUrl &url);
    bool mayGo(const NavigationAction &action) const;

    NavigationPolicy m_policy;
    /// What load() or loadHtml() began, until the engine asks about it.
    QUrl m_ownLoad;
    QHash<int, Answer> m_answers;
    int m_lastQuestion = 0;
};

} // namespace lumaro
