#include "platform/qt/FramePacer.h"

#include <QTest>

using namespace std::chrono_literals;
using namespace lumaro;

class FramePacerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesAtMostOnePerInterval_data();
    void takesAtMostOnePerInterval();
    void takesUnevenFrames();
    void catchesUpWithoutABurst();
};

void FramePacerTest::takesAtMostOnePerInterval_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("least");
    QTest::addColumn<int>("most");
    QTest::newRow("24") << 24 << 240 << 240;
    QTest::newRow("30") << 30 << 300 << 300;
    QTest::newRow("50") << 50 << 250 << 301;
    QTest::newRow("60") << 60 << 299 << 301;
    QTest::newRow("144") << 144 << 285 << 301;
}

void FramePacerTest::takesAtMostOnePerInterval()
{
    QFETCH(const int, rate);
    QFETCH(const int, least);
    QFETCH(const int, most);
    FramePacer pacer(MediaTime(1s) / 30);
    int taken = 0;
    for (int i = 0; i < 10 * rate; ++i)
        taken += pacer.takes(1h + MediaTime(1s) * i / rate) ? 1 : 0;
    QVERIFY2(taken >= least && taken <= most, QByteArray::number(taken).constData());
}

void FramePacerTest::takesUnevenFrames()
{
    FramePacer pacer(MediaTime(1s) / 30);
    int taken = 0;
    for (int i = 0; i < 300; ++i)
        taken += pacer.takes(MediaTime(1s) * i / 30 + (i % 2 == 0 ? 0ms : 7ms)) ? 1 : 0;
    QCOMPARE(taken, 300);
}

void FramePacerTest::catchesUpWithoutABurst()
{
    FramePacer pacer(100ms);
    QVERIFY(pacer.takes(0ms));
    QVERIFY(pacer.takes(5s));
    QVERIFY(!pacer.takes(5s + 10ms));
    QVERIFY(!pacer.takes(5s + 20ms));
    QVERIFY(pacer.takes(5s + 100ms));
}

QTEST_APPLESS_MAIN(FramePacerTest)
#include "tst_framepacer.moc"
