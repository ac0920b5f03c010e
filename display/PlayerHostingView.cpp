#include "display/PlayerHostingView.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QStyleHints>

#include <cmath>

namespace lumaro {

PlayerHostingView::PlayerHostingView(QQuickItem *parent)
    : QQuickItem(parent)
{
    setAcceptedMouseButtons(Qt::LeftButton);
    setClip(true);
}

void PlayerHostingView::setPicture(QQuickItem *picture)
{
    if (m_picture == picture)
        return;
    m_picture = picture;
    if (m_picture)
        m_picture->setParentItem(this);
    updateGeometry();
    Q_EMIT pictureChanged();
}

void PlayerHostingView::mousePressEvent(QMouseEvent *event)
{
    // The second press of a double click comes as a press of its own first.
    const auto sinceLastPress = event->timestamp() - std::exchange(m_pressTime, event->timestamp());
    const QPointF from = std::exchange(m_pressPosition, event->globalPosition());
    const QStyleHints &hints = *QGuiApplication::styleHints();
    const QPointF moved = m_pressPosition - from;
    const bool isSecond = sinceLastPress < quint64(hints.mouseDoubleClickInterval())
        && std::max(std::abs(moved.x()), std::abs(moved.y())) < hints.mouseDoubleClickDistance();
    m_pressWasSecond = isSecond && !m_pressWasSecond;
    if (m_notifications && !m_pressWasSecond)
        m_notifications->post(QString::fromUtf16(notification::playerSurfaceClicked), window());
}

void PlayerHostingView::mouseDoubleClickEvent(QMouseEvent *)
{
    Q_EMIT fullScreenToggleRequested();
}

void PlayerHostingView::mouseMoveEvent(QMouseEvent *event)
{
    // A window that moved with the very press would swallow the second click of a double click.
    const double distance = (event->globalPosition() - m_pressPosition).manhattanLength();
    const bool fullScreen = window()->visibility() == QWindow::FullScreen;
    if (!fullScreen && distance >= QGuiApplication::styleHints()->startDragDistance())
        window()->startSystemMove();
}

void PlayerHostingView::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    updateGeometry();
}

void PlayerHostingView::updateGeometry()
{
    if (m_picture) {
        m_picture->setPosition({0, 0});
        m_picture->setSize(size());
    }
}

} // namespace lumaro
