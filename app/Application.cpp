#include "app/Application.h"

#include "ui/Style.h"

#include <QGuiApplication>
#include <QQuickWindow>

#include <clocale>

namespace lumaro {

void Application::prepare()
{
    // libmpv draws with OpenGL.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
}

Application::Application(const Folders &folders)
    : m_http(QByteArrayLiteral("Lumaro/" LUMARO_VERSION))
    , m_defaults(folders.settings)
    // libmpv requires it, and the application object has just set the user's locale.
    // No other thread runs yet. NOLINTNEXTLINE(concurrency-mt-unsafe)
    , m_mediaPlayer((std::setlocale(LC_NUMERIC, "C"), nullptr))
    , m_proxyRoute(m_http, m_mediaPlayer)
    , m_proxy(m_defaults, m_scheduler, m_proxyRoute)
    , m_player({m_mediaPlayer, m_http, m_panels, m_scheduler, m_input, m_notifications, m_youTube,
                m_okVideo})
    , m_window(m_player, m_mediaPlayer, m_scheduler, m_notifications, m_defaults)
    , m_transport(m_player)
    , m_downloadManager({m_http, m_scheduler, m_defaults, m_panels, m_workspace, folders.downloads})
    , m_downloads(m_downloadManager, m_player)
    , m_commands(m_player, m_window, m_downloads)
    , m_channels(m_scheduler)
    , m_library(m_defaults, m_scheduler)
    , m_librarySection({m_library, m_player, m_window, m_panels, m_scheduler})
    , m_libraryCommands(m_librarySection)
    , m_pictureAccess(folders.cache + QStringLiteral("/logos"))
{
    m_player.installKeyboardShortcuts();
    QObject::connect(&m_player, &PlayerModel::playlistChanged, &m_channels,
                     [this] { m_channels.setEntries(m_player.playlist()); });
    QObject::connect(&m_window, &MainWindowModel::currentChannelChanged, &m_channels,
                     [this] { m_channels.setCurrentEntry(m_window.currentChannel()); });
    QObject::connect(&m_commands, &MenuCommands::quitRequested, qGuiApp, &QGuiApplication::quit,
                     Qt::QueuedConnection);
}

bool Application::show()
{
    applyStyle();
    m_engine.setNetworkAccessManagerFactory(&m_pictureAccess);
    m_engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    const auto object = [](auto &model) { return QVariant::fromValue(&model); };
    m_engine.setInitialProperties({
        {QStringLiteral("player"), object(m_player)},
        {QStringLiteral("mediaPlayer"), object(m_mediaPlayer)},
        {QStringLiteral("shell"), object(m_window)},
        {QStringLiteral("transport"), object(m_transport)},
        {QStringLiteral("commands"), object(m_commands)},
        {QStringLiteral("downloads"), object(m_downloads)},
        {QStringLiteral("channels"), object(m_channels)},
        {QStringLiteral("library"), object(m_librarySection)},
        {QStringLiteral("libraryCommands"), object(m_libraryCommands)},
        {QStringLiteral("panels"), object(m_panels)},
        {QStringLiteral("notifications"), object(m_notifications)},
    });
    m_engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Lumaro/App/Main.qml")));
    return !m_engine.rootObjects().isEmpty();
}

void Application::bringToFront(const QByteArray &activationToken)
{
    const auto window = qobject_cast<QQuickWindow *>(m_engine.rootObjects().value(0));
    if (!window)
        return;
    // Qt's Wayland platform takes the token from here.
    if (!activationToken.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", activationToken);
    window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->requestActivate();
}

void Application::open(const QString &fileOrAddress, const QString &workingFolder)
{
    m_window.open(fileOrAddress, workingFolder);
}

void VarnApplicationDelegate::install()
{
    qGuiApp->setQuitOnLastWindowClosed(true);
}

} // namespace lumaro
