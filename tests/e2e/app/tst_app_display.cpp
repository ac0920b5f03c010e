#include "tests/e2e/app/AppWorld.h"

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace lumaro;
using Mode = PortraitDisplayMode;

namespace {

/// Of red and green: video's own rounding, and a picture that lies half a pixel beside.
constexpr int tolerance = 6;
constexpr double zoom = 1.13;
constexpr double videoAspect = 16.0 / 9;

/// A place in the picture, in parts of its width and height.
struct Place
{
    double x = 0;
    double y = 0;
};

/// What a view of `size` shows at `point`; nothing where it is black.
std::optional<Place> shownAt(QPointF point, QSizeF size, Mode mode, double pan)
{
    const double columnWidth = size.height() * 9 / 16;
    const double x = point.x() - (size.width() - columnWidth) / 2;
    if (mode != Mode::normal && (x < 0 || x > columnWidth))
        return std::nullopt;
    if (mode == Mode::rotate)
        return Place{point.y() / size.height(), 1 - x / columnWidth};
    double height = size.height();
    double centre = columnWidth / 2;
    if (mode == Mode::normal) {
        height = std::min(size.height(), size.width() / videoAspect);
    } else {
        centre += pan * (size.height() * videoAspect - columnWidth) / 2;
        height *= zoom;
    }
    const Place place{(x - centre) / (height * videoAspect) + 0.5,
                      (point.y() - size.height() / 2) / height + 0.5};
    if (place.x < 0 || place.x > 1 || place.y < 0 || place.y > 1)
        return std::nullopt;
    return place;
}

/// The share of the view's points, away from the edges of the picture, that do not show what they
/// should.
double wrongShare(const QImage &view, Mode mode, double pan)
{
    const QSizeF size = view.size();
    int wrong = 0;
    int all = 0;
    for (int y = 6; y < view.height() - 6; y += 7) {
        for (int x = 6; x < view.width() - 6; x += 7) {
            const auto at = [&](int dx, int dy) {
                return shownAt({x + 0.5 + dx, y + 0.5 + dy}, size, mode, pan);
            };
            const auto place = at(0, 0);
            const bool isEdge = at(-3, 0).has_value() != place.has_value()
                || at(3, 0).has_value() != place.has_value()
                || at(0, -3).has_value() != place.has_value()
                || at(0, 3).has_value() != place.has_value();
            if (isEdge)
                continue;
            ++all;
            const QRgb seen = view.pixel(x, y);
            const int red = place ? int(std::lround(place->x * 255)) : 0;
            const int green = place ? int(std::lround(place->y * 255)) : 0;
            const int blue = place ? 64 : 0;
            if (std::abs(qRed(seen) - red) > tolerance || std::abs(qGreen(seen) - green) > tolerance
                || std::abs(qBlue(seen) - blue) > 2 * tolerance)
                ++wrong;
        }
    }
    return double(wrong) / all;
}

} // namespace

/// The whole application shows its picture in each display mode.
class AppDisplayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_world.reset(); }

    void showsEachMode_data();
    void showsEachMode();
    void dragsThePicture();
    void staysRightWhileResized();
    void columnFollowsAFace();

private:
    QString fixture(Fixture fixture) const { return valueOrFail(m_media.path(fixture)); }
    /// Plays, with nothing over the picture.
    bool playsAlone(Fixture file);
    QQuickItem *view() { return m_world->surfaces().currentSurface()->recordingView(); }
    /// The picture's view as it is on the screen.
    QImage shown();
    bool shows(Mode mode, double pan = 0)
    {
        return becomesTrue([&] { return wrongShare(shown(), mode, pan) < 0.001; });
    }
    /// The middle of what the column shows, in parts of the picture's width, from the grey there.
    double columnCentre();

    MediaFixtures m_media{QStringLiteral(LUMARO_FIXTURE_FOLDER)};
    std::unique_ptr<AppWorld> m_world;
};

void AppDisplayTest::init()
{
    m_world = std::make_unique<AppWorld>();
    m_world->shell().setSidebarVisible(false);
}

bool AppDisplayTest::playsAlone(Fixture file)
{
    m_world->open(fixture(file));
    return m_world->playsTo(0.3)
        && becomesTrue([this] { return !m_world->shell().controlsVisible(); });
}

QImage AppDisplayTest::shown()
{
    const QRectF area = view()->mapRectToScene(view()->boundingRect());
    return m_world->screen().copy(area.toAlignedRect());
}

double AppDisplayTest::columnCentre()
{
    const QImage image = shown();
    // Above the face and below the title.
    const QRgb seen = image.pixel(image.width() / 2, int(image.height() * 0.22));
    return qGray(seen) / 255.0;
}

