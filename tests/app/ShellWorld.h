#pragma once

#include "app/DownloadsModel.h"
#include "app/MainWindowModel.h"
#include "app/RecentItems.h"
#include "platform/NotificationCenter.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/fakes/FakeInputMonitor.h"
#include "tests/fakes/FakeMediaPlayer.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"
#include "tests/fakes/FakeWorkspace.h"

#include <QTemporaryDir>

namespace lumaro {

/// A main window's models on fakes.
struct ShellWorld
{
    FakeMediaPlayer mediaPlayer;
    FakeHttpClient http;
    FakeFilePanels panels;
    FakeScheduler scheduler;
    FakeInputMonitor input;
    FakeUserDefaults defaults;
    FakeWorkspace workspace;
    QTemporaryDir saveFolder;
    NotificationCenter notifications;
    YouTubePlayerRegistry youTube;
    OKVideoPlayerRegistry okVideo;
    PlayerModel player{
        {mediaPlayer, http, panels, scheduler, scheduler, input, notifications, youTube, okVideo}};
    MainWindowModel shell{player, mediaPlayer, scheduler, notifications, defaults};
    M3U8DownloadManager downloadManager{
        {http, scheduler, scheduler, defaults, panels, workspace, {saveFolder.path()}}};
    DownloadsModel downloads{downloadManager, player};
    RecentItems recent{{player, mediaPlayer, shell, defaults, scheduler}};

    /// The player's clock ticks, `seconds` into an item that is `length` seconds long.
    void playing(double seconds, std::optional<double> length)
    {
        mediaPlayer.time = seconds;
        mediaPlayer.length = length;
        mediaPlayer.tick();
    }
};

} // namespace lumaro
