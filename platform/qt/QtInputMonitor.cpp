#include "platform/qt/QtInputMonitor.h"

#include <QGuiApplication>
#include <QInputMethodQueryEvent>
#include <QQuickItem>
#include <QQuickWindow>

namespace lumaro {

namespace {

bool acceptsText(QObject *object)
{
    if (!object)
        return false;
    QInputMethodQueryEvent query(Qt::ImEnabled);
    QCoreApplication::sendEvent(object, &query);
    return query.value(Qt::ImEnabled).toBool();
}

/// A menu or a dialog inside the window holds the focus.
bool isInsidePopup(const QQuickItem *item)
{
    for (; item; item = item->parentItem()) {
        if (item->inherits("QQuickPopupItem"))
            return true;
    }
    return false;
}

KeyDown describe(const QKeyEvent &event)
{
    const auto *window = qobject_cast<QQuickWindow *>(QGuiApplication::focusWindow());
    const Qt::WindowType type = window ? window->type() : Qt::Window;
    return {
        .key = Qt::Key(event.key()),
        .modifiers = event.modifiers(),
        .isRepeat = event.isAutoRepeat(),
        .inPanel = !window || type == Qt::Dialog || type == Qt::Popup || type == Qt::Tool
            || isInsidePopup(window->activeFocusItem()),
        .windowTitle = window ? window->title() : QString(),
        .inTextView = acceptsText(QGuiApplication::focusObject()),
    };
}

} // namespace

QtInputMonitor::QtInputMonitor(QObject *parent)
    : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

void QtInputMonitor::setKeyDownHandler(std::function<bool(const KeyDown &)> handler)
{
    m_keyDown = std::move(handler);
}

void QtInputMonitor::setMouseMovedHandler(std::function<void(QObject *window)> handler)
{
    m_mouseMoved = std::move(handler);
}

bool QtInputMonitor::consumesKeyDown(const QKeyEvent &event) const
{
    return m_keyDown && m_keyDown(describe(event));
}

bool QtInputMonitor::eventFilter(QObject *receiver, QEvent *event)
{
    // Events pass by once for the window and again for the item that has the focus.
    if (!receiver->isWindowType())
        return false;
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        // Comes before the press and before menus' shortcuts; accepting it keeps them off.
        m_consumedByOverride = consumesKeyDown(*static_cast<QKeyEvent *>(event));
        event->setAccepted(m_consumedByOverride);
        return m_consumedByOverride;
    case QEvent::KeyPress:
        return std::exchange(m_consumedByOverride, false)
            || consumesKeyDown(*static_cast<QKeyEvent *>(event));
    case QEvent::MouseMove:
        // The window system repeats the position when something moves under the pointer.
        if (const QPointF position = static_cast<QMouseEvent *>(event)->globalPosition();
            m_mouseMoved && std::exchange(m_mousePosition, position) != position)
            m_mouseMoved(receiver);
        return false;
    default:
        return false;
    }
}

} // namespace lumaro
