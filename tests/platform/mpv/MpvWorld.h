#pragma once

#include "platform/mpv/MpvMediaPlayer.h"
#include "tests/e2e/servers/ValueOrFail.h"
#include "tests/e2e/servers/Waiting.h"

#include <QQuickWindow>

#include <functional>
#include <memory>

namespace lumaro {

/// libmpv as the media player, with its picture in a window on a display.
class MpvWorld
{
public:
    MpvWorld();
    ~MpvWorld();
    MpvWorld(const MpvWorld &) = delete;
    MpvWorld &operator=(const MpvWorld &) = delete;

    void open(const QUrl &url);
    bool playsTo(double seconds);

    std::unique_ptr<MpvMediaPlayer> player;
    std::unique_ptr<QQuickWindow> window;
    int started = 0;
    QList<MediaPlayer::ItemFailure> failures;
};

/// Runs `test` in a display of its own.
int runMpvTest(int argc, char *argv[], const std::function<int()> &test);

} // namespace lumaro

#define LUMARO_MPV_TEST_MAIN(Test)                                                                 \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        return lumaro::runMpvTest(argc, argv, [&] {                                                \
            Test test;                                                                             \
            return QTest::qExec(&test, argc, argv);                                                \
        });                                                                                        \
    }
