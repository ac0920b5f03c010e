#pragma once

#include "ui/ThemeChoice.h"
#include "ui/ThemeColors.h"

#include <QJSValue>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace lumaro {

/// What all controls agree on: colours, sizes of type, the 4-pixel grid, radii and durations.
/// Follows the desktop between dark and light while the application runs; the environment variable
/// `LUMARO_THEME` (`dark` or `light`) overrules the desktop. Main thread. Lengths are in
/// device-independent pixels, durations in milliseconds. Type grows with the desktop's font and
/// with what the desktop asks for beside it; it does not shrink, because small type is no smaller
/// than can be read.
class Theme : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    /// Settable so that a window can show the other theme; the desktop's next change overrules it.
    Q_PROPERTY(bool dark READ isDark WRITE setDark NOTIFY changed FINAL)

    Q_PROPERTY(QColor background READ background NOTIFY changed FINAL)
    Q_PROPERTY(QColor surface READ surface NOTIFY changed FINAL)
    Q_PROPERTY(QColor surfaceRaised READ surfaceRaised NOTIFY changed FINAL)
    Q_PROPERTY(QColor stroke READ stroke NOTIFY changed FINAL)
    Q_PROPERTY(QColor fillHover READ fillHover NOTIFY changed FINAL)
    Q_PROPERTY(QColor fillPressed READ fillPressed NOTIFY changed FINAL)
    Q_PROPERTY(QColor text READ text NOTIFY changed FINAL)
    Q_PROPERTY(QColor textSecondary READ textSecondary NOTIFY changed FINAL)
    Q_PROPERTY(QColor accent READ accent NOTIFY changed FINAL)
    Q_PROPERTY(QColor accentText READ accentText NOTIFY changed FINAL)
    Q_PROPERTY(QColor accentSoft READ accentSoft NOTIFY changed FINAL)
    Q_PROPERTY(QColor onAccent READ onAccent NOTIFY changed FINAL)
    Q_PROPERTY(QColor danger READ danger NOTIFY changed FINAL)
    Q_PROPERTY(QColor dangerFill READ dangerFill NOTIFY changed FINAL)
    Q_PROPERTY(QColor onDanger READ onDanger NOTIFY changed FINAL)
    Q_PROPERTY(QColor scrim READ scrim NOTIFY changed FINAL)
    Q_PROPERTY(QColor overlay READ overlay NOTIFY changed FINAL)
    Q_PROPERTY(QColor strokeOnOverlay READ strokeOnOverlay NOTIFY changed FINAL)
    Q_PROPERTY(QColor fillHoverOnOverlay READ fillHoverOnOverlay NOTIFY changed FINAL)
    Q_PROPERTY(QColor fillPressedOnOverlay READ fillPressedOnOverlay NOTIFY changed FINAL)
    Q_PROPERTY(QColor textOnOverlay READ textOnOverlay NOTIFY changed FINAL)
    Q_PROPERTY(QColor textSecondaryOnOverlay READ textSecondaryOnOverlay NOTIFY changed FINAL)
    Q_PROPERTY(QColor accentOnOverlay READ accentOnOverlay NOTIFY changed FINAL)
    Q_PROPERTY(QColor dangerOnOverlay READ dangerOnOverlay NOTIFY changed FINAL)

    /// For the few items that would take the desktop's font instead of the application's.
    Q_PROPERTY(QString fontFamily READ fontFamily CONSTANT FINAL)
    Q_PROPERTY(int fontSmall READ fontSmall NOTIFY textScaleChanged FINAL)
    Q_PROPERTY(int fontBody READ fontBody NOTIFY textScaleChanged FINAL)
    Q_PROPERTY(int fontTitle READ fontTitle NOTIFY textScaleChanged FINAL)
    Q_PROPERTY(int fontHeading READ fontHeading NOTIFY textScaleChanged FINAL)
    /// roomFor() as a function that is another one for other type, so that bindings with it follow.
    Q_PROPERTY(QJSValue roomFor READ roomForNow NOTIFY textScaleChanged FINAL)

    Q_PROPERTY(int spacing MEMBER spacing CONSTANT FINAL)
    Q_PROPERTY(int controlHeight READ controlHeight NOTIFY textScaleChanged FINAL)
    Q_PROPERTY(int iconSize MEMBER iconSize CONSTANT FINAL)
    Q_PROPERTY(int radiusSmall MEMBER radiusSmall CONSTANT FINAL)
    Q_PROPERTY(int radius MEMBER radius CONSTANT FINAL)
    Q_PROPERTY(int radiusLarge MEMBER radiusLarge CONSTANT FINAL)

    Q_PROPERTY(int durationShort MEMBER durationShort CONSTANT FINAL)
    Q_PROPERTY(int durationMedium MEMBER durationMedium CONSTANT FINAL)
    Q_PROPERTY(int toolTipDelay MEMBER toolTipDelay CONSTANT FINAL)

