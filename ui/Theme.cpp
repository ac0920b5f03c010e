#include "ui/Theme.h"

#include <QEvent>
#include <QFont>
#include <QGuiApplication>

#include <algorithm>

namespace lumaro {

Theme::Theme(QObject *parent)
    : QObject(parent)
{
    followDesktop();
    qGuiApp->installEventFilter(this);
}

namespace {

// Of all windows, since they are made of the same desktop.
double textScale = 1;

} // namespace

void Theme::followFont(const QFont &desktop)
{
    constexpr double pixelsPerPoint = 96.0 / 72;
    const double size =
        desktop.pixelSize() > 0 ? desktop.pixelSize() : desktop.pointSizeF() * pixelsPerPoint;
    textScale = std::clamp(size / (10 * pixelsPerPoint), 1.0, 2.0);
}

int Theme::fontSize(int designed)
{
    return qRound(designed * textScale);
}

int Theme::roomFor(int height, int lines)
{
    constexpr double lineHeight = 1.3;
    return height + qRound(lines * lineHeight * (fontBody() - standardFontSize));
}

QString Theme::fontFamily() const
{
    return QGuiApplication::font().family();
}

bool Theme::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange && watched == qGuiApp)
        followDesktop();
    return false;
}

void Theme::followDesktop()
{
    apply(chooseTheme(qEnvironmentVariable("LUMARO_THEME"), m_desktopChoice,
                      QGuiApplication::palette()));
}

void Theme::setDesktopChoice(std::optional<ThemeChoice> choice)
{
    if (m_desktopChoice == choice)
        return;
    m_desktopChoice = choice;
    followDesktop();
}

void Theme::apply(ThemeChoice choice)
{
    if (choice == m_choice)
        return;
    m_choice = choice;
    m_colors = choice == ThemeChoice::Dark ? ThemeColors::dark() : ThemeColors::light();
    Q_EMIT changed();
}

} // namespace lumaro
