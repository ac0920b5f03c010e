#include "platform/mpv/MpvMediaPlayer.h"

#include "platform/mpv/MpvNode.h"
#include "platform/mpv/MpvVideoOutput.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace lumaro {

namespace {

using Topic = MpvTopic;

struct ObservedProperty
{
    Topic topic;
    const char *name;
    mpv_format format;
};

// The cache's state comes after the length, which it is compared with.
constexpr ObservedProperty observedProperties[] = {
    {Topic::Duration, "duration", MPV_FORMAT_DOUBLE},
    {Topic::Seekable, "seekable", MPV_FORMAT_FLAG},
    {Topic::PartiallySeekable, "partially-seekable", MPV_FORMAT_FLAG},
    {Topic::CacheState, "demuxer-cache-state", MPV_FORMAT_NODE},
    {Topic::CoreIdle, "core-idle", MPV_FORMAT_FLAG},
    {Topic::PausedForCache, "paused-for-cache", MPV_FORMAT_FLAG},
    {Topic::EofReached, "eof-reached", MPV_FORMAT_FLAG},
    {Topic::Width, "dwidth", MPV_FORMAT_INT64},
    {Topic::Height, "dheight", MPV_FORMAT_INT64},
    {Topic::Rotation, "video-params/rotate", MPV_FORMAT_INT64},
    {Topic::Cover, "current-tracks/video/albumart", MPV_FORMAT_FLAG},
};

/// Request identifiers carry the topic in the low byte and the item's number above it.
quint64 requestId(Topic topic, quint64 itemNumber)
{
    return itemNumber << 8 | quint64(topic);
}

Topic topicOf(quint64 id)
{
    return Topic(id & 0xff);
}

quint64 itemNumberOf(quint64 id)
{
    return id >> 8;
}

/// A playlist that names itself, or a server that makes up ever new ones, must end somewhere.
constexpr int maximumPlaylists = 10;

/// How much later than the newest data the end must be to have been told by the file itself.
constexpr double lengthMargin = 1;

/// How far from the data in the cache a position may lie and still belong to it.
constexpr double rangeMargin = 0.5;

/// libmpv opens much more than media: devices, its own scripting, playlists made of other files.
/// An address that came from a playlist must not reach those.
bool isOpenable(const QUrl &url)
{
    static const QStringList schemes =
        QStringLiteral(
            "file http https rtmp rtmps rtmpt rtmpe rtsp rtsps rtp udp srt mms mmsh mmst")
            .split(u' ');
    // A relative path could begin as one of libmpv's own addresses do.
    return url.isValid() && schemes.contains(url.scheme())
        && (!url.isLocalFile() || url.toLocalFile().startsWith(u'/'));
}

QByteArray mpvAddress(const QUrl &url)
{
    return url.isLocalFile() ? url.toLocalFile().toUtf8() : url.toEncoded();
}

MediaPlayer::ItemFailure failureOf(int error)
{
    return error == MPV_ERROR_LOADING_FAILED ? MediaPlayer::ItemFailure::Unreachable
                                             : MediaPlayer::ItemFailure::Unplayable;
}

bool flag(const mpv_node *node)
{
    return node && node->format == MPV_FORMAT_FLAG && node->u.flag != 0;
}

std::optional<double> number(const mpv_node *node)
{
    if (!node || node->format != MPV_FORMAT_DOUBLE)
        return std::nullopt;
    return node->u.double_;
}

QList<MediaPlayer::TimeRange> seekableRanges(const mpv_node &cacheState)
{
    QList<MediaPlayer::TimeRange> ranges;
    const mpv_node *list = mapValue(cacheState, "seekable-ranges");
    if (!list || list->format != MPV_FORMAT_NODE_ARRAY)
        return ranges;
    for (int i = 0; i < list->u.list->num; ++i) {
        const auto start = number(mapValue(list->u.list->values[i], "start"));
        const auto end = number(mapValue(list->u.list->values[i], "end"));
        if (start && end && *start < *end)
            ranges.append({*start, *end});
    }
    return ranges;
}

template <typename T>
std::optional<T> valueOf(const mpv_event_property &property)
{
    if (property.format == MPV_FORMAT_NONE)
        return std::nullopt;
    return *static_cast<const T *>(property.data);
}

bool flagOf(const mpv_event_property &property)
{
    return valueOf<int>(property).value_or(0) != 0;
}

} // namespace

