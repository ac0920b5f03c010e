#include "player/YouTubeHostingView.h"

#include <QKeyEvent>
#include <QQuickWindow>

namespace lumaro {

YouTubeHostingView::YouTubeHostingView(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFiltersChildMouseEvents(true);
}

YouTubeHostingView::~YouTubeHostingView()
{
    if (m_player)
        m_player->detach(m_page);
}

void YouTubeHostingView::componentComplete()
{
    QQuickItem::componentComplete();
    if (m_player)
        m_player->attach(m_page, this);
}

bool YouTubeHostingView::childMouseEventFilter(QQuickItem *item, QEvent *event)
{
    // Of touches, Qt makes such besides.
    if (event->type() == QEvent::MouseButtonPress && m_player)
        m_player->surfaceClicked(window());
    return QQuickItem::childMouseEventFilter(item, event);
}

void YouTubeHostingView::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemSceneChange) {
        if (m_window)
            m_window->removeEventFilter(this);
        m_window = data.window;
        if (m_window)
            m_window->installEventFilter(this);
    }
    QQuickItem::itemChange(change, data);
}

bool YouTubeHostingView::holdsFocus() const
{
    const QQuickItem *const focused = m_window ? m_window->activeFocusItem() : nullptr;
    return focused && isAncestorOf(focused);
}

bool YouTubeHostingView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && m_player && holdsFocus()) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
            m_player->inputGiven();
    }
    return QQuickItem::eventFilter(watched, event);
}

} // namespace lumaro
