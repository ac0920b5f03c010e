#include "ui/Theme.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

// A window with one control called `control` at 20, 100, and the names of what it did in `log`.
struct Stage
{
    QQmlEngine engine;
    std::unique_ptr<QQuickWindow> window;

    explicit Stage(const QString &control)
    {
        engine.addImportPath(u"qrc:/qt/qml"_s);
        QQmlComponent component(&engine);
        component.setData(QString(u"import QtQuick\nimport Lumaro.Ui\n"
                                  u"Window {\n"
                                  u"  width: 400; height: 300; visible: true\n"
                                  u"  property var log: []\n"
                                  u"  property real bound: 10\n"
                                  u"  function note(what) { log = log.concat([what]) }\n"
                                  u"  property alias control: control\n"
                                  u"  property alias rest: rest\n"
                                  u"  Item { id: rest; objectName: \"rest\"; focus: true }\n"
                                  % control % u"\n}")
                              .toUtf8(),
                          QUrl(u"qrc:/stage.qml"_s));
        window.reset(qobject_cast<QQuickWindow *>(component.create()));
        if (!window)
            qFatal("%s", qUtf8Printable(component.errorString()));
        window->requestActivate();
        if (!QTest::qWaitForWindowActive(window.get()))
            qFatal("The window does not become active");
    }

    QObject *control() const { return window->property("control").value<QObject *>(); }
    QStringList log() const { return window->property("log").toStringList(); }
    void key(Qt::Key key) const { QTest::keyClick(window.get(), key); }
    QString focus() const
    {
        const QQuickItem *item = window->activeFocusItem();
        return item ? item->objectName() : QString();
    }
};

const QString seekSlider = uR"(
    SeekSlider {
        id: control
        x: 20; y: 100; width: 200
        from: 0; to: 100; value: bound; step: 5
        onMoved: v => note("moved " + v)
        onCommitted: v => note("committed " + v)
    })"_s;

} // namespace

class TestControls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void enterActivates_data();
    void enterActivates();
    void seekDragFollowsThePointerAndCommitsOnce();
    void seekKeepsTheCommittedPlaceUntilTheValueChanges();
    void seekArrowKeysCommitSteps();
    void seekSurvivesAnEmptyRange();
    void seekDisabledWhileDraggingCommitsNothing();
    void clearButtonTellsFromTyping();
    void segmentsAreChosenOutside();
    void segmentsAreStops();
    void sliderMovesAndStaysBound();
    void menuIsUsedByKeys();
    void menuClosesByItsButton();
    void dialogKeys_data();
    void dialogKeys();
    void dialogOfAMenuGivesTheFocusBack_data();
    void dialogOfAMenuGivesTheFocusBack();
    void viewsGrowWithTheDesktopsText();
    void toastKeepsItsTextWhileFading();
    void toolTipWaitsAndFollowsTheText();
};

void TestControls::enterActivates_data()
{
    QTest::addColumn<QString>("control");
    QTest::newRow("icon button")
        << uR"(IconButton { id: control; iconName: "play"; text: "Play"; onClicked: note("click") })"_s;
    QTest::newRow("button")
        << uR"(Button { id: control; text: "Save"; onClicked: note("click") })"_s;
    QTest::newRow("text button")
        << uR"(TextButton { id: control; text: "File"; onClicked: note("click") })"_s;
}

void TestControls::enterActivates()
{
    QFETCH(const QString, control);
    const Stage stage(control);
    stage.key(Qt::Key_Tab);
    QVERIFY(stage.control()->property("visualFocus").toBool());
    stage.key(Qt::Key_Return);
    stage.key(Qt::Key_Enter);
    QCOMPARE(stage.log(), (QStringList{u"click"_s, u"click"_s}));
    QTest::mouseClick(stage.window.get(), Qt::LeftButton, {}, {10, 10});
    QCOMPARE(stage.log().size(), 3);
}

void TestControls::seekDragFollowsThePointerAndCommitsOnce()
{
    const Stage stage(seekSlider);
    QTest::mousePress(stage.window.get(), Qt::LeftButton, {}, {120, 110});
    stage.window->setProperty("bound", 12); // playback goes on
    QCOMPARE(stage.control()->property("shownValue").toReal(), 50.0);
    QVERIFY(stage.control()->property("pressed").toBool());
    QTest::mouseMove(stage.window.get(), {170, 110});
    QCOMPARE(stage.control()->property("shownValue").toReal(), 75.0);
    QTest::mouseMove(stage.window.get(), {390, 110}); // beyond the end
    QTest::mouseRelease(stage.window.get(), Qt::LeftButton, {}, {390, 110});
    QCOMPARE(stage.log(),
             (QStringList{u"moved 50"_s, u"moved 75"_s, u"moved 100"_s, u"committed 100"_s}));
    QVERIFY(!stage.control()->property("pressed").toBool());
}

