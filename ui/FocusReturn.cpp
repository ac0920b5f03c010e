#include "ui/FocusReturn.h"

#include <QQuickWindow>

namespace lumaro {

void FocusReturn::remember(const QQuickItem *content)
{
    m_window = content ? content->window() : nullptr;
    m_item = m_window ? m_window->activeFocusItem() : nullptr;
}

void FocusReturn::giveBack(const QQuickItem *content)
{
    if (!m_window || !m_item || !m_item->isVisible() || !m_item->isEnabled())
        return;
    const QQuickItem *now = m_window->activeFocusItem();
    const bool isTaken = now && now != m_window->contentItem() && now->isVisible() && now != content
        && !(content && content->isAncestorOf(now));
    if (!isTaken)
        m_item->forceActiveFocus(Qt::PopupFocusReason);
    m_item.clear();
}

} // namespace lumaro
