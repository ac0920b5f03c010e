#pragma once

#include "platform/MediaControls.h"

#include <QDBusObjectPath>
#include <QStringList>
#include <QVariantMap>

namespace lumaro {

/// What both interfaces of the player work with.
struct MprisPlayer
{
    MediaControlsState state;
    MediaCommands *commands = nullptr;
    QStringList uriSchemes;
    QStringList mimeTypes;
};

/// Names a track on the bus.
QDBusObjectPath mprisTrackId(quint64 track);
/// 0 for what is no track's name.
quint64 mprisTrack(const QDBusObjectPath &trackId);

/// The track as MPRIS and its metadata guidelines have it.
QVariantMap mprisMetadata(const MediaControlsState &state);

} // namespace lumaro
