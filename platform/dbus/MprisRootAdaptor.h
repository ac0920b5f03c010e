#pragma once

#include "platform/dbus/MprisTrack.h"

#include <QDBusAbstractAdaptor>

namespace lumaro {

/// The interface that every MPRIS player has (MPRIS D-Bus Interface Specification 2.2,
/// org.mpris.MediaPlayer2). Its members' names are the specification's.
class MprisRootAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(bool CanQuit READ yes)
    Q_PROPERTY(bool CanRaise READ yes)
    Q_PROPERTY(bool CanSetFullscreen READ yes)
    Q_PROPERTY(bool HasTrackList READ no)
    Q_PROPERTY(bool Fullscreen READ isFullScreen WRITE setFullScreen)
    Q_PROPERTY(QString Identity READ identity)
    Q_PROPERTY(QString DesktopEntry READ desktopEntry)
    Q_PROPERTY(QStringList SupportedUriSchemes READ uriSchemes)
    Q_PROPERTY(QStringList SupportedMimeTypes READ mimeTypes)

public:
    /// `player` outlives the adaptor.
    MprisRootAdaptor(const MprisPlayer &player, QObject *parent);

    /// Those whose changes are announced.
    static QVariantMap properties(const MediaControlsState &state);

    bool yes() const { return true; }
    bool no() const { return false; }
    bool isFullScreen() const { return m_player.state.isFullScreen; }
    void setFullScreen(bool fullScreen);
    QString identity() const { return QStringLiteral("Lumaro"); }
    QString desktopEntry() const { return QStringLiteral("lumaro"); }
    QStringList uriSchemes() const { return m_player.uriSchemes; }
    QStringList mimeTypes() const { return m_player.mimeTypes; }

public Q_SLOTS:
    void Raise();
    void Quit();

private:
    const MprisPlayer &m_player;
};

} // namespace lumaro
