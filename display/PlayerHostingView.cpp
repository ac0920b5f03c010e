#include "display/PlayerHostingView.h"

#include "display/SmartReframe.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QStyleHints>

#include <cmath>

namespace lumaro {

PlayerViewServices::PlayerViewServices(Scheduler &scheduler_, Scheduler &idle_,
                                       NotificationCenter &notifications_,
                                       PlayerSurfaceRegistry &surfaces_,
                                       std::shared_ptr<FaceDetector> faceDetector_, QObject *parent)
    : QObject(parent)
    , scheduler(scheduler_)
    , idle(idle_)
    , notifications(notifications_)
    , surfaces(surfaces_)
    , faceDetector(std::move(faceDetector_))
{
}

PlayerHostingView::PlayerHostingView(PlayerViewServices &services, QQuickItem *parent)
    : QQuickItem(parent)
    , m_services(services)
    , m_cropLayer(new QQuickItem(this))
    , m_playerLayer(new QQuickItem(m_cropLayer))
    , m_smartTimer(services.scheduler)
{
    setAcceptedMouseButtons(Qt::LeftButton);
    setClip(true);
}

PlayerHostingView::~PlayerHostingView()
{
    m_lifetime.request_stop();
}

// The player

void PlayerHostingView::setPlayer(MediaPlayer *player)
{
    if (m_player != player) {
        if (m_player)
            m_player->disconnect(this);
        m_player = player;
        // Each player numbers its own items.
        m_observedItem = 0;
        m_videoOutput.reset();
        if (m_player) {
            connect(m_player, &MediaPlayer::currentItemChanged, this,
                    &PlayerHostingView::attachVideoOutput);
            connect(m_player, &MediaPlayer::presentationSizeChanged, this,
                    &PlayerHostingView::updateGeometry);
        }
        updateGeometry();
    }
    attachVideoOutput();
}

void PlayerHostingView::attachVideoOutput()
{
    const quint64 item = m_player ? m_player->currentItem() : 0;
    if (m_observedItem == item)
        return;
    m_observedItem = item;
    m_videoOutput = m_player ? m_player->addVideoOutput() : nullptr;
}

void PlayerHostingView::setPicture(QQuickItem *picture)
{
    if (m_picture == picture)
        return;
    m_picture = picture;
    if (m_picture)
        m_picture->setParentItem(m_playerLayer);
    placePicture();
}

// Modes

void PlayerHostingView::setDisplayMode(PortraitDisplayMode mode)
{
    if (m_displayMode != mode) {
        m_displayMode = mode;
        if (mode == PortraitDisplayMode::fill || mode == PortraitDisplayMode::rotate)
            m_horizontalPan = 0;
        endDrag();
        updateSmartTimer();
    }
    updateGravity();
    updateGeometry();
}

void PlayerHostingView::setFillScreen(bool fillScreen)
{
    if (m_fillScreen == fillScreen)
        return;
    m_fillScreen = fillScreen;
    updateGravity();
    updateGeometry();
}

QRectF PlayerHostingView::recordingRectInView() const
{
    return m_displayMode == PortraitDisplayMode::normal
        ? boundingRect()
        : QRectF(m_cropLayer->position(), m_cropLayer->size());
}

// Geometry

void PlayerHostingView::setHorizontalPan(double pan)
{
    m_horizontalPan = pan;
    updateGeometry();
}

void PlayerHostingView::panBy(double amount)
{
    if (m_displayMode == PortraitDisplayMode::manual)
        setHorizontalPan(std::clamp(m_horizontalPan + amount, -1.0, 1.0));
}

void PlayerHostingView::updateGravity()
{
    m_gravity = videoGravity(m_displayMode);
}

void PlayerHostingView::updateGeometry()
{
    const auto geometry = displayGeometry(m_displayMode, size(), m_horizontalPan,
                                          m_player ? m_player->presentationSize() : QSize());
    m_cropLayer->setPosition(geometry.cropFrame.topLeft());
    m_cropLayer->setSize(geometry.cropFrame.size());
    m_cropLayer->setClip(geometry.cropMasksToBounds);
    m_playerLayer->setPosition(geometry.playerFrame.topLeft());
    m_playerLayer->setSize(geometry.playerFrame.size());
    m_playerLayer->setRotation(geometry.playerRotation);
    placePicture();
}

void PlayerHostingView::placePicture()
{
    if (!m_picture)
        return;
    // On whole pixels of the screen, or the picture would be drawn between them and blur.
    const double scale = window() ? window()->effectiveDevicePixelRatio() : 1;
    const QRectF visible =
        mapRectToScene(boundingRect() & QRectF(m_cropLayer->position(), m_cropLayer->size()));
    const QPointF topLeft(std::floor(visible.left() * scale), std::floor(visible.top() * scale));
    const QPointF bottomRight(std::ceil(visible.right() * scale),
                              std::ceil(visible.bottom() * scale));
    const QRectF covered =
        m_playerLayer->mapRectFromScene(QRectF(topLeft / scale, bottomRight / scale));
    m_picture->setPosition(covered.topLeft());
    m_picture->setSize(covered.size());

    const auto surface = qobject_cast<VideoSurface *>(m_picture);
    if (!surface || !m_player)
        return;
    const QRectF layer({0, 0}, m_playerLayer->size());
    // Fitting is what the surface does by itself; so it stays exact while its size changes.
    surface->setPlacement(
        m_displayMode == PortraitDisplayMode::normal
            ? VideoPlacement{}
            : fillingPlacement(pictureRect(layer, m_gravity, m_player->presentationSize()),
                               covered));
}

void PlayerHostingView::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    updateGeometry();
}

