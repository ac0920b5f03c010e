#include "ui/Style.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>

#include <cstdio>

namespace {

// Prints how long the window took from the engine's start to its first frame, and quits.
void timeFirstFrame(QQmlApplicationEngine &engine, const QElapsedTimer &clock, qint64 loaded)
{
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    QObject::connect(
        window, &QQuickWindow::frameSwapped, qGuiApp,
        [&clock, loaded] {
            std::printf("objects after %.1f ms, first frame after %.1f ms\n",
                        static_cast<double>(loaded) / 1e6,
                        static_cast<double>(clock.nsecsElapsed()) / 1e6);
            QGuiApplication::quit();
        },
        Qt::SingleShotConnection);
}

} // namespace

// lumaro_ui_gallery [--time]: LUMARO_THEME=light shows the light theme.
int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    const bool timed = QGuiApplication::arguments().contains(QStringLiteral("--time"));

    QElapsedTimer clock;
    clock.start();
    lumaro::applyStyle();
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.load(QUrl(timed ? QStringLiteral("qrc:/qt/qml/Lumaro/UiGallery/StartUp.qml")
                           : QStringLiteral("qrc:/qt/qml/Lumaro/UiGallery/Gallery.qml")));
    if (engine.rootObjects().isEmpty())
        return 1;
    if (timed)
        timeFirstFrame(engine, clock, clock.nsecsElapsed());
    return QGuiApplication::exec();
}
