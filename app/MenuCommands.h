#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace lumaro {

class DownloadsModel;
class MainWindowModel;
class PlayerModel;
class RecentItems;

/// One menu item: its text, its shortcut and what it does.
class MenuCommand : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    /// In QKeySequence's portable form; empty for none.
    Q_PROPERTY(QString shortcut READ shortcut CONSTANT)
    /// The keys to show beside the title: the shortcut, or those that the player's key monitor
    /// takes.
    Q_PROPERTY(QString shownKeys READ shownKeys CONSTANT)
    Q_PROPERTY(bool isEnabled READ isEnabled NOTIFY isEnabledChanged)
    /// One of several choices.
    Q_PROPERTY(bool isCheckable READ isCheckable CONSTANT)
    /// The choice that is made.
    Q_PROPERTY(bool isChecked READ isChecked NOTIFY isCheckedChanged)
    /// Begins a new group of its menu.
    Q_PROPERTY(bool startsGroup READ startsGroup CONSTANT)
    /// Opens a menu of its own, with the choices.
    Q_PROPERTY(bool opensMenu READ opensMenu CONSTANT)
    Q_PROPERTY(QList<lumaro::MenuCommand *> choices READ choices NOTIFY choicesChanged)

public:
    struct Description
    {
        std::function<QString()> title;
        QString shortcut{};
        std::function<void()> action;
        bool startsGroup = false;
        /// Without it the command is always enabled.
        std::function<bool()> isEnabled{};
        /// With it the command is one of several choices.
        std::function<bool()> isChecked{};
        bool opensMenu = false;
        /// In place of a shortcut; in QKeySequence's portable form.
        QString monitoredKeys{};
    };

    explicit MenuCommand(Description description, QObject *parent = nullptr);

    QString title() const { return m_description.title(); }
    const QString &shortcut() const { return m_description.shortcut; }
    const QString &shownKeys() const
    {
        return shortcut().isEmpty() ? m_description.monitoredKeys : shortcut();
    }
    bool isEnabled() const { return !m_description.isEnabled || m_description.isEnabled(); }
    bool isCheckable() const { return bool(m_description.isChecked); }
    bool isChecked() const { return isCheckable() && m_description.isChecked(); }
    bool startsGroup() const { return m_description.startsGroup; }
    bool opensMenu() const { return m_description.opensMenu; }
    const QList<MenuCommand *> &choices() const { return m_choices; }
    /// In place of those before, which go as soon as nobody shows them any more.
    void setChoices(std::vector<std::unique_ptr<MenuCommand>> choices);

    /// Does nothing while it is not enabled.
    Q_INVOKABLE void trigger();

Q_SIGNALS:
    void titleChanged();
    void isEnabledChanged();
    void isCheckedChanged();
    void choicesChanged();

private:
    Description m_description;
    QList<MenuCommand *> m_choices;
};

/// The application's menus. Main thread.
class MenuCommands : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<lumaro::MenuCommand *> file READ file CONSTANT)
    Q_PROPERTY(QList<lumaro::MenuCommand *> playback READ playback CONSTANT)
    Q_PROPERTY(QList<lumaro::MenuCommand *> view READ view CONSTANT)
    Q_PROPERTY(QList<lumaro::MenuCommand *> help READ help CONSTANT)
    /// Also in the menu of the view.
    Q_PROPERTY(QList<lumaro::MenuCommand *> displayModes READ displayModes CONSTANT)

public:
    /// The models outlive the commands.
    MenuCommands(PlayerModel &player, MainWindowModel &window, DownloadsModel &downloads,
                 RecentItems &recent, QObject *parent = nullptr);

    const QList<MenuCommand *> &file() const { return m_file; }
    const QList<MenuCommand *> &playback() const { return m_playback; }
    const QList<MenuCommand *> &view() const { return m_view; }
    const QList<MenuCommand *> &help() const { return m_help; }
    const QList<MenuCommand *> &displayModes() const { return m_displayModes; }

Q_SIGNALS:
    void quitRequested();
    /// The stream finder's window should be in front.
    void finderRequested();
    void shortcutsRequested();
    void aboutRequested();

private:
    MenuCommand *make(MenuCommand::Description description);

    QList<MenuCommand *> m_file;
    QList<MenuCommand *> m_playback;
    QList<MenuCommand *> m_view;
    QList<MenuCommand *> m_help;
    QList<MenuCommand *> m_displayModes;
};

} // namespace lumaro
