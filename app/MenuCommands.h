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
    };

    explicit MenuCommand(Description description, QObject *parent = nullptr);

    QString title() const { return m_description.title(); }
    const QString &shortcut() const { return m_description.shortcut; }
    bool isEnabled() const { return !m_description.isEnabled || m_description.isEnabled(); }
    bool startsGroup() const { return m_description.startsGroup; }

    /// Does nothing while it is not enabled.
    Q_INVOKABLE void trigger();

Q_SIGNALS:
    void titleChanged();
    void isEnabledChanged();

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

public:
    /// The models outlive the commands.
    MenuCommands(PlayerModel &player, MainWindowModel &window, DownloadsModel &downloads,
                 QObject *parent = nullptr);

    const QList<MenuCommand *> &file() const { return m_file; }
    const QList<MenuCommand *> &playback() const { return m_playback; }
    const QList<MenuCommand *> &view() const { return m_view; }

Q_SIGNALS:
    void quitRequested();
    /// The stream finder's window should be in front.
    void finderRequested();

private:
    MenuCommand *make(MenuCommand::Description description);

    QList<MenuCommand *> m_file;
    QList<MenuCommand *> m_playback;
    QList<MenuCommand *> m_view;
};

} // namespace lumaro
