#pragma once

#include "platform/dbus/MprisTrack.h"

#include <QObject>

namespace lumaro {

class MprisPlayerAdaptor;

/// Media controls over the session bus, as the MPRIS D-Bus Interface Specification 2.2 has them
/// (https://specifications.freedesktop.org/mpris-spec/2.2/). The player is on the bus while there
/// is somebody to carry out commands, as org.mpris.MediaPlayer2.lumaro, or, when that name is
/// taken, with the process's number behind it. Without a bus nothing happens.
class MprisControls final : public QObject, public MediaControls
{
    Q_OBJECT

public:
    /// What OpenUri takes.
    struct Supported
    {
        QStringList uriSchemes;
        QStringList mimeTypes;
    };

    explicit MprisControls(const Supported &supported, QObject *parent = nullptr);
    ~MprisControls() override;

    void setCommands(MediaCommands *commands) override;
    void publish(const MediaControlsState &state) override;
    void announceSeek(std::chrono::microseconds position) override;

private:
    void appear();
    void disappear();

    MprisPlayer m_player;
    MprisPlayerAdaptor *m_playerAdaptor;
    /// Empty while the player is not on the bus.
    QString m_busName;
};

} // namespace lumaro
