#include "platform/qt/QtInputMonitor.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr const char *views = R"(
import QtQuick
import QtQuick.Templates as T

Window {
    property int pressed: 0
    property int shortcuts: 0
    property int moved: 0
    width: 200
    height: 200
    title: "Main"
    Item {
        objectName: "plain"
        focus: true
        Keys.onPressed: ++pressed
    }
    TextInput { objectName: "field" }
    T.Popup {
        objectName: "popup"
        focus: true
        visible: false
        contentItem: Item { objectName: "in popup"; focus: true }
    }
    Shortcut { sequence: "K"; onActivated: ++shortcuts }
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onPositionChanged: ++moved
    }
}
)";

} // namespace

/// What the monitor of key presses and mouse movements sees in a real window.
class QtInputMonitorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void consumedKeysReachNobodyElse();
    void otherKeysReachEverybody();
    void describesThePress();
    void tellsWhereTheFocusIs_data();
    void tellsWhereTheFocusIs();
    void panelsAreTold_data();
    void panelsAreTold();
    void tellsOfRealMovementsOnly();
    void removedHandlersAreNotCalled();

private:
    int count(const char *what) { return m_window->property(what).toInt(); }
    void show(QWindow &window)
    {
        window.show();
        window.requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

    QQmlEngine m_engine;
    std::unique_ptr<QtInputMonitor> m_monitor;
    std::unique_ptr<QQuickWindow> m_window;
    QList<KeyDown> m_keys;
    bool m_consume = false;
};

void QtInputMonitorTest::init()
{
    m_monitor = std::make_unique<QtInputMonitor>();
    m_keys.clear();
    m_consume = false;
    m_monitor->setKeyDownHandler([this](const KeyDown &key) {
        m_keys.append(key);
        return m_consume;
    });
    QQmlComponent component(&m_engine);
    component.setData(views, {});
    m_window.reset(qobject_cast<QQuickWindow *>(component.create()));
    QVERIFY2(m_window, qPrintable(component.errorString()));
    show(*m_window);
}

void QtInputMonitorTest::cleanup()
{
    m_window.reset();
    m_monitor.reset();
}

void QtInputMonitorTest::consumedKeysReachNobodyElse()
{
    m_consume = true;
    QTest::keyClick(m_window.get(), Qt::Key_K);
    QTest::keyClick(m_window.get(), Qt::Key_Space);
    QCOMPARE(m_keys.size(), 2);
    QCOMPARE(count("pressed"), 0);
    QCOMPARE(count("shortcuts"), 0);
}

void QtInputMonitorTest::otherKeysReachEverybody()
{
    QTest::keyClick(m_window.get(), Qt::Key_K);
    QTest::keyClick(m_window.get(), Qt::Key_Space);
    QCOMPARE(count("shortcuts"), 1);
    QCOMPARE(count("pressed"), 1);
    QVERIFY(m_keys.size() >= 2);

    // What one press did must not swallow the next.
    m_consume = true;
    QTest::keyClick(m_window.get(), Qt::Key_A);
    m_consume = false;
    QTest::keyClick(m_window.get(), Qt::Key_A);
    QCOMPARE(count("pressed"), 2);
}

void QtInputMonitorTest::describesThePress()
{
    m_consume = true;
    QTest::keyClick(m_window.get(), Qt::Key_Right, Qt::ControlModifier | Qt::AltModifier);
    // The modifiers' own presses come first.
    QCOMPARE(m_keys.size(), 3);
    QCOMPARE(m_keys[2].key, Qt::Key_Right);
    QCOMPARE(m_keys[2].modifiers, Qt::ControlModifier | Qt::AltModifier);
    QCOMPARE(m_keys[2].windowTitle, u"Main"_s);
    QVERIFY(!m_keys[2].isRepeat);

    QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Right, {}, QString(), true);
    QCoreApplication::sendEvent(m_window.get(), &repeat);
    QCOMPARE(m_keys.size(), 4);
    QVERIFY(m_keys[3].isRepeat);
}

void QtInputMonitorTest::tellsWhereTheFocusIs_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<bool>("inTextView");
    QTest::addColumn<bool>("inPanel");
    QTest::newRow("elsewhere") << u"plain"_s << false << false;
    QTest::newRow("text field") << u"field"_s << true << false;
    QTest::newRow("popup") << u"popup"_s << false << true;
}

void QtInputMonitorTest::tellsWhereTheFocusIs()
{
    QFETCH(const QString, item);
    auto *object = m_window->findChild<QObject *>(item);
    QVERIFY(object);
    if (auto *focused = qobject_cast<QQuickItem *>(object))
        focused->forceActiveFocus();
    else
        object->setProperty("visible", true);
    m_consume = true;
    QTest::keyClick(m_window.get(), Qt::Key_Left);
    QCOMPARE(m_keys.size(), 1);
    QTEST(m_keys[0].inTextView, "inTextView");
    QTEST(m_keys[0].inPanel, "inPanel");
}

void QtInputMonitorTest::panelsAreTold_data()
{
    QTest::addColumn<Qt::WindowFlags>("flags");
    QTest::addColumn<bool>("inPanel");
    QTest::newRow("window") << Qt::WindowFlags(Qt::Window) << false;
    QTest::newRow("dialog") << Qt::WindowFlags(Qt::Dialog) << true;
    QTest::newRow("tool") << Qt::WindowFlags(Qt::Tool) << true;
}

void QtInputMonitorTest::panelsAreTold()
{
    QFETCH(const Qt::WindowFlags, flags);
    QQuickWindow other;
    other.setFlags(flags);
    other.setTitle(u"Other"_s);
    show(other);
    QTest::keyClick(&other, Qt::Key_Left);
    QVERIFY(!m_keys.isEmpty());
    QTEST(m_keys[0].inPanel, "inPanel");
    QCOMPARE(m_keys[0].windowTitle, u"Other"_s);
}

void QtInputMonitorTest::tellsOfRealMovementsOnly()
{
    QList<QObject *> windows;
    m_monitor->setMouseMovedHandler([&](QObject *window) { windows.append(window); });
    QTest::mouseMove(m_window.get(), {20, 20});
    QTest::mouseMove(m_window.get(), {30, 20});
    QCoreApplication::processEvents();
    QCOMPARE(windows, (QList<QObject *>{m_window.get(), m_window.get()}));
    // The views have seen them all the same.
    QVERIFY(count("moved") >= 1);

    // Something appeared under a pointer that rests.
    const QPointF place(30, 20);
    QMouseEvent resting(QEvent::MouseMove, place, m_window->mapToGlobal(place), Qt::NoButton, {},
                        {});
    QCoreApplication::sendEvent(m_window.get(), &resting);
    QCOMPARE(windows.size(), 2);
}

void QtInputMonitorTest::removedHandlersAreNotCalled()
{
    m_monitor->setKeyDownHandler({});
    QTest::keyClick(m_window.get(), Qt::Key_Space);
    QCOMPARE(count("pressed"), 1);
    m_monitor.reset();
    QTest::keyClick(m_window.get(), Qt::Key_Space);
    QCOMPARE(count("pressed"), 2);
    QVERIFY(m_keys.isEmpty());
}

QTEST_MAIN(QtInputMonitorTest)
#include "tst_qtinputmonitor.moc"
