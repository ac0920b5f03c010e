#include "ui/Theme.h"

#include <QFont>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace lumaro;

namespace {

// What Qt paints with while no desktop has chosen a palette.
QPalette standIn()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0xef, 0xef, 0xef));
    palette.setColor(QPalette::WindowText, Qt::black);
    palette.setColor(QPalette::Highlight, QColor(0x30, 0x8c, 0xc6));
    return palette;
}

QPalette chosen(const QColor &window, const QColor &text)
{
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0xae, 0xe9));
    return palette;
}

QColor over(const QColor &front, const QColor &back)
{
    const auto mix = [a = front.alphaF()](float f, float b) { return f * a + b * (1 - a); };
    return QColor::fromRgbF(mix(front.redF(), back.redF()), mix(front.greenF(), back.greenF()),
                            mix(front.blueF(), back.blueF()));
}

// WCAG 2.2, relative luminance and contrast ratio.
double luminance(const QColor &color)
{
    const auto linear = [](double c) {
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
        + 0.0722 * linear(color.blueF());
}

double contrast(const QColor &a, const QColor &b)
{
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

} // namespace

class TestTheme : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choosesFromWishAndPalette_data();
    void choosesFromWishAndPalette();
    void followsThePaletteOfTheApplication();
    void followsTheDesktop();
    void announcesOnlyRealChanges();
    void typeFollowsTheDesktopsFont_data();
    void typeFollowsTheDesktopsFont();
    void typeFollowsTheDesktopsScale_data();
    void typeFollowsTheDesktopsScale();
    void textIsReadable_data();
    void textIsReadable();
};

void TestTheme::choosesFromWishAndPalette_data()
{
    QTest::addColumn<QString>("wish");
    QTest::addColumn<std::optional<ThemeChoice>>("desktop");
    QTest::addColumn<QPalette>("palette");
    QTest::addColumn<bool>("dark");
    const QPalette light = chosen(QColor(0xef, 0xf0, 0xf1), QColor(0x23, 0x26, 0x29));
    const QPalette dark = chosen(QColor(0x2a, 0x2e, 0x32), QColor(0xfc, 0xfc, 0xfc));
    const QPalette middle = chosen(QColor(0x80, 0x80, 0x80), Qt::white);

    const std::optional<ThemeChoice> none;
    const std::optional wantsDark(ThemeChoice::Dark);
    const std::optional wantsLight(ThemeChoice::Light);

    QTest::newRow("nobody chose") << QString() << none << standIn() << true;
    QTest::newRow("light desktop") << QString() << none << light << false;
    QTest::newRow("dark desktop") << QString() << none << dark << true;
    QTest::newRow("middle grey below white text") << QString() << none << middle << true;
    QTest::newRow("wish against a dark desktop")
        << QStringLiteral("light") << none << dark << false;
    QTest::newRow("wish against a light desktop")
        << QStringLiteral("Dark") << none << light << true;
    QTest::newRow("wish while nobody chose")
        << QStringLiteral("LIGHT") << none << standIn() << false;
    QTest::newRow("desktop says dark") << QString() << wantsDark << light << true;
    QTest::newRow("desktop says light") << QString() << wantsLight << dark << false;
    QTest::newRow("desktop says light, without a palette")
        << QString() << wantsLight << standIn() << false;
    QTest::newRow("wish against the desktop")
        << QStringLiteral("dark") << wantsLight << light << true;
    QTest::newRow("no such theme") << QStringLiteral("sepia") << none << light << false;
}

void TestTheme::choosesFromWishAndPalette()
{
    QFETCH(const QString, wish);
    QFETCH(const QPalette, palette);
    QFETCH(const bool, dark);
    QFETCH(const std::optional<ThemeChoice>, desktop);
    QCOMPARE(chooseTheme(wish, desktop, palette) == ThemeChoice::Dark, dark);
}

void TestTheme::followsThePaletteOfTheApplication()
{
    qunsetenv("LUMARO_THEME");
    const Theme theme;
    QVERIFY(theme.isDark());
    QGuiApplication::setPalette(chosen(Qt::white, Qt::black));
    QTRY_VERIFY(!theme.isDark());
    QCOMPARE(theme.background(), ThemeColors::light().background);
    QGuiApplication::setPalette(chosen(Qt::black, Qt::white));
    QTRY_VERIFY(theme.isDark());
    QCOMPARE(theme.background(), ThemeColors::dark().background);
}

void TestTheme::followsTheDesktop()
{
    qunsetenv("LUMARO_THEME");
    QGuiApplication::setPalette(chosen(Qt::black, Qt::white));
    Theme theme;
    theme.setDesktopChoice(ThemeChoice::Light);
    QVERIFY(!theme.isDark());
    // The palette does not overrule it, but counts again when it is taken back.
    QGuiApplication::setPalette(chosen(Qt::black, Qt::lightGray));
    QCoreApplication::processEvents();
    QVERIFY(!theme.isDark());
    theme.setDesktopChoice(std::nullopt);
    QVERIFY(theme.isDark());
}

