#pragma once

#include "platform/DefaultsValue.h"
#include "platform/NotificationCenter.h"

#include <QObject>
#include <QRect>

namespace lumaro {

class SnifferBrowserTabs;

/// The stream finder's window: made when it is first shown, and only ever hidden after that, so
/// that its tabs stay. Main thread.
class SnifferWindowController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isShown READ isShown NOTIFY isShownChanged)
    /// Where the window was, in the desktop's coordinates; empty when that is not known.
    Q_PROPERTY(QRect frame READ frame WRITE setFrame NOTIFY frameChanged)
    /// A panel or dialog of the window waits for the user; the window stays for it.
    Q_PROPERTY(bool hasSheet MEMBER m_hasSheet NOTIFY hasSheetChanged)
    Q_PROPERTY(QString title MEMBER title CONSTANT)

public:
    /// Which of the program's windows has the keyboard.
    enum class KeyWindow {
        None, ///< none of them: the user is in another program
        Finder,
        /// A panel, dialog or menu that belongs to the finder's window, or stops all others.
        OwnPanel,
        Other,
    };

    struct Parts
    {
        SnifferBrowserTabs &tabs;
        NotificationCenter &notifications;
        UserDefaults &defaults;
        Scheduler &scheduler;
    };

    /// The parts outlive the controller.
    explicit SnifferWindowController(const Parts &parts, QObject *parent = nullptr);
    ~SnifferWindowController() override;

    bool isShown() const { return m_isShown; }
    const QRect &frame() const { return m_frame; }
    /// Remembers it for the next start.
    void setFrame(const QRect &frame);

    /// Where a new window goes on the screen: where it was, or in the middle. `size` is for the
    /// first time.
    QRect placedFrame(const QRect &screen, const QSize &size) const;
    /// Shows the window and brings it to the front.
    Q_INVOKABLE void show();
    /// The user asks for it to be closed. The answer is always no: it is hidden instead.
    Q_INVOKABLE bool windowShouldClose();
    /// The keyboard goes to another window.
    void keyWindowChanged(KeyWindow key);

    const QString title = QStringLiteral("M3U8 Stream Finder");

Q_SIGNALS:
    void isShownChanged();
    void frameChanged();
    void hasSheetChanged();
    /// It is about to be hidden.
    void hiding();
    /// The window, which may have to be made, should be in front.
    void frontRequested();

private:
    void scheduleHide(bool onlyIfStillInactive);
    void hide();

    SnifferBrowserTabs &m_tabs;
    NotificationCenter &m_notifications;
    Scheduler &m_scheduler;
    DefaultsValue m_storedFrame;
    QRect m_frame;
    bool m_isShown = false;
    bool m_hasSheet = false;
    KeyWindow m_keyWindow = KeyWindow::None;
    std::optional<Scheduler::TimerId> m_hiding;
};

} // namespace lumaro
