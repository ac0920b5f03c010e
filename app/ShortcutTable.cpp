#include "app/ShortcutTable.h"

#include "app/LocalM3UCommands.h"
#include "app/MenuCommands.h"

#include <array>

#include <QCoreApplication>

namespace lumaro {

namespace {

struct Key
{
    const char *action; ///< in English
    const char *keys;
};

// What the player's key monitor takes.
constexpr std::array playerKeys{
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Play, Pause, or Play the Last Thing Again"), "Space"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Stop"), "Ctrl+K"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Back or Forward 5 Seconds"), "Left / Right"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Back or Forward 20 Seconds"), "Alt+Left / Alt+Right"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Back or Forward 60 Seconds"), "Ctrl+Left / Ctrl+Right"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Back or Forward 300 Seconds"),
        "Ctrl+Alt+Left / Ctrl+Alt+Right"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Volume by 5 %"), "Up / Down"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Volume by 1 %"), "Shift+Up / Shift+Down"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Volume by 10 %"), "Alt+Up / Alt+Down"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Volume by 20 %"), "Ctrl+Up / Ctrl+Down"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Record"), "Ctrl+Shift+R"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Play, Pause, Stop, Next and Previous Channel"),
        QT_TRANSLATE_NOOP("ShortcutTable", "Media Keys")},
};

constexpr std::array windowKeys{
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Full Screen"),
        QT_TRANSLATE_NOOP("ShortcutTable", "F / F11 / Double Click")},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Exit Full Screen"), "Escape"},
};

constexpr std::array listKeys{
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Save the Chosen Channel"), "Ctrl+S"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Choose a Channel or Link"),
        "Up / Down / PgUp / PgDown"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Choose the First or Last Channel"),
        "Ctrl+Home / Ctrl+End"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Play It, or Fold a Category"), "Return"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Edit the Chosen Link"), "F2"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Delete the Chosen Link"), "Del"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Menu of the Chosen Channel or Link"),
        "Menu / Shift+F10"},
};

constexpr std::array finderKeys{
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "New Tab"), "Ctrl+T"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Close Tab"), "Ctrl+W"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Open the Closed Tab Again"), "Ctrl+Shift+T"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Next Tab"), "Ctrl+Tab / Ctrl+PgDown"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Previous Tab"), "Ctrl+Shift+Tab / Ctrl+PgUp"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Type an Address"), "Ctrl+L / Alt+D / F6"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Load Again"), "Ctrl+R / F5"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Stop Loading"), "Escape"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Back"), "Alt+Left"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Forward"), "Alt+Right"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Larger"), "Ctrl++ / Ctrl+="},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Smaller"), "Ctrl+-"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Original Size"), "Ctrl+0"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Find in Page"), "Ctrl+F"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Next Place"), "F3"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Previous Place"), "Shift+F3"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Save or Forget the Website"), "Ctrl+D"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "Saved Websites and History"), "Ctrl+H"},
    Key{QT_TRANSLATE_NOOP("ShortcutTable", "More or Fewer Streams"), "+ / -"},
};

template <std::size_t size>
void append(QList<TextRows::Row> &rows, const QString &section, const std::array<Key, size> &keys)
{
    for (const Key &key : keys)
        rows.append({section, QCoreApplication::translate("ShortcutTable", key.action),
                     QCoreApplication::translate("ShortcutTable", key.keys)});
}

void append(QList<TextRows::Row> &rows, const QString &section,
            const QList<MenuCommand *> &commands)
{
    for (const MenuCommand *command : commands) {
        if (!command->shortcut().isEmpty())
            rows.append({section, command->title().remove(u'…'), command->shortcut()});
    }
}

} // namespace

QList<TextRows::Row> shortcutTable(const MenuCommands &menus, const LocalM3UCommands &library)
{
    QList<TextRows::Row> rows;
    const QString playback = QCoreApplication::translate("ShortcutTable", "Playback");
    append(rows, playback, playerKeys);
    append(rows, playback, menus.playback());
    append(rows, QCoreApplication::translate("ShortcutTable", "File"), menus.file());
    const QString view = QCoreApplication::translate("ShortcutTable", "View");
    append(rows, view, windowKeys);
    // Full screen has more keys than its menu item tells.
    for (MenuCommand *const command : menus.view()) {
        if (command->shortcut() != u"F11")
            append(rows, view, QList{command});
    }
    append(rows, QCoreApplication::translate("ShortcutTable", "Library"), library.all());
    append(rows, QCoreApplication::translate("ShortcutTable", "Channels and Links"), listKeys);
    append(rows, QCoreApplication::translate("ShortcutTable", "Stream Finder"), finderKeys);
    append(rows, QCoreApplication::translate("ShortcutTable", "Help"), menus.help());
    return rows;
}

} // namespace lumaro