void AppDisplayTest::showsEachMode_data()
{
    QTest::addColumn<int>("mode");
    for (const Mode mode : allPortraitDisplayModes)
        QTest::addRow("%s", qPrintable(rawValue(mode))) << int(mode);
}

void AppDisplayTest::showsEachMode()
{
    QFETCH(const int, mode);
    QVERIFY(playsAlone(Fixture::Gradient));
    m_world->shell().setDisplayMode(Mode(mode));
    QVERIFY(shows(Mode(mode)));
    for (const Mode other : allPortraitDisplayModes) {
        // In the middle three modes show the same.
        if ((other == Mode::normal) != (Mode(mode) == Mode::normal)
            || (other == Mode::rotate) != (Mode(mode) == Mode::rotate))
            QVERIFY(wrongShare(shown(), other, 0) > 0.1);
    }
}

void AppDisplayTest::dragsThePicture()
{
    QVERIFY(playsAlone(Fixture::Gradient));
    m_world->shell().setDisplayMode(Mode::manual);
    QVERIFY(shows(Mode::manual));
    const int half = int(std::lround(view()->width() * 0.35 * 0.5));
    const QPoint from(300, 300);
    QTest::mousePress(&m_world->window(), Qt::LeftButton, {}, from);
    QTest::mouseMove(&m_world->window(), from + QPoint(half / 2, 0));
    QTest::mouseMove(&m_world->window(), from + QPoint(half, 0));
    QTest::mouseRelease(&m_world->window(), Qt::LeftButton, {}, from + QPoint(half, 0));
    QVERIFY(becomesTrue([this] { return !m_world->shell().controlsVisible(); }));
    QVERIFY(shows(Mode::manual, half / (view()->width() * 0.35)));
}

void AppDisplayTest::staysRightWhileResized()
{
    QVERIFY(playsAlone(Fixture::Gradient));
    for (const Mode mode : {Mode::normal, Mode::fill, Mode::rotate, Mode::manual}) {
        m_world->shell().setDisplayMode(mode);
        QVERIFY(shows(mode));
        for (const QSize size : {QSize(1000, 640), QSize(733, 511), QSize(1120, 700)}) {
            // The very first picture of this size.
            double wrong = 1;
            const auto once = connect(view(), &QQuickItem::heightChanged, view(), [&] {
                QMetaObject::invokeMethod(
                    view(), [&] { wrong = wrongShare(shown(), mode, 0); }, Qt::QueuedConnection);
            });
            m_world->window().resize(size);
            QVERIFY(becomesTrue([&] { return view()->size() == QSizeF(size) && wrong < 1; }));
            disconnect(once);
            QVERIFY2(wrong < 0.001, qPrintable(QString::number(wrong)));
        }
    }
}

void AppDisplayTest::columnFollowsAFace()
{
    m_world->shell().setDisplayMode(Mode::smart);
    QVERIFY(playsAlone(Fixture::MovingFace));
    // Half a column from the picture's edges, within the zoom.
    const double column = 9.0 / 16 / videoAspect;
    const double leftmost = column / 2;
    QList<double> centres;
    for (const double time : {5.0, 8.0, 11.0, 14.0}) {
        QVERIFY(m_world->playsTo(time));
        centres.append(columnCentre());
    }
    qInfo() << "column's centre at 5, 8, 11, 14 s:" << centres;
    QVERIFY(std::ranges::is_sorted(centres));
    QVERIFY(centres.first() < 0.5 && centres.last() > 0.55);
    QVERIFY(centres.last() - centres.first() > 0.2);

    // At rest it has the face as near to its middle as the picture's edge allows.
    QVERIFY(m_world->playsTo(21));
    const double rest = columnCentre();
    qInfo() << "at rest:" << rest;
    const double faceMiddle = 1 - 200.0 / 1280;
    const double pan = (0.5 - faceMiddle) * 2;
    const double expected = 0.5 - pan * (1 - column) / 2 / zoom;
    QVERIFY(std::abs(rest - expected) < 0.04);
    QVERIFY(rest > leftmost);

    // What stands still is not followed: the column stays where it is.
    m_world->player().seek(6);
    QVERIFY(becomesTrue([this] { return m_world->player().currentTime() < 7; }));
    m_world->player().togglePlayback();
    QVERIFY(becomesTrue([this] { return !m_world->player().isPlaying(); }));
    QTest::qWait(1200);
    const double paused = columnCentre();
    QTest::qWait(1500);
    QVERIFY(std::abs(columnCentre() - paused) < 0.005);
}

LUMARO_APP_TEST_MAIN(AppDisplayTest)
#include "tst_app_display.moc"
