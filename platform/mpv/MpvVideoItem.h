#pragma once

#include "platform/mpv/MpvMediaPlayer.h"

#include <QPointer>
#include <QQuickFramebufferObject>

namespace lumaro {

/// Draws the player's picture, fitted into the item on black. One item for each player.
class MpvVideoItem : public QQuickFramebufferObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(lumaro::MpvMediaPlayer *player READ player WRITE setPlayer NOTIFY playerChanged)

public:
    explicit MpvVideoItem(QQuickItem *parent = nullptr);

    MpvMediaPlayer *player() const { return m_player; }
    /// The player must outlive the item's window.
    void setPlayer(MpvMediaPlayer *player);

    Renderer *createRenderer() const override;

Q_SIGNALS:
    void playerChanged();

private:
    QPointer<MpvMediaPlayer> m_player;
};

} // namespace lumaro
