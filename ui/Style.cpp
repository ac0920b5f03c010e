#include "ui/Style.h"

#include "ui/Theme.h"

#include <QFont>
#include <QGuiApplication>
#include <QQuickWindow>

namespace lumaro {

void applyStyle()
{
    QFont font = QGuiApplication::font();
    QStringList families{QStringLiteral("Inter"), QStringLiteral("Noto Sans")};
    families += font.families();
    font.setFamilies(families);
    font.setPixelSize(Theme::fontBody);
    QGuiApplication::setFont(font);
    // Hinted glyphs are crisper at these sizes, and need no distance fields made at start-up.
    QQuickWindow::setTextRenderType(QQuickWindow::NativeTextRendering);
}

} // namespace lumaro
