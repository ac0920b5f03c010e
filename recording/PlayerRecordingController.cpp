#include "recording/PlayerRecordingController.h"

#include "recording/RecordingDuration.h"

#include <QCoreApplication>
#include <QFile>

#include <limits>

namespace lumaro {

namespace {

constexpr int queueDepth = 6;
constexpr int narrowPanel = 210;
/// Has room for the time that is left.
constexpr int widePanel = 310;

QString qualityWord(PlayerRecordingQuality quality)
{
    return quality == PlayerRecordingQuality::hd ? QStringLiteral("HD") : QStringLiteral("Normal");
}

SavePanelAccessory stopAfterField(const QUrl &folder)
{
    return {.label = PlayerRecordingController::tr("Stop After (Optional)"),
            .placeholder = PlayerRecordingController::tr("30m or 1.2hr"),
            .toolTip = PlayerRecordingController::tr(
                "Optional: enter a duration such as 30m or 1.2hr. Leave "
                "blank to stop manually."),
            .hint = PlayerRecordingController::tr(
                "Examples: 30m, 90m, 1.2hr. Leave blank for manual Stop."),
            .folder = folder};
}

QString unknownError()
{
    return PlayerRecordingController::tr("Unknown recording error.");
}

/// Window numbers of the system's capture have 32 bits.
quint32 checkedWindowNumber(quint64 number)
{
    if (number > std::numeric_limits<quint32>::max())
        qFatal("The window's number %llu is out of range.",
               static_cast<unsigned long long>(number));
    return quint32(number);
}

CaptureConfiguration captureConfiguration(const CaptureArea &area, quint32 window,
                                          const QSize &outputSize)
{
    return {.source = area,
            .window = window,
            .outputSize = outputSize,
            .minimumFrameInterval =
                MediaTime(std::chrono::seconds(1)) / PlayerCaptureWriter::frameRate,
            .queueDepth = queueDepth,
            .showsCursor = false,
            .capturesAudio = true,
            .excludesOwnAudio = false,
            .audioSampleRate = PlayerCaptureWriter::audioSampleRate,
            .audioChannels = PlayerCaptureWriter::audioChannels};
}

} // namespace

QString title(PlayerRecordingQuality quality)
{
    return quality == PlayerRecordingQuality::hd
        ? PlayerRecordingController::tr("HD Recording (1080p)")
        : PlayerRecordingController::tr("Normal Recording");
}

PlayerRecordingController::PlayerRecordingController(RecordingPlatform platform, QObject *parent)
    : QObject(parent)
    , m_platform(std::move(platform))
    , m_captureQueue(
          m_platform.makeQueue(QCoreApplication::applicationName() + QStringLiteral(".capture")))
    , m_durationTimer(m_platform.scheduler)
{
}

PlayerRecordingController::~PlayerRecordingController()
{
    m_lifetime.request_stop();
    m_stream.reset();
    m_stoppingStream.reset();
    if (m_writer) {
        m_writer->hurry();
        if (!m_isFinishing)
            m_captureQueue->post([writer = m_writer] { writer->finish([](const auto &) { }); });
    }
    // A stream's last samples may still hold the queue; the file shall be complete all the same,
    // unless the disk stands still.
    m_captureQueue->drain();
}

bool PlayerRecordingController::isRecording() const
{
    return m_state == PlayerRecordingState::recording || m_state == PlayerRecordingState::stopping;
}

// Starting

Task<> PlayerRecordingController::start(PlayerRecordingQuality quality)
{
    if (m_state != PlayerRecordingState::idle || !requestScreenRecordingPermissionIfNeeded())
        co_return;
    const QString noSurface = tr("The player surface is not available.");
    const auto window = m_platform.capture.keyWindow();
    if (!window || !surfaceRect()) {
        setErrorMessage(noSurface);
        co_return;
    }

    const std::stop_token stop = m_lifetime.get_token();
    auto asked = m_platform.panels.chooseNewFile(panelRequest(quality),
                                                 stopAfterField(m_platform.moviesFolder), stop);
    const auto choice = co_await asked;
    if (stop.stop_requested() || !choice)
        co_return;
    const QString durationText = choice->text.trimmed();
    const auto limit = parseRecordingDuration(durationText);
    if (!durationText.isEmpty() && !limit) {
        setErrorMessage(tr("Enter a valid duration such as 30m, 90m or 1.2hr, or "
                           "leave the field blank for manual Stop."));
        co_return;
    }
    // The panel was open for a while, and may have the keyboard still.
    const auto rect = surfaceRect();
    const auto now = m_platform.capture.keyWindow();
    if (!rect || !now) {
        setErrorMessage(noSurface);
        co_return;
    }

    m_automaticStopAfter = limit;
    setState(PlayerRecordingState::preparing);
    setErrorMessage({});
    setRequiresPermission(false);
    m_window = checkedWindowNumber(window->number);
    auto starting = startCapture({.file = choice->file,
                                  .window = m_window,
                                  .rect = *rect,
                                  .scale = now->backingScaleFactor,
                                  .quality = quality},
                                 stop);
    const auto started = co_await starting;
    if (stop.stop_requested())
        co_return;
    if (started) {
        didStartRecording();
    } else {
        m_automaticStopAfter.reset();
        setState(PlayerRecordingState::idle);
        present(started.error());
    }
}

bool PlayerRecordingController::requestScreenRecordingPermissionIfNeeded()
{
    const bool allowed = m_platform.capture.preflightAccess() || m_platform.capture.requestAccess();
    setRequiresPermission(!allowed);
    if (!allowed)
        setErrorMessage(tr(
            "Lumaro needs Screen & System Audio Recording permission to record the player and its "
            "system audio. Enable it in System Settings, then quit and reopen the app."));
    return allowed;
}

QString PlayerRecordingController::timestamp() const
{
    return m_platform.clock().toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH-mm-ss"));
}

SavePanelRequest PlayerRecordingController::panelRequest(PlayerRecordingQuality quality) const
{
    return {.title = tr("Save Recording"),
            .prompt = tr("Save"),
            .proposedName =
                u"Lumaro " + qualityWord(quality) + u" Recording " + timestamp() + u".mp4",
            .typeDescription = tr("MPEG-4 movie"),
            .extension = QStringLiteral("mp4")};
}

std::optional<QRectF> PlayerRecordingController::surfaceRect() const
{
    PlayerRecordingSurface *surface = m_platform.surfaces.currentSurface();
    if (!surface)
        return std::nullopt;
    return m_platform.capture.convertToWindow(surface->recordingView(),
                                              surface->recordingRectInView());
}

auto PlayerRecordingController::findArea(quint32 window, QRectF rect, std::stop_token stop)
    -> Task<Result<CaptureArea>>
{
    auto asked = m_platform.capture.shareableContent(std::move(stop));
    const auto content = co_await asked;
    if (!content)
        co_return std::unexpected(content.error());
    const auto area = captureArea(*content, window, rect);
    if (!area)
        co_return std::unexpected(description(area.error()));
    co_return *area;
}

auto PlayerRecordingController::startCapture(Request request, std::stop_token stop)
    -> Task<Result<void>>
{
    auto finding = findArea(request.window, request.rect, stop);
    const auto area = co_await finding;
    if (stop.stop_requested())
        co_return std::unexpected(QString());
    if (!area)
        co_return std::unexpected(area.error());

    const QSize size = outputDimensions(area->rect.size(), request.scale, request.quality);
    auto writer = PlayerCaptureWriter::create(m_platform.makeWriter, request.file, size);
    if (!writer)
        co_return std::unexpected(writer.error());
    m_writer = std::move(*writer);
    m_source = *area;
    auto stream =
        m_platform.capture.makeStream(captureConfiguration(*area, request.window, size), output());
    auto starting = stream->startCapture(stop);
    const auto started = co_await starting;
    if (stop.stop_requested())
        co_return std::unexpected(QString());
    if (!started) {
        stream.reset();
        m_captureQueue->post([writer = std::exchange(m_writer, nullptr)] { writer->cancel(); });
        co_return std::unexpected(started.error());
    }
    m_stream = std::move(stream);
    co_return {};
}

CaptureOutput PlayerRecordingController::output()
{
    return {.queue = m_captureQueue,
            .screen = [writer = m_writer](const VideoSample &sample) { writer->append(sample); },
            .audio = [writer = m_writer](const AudioSample &sample) { writer->append(sample); },
            .didStopWithError =
                [self = QPointer(this)](const QString &error) {
                    QMetaObject::invokeMethod(
                        qApp,
                        [self, error] {
                            if (self)
                                self->streamDidStop(error);
                        },
                        Qt::QueuedConnection);
                },
            .audioBecameUnavailable =
                [self = QPointer(this)] {
                    QMetaObject::invokeMethod(
                        qApp,
                        [self] {
                            if (self)
                                Q_EMIT self->audioBecameUnavailable();
                        },
                        Qt::QueuedConnection);
                },
            .pictureIsDue =
                [self = QPointer(this)] {
                    if (self)
                        self->followSurface();
                }};
}

// Recording

void PlayerRecordingController::didStartRecording()
{
    m_startedAt = m_platform.scheduler.now();
    setDuration(0);
    setState(PlayerRecordingState::recording);
    m_panelWidth = m_automaticStopAfter ? widePanel : narrowPanel;
    m_durationLabel = tr("REC  %1").arg(formatDuration(0));
    Q_EMIT durationLabelChanged();
    Q_EMIT recordingPanelChanged();
    m_durationTimer.start(tickInterval, [this] { tick(); });
}

void PlayerRecordingController::tick()
{
    m_durationTimer.start(tickInterval, [this] { tick(); });
    setDuration(std::chrono::duration<double>(m_platform.scheduler.now() - m_startedAt).count());
    updateDurationLabel();
    if (m_writer->hasFailed() || (m_automaticStopAfter && m_duration >= *m_automaticStopAfter))
        stop();
    else
        followSurface();
}

/// The window is moved, made larger, or the picture shown in another mode. With each picture that
/// is drawn, so that none is taken from the wrong place, and now and then for a window that only
/// moves.
Task<> PlayerRecordingController::followSurface()
{
    const auto rect = surfaceRect();
    if (!rect)
        co_return;
    const std::stop_token stop = m_lifetime.get_token();
    auto finding = findArea(m_window, *rect, stop);
    const auto area = co_await finding;
    if (stop.stop_requested() || !area || !m_stream || *area == m_source)
        co_return;
    m_source = *area;
    m_stream->setSource(*area);
}

void PlayerRecordingController::updateDurationLabel()
{
    const QString label = m_automaticStopAfter
        ? tr("REC  %1  •  LEFT  %2")
              .arg(formatDuration(m_duration),
                   formatDuration(std::max(*m_automaticStopAfter - m_duration, 0.0)))
        : tr("REC  %1").arg(formatDuration(m_duration));
    if (m_durationLabel == label)
        return;
    m_durationLabel = label;
    Q_EMIT durationLabelChanged();
}

void PlayerRecordingController::hidePanel()
{
    m_panelWidth = 0;
    Q_EMIT recordingPanelChanged();
}

// Stopping

void PlayerRecordingController::stop()
{
    if (m_state != PlayerRecordingState::recording)
        return;
    setState(PlayerRecordingState::stopping);
    hidePanel();
    m_durationTimer.cancel();
    m_automaticStopAfter.reset();
    m_stoppingStream = std::move(m_stream);
    finish();
}

Task<> PlayerRecordingController::finish()
{
    const std::stop_token stop = m_lifetime.get_token();
    auto stopping = m_stoppingStream->stopCapture();
    co_await stopping;
    if (stop.stop_requested())
        co_return;
    m_stoppingStream.reset();
    m_isFinishing = true;
    m_captureQueue->post([self = QPointer(this), writer = m_writer] {
        writer->finish([self, writer](const PlayerCaptureWriter::Outcome &outcome) {
            QMetaObject::invokeMethod(
                qApp,
                [self, outcome] {
                    if (self)
                        self->finished(outcome);
                },
                Qt::QueuedConnection);
        });
    });
}

void PlayerRecordingController::finished(const PlayerCaptureWriter::Outcome &outcome)
{
    m_writer.reset();
    m_isFinishing = false;
    if (outcome && std::exchange(m_lastSavedURL, *outcome) != *outcome)
        Q_EMIT lastSavedURLChanged();
    setState(PlayerRecordingState::idle);
    if (outcome)
        Q_EMIT saved();
    else
        present(outcome.error());
}

void PlayerRecordingController::streamDidStop(const QString &error)
{
    if (m_state != PlayerRecordingState::recording)
        return;
    m_durationTimer.cancel();
    m_automaticStopAfter.reset();
    hidePanel();
    m_stream.reset();
    // What has been written stays as it is; the writer goes where it is used.
    m_captureQueue->post([writer = std::exchange(m_writer, nullptr)] { });
    setErrorMessage(error.isEmpty() ? unknownError() : error);
    setState(PlayerRecordingState::idle);
}

// Publishing

void PlayerRecordingController::present(const QString &error)
{
    bool refused = false;
    for (const QStringView sign : {u"TCC", u"declined", u"permission"})
        refused = refused || error.contains(sign, Qt::CaseInsensitive);
    setRequiresPermission(refused);
    setErrorMessage(
        refused ? PlayerRecordingController::tr("macOS has blocked screen recording permission for "
                                                "Lumaro. Enable Screen & System Audio Recording in "
                                                "System Settings, then quit and reopen the app.")
            : error.isEmpty() ? unknownError()
                              : error);
}

void PlayerRecordingController::setState(PlayerRecordingState state)
{
    if (std::exchange(m_state, state) != state)
        Q_EMIT stateChanged();
}

void PlayerRecordingController::setDuration(double seconds)
{
    if (std::exchange(m_duration, seconds) != seconds)
        Q_EMIT durationChanged();
}

void PlayerRecordingController::setErrorMessage(const QString &message)
{
    if (m_errorMessage == message)
        return;
    m_errorMessage = message;
    Q_EMIT errorMessageChanged();
}

void PlayerRecordingController::setRequiresPermission(bool required)
{
    if (std::exchange(m_requiresPermission, required) != required)
        Q_EMIT requiresScreenRecordingPermissionChanged();
}

} // namespace lumaro
