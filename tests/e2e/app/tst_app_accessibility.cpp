#include "finder/ToolbarTexts.h"
#include "tests/e2e/app/Accessibles.h"
#include "tests/e2e/app/AppWorld.h"
#include "ui/Theme.h"

#include <QScopeGuard>
#include <QSet>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

Q_DECLARE_METATYPE(std::function<void()>)

namespace {

/// What is used, not only read.
bool isControl(QAccessible::Role role)
{
    static const QSet used{
        QAccessible::Button,      QAccessible::ButtonMenu,   QAccessible::CheckBox,
        QAccessible::ComboBox,    QAccessible::EditableText, QAccessible::Indicator,
        QAccessible::Link,        QAccessible::List,         QAccessible::ListItem,
        QAccessible::MenuItem,    QAccessible::PageTab,      QAccessible::PageTabList,
        QAccessible::ProgressBar, QAccessible::RadioButton,  QAccessible::Slider,
        QAccessible::SpinBox,     QAccessible::AlertMessage, QAccessible::Dialog};
    return used.contains(role);
}

bool hasPopup(QQuickWindow &window)
{
    const QList<QQuickItem *> layers = window.contentItem()->childItems();
    return std::ranges::any_of(layers, [](const QQuickItem *layer) {
        return layer->inherits("QQuickOverlay") && layer->isVisible();
    });
}

/// The stops that `items` had the focus for, which a stop may hand on to a part of its own, from
/// the first of all stops on.
QList<QQuickItem *> way(const QList<QQuickItem *> &items, const QList<QQuickItem *> &stops)
{
    QList<QQuickItem *> result;
    for (QQuickItem *const item : items) {
        QQuickItem *stop = item;
        while (stop && !stops.contains(stop))
            stop = stop->parentItem();
        result.append(stop ? stop : item);
    }
    const auto first = std::ranges::find(result, stops.value(0));
    if (first != result.end())
        std::ranges::rotate(result, first);
    return result;
}

/// A list that has had the focus in a row hands it on there, where it still hears the arrows.
bool isReached(const QQuickItem *stop, const QList<QQuickItem *> &way)
{
    return std::ranges::any_of(
        way, [stop](const QQuickItem *item) { return item == stop || stop->isAncestorOf(item); });
}

/// Some of the keys with which a stop of this role is used; empty for any other role.
QList<Qt::Key> keysOf(QAccessible::Role role)
{
    switch (role) {
    case QAccessible::Button:
    case QAccessible::ButtonMenu:
    case QAccessible::CheckBox:
    case QAccessible::RadioButton:
    case QAccessible::PageTab:
        return {Qt::Key_Return, Qt::Key_Enter};
    case QAccessible::List:
    case QAccessible::Slider:
        return {Qt::Key_PageDown, Qt::Key_PageUp};
    case QAccessible::PageTabList:
        return {Qt::Key_Right, Qt::Key_Left};
    default:
        return {};
    }
}

/// Sees the keys that arrive at an item.
class KeyWitness : public QObject
{
public:
    explicit KeyWitness(QQuickItem &item) { item.installEventFilter(this); }
    bool hasSeen(Qt::Key key) const { return m_seen.contains(key); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::KeyPress)
            m_seen.append(Qt::Key(static_cast<QKeyEvent *>(event)->key()));
        return false;
    }

private:
    QList<Qt::Key> m_seen;
};

/// Whether anything in `window` uses `key` when it is pressed. A key that is held down does nothing
/// to a button, but belongs to it nevertheless.
bool uses(QQuickWindow &window, Qt::Key key)
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QString(), true);
    QCoreApplication::sendEvent(&window, &press);
    return press.isAccepted();
}

/// Leftwards or upwards among neighbours, as nobody reads.
bool goesBack(const QQuickItem &from, const QQuickItem &to)
{
    if (from.parentItem() != to.parentItem())
        return false;
    const QRectF a = from.mapRectToScene(from.boundingRect());
    const QRectF b = to.mapRectToScene(to.boundingRect());
    const bool inOneRow = a.top() < b.center().y() && b.center().y() < a.bottom();
    return inOneRow ? b.left() < a.left() : b.top() < a.top();
}

} // namespace

/// Both windows as they are for somebody who does not see them, or has no mouse. All tests share
/// one program: the browser serves only one.
class AppAccessibilityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void cleanupTestCase() { m_world.reset(); }

    void everyControlHasARoleAndAName_data() { places(); }
    void everyControlHasARoleAndAName();
    void tabReachesEveryControl_data() { places(); }
    void tabReachesEveryControl();
    void everyStopHearsItsKeys_data() { places(); }
    void everyStopHearsItsKeys();
    void smallestWindowHasRoomForItsControls_data();
    void smallestWindowHasRoomForItsControls();

private:
    /// The states of the windows that are looked at, each with what leads there.
    void places();
    QQuickWindow &windowOf(const QString &place);
    QQuickWindow &windowOf(const char *place) { return windowOf(QString::fromUtf8(place)); }
    /// As assistive technology does it.
    static void press(QQuickWindow &window, const QString &name);

    MediaFixtures m_media{QStringLiteral(LUMARO_FIXTURE_FOLDER)};
    std::unique_ptr<AppWorld> m_world;
};

