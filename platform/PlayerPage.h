#pragma once

#include "platform/NavigationAction.h"
#include "platform/ScriptRunner.h"

#include <QVariant>

namespace lumaro {

/// A web view that shows one page, a site's own player, with no more rights than a page of the web
/// needs: what it asks for beyond that is refused. Main thread; nothing blocks.
class PlayerPage : public ScriptRunner
{
    Q_OBJECT

public:
    /// Where a script runs.
    enum class World {
        Page, ///< among the page's own scripts
        Isolated, ///< on the same document, out of their reach
    };
    /// A script's value as the page has it, so anything; invalid for none.
    using Answer = std::function<void(const QVariant &value)>;

    using ScriptRunner::ScriptRunner;

    /// Ends the page before, and shows another. From now on, what this class tells is of that one.
    virtual void load(const QUrl &url) = 0;
    /// The same with `html`, as if it had come from `base`.
    virtual void loadHtml(const QString &html, const QUrl &base) = 0;
    /// Runs `script` in the page's main frame. There is no answer when the page goes meanwhile.
    virtual void ask(const QString &script, World world, Answer answer) = 0;
    /// Called for whatever the page asks for that is of the web; without one, it goes nowhere.
    virtual void setNavigationPolicy(NavigationPolicy policy) = 0;

Q_SIGNALS:
    /// The page is there, with all that it loads at once, or as much of it as could be had.
    void loadFinished();
    /// There is no page; `description` is a sentence for the user.
    void loadFailed(const QString &description);
    /// The page's process is gone.
    void crashed();
};

} // namespace lumaro
