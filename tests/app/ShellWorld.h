#pragma once

#include "app/MainWindowModel.h"
#include "platform/NotificationCenter.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/fakes/FakeInputMonitor.h"
#include "tests/fakes/FakeMediaPlayer.h"
#include "tests/fakes/FakeScheduler.h"
#include "tests/fakes/FakeUserDefaults.h"

namespace lumaro {

/// A main window's model on fakes.
struct ShellWorld
{
    FakeMediaPlayer mediaPlayer;
    FakeHttpClient http;
    FakeFilePanels panels;
    FakeScheduler scheduler;
    FakeInputMonitor input;
    FakeUserDefaults defaults;
    NotificationCenter notifications;
    YouTubePlayerRegistry youTube;
    OKVideoPlayerRegistry okVideo;
    PlayerModel player{
        {mediaPlayer, http, panels, scheduler, input, notifications, youTube, okVideo}};
    MainWindowModel shell{player, mediaPlayer, scheduler, notifications, defaults};
};

} // namespace lumaro
