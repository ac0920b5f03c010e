#pragma once

#include <QObject>
#include <QString>

#include <functional>

namespace lumaro {

/// A key press as an application-wide monitor sees it, before any view does.
struct KeyDown
{
    Qt::Key key = Qt::Key_unknown;
    Qt::KeyboardModifiers modifiers;
    bool isRepeat = false;

    /// The key window is a panel: a dialog, a menu or another passing surface.
    bool inPanel = false;
    /// The key window's title.
    QString windowTitle;
    /// The first responder edits text.
    bool inTextView = false;
};

/// Local monitors of the application's key and mouse events. Main thread.
class InputMonitor
{
public:
    InputMonitor() = default;
    InputMonitor(const InputMonitor &) = delete;
    InputMonitor &operator=(const InputMonitor &) = delete;
    virtual ~InputMonitor() = default;

    /// `handler` sees every key press first and returns whether it consumes it. Replaces the
    /// handler before it; an empty one removes it.
    virtual void setKeyDownHandler(std::function<bool(const KeyDown &)> handler) = 0;

    /// `handler` is told of every mouse movement, with the window it happened in. Replaces the
    /// handler before it; an empty one removes it.
    virtual void setMouseMovedHandler(std::function<void(QObject *window)> handler) = 0;
};

} // namespace lumaro
