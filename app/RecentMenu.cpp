#include "app/RecentMenu.h"

#include "app/MenuCommands.h"
#include "app/RecentItems.h"

#include <QCoreApplication>

namespace lumaro {

namespace {

std::vector<std::unique_ptr<MenuCommand>> choicesOf(RecentItems &recent)
{
    std::vector<std::unique_ptr<MenuCommand>> choices;
    const auto add = [&choices](MenuCommand::Description description) {
        choices.push_back(std::make_unique<MenuCommand>(std::move(description)));
    };
    for (const RecentItem &item : recent.items()) {
        add({.title = [title = recent.title(item)] { return title; },
             .action = [&recent, item] { recent.open(item); }});
    }
    if (choices.empty()) {
        add({.title =
                 [] { return QCoreApplication::translate("RecentMenu", "Nothing Opened Yet"); },
             .action = [] {},
             .startsGroup = false,
             .isEnabled = [] { return false; }});
    } else {
        add({.title = [] { return QCoreApplication::translate("RecentMenu", "Clear Recent"); },
             .action = [&recent] { recent.clear(); },
             .startsGroup = true});
    }
    return choices;
}

} // namespace

MenuCommand *makeRecentMenu(RecentItems &recent, QObject *parent)
{
    auto *const menu = new MenuCommand(
        {.title = [] { return QCoreApplication::translate("RecentMenu", "Open Recent"); },
         .action = [] {},
         .startsGroup = false,
         .isEnabled = {},
         .isChecked = {},
         .opensMenu = true},
        parent);
    const auto update = [menu, &recent] { menu->setChoices(choicesOf(recent)); };
    QObject::connect(&recent, &RecentItems::changed, menu, update);
    update();
    return menu;
}

} // namespace lumaro