public:
    static constexpr int spacing = 4;
    static constexpr int iconSize = 20;
    static constexpr int radiusSmall = 6;
    static constexpr int radius = 10;
    static constexpr int radiusLarge = 12;
    static constexpr int durationShort = 120;
    static constexpr int durationMedium = 180;
    static constexpr int toolTipDelay = 600;

    explicit Theme(QObject *parent = nullptr);

    bool isDark() const { return m_choice == ThemeChoice::Dark; }
    /// What the desktop asks for beside its palette, if for anything.
    void setDesktopChoice(std::optional<ThemeChoice> choice);
    void setDark(bool dark) { apply(dark ? ThemeChoice::Dark : ThemeChoice::Light); }

    QColor background() const { return m_colors.background; }
    QColor surface() const { return m_colors.surface; }
    QColor surfaceRaised() const { return m_colors.surfaceRaised; }
    QColor stroke() const { return m_colors.stroke; }
    QColor fillHover() const { return m_colors.fillHover; }
    QColor fillPressed() const { return m_colors.fillPressed; }
    QColor text() const { return m_colors.text; }
    QColor textSecondary() const { return m_colors.textSecondary; }
    QColor accent() const { return m_colors.accent; }
    QColor accentText() const { return m_colors.accentText; }
    QColor accentSoft() const { return m_colors.accentSoft; }
    QColor onAccent() const { return m_colors.onAccent; }
    QColor danger() const { return m_colors.danger; }
    QColor dangerFill() const { return m_colors.dangerFill; }
    QColor onDanger() const { return m_colors.onDanger; }
    QColor scrim() const { return m_colors.scrim; }
    QColor overlay() const { return m_colors.overlay; }
    QColor strokeOnOverlay() const { return m_colors.strokeOnOverlay; }
    QColor fillHoverOnOverlay() const { return m_colors.fillHoverOnOverlay; }
    QColor fillPressedOnOverlay() const { return m_colors.fillPressedOnOverlay; }
    QColor textOnOverlay() const { return m_colors.textOnOverlay; }
    QColor textSecondaryOnOverlay() const { return m_colors.textSecondaryOnOverlay; }
    QColor accentOnOverlay() const { return m_colors.accentOnOverlay; }
    QColor dangerOnOverlay() const { return m_colors.dangerOnOverlay; }

    QString fontFamily() const;
    static int fontSmall() { return fontSize(12); }
    static int fontBody() { return fontSize(standardFontSize); }
    static int fontTitle() { return fontSize(15); }
    static int fontHeading() { return fontSize(20); }
    static int controlHeight() { return roomFor(36, 1); }

    /// What a height that is right for so many lines of type as designed must be for the type that
    /// there is.
    static int roomFor(int height, int lines);
    QJSValue roomForNow();
    /// Makes type as much larger as designed as `desktop` is larger than 10 points, twice at most.
    /// To be called before the first view is made.
    static void followFont(const QFont &desktop);
    /// Makes it larger still by this factor, but not more than twice in all; the application's font
    /// too.
    void setDesktopTextScale(double scale);

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void changed();
    void textScaleChanged();

private:
    static constexpr int standardFontSize = 13;
    static int fontSize(int designed);

    void followDesktop();
    void apply(ThemeChoice choice);

    /// Made when first asked for.
    QJSValue m_roomFor;
    std::optional<ThemeChoice> m_desktopChoice;
    ThemeChoice m_choice = ThemeChoice::Dark;
    ThemeColors m_colors = ThemeColors::dark();
};

} // namespace lumaro
