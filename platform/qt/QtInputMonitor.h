#pragma once

#include "platform/InputMonitor.h"

#include <QKeyEvent>
#include <QObject>
#include <QPointF>

namespace lumaro {

/// Sees the application's key presses and mouse movements before any window does.
class QtInputMonitor final : public QObject, public InputMonitor
{
    Q_OBJECT

public:
    explicit QtInputMonitor(QObject *parent = nullptr);

    void setKeyDownHandler(std::function<bool(const KeyDown &)> handler) override;
    void setMouseMovedHandler(std::function<void(QObject *window)> handler) override;

    bool eventFilter(QObject *receiver, QEvent *event) override;

private:
    bool consumesKeyDown(const QKeyEvent &event) const;

    std::function<bool(const KeyDown &)> m_keyDown;
    std::function<void(QObject *)> m_mouseMoved;
    /// A press that its shortcut-override event already consumed; the press itself follows.
    bool m_consumedByOverride = false;
    QPointF m_mousePosition;
};

} // namespace lumaro
