#pragma once

#include "recording/PlayerRecordingController.h"

#include <QRect>

namespace lumaro {

class Workspace;

/// What the main window decides about recordings: what its button does, and what the user is told.
/// Main thread.
class RecordingModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(lumaro::PlayerRecordingController *controller READ controller CONSTANT)
    Q_PROPERTY(bool isRecording READ isRecording NOTIFY stateChanged)
    /// The button can be used.
    Q_PROPERTY(bool isReady READ isReady NOTIFY stateChanged)
    Q_PROPERTY(QString buttonText READ buttonText NOTIFY stateChanged)
    Q_PROPERTY(QString normalTitle READ normalTitle CONSTANT)
    Q_PROPERTY(QString hdTitle READ hdTitle CONSTANT)
    /// The outcome of the last recording; empty for none.
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)
    Q_PROPERTY(bool noticeIsError READ noticeIsError NOTIFY noticeChanged)
    /// Where the file of the notice is, as the user's desktop writes it.
    Q_PROPERTY(QString savedPath READ savedPath NOTIFY noticeChanged)
    /// There is no sound to record. The main window does not tell of it: it would be in the
    /// picture.
    Q_PROPERTY(bool isWithoutSound READ isWithoutSound NOTIFY isWithoutSoundChanged)
    /// The user can allow in the system's settings what was refused.
    Q_PROPERTY(bool offersSettings READ offersSettings NOTIFY noticeChanged)

public:
    static constexpr std::chrono::seconds noticeDuration{10};

    /// What of the main window's display is free for windows, in the space of all displays.
    using VisibleArea = std::function<QRect()>;

    /// All arguments outlive the model.
    RecordingModel(PlayerRecordingController &controller, Workspace &workspace,
                   Scheduler &scheduler, VisibleArea visibleArea, QObject *parent = nullptr);

    PlayerRecordingController *controller() { return &m_controller; }
    bool isRecording() const { return m_controller.isRecording(); }
    bool isReady() const;
    QString buttonText() const;
    QString normalTitle() const { return title(PlayerRecordingQuality::normal); }
    QString hdTitle() const { return title(PlayerRecordingQuality::hd); }
    const QString &notice() const { return m_notice; }
    bool noticeIsError() const { return m_noticeIsError; }
    QString savedPath() const;
    bool isWithoutSound() const { return m_isWithoutSound; }
    bool offersSettings() const;

    /// Where the panel appears: its top left, in the space of all displays.
    Q_INVOKABLE QPoint panelPosition() const;
    Q_INVOKABLE void startNormal();
    Q_INVOKABLE void startHd();
    Q_INVOKABLE void stop() { m_controller.stop(); }
    /// Stops a recording, or starts one in normal quality.
    Q_INVOKABLE void toggle();
    Q_INVOKABLE void showInFolder();
    Q_INVOKABLE void openSystemSettings();
    Q_INVOKABLE void dismissNotice();

Q_SIGNALS:
    void stateChanged();
    void noticeChanged();
    void isWithoutSoundChanged();

private:
    void showNotice(const QString &text, bool isError);
    void showError();
    void setWithoutSound(bool isWithout);

    PlayerRecordingController &m_controller;
    Workspace &m_workspace;
    VisibleArea m_visibleArea;
    bool m_isWithoutSound = false;
    QString m_notice;
    bool m_noticeIsError = false;
    DelayedTask m_hiding;
};

} // namespace lumaro
