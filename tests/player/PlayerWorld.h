#pragma once

#include "platform/NotificationCenter.h"
#include "player/PlayerModel.h"
#include "tests/fakes/FakeFilePanels.h"
#include "tests/fakes/FakeHttpClient.h"
#include "tests/fakes/FakeInputMonitor.h"
#include "tests/fakes/FakeMediaPlayer.h"
#include "tests/fakes/FakeScheduler.h"

namespace lumaro {

/// A player model on fakes.
struct PlayerWorld
{
    FakeMediaPlayer player;
    FakeHttpClient http;
    FakeFilePanels panels;
    FakeScheduler scheduler;
    FakeInputMonitor input;
    NotificationCenter notifications;
    YouTubePlayerRegistry youTube;
    OKVideoPlayerRegistry okVideo;
    PlayerModel model{
        {player, http, panels, scheduler, scheduler, input, notifications, youTube, okVideo}};
};

} // namespace lumaro
