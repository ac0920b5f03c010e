#include "platform/dbus/MprisPlayerAdaptor.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>

namespace lumaro {

namespace {

QString statusText(MediaControlsState::Playback playback)
{
    switch (playback) {
    case MediaControlsState::Playback::Stopped:
        return QStringLiteral("Stopped");
    case MediaControlsState::Playback::Paused:
        return QStringLiteral("Paused");
    case MediaControlsState::Playback::Playing:
        return QStringLiteral("Playing");
    }
    Q_UNREACHABLE();
}

} // namespace

MprisPlayerAdaptor::MprisPlayerAdaptor(const MprisPlayer &player, QObject *parent)
    : QDBusAbstractAdaptor(parent)
    , m_player(player)
{
}

QVariantMap MprisPlayerAdaptor::properties(const MediaControlsState &state)
{
    return {
        {QStringLiteral("PlaybackStatus"), statusText(state.playback)},
        {QStringLiteral("Metadata"), mprisMetadata(state)},
        {QStringLiteral("Volume"), state.volume},
        {QStringLiteral("CanGoNext"), state.canGoNext},
        {QStringLiteral("CanGoPrevious"), state.canGoPrevious},
        {QStringLiteral("CanPlay"), state.canPlay},
        {QStringLiteral("CanPause"), state.track != 0},
        {QStringLiteral("CanSeek"), state.canSeek},
    };
}

QString MprisPlayerAdaptor::playbackStatus() const
{
    return statusText(m_player.state.playback);
}

void MprisPlayerAdaptor::setRate(double rate)
{
    if (rate == 0)
        Pause();
}

void MprisPlayerAdaptor::setVolume(double volume)
{
    if (m_player.commands)
        m_player.commands->setVolume(volume);
}

qlonglong MprisPlayerAdaptor::position() const
{
    return m_player.commands ? m_player.commands->position().count() : 0;
}

void MprisPlayerAdaptor::Next()
{
    if (m_player.commands)
        m_player.commands->next();
}

void MprisPlayerAdaptor::Previous()
{
    if (m_player.commands)
        m_player.commands->previous();
}

void MprisPlayerAdaptor::Pause()
{
    if (m_player.commands)
        m_player.commands->pause();
}

void MprisPlayerAdaptor::PlayPause()
{
    if (m_player.commands)
        m_player.commands->playPause();
}

void MprisPlayerAdaptor::Stop()
{
    if (m_player.commands)
        m_player.commands->stop();
}

void MprisPlayerAdaptor::Play()
{
    if (m_player.commands)
        m_player.commands->play();
}

void MprisPlayerAdaptor::Seek(qlonglong Offset)
{
    if (m_player.commands)
        m_player.commands->seek(std::chrono::microseconds(Offset));
}

void MprisPlayerAdaptor::SetPosition(const QDBusObjectPath &TrackId, qlonglong Position)
{
    const quint64 track = mprisTrack(TrackId);
    if (m_player.commands && track != 0)
        m_player.commands->setPosition(track, std::chrono::microseconds(Position));
}

void MprisPlayerAdaptor::OpenUri(const QString &Uri, const QDBusMessage &message)
{
    if (!m_player.commands)
        return;
    message.setDelayedReply(true);
    m_player.commands->openUri(Uri).then([message](const std::expected<void, QString> &opened) {
        QDBusConnection::sessionBus().send(
            opened ? message.createReply()
                   : message.createErrorReply(QDBusError::InvalidArgs, opened.error()));
    });
}

} // namespace lumaro
