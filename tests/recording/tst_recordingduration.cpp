#include "recording/RecordingDuration.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

class RecordingDurationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parses_data();
    void parses();
    void refuses_data();
    void refuses();
    void formats_data();
    void formats();
};

void RecordingDurationTest::parses_data()
{
    QTest::addColumn<double>("seconds");
    QTest::newRow("30m") << 1800.0;
    QTest::newRow("90 m") << 5400.0;
    QTest::newRow("1.2hr") << 4320.0;
    QTest::newRow("1,2 hr") << 4320.0;
    QTest::newRow("1,5h") << 5400.0;
    QTest::newRow("2 Hours") << 7200.0;
    QTest::newRow("1HOUR") << 3600.0;
    QTest::newRow("3hrs") << 10800.0;
    QTest::newRow("5minutes") << 300.0;
    QTest::newRow("1 minute") << 60.0;
    QTest::newRow("2mins") << 120.0;
    QTest::newRow("2min") << 120.0;
    QTest::newRow("+1e1m") << 600.0;
    QTest::newRow(".5h") << 1800.0;
    QTest::newRow("5.m") << 300.0;
    QTest::newRow("6e-1m") << 36.0;
    QTest::newRow("999h") << 3'596'400.0;
}

void RecordingDurationTest::parses()
{
    QFETCH(const double, seconds);
    const auto parsed = parseRecordingDuration(QString::fromUtf8(QTest::currentDataTag()));
    QVERIFY(parsed);
    QCOMPARE(*parsed, seconds);
}

void RecordingDurationTest::refuses_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text :
         {"",       "m",     "h",     "30",    "45s",    "abc",   "0.01m", "-5m",
          "0h",     "1000h", "1e9m",  "1h30m", "1.2.3h", "0x10m", "infh",  "nanm",
          "1e999h", "\t5m",  "5 m x", "m5",    "1_0m",   "٣m"})
        QTest::newRow(text) << QString::fromUtf8(text);
}

void RecordingDurationTest::refuses()
{
    QFETCH(const QString, text);
    QVERIFY(!parseRecordingDuration(text));
}

void RecordingDurationTest::formats_data()
{
    QTest::addColumn<double>("seconds");
    QTest::newRow("00:59") << 59.9;
    QTest::newRow("01:00") << 60.0;
    QTest::newRow("59:59") << 3599.999;
    QTest::newRow("1:00:00") << 3600.0;
    QTest::newRow("999:00:00") << 3'596'400.0;
    QTest::newRow("00:00") << -3.0;
}

void RecordingDurationTest::formats()
{
    QFETCH(const double, seconds);
    QCOMPARE(formatDuration(seconds), QString::fromLatin1(QTest::currentDataTag()));
}

QTEST_APPLESS_MAIN(RecordingDurationTest)
#include "tst_recordingduration.moc"
