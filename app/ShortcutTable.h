#pragma once

#include "app/TextRows.h"

namespace lumaro {

class LocalM3UCommands;
class MenuCommands;

/// Every key of the program with what it does: a row's title is the action, its text the keys,
/// alternatives apart by " / ". The menus' own shortcuts come from the menus.
QList<TextRows::Row> shortcutTable(const MenuCommands &menus, const LocalM3UCommands &library);

} // namespace lumaro
