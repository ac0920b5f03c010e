#pragma once

#include "platform/DefaultsValue.h"
#include "platform/DelayedTask.h"

#include <QRect>

#include <optional>

namespace lumaro {

/// Where the main window was, for the next start. Rectangles are in the desktop's coordinates,
/// without the window's frame. Main thread.
class WindowPlacement
{
public:
    enum class State {
        Normal,
        Maximized,
        Passing, ///< full screen or minimised: it comes back as what it was before
        Hidden, ///< it closes
    };

    /// A window that is being moved is stored when it has rested for so long.
    static constexpr std::chrono::milliseconds storeDelay{500};
    /// What the title bar of a window may need above it.
    static constexpr int titleBarHeight = 36;

    /// Both outlive it.
    WindowPlacement(UserDefaults &defaults, Scheduler &scheduler);
    ~WindowPlacement();

    /// Where the window goes; empty when nobody has moved it yet. `screens` are the parts of the
    /// screens that windows may take, the main screen first.
    std::optional<QRect> frame(const QList<QRect> &screens) const;
    bool isMaximized() const { return m_isMaximized; }

    /// The window has been moved or has changed its state.
    void note(const QRect &frame, State state);

private:
    void store();

    DefaultsValue m_stored;
    DelayedTask m_storeTask;
    QRect m_frame;
    bool m_isMaximized = false;
    QRect m_notedFrame;
    State m_notedState = State::Passing;
};

} // namespace lumaro
