#include "app/RecordingModel.h"

#include "platform/Workspace.h"

#include <QDir>

namespace lumaro {

RecordingModel::RecordingModel(PlayerRecordingController &controller, PlayerModel &player,
                               Workspace &workspace, Scheduler &scheduler, QObject *parent)
    : QObject(parent)
    , m_controller(controller)
    , m_workspace(workspace)
    , m_hiding(scheduler)
{
    connect(&controller, &PlayerRecordingController::stateChanged, this,
            &RecordingModel::stateChanged);
    connect(&controller, &PlayerRecordingController::errorMessageChanged, this,
            &RecordingModel::showError);
    connect(&controller, &PlayerRecordingController::requiresScreenRecordingPermissionChanged, this,
            &RecordingModel::noticeChanged);
    connect(&controller, &PlayerRecordingController::saved, this, [this] {
        showNotice(tr("The MP4 recording was saved."), false);
        m_hiding.start(noticeDuration, [this] { dismissNotice(); });
    });
    connect(&controller, &PlayerRecordingController::audioBecameUnavailable, this, [&player] {
        player.showToast(tr("Recording without sound: there is no audio output."),
                         PlayerModel::toastDuration);
    });
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

void RecordingModel::showNotice(const QString &text, bool isError)
{
    m_hiding.cancel();
    m_notice = text;
    m_noticeIsError = isError;
    Q_EMIT noticeChanged();
}

} // namespace lumaro
