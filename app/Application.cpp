#include "app/Application.h"

#include "platform/WindowFrame.h"
#include "platform/dlib/DlibFaceDetector.h"
#include "platform/ffmpeg/FfmpegAssetWriter.h"
#include "platform/pulse/PulseMonitor.h"
#include "platform/qt/SoftwareDrawing.h"
#include "platform/qt/ThreadQueue.h"
#include "ui/Style.h"
#include "ui/Theme.h"

#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QIcon>
#include <QQmlComponent>
#include <QQuickWindow>
#include <QScreen>

#include <clocale>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace lumaro {

namespace {

/// At its first start, in points.
constexpr QSize finderWindowSize(1100, 800);

WindowPlacement::State placementState(QWindow::Visibility visibility)
{
    switch (visibility) {
    case QWindow::Windowed:
        return WindowPlacement::State::Normal;
    case QWindow::Maximized:
        return WindowPlacement::State::Maximized;
    case QWindow::Hidden:
        return WindowPlacement::State::Hidden;
    default:
        return WindowPlacement::State::Passing;
    }
}

QList<QRect> screenAreas(QRect (QScreen::*area)() const)
{
    QList<QRect> areas;
    for (const QScreen *screen : QGuiApplication::screens())
        areas.append((screen->*area)());
    return areas;
}

/// For the browser's engine, which reads it when it starts.
void addBrowserFlag(const QByteArray &flag)
{
    constexpr char flags[] = "QTWEBENGINE_CHROMIUM_FLAGS";
    qputenv(flags, qgetenv(flags) + ' ' + flag);
}

/// What all threads read is settled before the program starts any of its own.
void settleProcess()
{
    // libmpv requires it, and the application object has just set the user's locale.
    // NOLINTNEXTLINE(concurrency-mt-unsafe)
    std::setlocale(LC_NUMERIC, "C");
    // A thread of the browser's own that draws would not keep to the windows' turns.
    static const bool isSettled = [] {
        if (isDrawnInSoftware())
            addBrowserFlag("--disable-gpu");
        return true;
    }();
    Q_UNUSED(isSettled)
}

/// Has the threads share two of the allocator's areas. Eight for each processor is its own way, and
/// each of them keeps the pages that some piece still lies on: after lists of 200,000 channels the
/// process held twice as much memory as with two.
void shareAllocatorAreas()
{
#ifdef __GLIBC__
    // No other thread runs yet. NOLINTNEXTLINE(concurrency-mt-unsafe)
    mallopt(M_ARENA_MAX, 2);
#endif
}

/// Of a QML window.
QVariantMap frameProperties(const QRect &frame)
{
    return {{QStringLiteral("x"), frame.x()},
            {QStringLiteral("y"), frame.y()},
            {QStringLiteral("width"), frame.width()},
            {QStringLiteral("height"), frame.height()}};
}

} // namespace

void Application::prepare()
{
    shareAllocatorAreas();
    // libmpv draws with OpenGL.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    // The browser's engine, which comes later, shares its pictures so.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    // Calls between browsers would go past the proxy, and tell the user's own address.
    addBrowserFlag("--force-webrtc-ip-handling-policy=disable_non_proxied_udp");
}

