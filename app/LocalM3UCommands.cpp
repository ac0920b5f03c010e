#include "app/LocalM3UCommands.h"

#include "app/LocalM3UModel.h"

namespace lumaro {

LocalM3UCommands::LocalM3UCommands(LocalM3UModel &library, QObject *parent)
    : QObject(parent)
{
    const auto make = [this](const QString &title, const QString &shortcut,
                             std::function<void()> action, std::function<bool()> isEnabled = {},
                             bool startsGroup = false) {
        const auto command = new MenuCommand({.title = [title] { return title; },
                                              .shortcut = shortcut,
                                              .action = std::move(action),
                                              .startsGroup = startsGroup,
                                              .isEnabled = std::move(isEnabled)},
                                             this);
        m_all.append(command);
        return command;
    };
    LocalM3UHistory *const history = library.history();

    make(tr("Show Local M3U"), QStringLiteral("Ctrl+Shift+L"), [&library] { library.show(); });
    MenuCommand *const saveCurrent =
        new MenuCommand({.title =
                             [&library] {
                                 return library.isCurrentSaved() ? tr("Show in Local M3U")
                                                                 : tr("Save to Local M3U");
                             },
                         .shortcut = QStringLiteral("Ctrl+D"),
                         .action = [&library] { library.saveCurrent(); },
                         .startsGroup = false,
                         .isEnabled = [&library] { return library.canSaveCurrent(); }},
                        this);
    m_all.append(saveCurrent);
    connect(&library, &LocalM3UModel::currentChanged, saveCurrent, &MenuCommand::titleChanged);
    connect(&library, &LocalM3UModel::currentChanged, saveCurrent, &MenuCommand::isEnabledChanged);
    MenuCommand *const search = make(
        tr("Search Channels and Links"), QStringLiteral("Ctrl+F"), [&library] { library.search(); },
        [&library] { return library.canSearch(); });
    connect(&library, &LocalM3UModel::canSearchChanged, search, &MenuCommand::isEnabledChanged);
    make(tr("Add Link…"), QStringLiteral("Ctrl+N"), [&library] { library.add(); });

    MenuCommand *const undo = make(
        tr("Undo"), QStringLiteral("Ctrl+Z"), [&library] { library.undo(); },
        [history] { return history->canUndo(); }, true);
    MenuCommand *const redo = make(
        tr("Redo"), QStringLiteral("Ctrl+Shift+Z"), [&library] { library.redo(); },
        [history] { return history->canRedo(); });
    for (MenuCommand *command : {undo, redo})
        connect(history, &LocalM3UHistory::changed, command, &MenuCommand::isEnabledChanged);

    make(
        tr("Import M3U File…"), QStringLiteral("Ctrl+Shift+I"),
        [&library] {
            library.show();
            library.importLocalPlaylist();
        },
        {}, true);
    make(tr("Export M3U File…"), QStringLiteral("Ctrl+Shift+E"),
         [&library] { library.exportLocalPlaylistAsM3U(); });
    MenuCommand *const removeAll = make(
        tr("Delete All…"), QStringLiteral("Ctrl+Shift+Backspace"),
        [&library] { library.removeAll(); }, [&library] { return library.list()->count() > 0; });
    connect(library.list(), &LocalM3UListModel::countChanged, removeAll,
            &MenuCommand::isEnabledChanged);
}

} // namespace lumaro
