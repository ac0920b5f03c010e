#include "tests/e2e/app/AppWorld.h"

#include "tests/e2e/servers/SessionBus.h"
#include "tests/e2e/servers/VirtualDisplay.h"

#include <QDropEvent>
#include <QQuickItem>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace lumaro {

AppWorld::AppWorld(const WebServices &services)
    : m_services(services)
{
    start();
}

void AppWorld::start()
{
    m_application = std::make_unique<Application>(Folders{m_folder.filePath(u"settings"_s),
                                                          m_folder.filePath(u"cache"_s),
                                                          {m_folder.path()},
                                                          m_folder.path()},
                                                  m_services);
    // An error in a view's script ends what it was doing, and is seen by nobody else.
    QObject::connect(&m_application->engine(), &QQmlEngine::warnings,
                     [](const QList<QQmlError> &errors) {
                         for (const QQmlError &error : errors)
                             QTest::qFail(qPrintable(error.toString()), __FILE__, __LINE__);
                     });
    if (!m_application->show())
        qFatal("The main window's views cannot be loaded.");
    m_window = qobject_cast<QQuickWindow *>(m_application->engine().rootObjects().value(0));
    m_window->requestActivate();
    if (!QTest::qWaitForWindowActive(m_window, longestWait))
        qFatal("The main window does not appear.");
}

AppWorld::~AppWorld() = default;

QQuickWindow *AppWorld::openFinder()
{
    // Without a window manager nobody gives the keyboard to another window when one is hidden.
    const QWindow *const focused = QGuiApplication::focusWindow();
    if (!focused || !focused->isVisible()) {
        m_window->requestActivate();
        (void)QTest::qWaitForWindowActive(m_window);
    }
    press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    for (QWindow *const window : QGuiApplication::topLevelWindows()) {
        if (window->title() == finderController().title && QTest::qWaitForWindowActive(window))
            return qobject_cast<QQuickWindow *>(window);
    }
    return nullptr;
}

void AppWorld::restart()
{
    m_application.reset();
    start();
}

void AppWorld::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(m_window, key, modifiers);
}

void AppWorld::type(const QString &text)
{
    for (const QChar c : text)
        QTest::keyClick(m_window, c.toLatin1());
}

void AppWorld::openMenu(const QString &title)
{
    const auto isIt = [&title](const QQuickItem *item) {
        return item->inherits("QQuickAbstractButton") && item->property("text") == title;
    };
    for (auto *item : m_window->findChildren<QQuickItem *>()) {
        if (!isIt(item))
            continue;
        item->forceActiveFocus(Qt::TabFocusReason);
        press(Qt::Key_Return);
        if (!becomesTrue([this] { return isPopupOpen(); }))
            break;
        return;
    }
    QTest::qFail("The menu does not open.", __FILE__, __LINE__);
}

bool AppWorld::isPopupOpen() const
{
    for (const QQuickItem *item = m_window->activeFocusItem(); item; item = item->parentItem()) {
        if (item->inherits("QQuickPopupItem"))
            return true;
    }
    return false;
}

bool AppWorld::drop(const QMimeData &data)
{
    const QPoint middle(m_window->width() * 2 / 3, m_window->height() / 2);
    QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_window, &enter);
    QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_window, &drop);
    return enter.isAccepted() && drop.isAccepted();
}

bool AppWorld::playsTo(double seconds)
{
    return becomesTrue([&] { return player().isPlaying() && player().currentTime() >= seconds; });
}

bool AppWorld::pictureChanges()
{
    // Right of the sidebar, below the bar at the top and what may hang from it, and above the
    // middle.
    const QSize size = m_window->size();
    const QRect inPicture(size.width() * 3 / 5, size.height() / 4, size.width() / 5,
                          size.height() / 8);
    const auto look = [&] {
        const QImage whole = screen();
        const qreal scale = whole.devicePixelRatio();
        return whole.copy(QRect(inPicture.topLeft() * scale, inPicture.size() * scale));
    };
    const QImage before = look();
    return becomesTrue([&] { return look() != before; });
}

void keepPicture(QQuickWindow &window, const QString &name)
{
    const QString folder = qEnvironmentVariable("LUMARO_SCREENSHOTS");
    if (!folder.isEmpty() && !window.grabWindow().save(folder + u'/' + name + u".png"))
        qFatal("A picture cannot be kept.");
}

QString outputOf(const QString &program, const QStringList &arguments)
{
    const QTemporaryDir folder;
    const QString log = folder.filePath(u"log"_s);
    ChildProcess process;
    QFile output(log);
    if (!process.start(program, arguments, {.logFile = log}) || !process.waitForFinished(20s)
        || process.exitCode() != 0 || !output.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(output.readAll()).trimmed();
}

bool hasLoadedBrowser()
{
    QFile maps(u"/proc/self/maps"_s);
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("libQt6WebEngineCore");
}

QStringList channelNames(const PlayerModel &player)
{
    QStringList names;
    for (qsizetype i = 0; i < player.playlist().size(); ++i)
        names.append(player.playlist().name(i).toString());
    return names;
}

int runAppTest(int argc, char *argv[], const std::function<int()> &test)
{
    return runInDisplay([&] {
        const auto bus = SessionBus::start();
        if (!bus)
            qFatal("%s", qPrintable(bus.error()));
        // The browser's sandbox does not work for root.
        if (geteuid() == 0)
            qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
        Application::prepare();
        const QGuiApplication qt(argc, argv);
        // A test's windows come and go; its process stays.
        QGuiApplication::setQuitOnLastWindowClosed(false);
        return test();
    });
}

} // namespace lumaro
