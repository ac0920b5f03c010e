#pragma once

class QObject;

namespace lumaro {

class MenuCommand;
class RecentItems;

/// "Open Recent", with whatever `recent` holds at the time. `recent` outlives the command.
MenuCommand *makeRecentMenu(RecentItems &recent, QObject *parent);

} // namespace lumaro
