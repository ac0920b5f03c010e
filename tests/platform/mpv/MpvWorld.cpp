#include "tests/platform/mpv/MpvWorld.h"

#include "platform/mpv/MpvVideoItem.h"
#include "tests/e2e/servers/VirtualDisplay.h"

#include <QGuiApplication>

#include <clocale>

using namespace std::chrono_literals;

namespace lumaro {

MpvWorld::MpvWorld()
    : player(std::make_unique<MpvMediaPlayer>())
    , window(std::make_unique<QQuickWindow>())
{
    QObject::connect(player.get(), &MediaPlayer::itemStarted, player.get(), [this] { ++started; });
    QObject::connect(player.get(), &MediaPlayer::itemFailed, player.get(),
                     [this](MediaPlayer::ItemFailure failure) { failures.append(failure); });
    // Machines that run tests have neither sound nor a video decoder.
    mpv_set_property_string(player->core()->handle(), "ao", "null");
    mpv_set_property_string(player->core()->handle(), "hwdec", "no");
    player->setPeriodicTimeObserver(50ms, [] { });
    window->resize(320, 180);
    auto *picture = new MpvVideoItem(window->contentItem());
    picture->setSize(window->size());
    picture->setPlayer(player.get());
    window->show();
    if (!QTest::qWaitForWindowExposed(window.get(), longestWait))
        qFatal("The window does not appear.");
}

MpvWorld::~MpvWorld() = default;

void MpvWorld::open(const QUrl &url)
{
    player->replaceItem(url);
    player->play();
}

bool MpvWorld::playsTo(double seconds)
{
    return becomesTrue([&] {
        return player->timeControlStatus() == MediaPlayer::TimeControlStatus::Playing
            && player->currentTime().value_or(0) >= seconds;
    });
}

int runMpvTest(int argc, char *argv[], const std::function<int()> &test)
{
    return runInDisplay([&] {
        QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
        const QGuiApplication qt(argc, argv);
        QGuiApplication::setQuitOnLastWindowClosed(false);
        // libmpv requires it, and the application object has just set the user's locale.
        std::setlocale(LC_NUMERIC, "C");
        return test();
    });
}

} // namespace lumaro
