#include "finder/SnifferWindowController.h"

#include "finder/SnifferBrowserTabs.h"
#include "platform/WindowFrame.h"

namespace lumaro {

namespace {

QString frameKey()
{
    return QStringLiteral("Lumaro.M3U8SnifferWindow");
}

} // namespace

SnifferWindowController::SnifferWindowController(const Parts &parts, QObject *parent)
    : QObject(parent)
    , m_tabs(parts.tabs)
    , m_notifications(parts.notifications)
    , m_scheduler(parts.scheduler)
    , m_storedFrame(parts.defaults, parts.scheduler, frameKey())
    , m_frame(frameFrom(m_storedFrame.read().toObject()))
{
}

SnifferWindowController::~SnifferWindowController()
{
    if (m_hiding)
        m_scheduler.cancel(*m_hiding);
}

void SnifferWindowController::setFrame(const QRect &frame)
{
    if (frame.isEmpty() || m_frame == frame)
        return;
    m_frame = frame;
    m_storedFrame.write(storedFrame(frame));
    Q_EMIT frameChanged();
}

QRect SnifferWindowController::placedFrame(const QRect &screen, const QSize &size) const
{
    QRect frame = m_frame;
    if (frame.isEmpty()) {
        frame.setSize(size);
        frame.moveCenter(screen.center());
    }
    return constrainedFrame(frame, screen);
}

void SnifferWindowController::show()
{
    // What was about to hide it no longer counts.
    if (m_hiding)
        m_scheduler.cancel(*std::exchange(m_hiding, std::nullopt));
    m_keyWindow = KeyWindow::Finder;
    if (!std::exchange(m_isShown, true))
        Q_EMIT isShownChanged();
    Q_EMIT frontRequested();
}

bool SnifferWindowController::windowShouldClose()
{
    scheduleHide(false);
    return false;
}

void SnifferWindowController::keyWindowChanged(KeyWindow key)
{
    m_keyWindow = key;
    // Whoever goes to another program comes back to the page that was open.
    if (m_isShown && key == KeyWindow::Other && !m_hasSheet)
        scheduleHide(true);
}

void SnifferWindowController::scheduleHide(bool onlyIfStillInactive)
{
    if (m_hiding)
        m_scheduler.cancel(*m_hiding);
    m_hiding = m_scheduler.callAfter(Scheduler::Duration::zero(), [this, onlyIfStillInactive] {
        m_hiding.reset();
        if (m_hasSheet)
            return;
        if (!onlyIfStillInactive || m_keyWindow == KeyWindow::Other)
            hide();
    });
}

void SnifferWindowController::hide()
{
    if (!m_isShown)
        return;
    m_notifications.post(QString::fromUtf16(notification::snifferWindowDidClose));
    m_tabs.pauseAllTabsMedia();
    Q_EMIT hiding();
    m_isShown = false;
    Q_EMIT isShownChanged();
}

} // namespace lumaro