MpvMediaPlayer::MpvMediaPlayer(QObject *parent)
    : MediaPlayer(parent)
    , m_core(MpvCore::create())
{
    connect(&m_clock, &QTimer::timeout, this, &MpvMediaPlayer::requestTime);
    if (!m_core)
        return;
    for (const ObservedProperty &property : observedProperties)
        mpv_observe_property(m_core->handle(), quint64(property.topic), property.name,
                             property.format);
    mpv_set_wakeup_callback(m_core->handle(), &MpvMediaPlayer::wakeUp, this);
}

MpvMediaPlayer::~MpvMediaPlayer()
{
    if (m_core)
        mpv_set_wakeup_callback(m_core->handle(), nullptr, nullptr);
}

// Items

void MpvMediaPlayer::setRendererReady()
{
    m_rendererReady = true;
    openPendingItem();
}

void MpvMediaPlayer::setRendererFailed()
{
    m_rendererFailed = true;
    openPendingItem();
}

void MpvMediaPlayer::notifyFrame()
{
    Q_EMIT frameReady();
}

void MpvMediaPlayer::setHttpProxy(const QUrl &proxy)
{
    if (!m_core)
        return;
    const QByteArray address = proxy.toEncoded();
    const char *arguments[] = {"set", "http-proxy", address.constData(), nullptr};
    mpv_command_async(m_core->handle(), 0, arguments);
}

void MpvMediaPlayer::setPlacement(const VideoPlacement &placement)
{
    if (!m_core)
        return;
    const auto set = [this](const char *name, double value) {
        mpv_set_property_async(m_core->handle(), 0, name, MPV_FORMAT_DOUBLE, &value);
    };
    set("panscan", placement.fills ? 1 : 0);
    set("video-zoom", std::log2(placement.zoom));
    set("video-pan-x", placement.offset.x());
    set("video-pan-y", placement.offset.y());
}

std::shared_ptr<VideoOutput> MpvMediaPlayer::addVideoOutput()
{
    return std::make_shared<MpvVideoOutput>(this, m_core, currentItem());
}

void MpvMediaPlayer::updatePictureSize()
{
    const QSize size = m_rotation % 180 == 90 ? m_unturnedSize.transposed() : m_unturnedSize;
    if (m_pictureSize == size)
        return;
    m_pictureSize = size;
    notifyTimeObserver();
    Q_EMIT presentationSizeChanged();
}

void MpvMediaPlayer::forgetPictureSize()
{
    m_unturnedSize = {};
    m_rotation = 0;
    updatePictureSize();
}

void MpvMediaPlayer::replaceItem(const QUrl &url)
{
    m_item = url;
    m_itemIsPending = true;
    ++m_itemNumber;
    m_playlist = {};
    m_state = {};
    forgetPictureSize();
    openPendingItem();
    updateStatus();
    notifyTimeObserver();
    Q_EMIT currentItemChanged();
}

void MpvMediaPlayer::openPendingItem()
{
    if (!m_itemIsPending)
        return;
    if (!m_core || m_rendererFailed || !isOpenable(m_item)) {
        m_itemIsPending = false;
        // The caller has not finished opening yet; the news must not overtake it.
        QMetaObject::invokeMethod(
            this,
            [this, item = m_itemNumber] {
                if (item == m_itemNumber)
                    fail(isOpenable(m_item) ? ItemFailure::NoPicture : ItemFailure::Unsupported);
            },
            Qt::QueuedConnection);
        return;
    }
    // Without a place for its picture libmpv would play the sound only.
    if (!m_rendererReady)
        return;
    m_itemIsPending = false;

    const QByteArray address = mpvAddress(m_item);
    const char *arguments[] = {"loadfile", address.constData(), nullptr};
    mpv_command_async(m_core->handle(), requestId(Topic::Load, m_itemNumber), arguments);
}

void MpvMediaPlayer::removeItem()
{
    if (!hasItem())
        return;
    m_item.clear();
    m_itemIsPending = false;
    ++m_itemNumber;
    m_playlist = {};
    m_state = {};
    forgetPictureSize();
    if (m_core) {
        const char *arguments[] = {"stop", nullptr};
        mpv_command_async(m_core->handle(), 0, arguments);
    }
    updateStatus();
    Q_EMIT currentItemChanged();
}

