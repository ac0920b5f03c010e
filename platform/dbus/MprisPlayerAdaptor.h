#pragma once

#include "platform/dbus/MprisTrack.h"

#include <QDBusAbstractAdaptor>

class QDBusMessage;

namespace lumaro {

/// The player as MPRIS has it (MPRIS D-Bus Interface Specification 2.2,
/// org.mpris.MediaPlayer2.Player). Its members' names are the specification's; times are in
/// microseconds.
class MprisPlayerAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ playbackStatus)
    Q_PROPERTY(double Rate READ rate WRITE setRate)
    Q_PROPERTY(double MinimumRate READ rate)
    Q_PROPERTY(double MaximumRate READ rate)
    Q_PROPERTY(QVariantMap Metadata READ metadata)
    Q_PROPERTY(double Volume READ volume WRITE setVolume)
    Q_PROPERTY(qlonglong Position READ position)
    Q_PROPERTY(bool CanGoNext READ canGoNext)
    Q_PROPERTY(bool CanGoPrevious READ canGoPrevious)
    Q_PROPERTY(bool CanPlay READ canPlay)
    Q_PROPERTY(bool CanPause READ canPause)
    Q_PROPERTY(bool CanSeek READ canSeek)
    Q_PROPERTY(bool CanControl READ canControl)

public:
    /// `player` outlives the adaptor.
    MprisPlayerAdaptor(const MprisPlayer &player, QObject *parent);

    /// Those whose changes are announced.
    static QVariantMap properties(const MediaControlsState &state);

    QString playbackStatus() const;
    double rate() const { return 1; }
    /// Films run at their own speed only; 0 pauses.
    void setRate(double rate);
    QVariantMap metadata() const { return mprisMetadata(m_player.state); }
    double volume() const { return m_player.state.volume; }
    void setVolume(double volume);
    qlonglong position() const;
    bool canGoNext() const { return m_player.state.canGoNext; }
    bool canGoPrevious() const { return m_player.state.canGoPrevious; }
    bool canPlay() const { return m_player.state.canPlay; }
    bool canPause() const { return m_player.state.track != 0; }
    bool canSeek() const { return m_player.state.canSeek; }
    bool canControl() const { return true; }

public Q_SLOTS:
    void Next();
    void Previous();
    void Pause();
    void PlayPause();
    void Stop();
    void Play();
    void Seek(qlonglong Offset);
    void SetPosition(const QDBusObjectPath &TrackId, qlonglong Position);
    void OpenUri(const QString &Uri, const QDBusMessage &message);

Q_SIGNALS:
    void Seeked(qlonglong Position);

private:
    const MprisPlayer &m_player;
};

} // namespace lumaro
