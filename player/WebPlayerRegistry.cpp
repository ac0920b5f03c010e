#include "player/WebPlayerRegistry.h"

#include <QLocale>
#include <QThread>

#include <cmath>

namespace lumaro {

namespace {

/// The shortest decimal text that names the double, always with a fractional part unless it needs
/// an exponent.
QString decimalText(double value)
{
    constexpr double smallest = 1e-4;
    constexpr double largest = 0x1p54;
    const double size = std::abs(value);
    const bool needsExponent = size != 0 && (size < smallest || size >= largest);
    const QString text =
        QString::number(value, needsExponent ? 'e' : 'f', QLocale::FloatingPointShortest);
    return needsExponent || text.contains(u'.') ? text : text + u".0";
}

QString boolText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

/// A script that does `action` to the page's first video element, if there is one.
QString withVideoElement(const QString &action)
{
    return u"var v=document.querySelector('video'); if(v){" + action + u'}';
}

} // namespace

void WebPlayerRegistry::clear(const ScriptRunner *view)
{
    if (m_view == view)
        m_view = nullptr;
}

void WebPlayerRegistry::evaluate(const QString &script) const
{
    if (QThread::currentThread() != m_home.thread())
        QMetaObject::invokeMethod(&m_home, [this, script] { evaluate(script); });
    else if (m_view)
        m_view->evaluate(script);
}

QString YouTubePlayerRegistry::toggleScript() const
{
    return QStringLiteral("varnToggle();");
}

QString YouTubePlayerRegistry::pauseScript() const
{
    return QStringLiteral("if(player&&player.pauseVideo){player.pauseVideo();}");
}

QString YouTubePlayerRegistry::skipScript(double seconds) const
{
    return u"varnSkip(" + decimalText(seconds) + u");";
}

QString YouTubePlayerRegistry::seekScript(double seconds) const
{
    return u"if(player&&player.seekTo){player.seekTo(" + decimalText(seconds) + u",true);}";
}

QString YouTubePlayerRegistry::volumeScript(double volume) const
{
    return u"varnSetVolume(" + decimalText(volume) + u");";
}

QString YouTubePlayerRegistry::muteScript(bool muted) const
{
    return u"varnSetMuted(" + boolText(muted) + u");";
}

QString OKVideoPlayerRegistry::toggleScript() const
{
    return withVideoElement(QStringLiteral("v.paused?v.play():v.pause();"));
}

QString OKVideoPlayerRegistry::pauseScript() const
{
    return withVideoElement(QStringLiteral("v.pause();"));
}

QString OKVideoPlayerRegistry::skipScript(double seconds) const
{
    return withVideoElement(u"v.currentTime=Math.max(0,v.currentTime+(" + decimalText(seconds)
                            + u"));");
}

QString OKVideoPlayerRegistry::seekScript(double seconds) const
{
    return withVideoElement(u"v.currentTime=" + decimalText(seconds) + u';');
}

QString OKVideoPlayerRegistry::volumeScript(double volume) const
{
    return withVideoElement(u"v.muted=false;v.volume=" + decimalText(volume) + u';');
}

QString OKVideoPlayerRegistry::muteScript(bool muted) const
{
    return withVideoElement(u"v.muted=" + boolText(muted) + u';');
}

} // namespace lumaro