Application::Application(const Folders &folders, const WebServices &services)
    : m_folders((settleProcess(), folders))
    , m_http(QByteArrayLiteral("Lumaro/" LUMARO_VERSION))
    , m_defaults(folders.settings)
    , m_proxyRoute(m_http, m_mediaPlayer)
    , m_proxy(m_defaults, m_scheduler, m_proxyRoute)
    , m_viewServices(m_scheduler, m_idle, m_notifications, m_surfaces,
                     std::make_shared<DlibFaceDetector>())
    , m_player({m_mediaPlayer, m_http, m_panels, m_scheduler, m_files, m_input, m_notifications,
                m_youTube, m_okVideo})
    , m_volumeMemory(m_player, m_defaults, m_scheduler)
    , m_wakefulPlayback(m_player, m_keepAwake)
    , m_resumePositions(m_defaults, m_scheduler)
    , m_resumingPlayback(m_player, m_mediaPlayer, m_resumePositions, m_files)
    , m_webPlayers({m_player, m_scheduler, m_workspace, m_notifications, m_surfaces, services},
                   m_youTube, m_okVideo, [this] { return loadBrowser(); })
    , m_window(m_player, m_mediaPlayer, m_scheduler, m_notifications, m_defaults)
    , m_placement(m_defaults, m_scheduler)
    , m_recent({m_player, m_mediaPlayer, m_window, m_defaults, m_files})
    , m_mediaControls(
          {.uriSchemes = {QStringLiteral("file"), QStringLiteral("http"), QStringLiteral("https")},
           .mimeTypes = supportedMimeTypes()})
    , m_remote(m_player, m_window, m_files, m_mediaControls)
    , m_transport(m_player)
    , m_downloadManager(
          {m_http, m_scheduler, m_files, m_defaults, m_panels, m_workspace, folders.downloads})
    , m_downloads(m_downloadManager, m_player)
    , m_capture([](AudioCaptureRequest request) {
        return std::make_unique<PulseMonitor>(std::move(request));
    })
    , m_recordingController(
          {.capture = m_capture,
           .makeWriter = &FfmpegAssetWriter::create,
           .makeQueue = [](const QString &label) { return std::make_unique<ThreadQueue>(label); },
           .panels = m_panels,
           .scheduler = m_scheduler,
           .clock = systemClock(),
           .surfaces = m_surfaces,
           .moviesFolder = QUrl::fromLocalFile(folders.movies)})
    , m_recording(m_recordingController, m_workspace, m_scheduler,
                  [this] {
                      const QWindow *const window = mainWindow();
                      const QScreen *const screen =
                          window ? window->screen() : QGuiApplication::primaryScreen();
                      return screen ? screen->availableGeometry() : QRect();
                  })
    , m_commands(m_player, m_window, m_downloads, m_recent)
    , m_channels(m_scheduler)
    , m_library(m_defaults, m_scheduler)
    , m_librarySection({m_library, m_player, m_window, m_panels, m_scheduler, m_files})
    , m_libraryCommands(m_librarySection)
    , m_help(m_commands, m_libraryCommands, QStringLiteral(LUMARO_VERSION))
    , m_ruleLists(m_scheduler)
    , m_adBlocker(m_defaults, m_scheduler, m_ruleLists)
    , m_websites(m_defaults, m_files, m_panels)
    , m_finder(
          {.blocker = m_adBlocker,
           .proxy = m_proxy,
           .websites = m_websites,
           .library = m_library,
           .downloads = m_downloadManager,
           .notifications = m_notifications,
           .panels = m_panels,
           .scheduler = m_files,
           .onOpenStream = [this](const QUrl &url, const QString &name) { playFound(url, name); }})
    , m_finderController({*m_finder.tabs(), m_notifications, m_defaults, m_scheduler})
    , m_pictureAccess(folders.cache + QStringLiteral("/logos"))
{
    m_player.installKeyboardShortcuts();
    QObject::connect(&m_player, &PlayerModel::playlistChanged, &m_channels,
                     [this] { m_channels.setEntries(m_player.playlist()); });
    QObject::connect(&m_window, &MainWindowModel::currentChannelChanged, &m_channels,
                     [this] { m_channels.setCurrentEntry(m_window.currentChannel()); });
    QObject::connect(&m_commands, &MenuCommands::quitRequested, qGuiApp, &QGuiApplication::quit,
                     Qt::QueuedConnection);
    QObject::connect(&m_remote, &RemoteControl::quitRequested, qGuiApp, &QGuiApplication::quit,
                     Qt::QueuedConnection);
    QObject::connect(&m_remote, &RemoteControl::raiseRequested, &m_window,
                     [this] { bringToFront({}); });
    for (const auto changed :
         {&DesktopAppearance::colorSchemeChanged, &DesktopAppearance::textScaleChanged})
        QObject::connect(&m_appearance, changed, &m_engine, [this] { followAppearance(); });
    // Whoever clears the list wants no traces.
    QObject::connect(&m_recent, &RecentItems::cleared, &m_recent, [this] {
        m_resumingPlayback.forget();
        m_resumePositions.clear();
    });
    QObject::connect(&m_commands, &MenuCommands::finderRequested, &m_finderController,
                     [this] { showFinder(); });
    // What scripts of the views still hold of a page's engine goes with the page, which the event
    // loop deletes; and what that held, some time after it.
    const auto collectGarbage = [this] {
        m_engine.collectGarbage();
        m_garbage.start(std::chrono::seconds(1), [this] {
            m_engine.collectGarbage();
            m_garbage.start(std::chrono::seconds(3), [this] { m_engine.collectGarbage(); });
        });
    };
    QObject::connect(m_finder.tabs(), &SnifferBrowserTabs::rowsRemoved, &m_engine, collectGarbage,
                     Qt::QueuedConnection);
    QObject::connect(&m_player, &PlayerModel::showsWebContentChanged, &m_engine, collectGarbage,
                     Qt::QueuedConnection);
    QObject::connect(
        qGuiApp, &QGuiApplication::focusWindowChanged, &m_finderController,
        [this](const QWindow *window) { m_finderController.keyWindowChanged(classified(window)); });
    QObject::connect(&m_notifications, &NotificationCenter::posted, &m_finderController,
                     [this](const QString &name) {
                         if (name == notification::openLocalM3UTab)
                             bringToFront({});
                     });
}

