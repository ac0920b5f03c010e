#include "ui/FocusReturn.h"

#include <QQuickWindow>

#include <algorithm>

namespace lumaro {

namespace {

/// Those whose popups are open. Main thread.
QList<FocusReturn *> &remembering()
{
    static QList<FocusReturn *> list;
    return list;
}

bool holds(const QQuickItem *content, const QQuickItem *item)
{
    return content && (content == item || content->isAncestorOf(item));
}

} // namespace

FocusReturn::~FocusReturn()
{
    remembering().removeOne(this);
}

void FocusReturn::remember(const QQuickItem *content)
{
    m_window = content ? content->window() : nullptr;
    m_content = content;
    m_items.clear();
    remembering().removeOne(this);
    QQuickItem *const item = m_window ? m_window->activeFocusItem() : nullptr;
    if (!item)
        return;
    m_items.append(item);
    // A menu's item is gone when what it opened closes.
    const auto &others = remembering();
    const auto outer = std::ranges::find_if(
        others, [item](const FocusReturn *other) { return holds(other->m_content, item); });
    if (outer != others.end())
        m_items.append((*outer)->m_items);
    remembering().append(this);
}

void FocusReturn::giveBack(const QQuickItem *content)
{
    remembering().removeOne(this);
    const auto items = std::exchange(m_items, {});
    const auto item = std::ranges::find_if(items, [](const QPointer<QQuickItem> &candidate) {
        return candidate && candidate->isVisible() && candidate->isEnabled();
    });
    if (!m_window || item == items.end())
        return;
    const QQuickItem *now = m_window->activeFocusItem();
    const bool isTaken =
        now && now != m_window->contentItem() && now->isVisible() && !holds(content, now);
    if (!isTaken)
        (*item)->forceActiveFocus(Qt::PopupFocusReason);
}

} // namespace lumaro
