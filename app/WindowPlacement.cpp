#include "app/WindowPlacement.h"

#include "platform/WindowFrame.h"

namespace lumaro {

namespace {

QString maximizedKey()
{
    return QStringLiteral("maximized");
}

} // namespace

WindowPlacement::WindowPlacement(UserDefaults &defaults, Scheduler &scheduler)
    : m_stored(defaults, scheduler, QStringLiteral("Lumaro.MainWindow.Placement"))
    , m_storeTask(scheduler)
{
    const QJsonObject stored = m_stored.read().toObject();
    m_frame = frameFrom(stored);
    m_isMaximized = stored.value(maximizedKey()).toBool();
}

WindowPlacement::~WindowPlacement()
{
    if (m_storeTask.isPending())
        store();
}

std::optional<QRect> WindowPlacement::frame(const QList<QRect> &screens) const
{
    if (m_frame.isEmpty() || screens.isEmpty())
        return std::nullopt;
    return constrainedFrame(m_frame, screenOf(m_frame, screens).adjusted(0, titleBarHeight, 0, 0));
}

void WindowPlacement::note(const QRect &frame, State state)
{
    if (state == State::Hidden) {
        if (m_storeTask.isPending())
            store();
        return;
    }
    m_storeTask.cancel();
    if (state == State::Passing)
        return;
    // The size may arrive before the news that the window is maximised or fills the screen.
    m_notedFrame = frame;
    m_notedState = state;
    m_storeTask.start(storeDelay, [this] { store(); });
}

void WindowPlacement::store()
{
    m_storeTask.cancel();
    const bool isMaximized = m_notedState == State::Maximized;
    const QRect frame = isMaximized || m_notedFrame.isEmpty() ? m_frame : m_notedFrame;
    if (m_frame == frame && m_isMaximized == isMaximized)
        return;
    m_frame = frame;
    m_isMaximized = isMaximized;
    QJsonObject stored = storedFrame(frame);
    stored.insert(maximizedKey(), isMaximized);
    m_stored.write(stored);
}

} // namespace lumaro
