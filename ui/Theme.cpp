#include "ui/Theme.h"

#include <QEvent>
#include <QFont>
#include <QGuiApplication>
#include <QQmlEngine>

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
double fontScale = 1;
double desktopTextScale = 1;

double textScale()
{
    return std::clamp(fontScale * desktopTextScale, 1.0, 2.0);
}

} // namespace

void Theme::followFont(const QFont &desktop)
{
    constexpr double pixelsPerPoint = 96.0 / 72;
    const double size =
        desktop.pixelSize() > 0 ? desktop.pixelSize() : desktop.pointSizeF() * pixelsPerPoint;
    fontScale = size / (10 * pixelsPerPoint);
}

void Theme::setDesktopTextScale(double scale)
{
    const double before = textScale();
    desktopTextScale = scale;
    if (textScale() == before)
        return;
    QFont font = QGuiApplication::font();
    font.setPixelSize(fontBody());
    QGuiApplication::setFont(font);
    m_roomFor = {};
    Q_EMIT textScaleChanged();
}

int Theme::fontSize(int designed)
{
    return qRound(designed * textScale());
}

namespace {

double extraRoom(int lines, int fontGrowth)
{
    constexpr double lineHeight = 1.3;
    return lines * lineHeight * fontGrowth;
}

} // namespace

int Theme::roomFor(int height, int lines)
{
    return height + qRound(extraRoom(lines, fontBody() - standardFontSize));
}

QJSValue Theme::roomForNow()
{
    QJSEngine *const engine = qmlEngine(this);
    if (m_roomFor.isUndefined() && engine) {
        const QString function =
            QStringLiteral("(height, lines) => height + Math.round(lines * %1)");
        m_roomFor = engine->evaluate(function.arg(extraRoom(1, fontBody() - standardFontSize)));
    }
    return m_roomFor;
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
