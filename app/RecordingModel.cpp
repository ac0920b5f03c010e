#include "app/RecordingModel.h"

#include "platform/Workspace.h"

#include <QDir>

namespace lumaro {

namespace {

/// Points, between the panel and the edges of the display.
constexpr int panelGap = 18;

} // namespace

RecordingModel::RecordingModel(PlayerRecordingController &controller, Workspace &workspace,
                               Scheduler &scheduler, VisibleArea visibleArea, QObject *parent)
    : QObject(parent)
    , m_controller(controller)
    , m_workspace(workspace)
    , m_visibleArea(std::move(visibleArea))
    , m_hiding(scheduler)
{
    connect(&controller, &PlayerRecordingController::stateChanged, this,
            &RecordingModel::stateChanged);
    // The end of the last recording has no place in the next one.
    connect(&controller, &PlayerRecordingController::stateChanged, this, [this] {
        if (m_controller.state() != PlayerRecordingState::preparing)
            return;
        setWithoutSound(false);
        dismissNotice();
    });
    connect(&controller, &PlayerRecordingController::errorMessageChanged, this,
            &RecordingModel::showError);
    connect(&controller, &PlayerRecordingController::requiresScreenRecordingPermissionChanged, this,
            &RecordingModel::noticeChanged);
    connect(&controller, &PlayerRecordingController::saved, this, [this] {
        showNotice(tr("The MP4 recording was saved."), false);
        m_hiding.start(noticeDuration, [this] { dismissNotice(); });
    });
    connect(&controller, &PlayerRecordingController::audioBecameUnavailable, this,
            [this] { setWithoutSound(true); });
}

bool RecordingModel::isReady() const
{
    return m_controller.state() == PlayerRecordingState::idle
        || m_controller.state() == PlayerRecordingState::recording;
}

QString RecordingModel::buttonText() const
{
    switch (m_controller.state()) {
    case PlayerRecordingState::idle:
    case PlayerRecordingState::preparing:
        return tr("Record");
    case PlayerRecordingState::recording:
        return tr("Stop Recording");
    case PlayerRecordingState::stopping:
        return tr("Saving Recording…");
    }
    Q_UNREACHABLE();
}

QString RecordingModel::savedPath() const
{
    return m_notice.isEmpty() || m_noticeIsError
        ? QString()
        : QDir::toNativeSeparators(m_controller.lastSavedURL().toLocalFile());
}

bool RecordingModel::offersSettings() const
{
    return m_noticeIsError && m_controller.requiresScreenRecordingPermission();
}

QPoint RecordingModel::panelPosition() const
{
    const QRect area = m_visibleArea();
    return {area.x() + area.width() - panelGap - m_controller.recordingPanelWidth(),
            area.y() + panelGap};
}

void RecordingModel::startNormal()
{
    m_controller.start(PlayerRecordingQuality::normal);
}

void RecordingModel::startHd()
{
    m_controller.start(PlayerRecordingQuality::hd);
}

void RecordingModel::toggle()
{
    if (isRecording())
        stop();
    else
        startNormal();
}

void RecordingModel::showInFolder()
{
    m_workspace.activateFileViewer({m_controller.lastSavedURL()});
}

void RecordingModel::openSystemSettings()
{
    m_workspace.openScreenCaptureSettings();
}

void RecordingModel::dismissNotice()
{
    m_controller.dismissError();
    showNotice({}, false);
}

void RecordingModel::showError()
{
    const QString &error = m_controller.errorMessage();
    showNotice(error, !error.isEmpty());
}

void RecordingModel::setWithoutSound(bool isWithout)
{
    if (std::exchange(m_isWithoutSound, isWithout) != isWithout)
        Q_EMIT isWithoutSoundChanged();
}

void RecordingModel::showNotice(const QString &text, bool isError)
{
    m_hiding.cancel();
    m_notice = text;
    m_noticeIsError = isError;
    Q_EMIT noticeChanged();
}

} // namespace lumaro
