#include "display/PlayerLayerView.h"

namespace lumaro {

PlayerLayerView::PlayerLayerView(QQuickItem *parent)
    : QQuickItem(parent)
{
    connect(this, &PlayerLayerView::changed, this, &PlayerLayerView::update);
}

PlayerLayerView::~PlayerLayerView()
{
    if (m_view && m_services)
        m_services->surfaces.clear(m_view);
    delete m_view;
}

void PlayerLayerView::componentComplete()
{
    QQuickItem::componentComplete();
    if (!m_services)
        return;
    m_view = new PlayerHostingView(*m_services, this);
    m_view->setSize(size());
    connect(m_view, &PlayerHostingView::fullScreenToggleRequested, this,
            &PlayerLayerView::fullScreenToggleRequested);
    connect(m_view, &PlayerHostingView::draggingChanged, this, &PlayerLayerView::draggingChanged);
    update();
}

void PlayerLayerView::update()
{
    if (!m_view)
        return;
    if (m_recordable)
        m_services->surfaces.setCurrentSurface(m_view);
    else
        m_services->surfaces.clear(m_view);
    m_view->setPicture(m_picture);
    m_view->setPlayer(m_player);
    m_view->setDisplayMode(m_displayMode);
    m_view->setFillScreen(m_fillScreen);
}

void PlayerLayerView::panBy(double amount)
{
    if (m_view)
        m_view->panBy(amount);
}

void PlayerLayerView::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (m_view)
        m_view->setSize(newGeometry.size());
}

} // namespace lumaro