void TestTheme::announcesOnlyRealChanges()
{
    Theme theme;
    const bool before = theme.isDark();
    const QSignalSpy changes(&theme, &Theme::changed);
    theme.setDark(before);
    QCOMPARE(changes.count(), 0);
    theme.setDark(!before);
    QCOMPARE(changes.count(), 1);
}

void TestTheme::typeFollowsTheDesktopsFont_data()
{
    QTest::addColumn<QFont>("font");
    QTest::addColumn<int>("body");
    QTest::addColumn<int>("twoLines");
    const auto row = [](const char *name, double points, int pixels, int body, int twoLines) {
        QFont font;
        if (pixels > 0)
            font.setPixelSize(pixels);
        else
            font.setPointSizeF(points);
        QTest::newRow(name) << font << body << twoLines;
    };
    row("as designed", 10, 0, 13, 52);
    row("smaller", 7, 0, 13, 52);
    row("a little larger", 11, 0, 14, 55);
    row("large", 15, 0, 20, 70);
    row("told in pixels", 0, 20, 20, 70);
    row("larger than windows have room for", 60, 0, 26, 86);
}

void TestTheme::typeFollowsTheDesktopsFont()
{
    QFETCH(const QFont, font);
    Theme::followFont(font);
    QTEST(Theme::fontBody(), "body");
    QTEST(Theme::roomFor(52, 2), "twoLines");
    Theme::followFont(QFont(QString(), 10));
    QCOMPARE(Theme::fontSmall(), 12);
}

void TestTheme::typeFollowsTheDesktopsScale_data()
{
    QTest::addColumn<double>("points");
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("body");
    QTest::newRow("larger") << 10. << 1.25 << 16;
    QTest::newRow("larger font, larger scale") << 11. << 1.25 << 18;
    QTest::newRow("larger font, smaller scale") << 12. << 0.75 << 13;
    QTest::newRow("smaller font, larger scale") << 9. << 1.25 << 15;
    QTest::newRow("no more than windows have room for") << 11. << 3. << 26;
}

void TestTheme::typeFollowsTheDesktopsScale()
{
    QFETCH(const double, points);
    QFETCH(const double, scale);
    QFont font;
    font.setPointSizeF(points);
    Theme::followFont(font);
    Theme theme;
    const QSignalSpy changes(&theme, &Theme::textScaleChanged);
    const int before = Theme::fontBody();
    theme.setDesktopTextScale(scale);
    QTEST(Theme::fontBody(), "body");
    QCOMPARE(QGuiApplication::font().pixelSize() == Theme::fontBody(), !changes.isEmpty());
    QCOMPARE(changes.isEmpty(), before == Theme::fontBody());
    Theme::followFont(QFont(QString(), 10));
    theme.setDesktopTextScale(1);
    QCOMPARE(Theme::fontSmall(), 12);
}

void TestTheme::textIsReadable_data()
{
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("ground");

    const auto rows = [](const char *theme, const ThemeColors &c) {
        const std::pair<const char *, QColor> grounds[] = {
            {"background", c.background},
            {"surface", c.surface},
            {"surfaceRaised", c.surfaceRaised},
            {"pressed", over(c.fillPressed, c.background)},
            {"pressed in a menu", over(c.fillPressed, c.surfaceRaised)},
            {"chosen", over(c.accentSoft, c.background)},
        };
        for (const auto &[name, ground] : grounds) {
            QTest::addRow("%s text on %s", theme, name) << c.text << ground;
            QTest::addRow("%s secondary on %s", theme, name) << c.textSecondary << ground;
        }
        for (const auto &[name, ground] : {grounds[0], grounds[1], grounds[2]})
            QTest::addRow("%s danger on %s", theme, name) << c.danger << ground;
        QTest::addRow("%s accent on chosen", theme)
            << c.accentText << over(c.accentSoft, c.background);
        QTest::addRow("%s on accent", theme) << c.onAccent << c.accent;
        QTest::addRow("%s on danger", theme) << c.onDanger << c.dangerFill;
        for (const auto &[name, picture] :
             {std::pair{"black", QColor(Qt::black)}, std::pair{"white", QColor(Qt::white)}}) {
            const QColor overlay = over(c.overlay, picture);
            const std::pair<const char *, QColor> texts[] = {
                {"text", c.textOnOverlay},
                {"secondary", c.textSecondaryOnOverlay},
                {"danger", c.dangerOnOverlay},
                {"accent", c.accentOnOverlay},
            };
            for (const auto &[textName, text] : texts)
                QTest::addRow("%s %s over a %s picture", theme, textName, name) << text << overlay;
            QTest::addRow("%s text pressed over a %s picture", theme, name)
                << c.textOnOverlay << over(c.fillPressedOnOverlay, overlay);
        }
    };
    rows("dark", ThemeColors::dark());
    rows("light", ThemeColors::light());
}

void TestTheme::textIsReadable()
{
    QFETCH(const QColor, text);
    QFETCH(const QColor, ground);
    const double ratio = contrast(text, ground);
    QVERIFY2(ratio >= 4.5, qPrintable(QString::number(ratio)));
}

QTEST_MAIN(TestTheme)
#include "tst_theme.moc"