void PlayerHostingView::itemChange(ItemChange change, const ItemChangeData &data)
{
    QQuickItem::itemChange(change, data);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange)
        updateGeometry();
}

// The mouse

void PlayerHostingView::countPress(const QMouseEvent &event)
{
    const QStyleHints &hints = *QGuiApplication::styleHints();
    const QPointF moved = event.globalPosition() - m_press.position;
    const bool isClose =
        event.timestamp() - m_press.time < quint64(hints.mouseDoubleClickInterval())
        && std::max(std::abs(moved.x()), std::abs(moved.y())) < hints.mouseDoubleClickDistance();
    m_press = {.position = event.globalPosition(),
               .time = event.timestamp(),
               .count = isClose ? m_press.count + 1 : 1};
}

bool PlayerHostingView::isFarFromPress(const QMouseEvent &event) const
{
    return (event.globalPosition() - m_press.position).manhattanLength()
        >= QGuiApplication::styleHints()->startDragDistance();
}

void PlayerHostingView::mousePressEvent(QMouseEvent *event)
{
    endDrag();
    countPress(*event);
    m_pressMovesWindow = false;
    if (m_press.count == 2) {
        Q_EMIT fullScreenToggleRequested();
        return;
    }
    m_services.notifications.post(QString::fromUtf16(notification::playerSurfaceClicked), window());
    if (m_displayMode == PortraitDisplayMode::manual) {
        m_drag = Drag{.pressX = event->scenePosition().x(), .panAtPress = m_horizontalPan};
        Q_EMIT draggingChanged();
    } else {
        m_pressMovesWindow = window()->visibility() != QWindow::FullScreen;
    }
}

void PlayerHostingView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_drag)
        setHorizontalPan(
            draggedPan(m_drag->panAtPress, event->scenePosition().x() - m_drag->pressX, width()));
    // A window that moved with the very press would swallow the second click of a double click.
    if (!isFarFromPress(*event))
        return;
    // What was dragged was no click.
    m_press.count = 0;
    if (std::exchange(m_pressMovesWindow, false))
        window()->startSystemMove();
}

void PlayerHostingView::mouseReleaseEvent(QMouseEvent *)
{
    endDrag();
}

void PlayerHostingView::mouseUngrabEvent()
{
    endDrag();
}

void PlayerHostingView::endDrag()
{
    if (std::exchange(m_drag, std::nullopt))
        Q_EMIT draggingChanged();
}

// Following a face

void PlayerHostingView::updateSmartTimer()
{
    m_smartTimer.cancel();
    ++m_smartRun;
    if (m_displayMode == PortraitDisplayMode::smart)
        scheduleTick();
}

void PlayerHostingView::scheduleTick()
{
    m_smartTimer.start(smartReframe::tickInterval, [this] {
        scheduleTick();
        trackLargestFace();
    });
}

void PlayerHostingView::trackLargestFace()
{
    const auto time = m_player ? m_player->currentTime() : std::nullopt;
    const bool isReady = m_displayMode == PortraitDisplayMode::smart && time && m_videoOutput
        && m_services.faceDetector && !m_isTracking;
    if (isReady && m_videoOutput->hasNewPixelBuffer(*time))
        followFace(*time, m_lifetime.get_token());
}

Task<> PlayerHostingView::followFace(double time, std::stop_token stop)
{
    m_isTracking = true;
    const quint64 item = m_observedItem;
    const quint64 run = m_smartRun;
    // Playback waits while a picture is copied, so that must not wait for other work.
    // Nothing here holds the output, with all that plays behind it, any longer than that.
    const auto copying = m_services.scheduler.inBackground(
        [output = m_videoOutput, time] { return output->copyPixelBuffer(time); });
    const std::optional<PixelBuffer> picture = co_await copying;
    if (stop.stop_requested())
        co_return;
    if (picture) {
        // A detector that fails has found nobody.
        const auto detect = [detector = m_services.faceDetector, picture = *picture] {
            return detector->detect(picture).value_or(QList<FaceObservation>());
        };
        const auto detection = m_services.idle.inBackground(detect);
        const QList<FaceObservation> faces = co_await detection;
        if (stop.stop_requested())
            co_return;
        // Meanwhile the user may have gone on.
        if (item == m_observedItem && run == m_smartRun)
            setHorizontalPan(
                smartReframe::smoothedPan(m_horizontalPan, smartReframe::targetPan(faces)));
    }
    m_isTracking = false;
}

} // namespace lumaro
