#pragma once

#include "platform/ScriptRunner.h"

#include <QPointer>

namespace lumaro {

/// The way from the player model to the web view that currently shows a service's own player.
/// Made on the main thread. Commands may be given on any thread, and are carried out on the main
/// thread; the rest is for the main thread only.
class WebPlayerRegistry
{
public:
    WebPlayerRegistry() = default;
    WebPlayerRegistry(const WebPlayerRegistry &) = delete;
    WebPlayerRegistry &operator=(const WebPlayerRegistry &) = delete;
    virtual ~WebPlayerRegistry() = default;

    /// Makes `view` the one that receives the commands. To be called by whoever shows it, whenever
    /// what it shows may have changed.
    void setCurrentView(ScriptRunner *view) { m_view = view; }
    /// To be called when `view` goes; another that has taken its place stays.
    void clear(const ScriptRunner *view);
    /// Null when none shows the service's player.
    ScriptRunner *currentView() const { return m_view; }

    /// Runs `script` in the current view; does nothing without one.
    void evaluate(const QString &script) const;

    void togglePlayback() const { evaluate(toggleScript()); }
    void pause() const { evaluate(pauseScript()); }
    void skip(double seconds) const { evaluate(skipScript(seconds)); }
    /// `seconds` is not negative.
    void seek(double seconds) const { evaluate(seekScript(seconds)); }
    /// `volume` is between 0 and 1.
    void setVolume(double volume) const { evaluate(volumeScript(volume)); }
    void setMuted(bool muted) const { evaluate(muteScript(muted)); }

private:
    virtual QString toggleScript() const = 0;
    virtual QString pauseScript() const = 0;
    virtual QString skipScript(double seconds) const = 0;
    virtual QString seekScript(double seconds) const = 0;
    virtual QString volumeScript(double volume) const = 0;
    virtual QString muteScript(bool muted) const = 0;

    QPointer<ScriptRunner> m_view;
    /// On the main thread.
    mutable QObject m_home;
};

/// Commands of the page that wraps YouTube's player.
class YouTubePlayerRegistry final : public WebPlayerRegistry
{
    QString toggleScript() const override;
    QString pauseScript() const override;
    QString skipScript(double seconds) const override;
    QString seekScript(double seconds) const override;
    QString volumeScript(double volume) const override;
    QString muteScript(bool muted) const override;
};

/// Commands for the first video element of OK.ru's player page.
class OKVideoPlayerRegistry final : public WebPlayerRegistry
{
    QString toggleScript() const override;
    QString pauseScript() const override;
    QString skipScript(double seconds) const override;
    QString seekScript(double seconds) const override;
    QString volumeScript(double volume) const override;
    QString muteScript(bool muted) const override;
};

} // namespace lumaro
