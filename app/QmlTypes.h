#pragma once

#include "app/DownloadsModel.h"
#include "app/HelpModel.h"
#include "app/LocalM3UCommands.h"
#include "app/LocalM3UModel.h"
#include "app/MainWindowModel.h"
#include "app/MenuCommands.h"
#include "app/RecentItems.h"
#include "app/RecordingModel.h"
#include "app/RemoteControl.h"
#include "app/TransportModel.h"
#include "display/PlayerHostingView.h"
#include "platform/NotificationCenter.h"
#include "platform/qt/QuickFilePanels.h"
#include "player/PlayerModel.h"
#include "player/WebPlayers.h"

#include <QtQml/qqml.h>

/// Makes the models known to the views by name; the models themselves know nothing of QML.
namespace lumaro {

struct DownloadsModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::DownloadsModel)
    QML_NAMED_ELEMENT(DownloadsModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct HelpModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::HelpModel)
    QML_NAMED_ELEMENT(HelpModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct LocalM3UCommandsForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::LocalM3UCommands)
    QML_NAMED_ELEMENT(LocalM3UCommands)
    QML_UNCREATABLE("Made by the composition root.")
};

struct LocalM3UModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::LocalM3UModel)
    QML_NAMED_ELEMENT(LocalM3UModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct MainWindowModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::MainWindowModel)
    QML_NAMED_ELEMENT(MainWindowModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct MenuCommandForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::MenuCommand)
    QML_NAMED_ELEMENT(MenuCommand)
    QML_UNCREATABLE("Made by the composition root.")
};

struct MenuCommandsForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::MenuCommands)
    QML_NAMED_ELEMENT(MenuCommands)
    QML_UNCREATABLE("Made by the composition root.")
};

struct NotificationCenterForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::NotificationCenter)
    QML_NAMED_ELEMENT(NotificationCenter)
    QML_UNCREATABLE("Made by the composition root.")
};

struct PlayerModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::PlayerModel)
    QML_NAMED_ELEMENT(PlayerModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct PlayerViewServicesForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::PlayerViewServices)
    QML_NAMED_ELEMENT(PlayerViewServices)
    QML_UNCREATABLE("Made by the composition root.")
};

struct QuickFilePanelsForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::QuickFilePanels)
    QML_NAMED_ELEMENT(QuickFilePanels)
    QML_UNCREATABLE("Made by the composition root.")
};

struct PlayerRecordingControllerForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::PlayerRecordingController)
    QML_NAMED_ELEMENT(PlayerRecordingController)
    QML_UNCREATABLE("Made by the composition root.")
};

struct RecentItemsForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::RecentItems)
    QML_NAMED_ELEMENT(RecentItems)
    QML_UNCREATABLE("Made by the composition root.")
};

struct RecordingModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::RecordingModel)
    QML_NAMED_ELEMENT(RecordingModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct RemoteControlForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::RemoteControl)
    QML_NAMED_ELEMENT(RemoteControl)
    QML_UNCREATABLE("Made by the composition root.")
};

struct TextRowsForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::TextRows)
    QML_NAMED_ELEMENT(TextRows)
    QML_UNCREATABLE("Made by the composition root.")
};

struct TransportModelForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::TransportModel)
    QML_NAMED_ELEMENT(TransportModel)
    QML_UNCREATABLE("Made by the composition root.")
};

struct WebPlayersForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::WebPlayers)
    QML_NAMED_ELEMENT(WebPlayers)
    QML_UNCREATABLE("Made by the composition root.")
};

struct WebPlayerViewForQml
{
    Q_GADGET
    QML_FOREIGN(lumaro::WebPlayerView)
    QML_NAMED_ELEMENT(WebPlayerView)
    QML_UNCREATABLE("Made by the composition root.")
};

} // namespace lumaro
