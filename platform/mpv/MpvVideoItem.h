#pragma once

#include "platform/mpv/MpvMediaPlayer.h"

#include <QPointer>
#include <QQuickFramebufferObject>

namespace lumaro {

/// Draws the player's picture on black, in the pixels of the screen. One item for each player.
class MpvVideoItem : public QQuickFramebufferObject, public VideoSurface
{
    Q_OBJECT
    Q_INTERFACES(lumaro::VideoSurface)
    QML_ELEMENT
    Q_PROPERTY(lumaro::MpvMediaPlayer *player READ player WRITE setPlayer NOTIFY playerChanged)

public:
    explicit MpvVideoItem(QQuickItem *parent = nullptr);

    MpvMediaPlayer *player() const { return m_player; }
    /// The player must outlive the item's window.
    void setPlayer(MpvMediaPlayer *player);

    void setPlacement(const VideoPlacement &placement) override;

    Renderer *createRenderer() const override;

Q_SIGNALS:
    void playerChanged();

private:
    QPointer<MpvMediaPlayer> m_player;
    VideoPlacement m_placement;
};

} // namespace lumaro
