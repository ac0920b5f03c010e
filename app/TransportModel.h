#pragma once

#include "player/PlayerModel.h"

#include <QObject>

namespace lumaro {

/// Seconds as h:mm:ss, or m:ss below an hour; "-" before a negative time.
QString formatTime(double seconds);

/// The seek bar's range and texts, for films and for streams without an end. Main thread.
class TransportModel : public QObject
{
    Q_OBJECT
    /// There is somewhere to go.
    Q_PROPERTY(bool canSeek READ canSeek NOTIFY changed)
    /// A stream without an end; times are told from its live edge.
    Q_PROPERTY(bool isLive READ isLive NOTIFY changed)
    /// Close enough to the live edge to be called live.
    Q_PROPERTY(bool isAtLiveEdge READ isAtLiveEdge NOTIFY changed)
    /// Seconds; the bar's ends and the position on it.
    Q_PROPERTY(double from READ from NOTIFY changed)
    Q_PROPERTY(double to READ to NOTIFY changed)
    Q_PROPERTY(double position READ position NOTIFY changed)
    Q_PROPERTY(QString positionText READ positionText NOTIFY changed)
    Q_PROPERTY(QString endText READ endText NOTIFY changed)
    /// Why there is nowhere to go, where that needs to be said; else empty.
    Q_PROPERTY(QString obstacle READ obstacle NOTIFY changed)

public:
    /// `player` outlives the model.
    explicit TransportModel(PlayerModel &player, QObject *parent = nullptr);

    bool canSeek() const { return m_range.end > m_range.start; }
    bool isLive() const;
    bool isAtLiveEdge() const;
    double from() const { return m_range.start; }
    double to() const { return m_range.end; }
    double position() const;
    QString positionText() const;
    QString endText() const;
    QString obstacle() const;

    /// What the preview over the bar says for `seconds` on it.
    Q_INVOKABLE QString previewText(double seconds) const;
    Q_INVOKABLE void goToLiveEdge();

Q_SIGNALS:
    void changed();

private:
    void update();

    PlayerModel &m_player;
    MediaPlayer::TimeRange m_range;
};

} // namespace lumaro
