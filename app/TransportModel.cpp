#include "app/TransportModel.h"

#include <algorithm>
#include <cmath>

#include <QCoreApplication>

namespace lumaro {

namespace {

/// A player stays some segments behind what it has fetched; closer than this is "live".
constexpr double liveEdgeTolerance = 12;

} // namespace

QString formatTime(double seconds)
{
    const auto whole = qint64(std::floor(std::abs(seconds)));
    const qint64 hours = whole / 3600;
    const qint64 minutes = whole / 60 % 60;
    const QString sign = seconds <= -1 ? QStringLiteral("-") : QString();
    const QString tail = QStringLiteral(":%1").arg(whole % 60, 2, 10, QLatin1Char('0'));
    if (hours == 0)
        return sign + QString::number(minutes) + tail;
    return sign + QString::number(hours)
        + QStringLiteral(":%1").arg(minutes, 2, 10, QLatin1Char('0')) + tail;
}

TransportModel::TransportModel(PlayerModel &player, QObject *parent)
    : QObject(parent)
    , m_player(player)
{
    for (const auto signal : {&PlayerModel::currentTimeChanged, &PlayerModel::durationChanged,
                              &PlayerModel::isLiveStreamChanged, &PlayerModel::currentURLChanged,
                              &PlayerModel::showsWebContentChanged})
        connect(&player, signal, this, &TransportModel::update);
}

void TransportModel::update()
{
    m_range = m_player.duration() > 0 ? MediaPlayer::TimeRange{0, m_player.duration()}
                                      : m_player.seekableRange().value_or(MediaPlayer::TimeRange{});
    Q_EMIT changed();
}

bool TransportModel::isLive() const
{
    return m_player.isLiveStream() && m_player.duration() == 0;
}

bool TransportModel::isAtLiveEdge() const
{
    return isLive() && (!canSeek() || m_range.end - m_player.currentTime() < liveEdgeTolerance);
}

double TransportModel::position() const
{
    return std::clamp(m_player.currentTime(), m_range.start, m_range.end);
}

QString TransportModel::positionText() const
{
    return previewText(canSeek() ? position() : m_player.currentTime());
}

QString TransportModel::endText() const
{
    if (isLive())
        return tr("LIVE");
    return m_player.duration() > 0 ? formatTime(m_player.duration()) : QString();
}

QString TransportModel::obstacle() const
{
    return m_player.showsWebContent() && !canSeek()
        ? TransportModel::tr("The site does not tell how long this is.")
        : QString();
}

QString TransportModel::previewText(double seconds) const
{
    return formatTime(isLive() && canSeek() ? seconds - m_range.end : seconds);
}

void TransportModel::goToLiveEdge()
{
    if (canSeek())
        m_player.seek(m_range.end);
}

} // namespace lumaro