void TestControls::seekKeepsTheCommittedPlaceUntilTheValueChanges()
{
    const Stage stage(seekSlider);
    QTest::mouseClick(stage.window.get(), Qt::LeftButton, {}, {120, 110});
    QCOMPARE(stage.control()->property("shownValue").toReal(), 50.0);
    stage.window->setProperty("bound", 51);
    QCOMPARE(stage.control()->property("shownValue").toReal(), 51.0);
}

void TestControls::seekArrowKeysCommitSteps()
{
    const Stage stage(seekSlider);
    stage.key(Qt::Key_Tab);
    QVERIFY(stage.control()->property("keyboardFocus").toBool());
    stage.key(Qt::Key_Right);
    stage.key(Qt::Key_Right); // from where the first key led, not from the value
    stage.key(Qt::Key_Left);
    stage.window->setProperty("bound", 2);
    stage.key(Qt::Key_Left);
    stage.key(Qt::Key_PageUp);
    stage.key(Qt::Key_PageUp); // beyond the end
    QCOMPARE(stage.log(),
             (QStringList{u"committed 15"_s, u"committed 20"_s, u"committed 15"_s, u"committed 0"_s,
                          u"committed 60"_s, u"committed 100"_s}));
}

void TestControls::seekSurvivesAnEmptyRange()
{
    const Stage stage(seekSlider);
    stage.control()->setProperty("to", 0);
    QTest::mouseClick(stage.window.get(), Qt::LeftButton, {}, {120, 110});
    QCOMPARE(stage.log().last(), u"committed 0"_s);
}

void TestControls::seekDisabledWhileDraggingCommitsNothing()
{
    const Stage stage(seekSlider);
    QTest::mousePress(stage.window.get(), Qt::LeftButton, {}, {120, 110});
    stage.control()->setProperty("enabled", false);
    QTest::mouseRelease(stage.window.get(), Qt::LeftButton, {}, {120, 110});
    QCOMPARE(stage.log(), QStringList{u"moved 50"_s});
    QVERIFY(!stage.control()->property("pressed").toBool());
}

void TestControls::clearButtonTellsFromTyping()
{
    const Stage stage(uR"(
        TextField {
            id: control
            width: 200
            onTextEdited: note("typed " + text)
            onCleared: note("cleared")
        })"_s);
    stage.key(Qt::Key_Tab);
    stage.key(Qt::Key_A);
    QTest::mouseClick(stage.window.get(), Qt::LeftButton, {}, {182, 18});
    QCOMPARE(stage.log(), (QStringList{u"typed a"_s, u"cleared"_s}));
    QCOMPARE(stage.control()->property("text").toString(), QString());
    QVERIFY(stage.control()->property("activeFocus").toBool());
}

void TestControls::segmentsAreChosenOutside()
{
    const Stage stage(uR"(
        SegmentedControl {
            id: control
            width: 200
            model: [{ "text": "A" }, { "text": "B" }]
            currentIndex: bound - 10
            onActivated: index => { note("asked for " + index); bound = 10 + index; }
        })"_s);
    QTest::mouseClick(stage.window.get(), Qt::LeftButton, {}, {150, 18});
    QTest::mouseClick(stage.window.get(), Qt::LeftButton, {}, {150, 18}); // is chosen already
    QCOMPARE(stage.log(), QStringList{u"asked for 1"_s});
    stage.window->setProperty("bound", 10); // from elsewhere: the binding still holds
    QCOMPARE(stage.control()->property("currentIndex").toInt(), 0);
    stage.key(Qt::Key_Tab);
    stage.key(Qt::Key_Right);
    stage.key(Qt::Key_Right); // there is no third
    stage.key(Qt::Key_Left);
    QCOMPARE(stage.log(), (QStringList{u"asked for 1"_s, u"asked for 1"_s, u"asked for 0"_s}));
}

void TestControls::segmentsAreStops()
{
    const Stage stage(uR"(
        SegmentedControl {
            id: control
            width: 200
            model: [{ "text": "A" }, { "text": "B" }]
            currentIndex: bound - 10
            onActivated: index => { note("asked for " + index); bound = 10 + index; }
        })"_s);
    stage.key(Qt::Key_Tab);
    stage.key(Qt::Key_Return); // is chosen already
    stage.key(Qt::Key_Tab);
    stage.key(Qt::Key_Return);
    stage.key(Qt::Key_Backtab);
    stage.key(Qt::Key_Space);
    stage.key(Qt::Key_Tab);
    stage.key(Qt::Key_Enter);
    QCOMPARE(stage.log(), (QStringList{u"asked for 1"_s, u"asked for 0"_s, u"asked for 1"_s}));
}

