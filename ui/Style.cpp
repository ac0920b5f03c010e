#include "ui/Style.h"

#include "ui/Theme.h"

#include <QFont>
#include <QGuiApplication>
#include <QQuickWindow>

namespace lumaro {

void applyStyle()
{
    // Later it is this application's own.
    static const QFont desktop = QGuiApplication::font();
    Theme::followFont(desktop);
    QFont font = desktop;
    QStringList families{QStringLiteral("Inter"), QStringLiteral("Noto Sans")};
    families += font.families();
    font.setFamilies(families);
    font.setPixelSize(Theme::fontBody());
    QGuiApplication::setFont(font);
    // Hinted glyphs are crisper at these sizes, and need no distance fields made at start-up.
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
}

} // namespace lumaro
