#pragma once

#include "platform/DelayedTask.h"
#include "platform/FilePanels.h"
#include "platform/WallClock.h"
#include "player/PlayerRecordingSurface.h"
#include "recording/CaptureGeometry.h"
#include "recording/PlayerCaptureWriter.h"

namespace lumaro {

enum class PlayerRecordingState { idle, preparing, recording, stopping };

/// As the menu names it.
QString title(PlayerRecordingQuality quality);

/// What a recording controller works with. All of it outlives the controller.
struct RecordingPlatform
{
    ScreenCapture &capture;
    AssetWriterFactory makeWriter;
    SerialQueueFactory makeQueue;
    FilePanels &panels;
    Scheduler &scheduler;
    WallClock clock;
    PlayerSurfaceRegistry &surfaces;
    /// Where the save panel begins.
    QUrl moviesFolder;
};

/// Records what the player shows, with the system's sound, to an MP4 file. Main thread; samples go
/// their way on the capture queue. Destroying it while it records completes the file,
/// if the disk lets it in time; it plays up to its last second in any case.
class PlayerRecordingController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(lumaro::PlayerRecordingState state READ state NOTIFY stateChanged)
    /// Recording, or still completing the file.
    Q_PROPERTY(bool isRecording READ isRecording NOTIFY stateChanged)
    /// Seconds.
    Q_PROPERTY(double duration READ duration NOTIFY durationChanged)
    /// What went wrong last; empty for nothing.
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(QUrl lastSavedURL READ lastSavedURL NOTIFY lastSavedURLChanged)
    Q_PROPERTY(bool requiresScreenRecordingPermission READ requiresScreenRecordingPermission NOTIFY
                   requiresScreenRecordingPermissionChanged)
    Q_PROPERTY(bool recordingPanelShown READ recordingPanelShown NOTIFY recordingPanelChanged)
    /// The panel's width in points: its label is longer when the recording stops by itself.
    Q_PROPERTY(int recordingPanelWidth READ recordingPanelWidth NOTIFY recordingPanelChanged)
    Q_PROPERTY(QString durationLabel READ durationLabel NOTIFY durationLabelChanged)

public:
    static constexpr std::chrono::milliseconds tickInterval{250};

    explicit PlayerRecordingController(RecordingPlatform platform, QObject *parent = nullptr);
    ~PlayerRecordingController() override;

    PlayerRecordingState state() const { return m_state; }
    bool isRecording() const;
    double duration() const { return m_duration; }
    const QString &errorMessage() const { return m_errorMessage; }
    const QUrl &lastSavedURL() const { return m_lastSavedURL; }
    bool requiresScreenRecordingPermission() const { return m_requiresPermission; }
    bool recordingPanelShown() const { return m_panelWidth > 0; }
    int recordingPanelWidth() const { return m_panelWidth; }
    const QString &durationLabel() const { return m_durationLabel; }

    /// Asks where to save and records from then on. Ends when the recording has begun or will not.
    Task<> start(PlayerRecordingQuality quality);
    /// Ends the recording; does nothing in any other state.
    Q_INVOKABLE void stop();
    Q_INVOKABLE void stopFromPanel() { stop(); }
    bool requestScreenRecordingPermissionIfNeeded();
    void dismissError() { setErrorMessage({}); }

Q_SIGNALS:
    void stateChanged();
    void durationChanged();
    void errorMessageChanged();
    void lastSavedURLChanged();
    void requiresScreenRecordingPermissionChanged();
    void recordingPanelChanged();
    void durationLabelChanged();
    /// The file is complete.
    void saved();
    /// The recording goes on without sound.
    void audioBecameUnavailable();

private:
    template <typename T>
    using Result = std::expected<T, QString>;

    struct Request
    {
        QUrl file;
        quint32 window = 0;
        QRectF rect;
        double scale = 1;
        PlayerRecordingQuality quality = PlayerRecordingQuality::normal;
    };

    QString timestamp() const;
    SavePanelRequest panelRequest(PlayerRecordingQuality quality) const;
    std::optional<QRectF> surfaceRect() const;
    Task<Result<CaptureArea>> findArea(quint32 window, QRectF rect, std::stop_token stop);
    Task<Result<void>> startCapture(Request request, std::stop_token stop);
    CaptureOutput output();
    void didStartRecording();
    void tick();
    Task<> followSurface();
    void hidePanel();
    Task<> finish();
    void finished(const PlayerCaptureWriter::Outcome &outcome);
    void streamDidStop(const QString &error);

    void present(const QString &error);
    void setState(PlayerRecordingState state);
    void setDuration(double seconds);
    void setErrorMessage(const QString &message);
    void setRequiresPermission(bool required);
    void updateDurationLabel();

    RecordingPlatform m_platform;
    std::stop_source m_lifetime;
    PlayerRecordingState m_state = PlayerRecordingState::idle;
    double m_duration = 0;
    QString m_errorMessage;
    QUrl m_lastSavedURL;
    bool m_requiresPermission = false;

    std::shared_ptr<SerialQueue> m_captureQueue;
    /// Shared with the work on the queue.
    std::shared_ptr<PlayerCaptureWriter> m_writer;
    /// Its finishing has been posted.
    bool m_isFinishing = false;
    std::unique_ptr<CaptureStream> m_stream;
    /// Has been stopped, and delivers what is still on its way.
    std::unique_ptr<CaptureStream> m_stoppingStream;
    DelayedTask m_durationTimer;
    Scheduler::TimePoint m_startedAt;
    std::optional<double> m_automaticStopAfter;
    quint32 m_window = 0;
    CaptureArea m_source;
    int m_panelWidth = 0;
    QString m_durationLabel;
};

} // namespace lumaro