Application::~Application()
{
    // Before the engine: what its views do when they go, such as hiding a panel, still needs that.
    delete m_finderWindow;
}

bool Application::show()
{
    applyStyle();
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/lumaro/lumaro.svg")));
    m_engine.setNetworkAccessManagerFactory(&m_pictureAccess);
    m_engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    const auto object = [](auto &model) { return QVariant::fromValue(&model); };
    QVariantMap properties{
        {QStringLiteral("player"), object(m_player)},
        {QStringLiteral("mediaPlayer"), object(m_mediaPlayer)},
        {QStringLiteral("shell"), object(m_window)},
        {QStringLiteral("transport"), object(m_transport)},
        {QStringLiteral("commands"), object(m_commands)},
        {QStringLiteral("downloads"), object(m_downloads)},
        {QStringLiteral("channels"), object(m_channels)},
        {QStringLiteral("library"), object(m_librarySection)},
        {QStringLiteral("libraryCommands"), object(m_libraryCommands)},
        {QStringLiteral("recording"), object(m_recording)},
        {QStringLiteral("panels"), object(m_panels)},
        {QStringLiteral("notifications"), object(m_notifications)},
        {QStringLiteral("finderController"), object(m_finderController)},
        {QStringLiteral("viewServices"), object(m_viewServices)},
        {QStringLiteral("remote"), object(m_remote)},
        {QStringLiteral("recent"), object(m_recent)},
        {QStringLiteral("help"), object(m_help)},
        {QStringLiteral("webPlayers"), object(m_webPlayers)},
        {QStringLiteral("webPlayerFolder"), QString(m_folders.settings + u"/web-player")},
        {QStringLiteral("webPlayerCacheFolder"), QString(m_folders.cache + u"/web-player")},
    };
    properties.insert(windowProperties());
    m_engine.setInitialProperties(properties);
    m_engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Lumaro/App/Main.qml")));
    QQuickWindow *const window = mainWindow();
    m_capture.setWindow(window);
    if (!window)
        return false;
    followWindow(*window);
    followAppearance();
    m_remote.start();
    return true;
}

QVariantMap Application::windowProperties() const
{
    QVariantMap properties;
    if (const auto frame = m_placement.frame(screenAreas(&QScreen::availableGeometry)))
        properties = frameProperties(*frame);
    if (m_placement.isMaximized())
        properties.insert(QStringLiteral("visibility"), QVariant::fromValue(QWindow::Maximized));
    return properties;
}

void Application::followWindow(QQuickWindow &window)
{
    const auto note = [this, &window] {
        m_placement.note(window.geometry(), placementState(window.visibility()));
    };
    for (const auto moved :
         {&QWindow::xChanged, &QWindow::yChanged, &QWindow::widthChanged, &QWindow::heightChanged})
        QObject::connect(&window, moved, &m_window, note);
    QObject::connect(&window, &QWindow::visibilityChanged, &m_window, note);
    m_window.windowIsMaximized(window.visibility() == QWindow::Maximized);
    // QML is not told of every change that the desktop makes.
    QObject::connect(&window, &QWindow::visibilityChanged, &m_window,
                     [this, &window](QWindow::Visibility visibility) {
                         if (visibility == QWindow::Windowed || visibility == QWindow::Maximized)
                             m_window.windowIsMaximized(visibility == QWindow::Maximized);
                         m_window.windowFillsScreen(visibility == QWindow::FullScreen);
                         // A pointer that lies still says nothing of itself.
                         m_window.scheduleCursorHideIfNeeded(&window);
                     });
}

void Application::followAppearance()
{
    const int id = qmlTypeId("Lumaro.Ui", 1, 0, "Theme");
    auto *const theme = m_engine.singletonInstance<Theme *>(id);
    if (!theme)
        return;
    theme->setDesktopTextScale(m_appearance.textScale());
    switch (m_appearance.colorScheme()) {
    case DesktopAppearance::ColorScheme::Dark:
        return theme->setDesktopChoice(ThemeChoice::Dark);
    case DesktopAppearance::ColorScheme::Light:
        return theme->setDesktopChoice(ThemeChoice::Light);
    case DesktopAppearance::ColorScheme::NoPreference:
        return theme->setDesktopChoice(std::nullopt);
    }
}

