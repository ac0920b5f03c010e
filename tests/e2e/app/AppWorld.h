#pragma once

#include "app/Application.h"
#include "tests/e2e/servers/FaultServer.h"
#include "tests/e2e/servers/LiveFeed.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/NginxServer.h"
#include "tests/e2e/servers/ValueOrFail.h"
#include "tests/e2e/servers/Waiting.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

namespace lumaro {

/// The whole application in its window, with folders of its own.
class AppWorld
{
public:
    /// `services` takes the place of the video sites.
    explicit AppWorld(const WebServices &services = {});
    ~AppWorld();
    AppWorld(const AppWorld &) = delete;
    AppWorld &operator=(const AppWorld &) = delete;

    /// Ends the application and starts it again with the same settings.
    void restart();

    PlayerModel &player() { return m_application->player(); }
    MainWindowModel &shell() { return m_application->window(); }
    DownloadsModel &downloads() { return m_application->downloads(); }
    ChannelListModel &channels() { return m_application->channels(); }
    LocalM3UStore &library() { return m_application->library(); }
    LocalM3UModel &librarySection() { return m_application->librarySection(); }
    SnifferProxyManager &proxy() { return m_application->proxy(); }
    WebPlayers &webPlayers() { return m_application->webPlayers(); }
    PlayerSurfaceRegistry &surfaces() { return m_application->surfaces(); }
    RecentItems &recent() { return m_application->recent(); }
    RecordingModel &recording() { return m_application->recording(); }
    QuickFilePanels &panels() { return m_application->panels(); }
    QQuickWindow &window() { return *m_window; }
    SnifferViewModel &finder() { return m_application->finder(); }
    SnifferWindowController &finderController() { return m_application->finderWindow(); }
    /// Shows the stream finder; its window, or nothing when that does not appear.
    QQuickWindow *openFinder();
    /// The same without the keyboard, which a window may not have where nobody manages windows.
    void showFinder() { m_application->showFinder(); }
    QString folder() const { return m_folder.path(); }
    void open(const QString &fileOrAddress) { m_application->open({fileOrAddress}, {}); }
    /// As for another start of the program.
    void bringToFront() { m_application->bringToFront({}); }

    /// The window as the user sees it.
    QImage screen() { return m_window->grabWindow(); }
    /// Presses and releases `key` with the window in front.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    /// Types into whatever has the focus.
    void type(const QString &text);

    /// Opens the menu of this title with the keyboard.
    void openMenu(const QString &title);
    /// A menu, a dialog or another popup has the keyboard.
    bool isPopupOpen() const;
    /// Drops `data` on the middle of the picture; false when nobody takes it.
    bool drop(const QMimeData &data);

    /// Plays at least until `seconds`.
    bool playsTo(double seconds);
    /// The picture moves, where nothing else is.
    bool pictureChanges();

private:
    void start();

    const WebServices m_services;
    QTemporaryDir m_folder;
    std::unique_ptr<Application> m_application;
    QQuickWindow *m_window = nullptr;
};

/// Keeps what `window` shows as NAME.png in the folder that the variable LUMARO_SCREENSHOTS names,
/// if it does.
void keepPicture(QQuickWindow &window, const QString &name);

/// What `program` prints, when it has ended well.
QString outputOf(const QString &program, const QStringList &arguments);

/// The browser's engine is in this process.
bool hasLoadedBrowser();

/// The names of the player's channels.
QStringList channelNames(const PlayerModel &player);

/// Runs `test` in a display of its own.
int runAppTest(int argc, char *argv[], const std::function<int()> &test);

} // namespace lumaro

#define LUMARO_APP_TEST_MAIN(Test)                                                                 \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        return lumaro::runAppTest(argc, argv, [&] {                                                \
            Test test;                                                                             \
            return QTest::qExec(&test, argc, argv);                                                \
        });                                                                                        \
    }
