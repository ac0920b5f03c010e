#pragma once

#include "display/PlayerHostingView.h"

#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// The player's picture for QML: a PlayerHostingView that follows these properties, and that can be
/// recorded.
class PlayerLayerView : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(lumaro::MediaPlayer *player MEMBER m_player NOTIFY changed)
    Q_PROPERTY(bool fillScreen MEMBER m_fillScreen NOTIFY changed)
    Q_PROPERTY(lumaro::PortraitDisplayMode displayMode MEMBER m_displayMode NOTIFY changed)
    /// Draws the picture.
    Q_PROPERTY(QQuickItem *picture MEMBER m_picture NOTIFY changed)
    /// The picture can be moved behind its column.
    Q_PROPERTY(bool pannable READ isPannable NOTIFY changed)
    /// The user moves the picture behind its column.
    Q_PROPERTY(bool dragging READ isDragging NOTIFY draggingChanged)
    /// False while something else shows what plays.
    Q_PROPERTY(bool recordable MEMBER m_recordable NOTIFY changed)
    /// To be set once.
    Q_PROPERTY(lumaro::PlayerViewServices *services MEMBER m_services NOTIFY changed)

public:
    explicit PlayerLayerView(QQuickItem *parent = nullptr);
    ~PlayerLayerView() override;

    /// Null until the properties have been set.
    PlayerHostingView *hostingView() const { return m_view; }
    bool isPannable() const { return m_displayMode == PortraitDisplayMode::manual; }
    bool isDragging() const { return m_view && m_view->isDragging(); }
    /// As PlayerHostingView::panBy().
    Q_INVOKABLE void panBy(double amount);

Q_SIGNALS:
    void changed();
    void fullScreenToggleRequested();
    void draggingChanged();

protected:
    void componentComplete() override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    void update();

    QPointer<MediaPlayer> m_player;
    bool m_fillScreen = false;
    bool m_recordable = true;
    PortraitDisplayMode m_displayMode = PortraitDisplayMode::normal;
    QPointer<QQuickItem> m_picture;
    QPointer<PlayerViewServices> m_services;
    PlayerHostingView *m_view = nullptr;
};

} // namespace lumaro
