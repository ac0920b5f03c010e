#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// The soft shadow of a rounded surface, drawn outside the item's own bounds: give it the
/// surface's size and put it below.
class Shadow : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT

    /// Corner radius of the surface, in device-independent pixels; set once, at creation.
    Q_PROPERTY(int radius MEMBER m_radius FINAL)

public:
    explicit Shadow(QQuickItem *parent = nullptr);

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    int m_radius = 12;
};

} // namespace lumaro
