#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace lumaro {

class DownloadsModel;
class MainWindowModel;
class PlayerModel;

/// One menu item: its text, its shortcut and what it does.
class MenuCommand : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    /// In QKeySequence's portable form; empty for none.
    Q_PROPERTY(QString shortcut READ shortcut CONSTANT)
    Q_PROPERTY(bool isEnabled READ isEnabled NOTIFY isEnabledChanged)
    /// One of several choices.
    Q_PROPERTY(bool isCheckable READ isCheckable CONSTANT)
    /// The choice that is made.
    Q_PROPERTY(bool isChecked READ isChecked NOTIFY isCheckedChanged)
    /// Begins a new group of its menu.
    Q_PROPERTY(bool startsGroup READ startsGroup CONSTANT)

public:
    struct Description
    {
        std::function<QString()> title;
        QString shortcut;
        std::function<void()> action;
        bool startsGroup = false;
        /// Without it the command is always enabled.
        std::function<bool()> isEnabled{};
        /// With it the command is one of several choices.
        std::function<bool()> isChecked{};
    };

    explicit MenuCommand(Description description, QObject *parent = nullptr);

    QString title() const { return m_description.title(); }
    const QString &shortcut() const { return m_description.shortcut; }
    bool isEnabled() const { return !m_description.isEnabled || m_description.isEnabled(); }
    bool isCheckable() const { return bool(m_description.isChecked); }
    bool isChecked() const { return isCheckable() && m_description.isChecked(); }
    bool startsGroup() const { return m_description.startsGroup; }

    /// Does nothing while it is not enabled.
    Q_INVOKABLE void trigger();

Q_SIGNALS:
    void titleChanged();
    void isEnabledChanged();
    void isCheckedChanged();

private:
    Description m_description;
};

/// The application's menus. Main thread.
class MenuCommands : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<lumaro::MenuCommand *> file READ file CONSTANT)
    Q_PROPERTY(QList<lumaro::MenuCommand *> playback READ playback CONSTANT)
    Q_PROPERTY(QList<lumaro::MenuCommand *> view READ view CONSTANT)
    /// Also in the menu of the view.
    Q_PROPERTY(QList<lumaro::MenuCommand *> displayModes READ displayModes CONSTANT)

public:
    /// The models outlive the commands.
    MenuCommands(PlayerModel &player, MainWindowModel &window, DownloadsModel &downloads,
                 QObject *parent = nullptr);

    const QList<MenuCommand *> &file() const { return m_file; }
    const QList<MenuCommand *> &playback() const { return m_playback; }
    const QList<MenuCommand *> &view() const { return m_view; }
    const QList<MenuCommand *> &displayModes() const { return m_displayModes; }

Q_SIGNALS:
    void quitRequested();
    /// The stream finder's window should be in front.
    void finderRequested();

private:
    MenuCommand *make(MenuCommand::Description description);

    QList<MenuCommand *> m_file;
    QList<MenuCommand *> m_playback;
    QList<MenuCommand *> m_view;
    QList<MenuCommand *> m_displayModes;
};

} // namespace lumaro
