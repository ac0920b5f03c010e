#include "ui/Shadow.h"

#include <QImage>
#include <QQuickWindow>
#include <QSGNinePatchNode>

#include <cmath>

namespace lumaro {

namespace {

constexpr int reach = 24; // how far the shadow goes, in pixels
constexpr int drop = 6; // how much lower than the surface it lies
constexpr int strongest = 110; // alpha under the surface's edge

// Distance from the corner's centre of a rounded rectangle, as alpha: a smooth fall-off outside
// the edge.
int alphaAt(qreal x, qreal y, int radius)
{
    const qreal outside = std::hypot(std::max(x, 0.0), std::max(y, 0.0)) - radius;
    const qreal t = std::clamp((outside + reach / 3.0) / (reach * 4 / 3.0), 0.0, 1.0);
    const qreal fallOff = (1 - t) * (1 - t) * (1 - t);
    return qRound(strongest * fallOff);
}

QImage shadowImage(int radius)
{
    const int corner = reach + radius;
    const int edge = 2 * corner + 1;
    QImage image(edge, edge, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < edge; ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < edge; ++x)
            line[x] = qRgba(0, 0, 0, alphaAt(std::abs(x - corner), std::abs(y - corner), radius));
    }
    return image;
}

} // namespace

Shadow::Shadow(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

QSGNode *Shadow::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    auto *patch = static_cast<QSGNinePatchNode *>(node);
    if (!patch) {
        patch = window()->createNinePatchNode();
        patch->setTexture(window()->createTextureFromImage(shadowImage(m_radius),
                                                           QQuickWindow::TextureHasAlphaChannel));
        const qreal corner = reach + m_radius;
        patch->setPadding(corner, corner, corner, corner);
        patch->setDevicePixelRatio(1);
    }
    patch->setBounds(boundingRect().adjusted(-reach, drop - reach, reach, drop + reach));
    patch->update();
    return patch;
}

void Shadow::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        update();
}

} // namespace lumaro