void MpvMediaPlayer::fail(ItemFailure failure)
{
    m_state.failed = true;
    updateStatus();
    notifyTimeObserver();
    Q_EMIT itemFailed(failure);
}

// Transport

void MpvMediaPlayer::play()
{
    // What failed or broke off may do better when it is tried again. Of the latter the beginning
    // need not be in the cache any more.
    if (m_state.failed || (m_state.ended && !m_state.canSeekEverywhere()))
        replaceItem(QUrl(m_item));
    else if (m_state.ended)
        seek(0);
    m_paused = false;
    if (m_core) {
        int value = 0;
        mpv_set_property_async(m_core->handle(), 0, "pause", MPV_FORMAT_FLAG, &value);
    }
    updateStatus();
}

void MpvMediaPlayer::pause()
{
    m_paused = true;
    if (m_core) {
        int value = 1;
        mpv_set_property_async(m_core->handle(), 0, "pause", MPV_FORMAT_FLAG, &value);
    }
    updateStatus();
}

double MpvMediaPlayer::rate() const
{
    return m_paused || m_state.failed ? 0 : 1;
}

void MpvMediaPlayer::seek(double seconds)
{
    if (!m_core || !hasItem())
        return;
    m_state.pendingSeek = seconds;
    m_state.ended = false;
    // Until then libmpv would refuse.
    if (m_state.loaded)
        sendSeek(seconds);
}

void MpvMediaPlayer::sendSeek(double seconds)
{
    ++m_state.seeksUnderWay;
    const QByteArray target = QByteArray::number(seconds, 'f', 6);
    const char *arguments[] = {"seek", target.constData(), "absolute+exact", nullptr};
    mpv_command_async(m_core->handle(), requestId(Topic::Seek, m_itemNumber), arguments);
}

void MpvMediaPlayer::setVolume(double gain)
{
    if (!m_core)
        return;
    // libmpv's volume is cubic.
    double volume = 100 * std::cbrt(std::clamp(gain, 0.0, 1.0));
    mpv_set_property_async(m_core->handle(), 0, "volume", MPV_FORMAT_DOUBLE, &volume);
}

void MpvMediaPlayer::setMuted(bool muted)
{
    if (!m_core)
        return;
    int value = muted ? 1 : 0;
    mpv_set_property_async(m_core->handle(), 0, "mute", MPV_FORMAT_FLAG, &value);
}

std::optional<double> MpvMediaPlayer::currentTime() const
{
    if (!hasItem())
        return std::nullopt;
    return m_state.pendingSeek ? *m_state.pendingSeek : m_state.time.value_or(0);
}

std::optional<double> MpvMediaPlayer::duration() const
{
    return m_state.hasLength() ? m_state.duration : std::nullopt;
}

std::optional<MediaPlayer::TimeRange> MpvMediaPlayer::seekableRange() const
{
    if (m_state.canSeekEverywhere() && m_state.duration)
        return TimeRange{0, *m_state.duration};
    const double now = currentTime().value_or(0);
    const auto around = std::ranges::find_if(m_state.cachedRanges, [now](const TimeRange &range) {
        return range.start - rangeMargin <= now && now <= range.end + rangeMargin;
    });
    return around == m_state.cachedRanges.end() ? std::nullopt : std::optional(*around);
}

// Observing

void MpvMediaPlayer::setPeriodicTimeObserver(std::chrono::milliseconds interval,
                                             std::function<void()> observer)
{
    m_clock.setInterval(interval);
    m_timeObserver = std::move(observer);
    updateClock();
}

void MpvMediaPlayer::updateClock()
{
    const bool runs = m_timeObserver && m_status == TimeControlStatus::Playing;
    if (runs && !m_clock.isActive())
        m_clock.start();
    else if (!runs)
        m_clock.stop();
}

void MpvMediaPlayer::requestTime()
{
    if (m_core && hasItem())
        mpv_get_property_async(m_core->handle(), requestId(Topic::Time, m_itemNumber), "time-pos",
                               MPV_FORMAT_DOUBLE);
}

void MpvMediaPlayer::requestProperties()
{
    // libmpv reports changes only, and an item may well have the length or the size of the one
    // before it.
    for (const ObservedProperty &property : observedProperties)
        mpv_get_property_async(m_core->handle(), requestId(property.topic, m_itemNumber),
                               property.name, property.format);
    requestTime();
}

void MpvMediaPlayer::notifyTimeObserver()
{
    if (m_timeObserver)
        m_timeObserver();
}

