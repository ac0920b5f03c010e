#pragma once

#include "display/PlayerHostingView.h"
#include "tests/fakes/FakeFaceDetector.h"
#include "tests/fakes/FakeMediaPlayer.h"
#include "tests/fakes/FakeScheduler.h"

#include <QUrl>

namespace lumaro {

/// What a view of the picture needs, on fakes.
struct DisplayWorld
{
    DisplayWorld() { player.time = 0; }

    void openVideo(QSize size = {1920, 1080})
    {
        player.replaceItem(QUrl(QStringLiteral("file:///video.mp4")));
        player.changePictureSize(size);
    }

    FakeScheduler scheduler;
    NotificationCenter notifications;
    PlayerSurfaceRegistry surfaces;
    FakeMediaPlayer player;
    std::shared_ptr<FakeFaceDetector> detector = std::make_shared<FakeFaceDetector>();
    PlayerViewServices services{scheduler, scheduler, notifications, surfaces, detector};
};

/// Draws nothing; remembers how it was to draw.
class FakeSurface : public QQuickItem, public VideoSurface
{
    Q_OBJECT
    Q_INTERFACES(lumaro::VideoSurface)

public:
    void setPlacement(const VideoPlacement &newPlacement) override { placement = newPlacement; }

    VideoPlacement placement;
};

} // namespace lumaro
