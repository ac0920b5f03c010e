#pragma once

#include "platform/PlayerPage.h"

#include <QHash>
#include <QWebEngineLoadingInfo>
#include <QWebEngineNavigationRequest>
#include <QWebEngineNewWindowRequest>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace lumaro {

/// A player's page in Qt WebEngine. A PlayerPageView shows it: it tells what happens there and does
/// what is asked for here. Main thread.
class EnginePlayerPage : public PlayerPage
{
    Q_OBJECT
    QML_ELEMENT

public:
    using PlayerPage::PlayerPage;

    void evaluate(const QString &script) override;
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
    /// The engine keeps a document until the next one's first bytes have come, and tells of both
    /// alike. So that what it tells is of the next one, an empty page comes in between.
    enum class Stage {
        Unused, ///< empty, as the engine makes it
        Leaving, ///< the document before is there; the empty page has been asked for
        Loading, ///< the empty page is there, or the next document
        Loaded, ///< that or its failure has been told
    };
    struct Load
    {
        /// The address, or what `html` is relative to.
        QUrl url;
        std::optional<QString> html;
    };

    void begin(Load load);
    void leave();
    void goOn();
    void lookWhatIsThere();
    void finish();
    void fail(const QString &description);
    bool isOwnLoad(const QUrl &url);
    bool mayGo(const NavigationAction &action) const;

    NavigationPolicy m_policy;
    Stage m_stage = Stage::Unused;
    Load m_load;
    /// What was begun here, until the engine asks about it.
    QUrl m_ownLoad;
    /// Something sent the load elsewhere, where it may not go.
    bool m_wasSentAway = false;
    QHash<int, Answer> m_answers;
    int m_lastQuestion = 0;
};

} // namespace lumaro
