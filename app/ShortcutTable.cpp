#include "app/ShortcutTable.h"

#include "app/LocalM3UCommands.h"
#include "app/MenuCommands.h"

#include <array>

namespace lumaro {

namespace {

struct Key
{
    const char16_t *action;
    const char16_t *keys;
};

// What the player's key monitor takes.
constexpr std::array playerKeys{
    Key{u"Play, Pause, or Play the Last Thing Again", u"Space"},
    Key{u"Stop", u"Ctrl+K"},
    Key{u"Back or Forward 5 Seconds", u"Left / Right"},
    Key{u"Back or Forward 20 Seconds", u"Alt+Left / Alt+Right"},
    Key{u"Back or Forward 60 Seconds", u"Ctrl+Left / Ctrl+Right"},
    Key{u"Back or Forward 300 Seconds", u"Ctrl+Alt+Left / Ctrl+Alt+Right"},
    Key{u"Volume by 5 %", u"Up / Down"},
    Key{u"Volume by 1 %", u"Shift+Up / Shift+Down"},
    Key{u"Volume by 10 %", u"Alt+Up / Alt+Down"},
    Key{u"Volume by 20 %", u"Ctrl+Up / Ctrl+Down"},
    Key{u"Record", u"Ctrl+Shift+R"},
    Key{u"Play, Pause, Stop, Next and Previous Channel", u"Media Keys"},
};

constexpr std::array windowKeys{
    Key{u"Full Screen", u"F / F11 / Double Click"},
    Key{u"Exit Full Screen", u"Escape"},
};

constexpr std::array listKeys{
    Key{u"Save the Chosen Channel", u"Ctrl+S"},
    Key{u"Choose a Channel or Link", u"Up / Down / PgUp / PgDown"},
    Key{u"Play It", u"Return"},
    Key{u"Edit the Chosen Link", u"F2"},
    Key{u"Delete the Chosen Link", u"Del"},
    Key{u"Menu of the Chosen Link", u"Menu / Shift+F10"},
};

constexpr std::array finderKeys{
    Key{u"New Tab", u"Ctrl+T"},
    Key{u"Close Tab", u"Ctrl+W"},
    Key{u"Next Tab", u"Ctrl+Tab / Ctrl+PgDown"},
    Key{u"Previous Tab", u"Ctrl+Shift+Tab / Ctrl+PgUp"},
    Key{u"Type an Address", u"Ctrl+L / Alt+D / F6"},
    Key{u"Load Again", u"Ctrl+R / F5"},
    Key{u"Stop Loading", u"Escape"},
    Key{u"Back", u"Alt+Left"},
    Key{u"Forward", u"Alt+Right"},
    Key{u"Larger", u"Ctrl++ / Ctrl+="},
    Key{u"Smaller", u"Ctrl+-"},
    Key{u"Original Size", u"Ctrl+0"},
    Key{u"Save or Forget the Website", u"Ctrl+D"},
    Key{u"Saved Websites and History", u"Ctrl+H"},
    Key{u"More or Fewer Streams", u"+ / -"},
};

template <std::size_t size>
void append(QList<TextRows::Row> &rows, const QString &section, const std::array<Key, size> &keys)
{
    for (const Key &key : keys)
        rows.append({section, QString::fromUtf16(key.action), QString::fromUtf16(key.keys)});
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
    const QString playback = QStringLiteral("Playback");
    append(rows, playback, playerKeys);
    append(rows, playback, menus.playback());
    append(rows, QStringLiteral("File"), menus.file());
    const QString view = QStringLiteral("View");
    append(rows, view, windowKeys);
    // Full screen has more keys than its menu item tells.
    for (MenuCommand *const command : menus.view()) {
        if (command->shortcut() != u"F11")
            append(rows, view, QList{command});
    }
    append(rows, QStringLiteral("Library"), library.all());
    append(rows, QStringLiteral("Channels and Links"), listKeys);
    append(rows, QStringLiteral("Stream Finder"), finderKeys);
    append(rows, QStringLiteral("Help"), menus.help());
    return rows;
}

} // namespace lumaro
