#include "ui/Icon.h"

#include "ui/IconImages.h"

#include <QQuickWindow>
#include <QSGImageNode>

namespace lumaro {

namespace {

IconImages &family()
{
    static IconImages images(QStringLiteral(":/qt/qml/Lumaro/Ui/icons"));
    return images;
}

} // namespace

Icon::Icon(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    setImplicitSize(m_size, m_size);
}

void Icon::setName(const QString &name)
{
    if (name == m_name)
        return;
    m_name = name;
    polish();
    Q_EMIT nameChanged();
}

void Icon::setSize(int size)
{
    if (size == m_size)
        return;
    m_size = size;
    setImplicitSize(size, size);
    polish();
    Q_EMIT sizeChanged();
}

void Icon::setColor(const QColor &color)
{
    if (color == m_color)
        return;
    m_color = color;
    polish();
    Q_EMIT colorChanged();
}

void Icon::updatePolish()
{
    if (!window())
        return;
    const int pixels = qRound(m_size * window()->effectiveDevicePixelRatio());
    const QImage image = family().image({m_name, pixels, m_color.rgba()});
    if (image.cacheKey() == m_image.cacheKey())
        return;
    m_image = image;
    m_imageChanged = true;
    update();
}

QSGNode *Icon::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    if (m_image.isNull()) {
        delete node;
        return nullptr;
    }
    auto *picture = static_cast<QSGImageNode *>(node);
    if (!picture) {
        picture = window()->createImageNode();
        picture->setOwnsTexture(true);
        picture->setFiltering(QSGTexture::Linear);
        m_imageChanged = true;
    }
    if (m_imageChanged) {
        picture->setTexture(window()->createTextureFromImage(
            m_image, {QQuickWindow::TextureHasAlphaChannel, QQuickWindow::TextureCanUseAtlas}));
        m_imageChanged = false;
    }
    // Whole device pixels, so that thin strokes stay thin.
    const qreal scale = window()->effectiveDevicePixelRatio();
    const auto snapped = [scale](qreal length) { return std::round(length * scale) / scale; };
    const qreal edge = m_image.width() / scale;
    picture->setRect(snapped((width() - edge) / 2), snapped((height() - edge) / 2), edge, edge);
    return picture;
}

void Icon::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        update();
}

void Icon::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemSceneChange || change == ItemDevicePixelRatioHasChanged)
        polish();
    QQuickItem::itemChange(change, data);
}

} // namespace lumaro
