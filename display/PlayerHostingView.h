#pragma once

#include "platform/NotificationCenter.h"

#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// Shows the platform player's picture and takes the mouse on it: a double click asks for full
/// screen, any other press is a click on the picture, and a drag moves the window.
class PlayerHostingView : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    /// Draws the picture, fitted into itself; becomes a child of the view.
    Q_PROPERTY(QQuickItem *picture READ picture WRITE setPicture NOTIFY pictureChanged)
    Q_PROPERTY(lumaro::NotificationCenter *notifications MEMBER m_notifications)

public:
    explicit PlayerHostingView(QQuickItem *parent = nullptr);

    QQuickItem *picture() const { return m_picture; }
    void setPicture(QQuickItem *picture);

Q_SIGNALS:
    void pictureChanged();
    void fullScreenToggleRequested();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    void updateGeometry();

    QPointer<QQuickItem> m_picture;
    NotificationCenter *m_notifications = nullptr;
    QPointF m_pressPosition;
    quint64 m_pressTime = 0;
    bool m_pressWasSecond = false;
};

} // namespace lumaro
