#pragma once

#include "display/DisplayGeometry.h"
#include "platform/DelayedTask.h"
#include "platform/FaceDetector.h"
#include "platform/MediaPlayer.h"
#include "platform/NotificationCenter.h"
#include "player/PlayerRecordingSurface.h"

#include <QPointer>
#include <QQuickItem>

namespace lumaro {

/// What the view of the picture needs of the rest of the program. Everything outlives it.
class PlayerViewServices : public QObject
{
    Q_OBJECT

public:
    PlayerViewServices(Scheduler &scheduler, Scheduler &idle, NotificationCenter &notifications,
                       PlayerSurfaceRegistry &surfaces, std::shared_ptr<FaceDetector> faceDetector,
                       QObject *parent = nullptr);

    Scheduler &scheduler;
    /// For work that playback must not feel.
    Scheduler &idle;
    NotificationCenter &notifications;
    PlayerSurfaceRegistry &surfaces;
    /// Shared with the work in the background.
    const std::shared_ptr<FaceDetector> faceDetector;
};

/// Shows the player's picture in one of the display modes and takes the mouse on it: a double click
/// asks for full screen, any other press is a click on the picture, and a drag moves the window or,
/// in manual mode, the picture behind its column. In smart mode the column follows the largest
/// face.
class PlayerHostingView : public QQuickItem, public PlayerRecordingSurface
{
    Q_OBJECT

public:
    explicit PlayerHostingView(PlayerViewServices &services, QQuickItem *parent = nullptr);
    ~PlayerHostingView() override;

    /// Shows what `player` plays, now and later.
    void setPlayer(MediaPlayer *player);
    /// Draws the player's picture, and is a VideoSurface if it can be placed; becomes a child of
    /// the player's layer.
    void setPicture(QQuickItem *picture);

    PortraitDisplayMode displayMode() const { return m_displayMode; }
    void setDisplayMode(PortraitDisplayMode mode);
    bool fillScreen() const { return m_fillScreen; }
    /// Kept only: the geometry depends on the display mode alone.
    void setFillScreen(bool fillScreen);

    /// The picture's framing in the reframe modes: -1 its right edge, +1 its left edge.
    double horizontalPan() const { return m_horizontalPan; }
    /// In manual mode, and within what the picture has; in other modes nothing.
    void panBy(double amount);
    /// The user moves the picture.
    bool isDragging() const { return m_drag.has_value(); }
    VideoGravity gravity() const { return m_gravity; }

    /// The visible column, or all of the view.
    QQuickItem *cropLayer() const { return m_cropLayer; }
    /// The player's picture lies in it according to the gravity, and may be larger than what is
    /// seen; `picture` covers only what is.
    QQuickItem *playerLayer() const { return m_playerLayer; }

    QQuickItem *recordingView() override { return this; }
    QRectF recordingRectInView() const override;

Q_SIGNALS:
    void fullScreenToggleRequested();
    void draggingChanged();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    /// Has come as a press before.
    void mouseDoubleClickEvent(QMouseEvent *) override { }
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;

private:
    /// A press in manual mode that has not ended.
    struct Drag
    {
        double pressX = 0; ///< in the window
        double panAtPress = 0;
    };
    /// The last press, and how many came before it in quick succession at one place.
    struct Press
    {
        QPointF position; ///< on the screen
        quint64 time = 0; ///< in milliseconds
        int count = 0;
    };

    void countPress(const QMouseEvent &event);
    bool isFarFromPress(const QMouseEvent &event) const;
    void attachVideoOutput();
    void updateSmartTimer();
    void scheduleTick();
    void trackLargestFace();
    Task<> followFace(double time, std::stop_token stop);
    void setHorizontalPan(double pan);
    void endDrag();
    void updateGravity();
    void updateGeometry();
    void placePicture();

    PlayerViewServices &m_services;
    QPointer<MediaPlayer> m_player;
    QPointer<QQuickItem> m_picture;
    QQuickItem *m_cropLayer;
    QQuickItem *m_playerLayer;
    PortraitDisplayMode m_displayMode = PortraitDisplayMode::normal;
    bool m_fillScreen = false;
    double m_horizontalPan = 0;
    VideoGravity m_gravity = VideoGravity::resizeAspect;

    DelayedTask m_smartTimer;
    std::shared_ptr<VideoOutput> m_videoOutput;
    /// The item that the output is attached to; 0 for none.
    quint64 m_observedItem = 0;
    bool m_isTracking = false;
    /// Tells the times apart that smart mode was entered.
    quint64 m_smartRun = 0;
    std::stop_source m_lifetime;

    std::optional<Drag> m_drag;
    Press m_press;
    bool m_pressMovesWindow = false;
};

} // namespace lumaro
