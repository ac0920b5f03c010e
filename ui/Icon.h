#pragma once

#include <QColor>
#include <QImage>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// One icon of the family in one colour, centred in the item and crisp at every scale factor.
class Icon : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT

    /// The SVG file's base name; empty shows nothing.
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged FINAL)
    /// Edge length in device-independent pixels.
    Q_PROPERTY(int size READ size WRITE setSize NOTIFY sizeChanged FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)

public:
    explicit Icon(QQuickItem *parent = nullptr);

    QString name() const { return m_name; }
    void setName(const QString &name);
    int size() const { return m_size; }
    void setSize(int size);
    QColor color() const { return m_color; }
    void setColor(const QColor &color);

Q_SIGNALS:
    void nameChanged();
    void sizeChanged();
    void colorChanged();

protected:
    void updatePolish() override;
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;

private:
    QString m_name;
    int m_size = 20;
    QColor m_color = Qt::white;
    QImage m_image;
    bool m_imageChanged = false;
};

} // namespace lumaro