void MpvMediaPlayer::updateStatus()
{
    TimeControlStatus status = TimeControlStatus::Playing;
    if (m_paused || !hasItem() || m_state.failed)
        status = TimeControlStatus::Paused;
    else if (m_state.coreIdle)
        status = TimeControlStatus::WaitingToPlayAtSpecifiedRate;
    if (m_status == status)
        return;
    m_status = status;
    updateClock();
    requestTime();
    Q_EMIT timeControlStatusChanged();
}

void MpvMediaPlayer::wakeUp(void *player)
{
    auto *self = static_cast<MpvMediaPlayer *>(player);
    if (!self->m_eventsPending.exchange(true))
        QMetaObject::invokeMethod(self, &MpvMediaPlayer::drainEvents, Qt::QueuedConnection);
}

void MpvMediaPlayer::drainEvents()
{
    m_eventsPending = false;
    while (true) {
        const mpv_event *event = mpv_wait_event(m_core->handle(), 0);
        if (event->event_id == MPV_EVENT_NONE)
            break;
        handle(*event);
    }
    // Width, height and turn are told one by one; between them the shape is nobody's.
    updatePictureSize();
}

void MpvMediaPlayer::handle(const mpv_event &event)
{
    switch (event.event_id) {
    case MPV_EVENT_START_FILE:
        m_startedEntryId = static_cast<mpv_event_start_file *>(event.data)->playlist_entry_id;
        if (std::exchange(m_playlist.goesOn, false))
            m_playlist.entryId = m_startedEntryId;
        break;
    case MPV_EVENT_FILE_LOADED:
        if (m_playlist.entryId == m_startedEntryId) {
            m_state.loaded = true;
            if (m_state.pendingSeek)
                sendSeek(*m_state.pendingSeek);
            requestProperties();
        }
        break;
    case MPV_EVENT_PROPERTY_CHANGE:
        // Until the item is loaded, the news is of the item before it.
        if (m_state.loaded)
            handleProperty(topicOf(event.reply_userdata),
                           *static_cast<mpv_event_property *>(event.data));
        break;
    case MPV_EVENT_GET_PROPERTY_REPLY:
        if (event.error >= 0 && itemNumberOf(event.reply_userdata) == m_itemNumber)
            handleProperty(topicOf(event.reply_userdata),
                           *static_cast<mpv_event_property *>(event.data));
        break;
    case MPV_EVENT_COMMAND_REPLY:
        handleCommandReply(event);
        break;
    case MPV_EVENT_END_FILE:
        handleEndOfFile(*static_cast<mpv_event_end_file *>(event.data));
        break;
    case MPV_EVENT_IDLE:
        // The picture is gone, which the renderer is not told.
        Q_EMIT frameReady();
        break;
    case MPV_EVENT_PLAYBACK_RESTART:
        if (!m_state.loaded)
            break;
        // Otherwise an older seek has ended; the position must not jump back to it.
        if (m_state.seeksUnderWay == 0 && m_state.pendingSeek)
            m_state.time = std::exchange(m_state.pendingSeek, std::nullopt);
        requestTime();
        if (!std::exchange(m_state.started, true))
            Q_EMIT itemStarted();
        break;
    default:
        break;
    }
}

void MpvMediaPlayer::handleCommandReply(const mpv_event &event)
{
    if (itemNumberOf(event.reply_userdata) != m_itemNumber)
        return;
    switch (topicOf(event.reply_userdata)) {
    case Topic::Load: {
        const mpv_node &result = static_cast<mpv_event_command *>(event.data)->result;
        const mpv_node *entry = mapValue(result, "playlist_entry_id");
        if (entry && entry->format == MPV_FORMAT_INT64)
            m_playlist.entryId = entry->u.int64;
        if (event.error < 0)
            fail(failureOf(event.error));
        break;
    }
    case Topic::Seek:
        m_state.seeksUnderWay = std::max(0, m_state.seeksUnderWay - 1);
        if (event.error < 0 && m_state.seeksUnderWay == 0) {
            m_state.pendingSeek.reset();
            requestTime();
        }
        break;
    default:
        break;
    }
}

