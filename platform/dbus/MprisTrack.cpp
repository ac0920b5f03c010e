#include "platform/dbus/MprisTrack.h"

namespace lumaro {

namespace {

QString trackFolder()
{
    return QStringLiteral("/org/lumaro/track/");
}

} // namespace

QDBusObjectPath mprisTrackId(quint64 track)
{
    return QDBusObjectPath(trackFolder() + QString::number(track));
}

quint64 mprisTrack(const QDBusObjectPath &trackId)
{
    const QString path = trackId.path();
    return path.startsWith(trackFolder()) ? path.mid(trackFolder().size()).toULongLong() : 0;
}

QVariantMap mprisMetadata(const MediaControlsState &state)
{
    if (state.track == 0)
        return {};
    QVariantMap metadata{
        {QStringLiteral("mpris:trackid"), QVariant::fromValue(mprisTrackId(state.track))},
        {QStringLiteral("xesam:title"), state.title},
    };
    if (state.length)
        metadata.insert(QStringLiteral("mpris:length"), qlonglong(state.length->count()));
    if (!state.url.isEmpty())
        metadata.insert(QStringLiteral("xesam:url"), state.url.toString(QUrl::FullyEncoded));
    return metadata;
}

} // namespace lumaro