bool Application::loadBrowser()
{
    if (m_browser.isLoaded())
        return true;
    m_browser.setFileName(QCoreApplication::applicationDirPath()
                          + QStringLiteral("/" LUMARO_BROWSER));
    if (m_browser.load())
        return true;
    qWarning("The browser cannot be loaded: %s", qPrintable(m_browser.errorString()));
    return false;
}

void Application::showFinder()
{
    if (loadFinder())
        m_finderController.show();
}

bool Application::loadFinder()
{
    if (m_finderWindow)
        return true;
    if (!loadBrowser()) {
        m_player.showToast(
            QCoreApplication::translate("Application", "The stream finder could not be loaded."),
            PlayerModel::toastDuration);
        return false;
    }
    // What pages were saving when the program was last cut off.
    QDir(m_folders.cache + QStringLiteral("/browser/unfinished")).removeRecursively();
    QQmlComponent component(&m_engine,
                            QUrl(QStringLiteral("qrc:/qt/qml/Lumaro/App/FinderWindow.qml")));
    const QRect screen = screenOf(m_finderController.frame(), screenAreas(&QScreen::geometry));
    QVariantMap properties = frameProperties(m_finderController.placedFrame(
        screen.adjusted(0, WindowPlacement::titleBarHeight, 0, 0), finderWindowSize));
    properties.insert({
        {QStringLiteral("finder"), QVariant::fromValue(&m_finder)},
        {QStringLiteral("controller"), QVariant::fromValue(&m_finderController)},
        {QStringLiteral("panels"), QVariant::fromValue(&m_panels)},
        {QStringLiteral("browserFolder"), QString(m_folders.settings + QStringLiteral("/browser"))},
        {QStringLiteral("browserCacheFolder"),
         QString(m_folders.cache + QStringLiteral("/browser"))},
        {QStringLiteral("transientParent"), QVariant::fromValue(mainWindow())},
    });
    QObject *const made =
        component.isReady() ? component.createWithInitialProperties(properties) : nullptr;
    m_finderWindow = qobject_cast<QQuickWindow *>(made);
    if (!m_finderWindow) {
        qWarning("%s", qPrintable(component.errorString()));
        delete made;
        return false;
    }
    if (isDrawnInSoftware()) {
        for (QQuickWindow *const window : {mainWindow(), m_finderWindow.data()})
            drawInTurns(*window);
    }
    return true;
}

SnifferWindowController::KeyWindow Application::classified(const QWindow *window) const
{
    using Key = SnifferWindowController::KeyWindow;
    if (!window)
        return Key::None;
    if (window == m_finderWindow)
        return Key::Finder;
    if (window->isModal())
        return Key::OwnPanel;
    for (const QWindow *above = window; above; above = above->transientParent()) {
        if (above == m_finderWindow)
            return Key::OwnPanel;
    }
    return Key::Other;
}

void Application::playFound(const QUrl &url, const QString &name)
{
    m_player.play(url, name, true);
    bringToFront({});
}

QQuickWindow *Application::mainWindow() const
{
    return qobject_cast<QQuickWindow *>(m_engine.rootObjects().value(0));
}

void Application::bringToFront(const QByteArray &activationToken)
{
    QQuickWindow *const window = mainWindow();
    if (!window)
        return;
    // Qt's Wayland platform takes the token from here, and there is no other way. Elsewhere the
    // environment, which other threads read, stays as it is.
    if (!activationToken.isEmpty() && QGuiApplication::platformName().startsWith(u"wayland"))
        qputenv("XDG_ACTIVATION_TOKEN", activationToken);
    window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
    // show() would make it an ordinary window again.
    window->setVisible(true);
    window->raise();
    window->requestActivate();
}

void Application::open(const QStringList &filesAndAddresses, const QString &workingFolder)
{
    m_window.open(filesAndAddresses, workingFolder);
}

void VarnApplicationDelegate::install()
{
    qGuiApp->setQuitOnLastWindowClosed(true);
    const auto delegate = new VarnApplicationDelegate;
    delegate->setParent(qGuiApp);
    qGuiApp->installEventFilter(delegate);
}

bool VarnApplicationDelegate::eventFilter(QObject *, QEvent *event)
{
    if (event->type() != QEvent::Quit)
        return false;
    for (QWindow *const window : QGuiApplication::topLevelWindows())
        window->close();
    QCoreApplication::exit();
    return true;
}

} // namespace lumaro