void MpvMediaPlayer::handleEndOfFile(const mpv_event_end_file &end)
{
    if (!m_playlist.entryId || end.playlist_entry_id != *m_playlist.entryId)
        return;
    switch (end.reason) {
    case MPV_END_FILE_REASON_REDIRECT:
        m_playlist.entriesAhead += end.playlist_insert_num_entries;
        if (++m_playlist.playlistsRead > maximumPlaylists)
            m_playlist.entriesAhead = 0;
        goOn(ItemFailure::Unplayable);
        break;
    case MPV_END_FILE_REASON_ERROR:
        goOn(failureOf(end.error));
        break;
    case MPV_END_FILE_REASON_EOF:
        // With anything shown, the last entry's last picture would have stayed.
        goOn(ItemFailure::Unplayable);
        break;
    default:
        break;
    }
}

void MpvMediaPlayer::goOn(ItemFailure failureOtherwise)
{
    m_playlist.entryId.reset();
    if (m_playlist.entriesAhead > 0) {
        --m_playlist.entriesAhead;
        m_playlist.goesOn = true;
        m_state = {};
        updateStatus();
        return;
    }
    const char *arguments[] = {"stop", nullptr};
    mpv_command_async(m_core->handle(), 0, arguments);
    fail(failureOtherwise);
}

void MpvMediaPlayer::handleProperty(Topic topic, const mpv_event_property &property)
{
    switch (topic) {
    case Topic::Time:
        m_state.time = valueOf<double>(property);
        notifyTimeObserver();
        break;
    case Topic::Duration:
        updateDuration(valueOf<double>(property));
        notifyTimeObserver();
        break;
    case Topic::Seekable:
        m_state.seekable = flagOf(property);
        notifyTimeObserver();
        break;
    case Topic::PartiallySeekable:
        m_state.onlyCacheSeekable = flagOf(property);
        notifyTimeObserver();
        break;
    case Topic::CacheState:
        updateCacheState(valueOf<mpv_node>(property).value_or(mpv_node{}));
        notifyTimeObserver();
        break;
    case Topic::CoreIdle:
        m_state.coreIdle = flagOf(property);
        updateStatus();
        break;
    case Topic::PausedForCache: {
        const bool waits = flagOf(property);
        if (std::exchange(m_state.waitsForCache, waits) != waits) {
            Q_EMIT playbackBufferEmptyChanged(waits);
            Q_EMIT playbackLikelyToKeepUpChanged(!waits);
        }
        break;
    }
    case Topic::EofReached:
        if (flagOf(property) && !m_state.pendingSeek) {
            const bool hadEnded = std::exchange(m_state.ended, true);
            pause();
            requestTime();
            if (!hadEnded) {
                if (m_state.isWithoutEnd())
                    Q_EMIT itemBrokeOff();
                Q_EMIT itemEnded();
            }
        }
        break;
    case Topic::Width:
        m_unturnedSize.setWidth(int(valueOf<int64_t>(property).value_or(0)));
        break;
    case Topic::Height:
        m_unturnedSize.setHeight(int(valueOf<int64_t>(property).value_or(0)));
        break;
    case Topic::Rotation:
        m_rotation = int(valueOf<int64_t>(property).value_or(0));
        break;
    case Topic::Cover:
        m_state.showsCover = flagOf(property);
        notifyTimeObserver();
        break;
    default:
        break;
    }
}

bool MpvMediaPlayer::ItemState::isWithoutEnd() const
{
    return !canSeekEverywhere() && !lengthIsTold && firstDuration
        && duration > *firstDuration + rangeMargin;
}

void MpvMediaPlayer::updateDuration(std::optional<double> duration)
{
    if (m_state.duration && duration && *duration > *m_state.duration + rangeMargin) {
        m_state.lengthGrows = true;
        m_state.lengthIsTold = false;
    }
    m_state.duration = duration;
    if (!m_state.firstDuration)
        m_state.firstDuration = duration;
}

void MpvMediaPlayer::updateCacheState(const mpv_node &state)
{
    m_state.cachedRanges = seekableRanges(state);
    // For a stream without an end libmpv reports how much it has seen so far. What lies beyond
    // that has been told by the file, and at the end of the data all is known anyway.
    const std::optional<double> newest = number(mapValue(state, "cache-end"));
    const bool isBeyondData =
        m_state.duration && newest && *m_state.duration > *newest + lengthMargin;
    if (flag(mapValue(state, "eof-cached")))
        m_state.allHasArrived = true;
    if (isBeyondData && !m_state.lengthGrows)
        m_state.lengthIsTold = true;
}

} // namespace lumaro
