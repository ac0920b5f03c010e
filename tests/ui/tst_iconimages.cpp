#include "ui/IconImages.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

using namespace lumaro;

namespace {

QString folder()
{
    return QStringLiteral(":/qt/qml/Lumaro/Ui/icons");
}

// The bounds of what is painted.
QRect ink(const QImage &image)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 16)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

} // namespace

class TestIconImages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyIconKeepsToTheGrid_data();
    void everyIconKeepsToTheGrid();
    void tints();
    void drawsEachPictureOnce();
    void doesNotGrowWithoutEnd();
    void refusesWhatIsNoIcon_data();
    void refusesWhatIsNoIcon();
};

void TestIconImages::everyIconKeepsToTheGrid_data()
{
    QTest::addColumn<QString>("name");
    const QStringList files = QDir(folder()).entryList({QStringLiteral("*.svg")});
    QVERIFY(files.contains(QStringLiteral("play.svg")));
    for (const QString &file : files)
        QTest::newRow(qPrintable(file)) << file.chopped(4);
}

void TestIconImages::everyIconKeepsToTheGrid()
{
    QFETCH(const QString, name);
    const int unit = 10;
    IconImages images(folder());
    const QImage image = images.image({name, 24 * unit, qRgb(0, 0, 0)});
    const QRect bounds = ink(image);
    QVERIFY(!bounds.isNull());
    // A margin of one unit, so that no stroke is cut, and the same optical middle for all.
    QVERIFY2(image.rect().adjusted(unit, unit, -unit, -unit).contains(bounds),
             qPrintable(QStringLiteral("%1 %2 %3 %4")
                            .arg(bounds.left())
                            .arg(bounds.top())
                            .arg(bounds.right())
                            .arg(bounds.bottom())));
    const QPoint off = bounds.center() - image.rect().center();
    // The loudspeaker stays in its place when its waves go.
    const bool mayBeAside = name.startsWith(QStringLiteral("volume-"));
    QVERIFY2((mayBeAside || std::abs(off.x()) <= 1.5 * unit) && std::abs(off.y()) <= 1.5 * unit,
             qPrintable(QStringLiteral("%1 %2").arg(off.x()).arg(off.y())));
}

void TestIconImages::tints()
{
    IconImages images(folder());
    const QImage image = images.image({QStringLiteral("stop"), 24, qRgb(0x9a, 0xa9, 0xff)});
    QCOMPARE(image.pixel(12, 12), qRgb(0x9a, 0xa9, 0xff));
    QCOMPARE(qAlpha(image.pixel(0, 0)), 0);

    const QImage faint = images.image({QStringLiteral("stop"), 24, qRgba(255, 255, 255, 128)});
    QCOMPARE(qAlpha(faint.pixel(12, 12)), 128);
}

void TestIconImages::drawsEachPictureOnce()
{
    IconImages images(folder());
    const IconKey key{QStringLiteral("play"), 20, qRgb(255, 255, 255)};
    const QImage first = images.image(key);
    QCOMPARE(images.image(key).cacheKey(), first.cacheKey());
    QCOMPARE(images.count(), 1);

    IconKey larger = key;
    larger.pixels = 40;
    IconKey darker = key;
    darker.color = qRgb(0, 0, 0);
    QCOMPARE(images.image(larger).size(), QSize(40, 40));
    QVERIFY(images.image(darker).cacheKey() != first.cacheKey());
    QCOMPARE(images.count(), 3);
}

void TestIconImages::doesNotGrowWithoutEnd()
{
    IconImages images(folder());
    for (int i = 0; i < 2000; ++i)
        QVERIFY(!images.image({QStringLiteral("plus"), 8, qRgb(0, i / 256, i % 256)}).isNull());
    QVERIFY(images.count() < 1000);
}

void TestIconImages::refusesWhatIsNoIcon_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("pixels");
    QTest::addColumn<bool>("warned");
    QTest::newRow("unknown") << QStringLiteral("unicorn") << 20 << true;
    QTest::newRow("a path out of the family") << QStringLiteral("../Button.qml") << 20 << true;
    QTest::newRow("no name") << QString() << 20 << false;
    QTest::newRow("no size") << QStringLiteral("play") << 0 << false;
    QTest::newRow("negative size") << QStringLiteral("play") << -5 << false;
}

void TestIconImages::refusesWhatIsNoIcon()
{
    QFETCH(const QString, name);
    QFETCH(const int, pixels);
    QFETCH(const bool, warned);
    IconImages images(folder());
    if (warned)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("No icon is called")));
    QVERIFY(images.image({name, pixels, qRgb(0, 0, 0)}).isNull());
    QVERIFY(images.image({name, pixels, qRgb(0, 0, 0)}).isNull()); // and warns once
}

QTEST_MAIN(TestIconImages)
#include "tst_iconimages.moc"
