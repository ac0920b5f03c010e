#include "ui/Theme.h"

#include <QEvent>
#include <QFont>
#include <QGuiApplication>

namespace lumaro {

Theme::Theme(QObject *parent)
    : QObject(parent)
{
    followDesktop();
    qGuiApp->installEventFilter(this);
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