void TestControls::sliderMovesAndStaysBound()
{
    const Stage stage(uR"(
        Slider {
            id: control
            from: 0; to: 20; value: bound; stepSize: 1
            onMoved: { note("moved " + value); bound = value; }
        })"_s);
    stage.key(Qt::Key_Tab);
    stage.key(Qt::Key_PageUp);
    stage.key(Qt::Key_PageDown);
    stage.key(Qt::Key_PageDown);
    stage.key(Qt::Key_Right);
    stage.window->setProperty("bound", 1);
    stage.key(Qt::Key_PageDown);
    QCOMPARE(stage.log(),
             (QStringList{u"moved 14"_s, u"moved 10"_s, u"moved 6"_s, u"moved 7"_s, u"moved 0"_s}));
    stage.window->setProperty("bound", 9);
    QCOMPARE(stage.control()->property("value").toInt(), 9);
}

void TestControls::menuIsUsedByKeys()
{
    const Stage stage(uR"(
        Menu {
            id: control
            MenuItem { text: "One"; onTriggered: note("one") }
            MenuItem { text: "Off"; enabled: false; onTriggered: note("off") }
            MenuSeparator {}
            MenuItem { text: "Two"; onTriggered: note("two") }
            Repeater {
                model: ["three", "four"]
                MenuItem {
                    required property string modelData
                    text: modelData
                    onTriggered: note(modelData)
                }
            }
        })"_s);
    const auto open = [&] {
        QQmlExpression(qmlContext(stage.window.get()), stage.control(), u"popup(10, 10)"_s)
            .evaluate();
        QTRY_VERIFY(stage.control()->property("opened").toBool());
    };
    QCOMPARE(stage.focus(), u"rest"_s);
    open();
    stage.key(Qt::Key_Down);
    stage.key(Qt::Key_Down);
    stage.key(Qt::Key_Return);
    QCOMPARE(stage.log(), QStringList{u"two"_s});
    QTRY_VERIFY(!stage.control()->property("visible").toBool());
    QTRY_COMPARE(stage.focus(), u"rest"_s);
    open();
    for (int i = 0; i < 5; ++i) // past the last one is the last one
        stage.key(Qt::Key_Down);
    stage.key(Qt::Key_Enter);
    QCOMPARE(stage.log(), (QStringList{u"two"_s, u"four"_s}));
    QTRY_VERIFY(!stage.control()->property("visible").toBool());
    open();
    stage.key(Qt::Key_Down);
    stage.key(Qt::Key_Escape);
    QTRY_VERIFY(!stage.control()->property("visible").toBool());
    QCOMPARE(stage.log().size(), 2);
    QTRY_COMPARE(stage.focus(), u"rest"_s);
}

void TestControls::menuClosesByItsButton()
{
    const Stage stage(uR"(
        Button {
            id: control
            x: 20; y: 100
            text: "File"
            property Menu menu: Menu { MenuItem { text: "one" } }
            onClicked: menu.toggleBelow(control)
        })"_s);
    const auto isOpen = [&stage] {
        return stage.control()->property("menu").value<QObject *>()->property("visible").toBool();
    };
    const auto click = [&stage] {
        QTest::mouseClick(stage.window.get(), Qt::LeftButton, {}, {30, 110});
    };
    click();
    QTRY_VERIFY(isOpen());
    click();
    QTRY_VERIFY(!isOpen());
    click();
    QTRY_VERIFY(isOpen());
    // Beside both.
    QTest::mouseClick(stage.window.get(), Qt::LeftButton, {}, {390, 10});
    QTRY_VERIFY(!isOpen());
}

void TestControls::dialogKeys_data()
{
    QTest::addColumn<bool>("destructive");
    QTest::addColumn<QList<Qt::Key>>("keys");
    QTest::addColumn<QString>("answer");
    QTest::newRow("enter accepts") << false << QList{Qt::Key_Return} << u"accepted"_s;
    QTest::newRow("escape rejects") << false << QList{Qt::Key_Escape} << u"rejected"_s;
    QTest::newRow("enter loses nothing") << true << QList{Qt::Key_Enter} << u"rejected"_s;
    QTest::newRow("on to the destructive button")
        << true << QList{Qt::Key_Tab, Qt::Key_Return} << u"accepted"_s;
}

void TestControls::dialogKeys()
{
    QFETCH(const bool, destructive);
    QFETCH(const QList<Qt::Key>, keys);
    QFETCH(const QString, answer);
    const Stage stage(uR"(
        Dialog {
            id: control
            title: "Delete?"
            onAccepted: note("accepted")
            onRejected: note("rejected")
        })"_s);
    stage.control()->setProperty("destructive", destructive);
    QMetaObject::invokeMethod(stage.control(), "open");
    QTRY_VERIFY(stage.control()->property("opened").toBool());
    for (const Qt::Key key : keys)
        stage.key(key);
    QCOMPARE(stage.log(), QStringList{answer});
    QTRY_VERIFY(!stage.control()->property("visible").toBool());
    QTRY_COMPARE(stage.focus(), u"rest"_s);
}

