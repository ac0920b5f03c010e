#include "player/YouTubeHostingView.h"

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
    if (event->type() == QEvent::MouseButtonPress && m_player)
        m_player->surfaceClicked(window());
    return QQuickItem::childMouseEventFilter(item, event);
}

} // namespace lumaro