void AppAccessibilityTest::initTestCase()
{
    QAccessible::setActive(true);
    m_world = std::make_unique<AppWorld>();
}

void AppAccessibilityTest::cleanup()
{
    m_world->downloads().setPanelShown(false);
    m_world->librarySection().editor()->cancel();
    m_world->librarySection().disagree();
    m_world->player().stop();
    m_world->shell().revealSidebar(MainWindowModel::PlayerSidebarSection::network);
    for (QWindow *const window : QGuiApplication::topLevelWindows()) {
        const auto quick = qobject_cast<QQuickWindow *>(window);
        if (!quick || !quick->isVisible())
            continue;
        if (hasPopup(*quick))
            QTest::keyClick(quick, Qt::Key_Escape);
        QVERIFY(becomesTrue([quick] { return !hasPopup(*quick); }));
    }
}

void AppAccessibilityTest::press(QQuickWindow &window, const QString &name)
{
    for (const Accessible &thing : accessibles(window)) {
        QAccessibleInterface *const node = QAccessible::queryAccessibleInterface(thing.item);
        if (thing.name == name && node->actionInterface()) {
            node->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
            QVERIFY(becomesTrue([&window] { return hasPopup(window); }));
            return;
        }
    }
    QFAIL(qPrintable(u"There is no " + name));
}

void AppAccessibilityTest::places()
{
    QTest::addColumn<std::function<void()>>("prepare");
    const auto row = [](const char *name, std::function<void()> prepare) {
        QTest::newRow(name) << std::move(prepare);
    };
    row("main: nothing plays", [] { });
    row("main: channels", [this] {
        const QString list = m_world->folder() + u"/list.m3u";
        QFile file(list);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#EXTINF:-1 group-title=\"News\",One\nhttp://127.0.0.1:9/1.m3u8\n"
                   "#EXTINF:-1,Two\nhttp://127.0.0.1:9/2.m3u8\n");
        file.close();
        m_world->open(list);
        QVERIFY(becomesTrue(
            [this] { return m_world->channels().count() == 2 && !m_world->player().isLoading(); }));
    });
    row("main: library", [this] {
        m_world->library().save(QUrl(u"http://127.0.0.1:9/live.m3u8"_s), u"Live"_s);
        m_world->librarySection().show();
    });
    row("main: adding a link", [this] { m_world->librarySection().add(); });
    row("main: a question", [this] {
        m_world->library().save(QUrl(u"http://127.0.0.1:9/live.m3u8"_s), u"Live"_s);
        m_world->librarySection().removeAll();
    });
    row("main: downloads", [this] { m_world->downloads().setPanelShown(true); });
    row("main: a film plays", [this] {
        m_world->open(valueOrFail(m_media.path(Fixture::Movie)));
        QVERIFY(m_world->playsTo(0.2));
    });
    row("main: the menu of files", [this] { press(m_world->window(), u"File"_s); });
    row("finder: empty", [] { });
    row("finder: streams", [this] {
        m_world->finder().tabs()->selectedTab()->networkMonitor()->observe(
            QUrl(u"http://127.0.0.1:9/live.m3u8"_s), {}, {}, u"Live"_s, false);
    });
    row("finder: block list", [this] {
        m_world->finder().blockList()->add(u"ads.example"_s);
        press(*m_world->openFinder(), blockListToolTip());
    });
    row("finder: proxy", [this] { press(*m_world->openFinder(), proxySettingsToolTip()); });
    row("finder: websites", [this] { press(*m_world->openFinder(), webListToolTip()); });
}

QQuickWindow &AppAccessibilityTest::windowOf(const QString &place)
{
    QQuickWindow *const window =
        place.startsWith(u"finder") ? m_world->openFinder() : &m_world->window();
    // Without a window manager the focus comes and goes as it likes.
    const auto isInFront = [window] {
        // A window is active as well when one above it has the focus.
        if (QGuiApplication::focusWindow() != window)
            window->requestActivate();
        return QGuiApplication::focusWindow() == window;
    };
    if (!window || !becomesTrue(isInFront))
        qFatal("The window does not come to the front.");
    return *window;
}

void AppAccessibilityTest::everyControlHasARoleAndAName()
{
    QFETCH(const std::function<void()>, prepare);
    prepare();
    QQuickWindow &window = windowOf(QTest::currentDataTag());
    const QList<Accessible> things = accessibles(window);

    QStringList faults;
    for (const Accessible &thing : things) {
        if (thing.role == QAccessible::NoRole || thing.role == QAccessible::Client)
            faults.append(u"no role: " + thing.text());
        else if (thing.name.trimmed().isEmpty() && isControl(thing.role))
            faults.append(u"no name: " + thing.text());
    }
    for (const QQuickItem *const stop : tabStops(window)) {
        const auto same = [stop](const Accessible &thing) { return thing.item == stop; };
        if (std::ranges::none_of(things, same))
            faults.append(u"not told of: " + describe(stop));
    }
    QVERIFY2(faults.isEmpty(), qPrintable(u"\n  " + faults.join(u"\n  ")));
    QVERIFY(things.size() > 3);
}