void TestControls::dialogOfAMenuGivesTheFocusBack_data()
{
    QTest::addColumn<QList<Qt::Key>>("way"); // to the dialog
    QTest::newRow("menu") << QList{Qt::Key_Down, Qt::Key_Return};
    QTest::newRow("menu of a menu")
        << QList{Qt::Key_Down, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Return};
}

void TestControls::dialogOfAMenuGivesTheFocusBack()
{
    QFETCH(const QList<Qt::Key>, way);
    const Stage stage(uR"(
        Dialog { id: question; title: "Delete?" }
        Menu {
            id: control
            property Dialog dialog: question
            MenuItem { text: "Delete"; onTriggered: question.open() }
            Menu {
                title: "More"
                MenuItem { text: "All"; onTriggered: question.open() }
            }
        })"_s);
    QQmlExpression(qmlContext(stage.window.get()), stage.control(), u"popup(10, 10)"_s).evaluate();
    QTRY_VERIFY(stage.control()->property("opened").toBool());
    for (const Qt::Key key : way)
        stage.key(key);
    auto *const dialog = stage.control()->property("dialog").value<QObject *>();
    QTRY_VERIFY(dialog->property("opened").toBool());
    QTRY_VERIFY(!stage.control()->property("visible").toBool());
    stage.key(Qt::Key_Escape);
    QTRY_VERIFY(!dialog->property("visible").toBool());
    QTRY_COMPARE(stage.focus(), u"rest"_s);
}

void TestControls::viewsGrowWithTheDesktopsText()
{
    Stage stage(uR"(
        Button {
            id: control
            text: "Save"
            property int row: Theme.roomFor(52, 2)
        })"_s);
    auto *const theme =
        stage.engine.singletonInstance<lumaro::Theme *>(qmlTypeId("Lumaro.Ui", 1, 0, "Theme"));
    QVERIFY(theme);
    const auto number = [&](const char *name) { return stage.control()->property(name).toInt(); };
    const int width = number("implicitWidth");
    QCOMPARE(number("row"), 52);
    QCOMPARE(number("implicitHeight"), 36);
    theme->setDesktopTextScale(1.5);
    QCOMPARE(number("row"), lumaro::Theme::roomFor(52, 2));
    QCOMPARE(number("row"), 70);
    QCOMPARE(number("implicitHeight"), lumaro::Theme::controlHeight());
    QVERIFY(number("implicitWidth") > width);
    theme->setDesktopTextScale(1);
    QCOMPARE(number("row"), 52);
}

void TestControls::toastKeepsItsTextWhileFading()
{
    const Stage stage(uR"(Toast { id: control })"_s);
    const auto *toast = qobject_cast<QQuickItem *>(stage.control());
    QVERIFY(!toast->isVisible());
    stage.control()->setProperty("text", u"Saved"_s);
    QTRY_COMPARE(toast->opacity(), 1.0);
    const qreal width = toast->implicitWidth();
    QVERIFY(width > 32);
    stage.control()->setProperty("text", QString());
    QVERIFY(toast->isVisible());
    QCOMPARE(toast->implicitWidth(), width);
    QTRY_VERIFY(!toast->isVisible());
}

void TestControls::toolTipWaitsAndFollowsTheText()
{
    const Stage stage(uR"(
        IconButton {
            id: control
            y: 100
            iconName: "play"; text: "Play"; shortcutText: "Space"
            readonly property Item tip: ToolTips.tip && ToolTips.tip.visible ? ToolTips.tip.contentItem : null
            readonly property string tipText: tip ? ToolTips.tip.text + "|" + ToolTips.tip.shortcutText : ""
        })"_s);
    QTest::mouseMove(stage.window.get(), {10, 110});
    QTRY_VERIFY(stage.control()->property("hovered").toBool());
    QCOMPARE(stage.control()->property("tipText").toString(), QString());
    QTRY_COMPARE(stage.control()->property("tipText").toString(), u"Play|Space"_s);
    stage.control()->setProperty("text", u"Pause"_s);
    QCOMPARE(stage.control()->property("tipText").toString(), u"Pause|Space"_s);
    QTest::mouseMove(stage.window.get(), {300, 250});
    QTRY_COMPARE(stage.control()->property("tipText").toString(), QString());
}

int main(int argc, char *argv[])
{
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    const QGuiApplication application(argc, argv);
    TestControls test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_controls.moc"