void AppAccessibilityTest::tabReachesEveryControl()
{
    QFETCH(const std::function<void()>, prepare);
    prepare();
    QQuickWindow &window = windowOf(QTest::currentDataTag());
    // Where the focus is at first need not be on the way round.
    QTest::keyClick(&window, Qt::Key_Tab);
    const QList<QQuickItem *> stops = tabStops(window);
    const QList<QQuickItem *> forward = way(traversed(window, Qt::Key_Tab), stops);
    const QList<QQuickItem *> backward = way(traversed(window, Qt::Key_Backtab), stops);

    QStringList faults;
    for (QQuickItem *const stop : stops) {
        if (!isReached(stop, forward))
            faults.append(u"not reached: " + describe(stop));
        if (!isReached(stop, backward))
            faults.append(u"not reached by Shift+Tab: " + describe(stop));
    }
    for (qsizetype i = 0; i < forward.size(); ++i) {
        if (!stops.contains(forward[i]))
            faults.append(u"stops at what is not shown: " + describe(forward[i]));
        else if (i > 0 && goesBack(*forward[i - 1], *forward[i]))
            faults.append(u"goes back from " + describe(forward[i - 1]) + u" to "
                          + describe(forward[i]));
    }
    QVERIFY2(faults.isEmpty(), qPrintable(u"\n  " + faults.join(u"\n  ")));
    QVERIFY(!forward.isEmpty());
}

void AppAccessibilityTest::everyStopHearsItsKeys()
{
    QFETCH(const std::function<void()>, prepare);
    prepare();
    QQuickWindow &window = windowOf(QTest::currentDataTag());
    QTest::keyClick(&window, Qt::Key_Tab);

    QStringList faults;
    int tried = 0;
    for (QQuickItem *const stop : way(traversed(window, Qt::Key_Tab), tabStops(window))) {
        QAccessibleInterface *const node = QAccessible::queryAccessibleInterface(stop);
        const QAccessible::Role role = node ? node->role() : QAccessible::NoRole;
        for (const Qt::Key key : keysOf(role)) {
            stop->forceActiveFocus(Qt::TabFocusReason);
            KeyWitness witness(*window.activeFocusItem());
            // There need not be another tab.
            const bool isUsed = uses(window, key) || role == QAccessible::PageTabList;
            if (!isUsed || !witness.hasSeen(key))
                faults.append(QKeySequence(key).toString() + u" is not for " + describe(stop));
            ++tried;
        }
    }
    QVERIFY2(faults.isEmpty(), qPrintable(u"\n  " + faults.join(u"\n  ")));
    // A menu's items are no stops.
    QVERIFY(tried > 0 || hasPopup(window));
}

void AppAccessibilityTest::smallestWindowHasRoomForItsControls_data()
{
    QTest::addColumn<bool>("hasSidebar");
    QTest::addColumn<double>("textScale");
    QTest::newRow("sidebar") << true << 1.0;
    QTest::newRow("no sidebar") << false << 1.0;
    QTest::newRow("sidebar, large type") << true << 2.0;
    QTest::newRow("no sidebar, large type") << false << 2.0;
}

void AppAccessibilityTest::smallestWindowHasRoomForItsControls()
{
    QFETCH(const bool, hasSidebar);
    QFETCH(const double, textScale);
    QQuickWindow &window = windowOf("main");
    auto *const theme =
        qmlEngine(&window)->singletonInstance<Theme *>(qmlTypeId("Lumaro.Ui", 1, 0, "Theme"));
    QVERIFY(theme);
    const QSize before = window.size();
    const auto restore = qScopeGuard([&] {
        theme->setDesktopTextScale(1);
        m_world->shell().setSidebarVisible(true);
        window.resize(before);
    });
    theme->setDesktopTextScale(textScale);
    m_world->shell().setSidebarVisible(hasSidebar);
    QVERIFY(becomesTrue([&window] {
        window.resize(window.minimumSize());
        return window.contentItem()->size() == QSizeF(window.minimumSize());
    }));
    m_world->screen(); // laid out
    keepPicture(window, u"smallest "_s + QLatin1StringView(QTest::currentDataTag()));

    const QList<QQuickItem *> stops = tabStops(window);
    QVERIFY(stops.size() > 10);
    const QRectF all({}, QSizeF(window.size()));
    for (const QQuickItem *const one : stops) {
        const QRectF place = one->mapRectToScene(one->boundingRect());
        QVERIFY2(all.contains(place), qPrintable(describe(one)));
        for (const QQuickItem *const other : stops) {
            const bool isPart =
                one == other || one->isAncestorOf(other) || other->isAncestorOf(one);
            QVERIFY2(isPart || !place.intersects(other->mapRectToScene(other->boundingRect())),
                     qPrintable(describe(one) + u" and " + describe(other)));
        }
    }
}

LUMARO_APP_TEST_MAIN(AppAccessibilityTest)
#include "tst_app_accessibility.moc"
