#include "finder/HLSDetector.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;
using Type = DetectedStream::StreamType;

class HLSDetectorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recognisesAddress_data();
    void recognisesAddress();
    void recognisesContentType_data();
    void recognisesContentType();
    void readsText_data();
    void readsText();
    void namesTypes();
};

void HLSDetectorTest::recognisesAddress_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("isHLS");
    QTest::newRow("upper case") << u"https://h/a.M3U8"_s << true;
    QTest::newRow("query") << u"https://h/a.m3u8?x=1"_s << true;
    QTest::newRow("fragment") << u"https://h/a.m3u8#x"_s << true;
    QTest::newRow("another extension") << u"https://h/a.m3u8.txt"_s << false;
    QTest::newRow("a folder") << u"https://h/a.m3u8/seg.ts"_s << false;
    QTest::newRow("a folder, then a file") << u"https://h/a.m3u8/b.m3u8"_s << true;
    QTest::newRow("end of the query") << u"https://h/a?f=b.m3u8"_s << true;
    QTest::newRow("middle of the query") << u"https://h/a?f=b.m3u8&x"_s << false;
    QTest::newRow("no dot") << u"https://h/am3u8"_s << false;
    QTest::newRow("empty") << QString() << false;
}

void HLSDetectorTest::recognisesAddress()
{
    QFETCH(const QString, address);
    const auto result = HLSDetector::inspect(QUrl(address), std::nullopt, std::nullopt);
    QTEST(result.isHLS, "isHLS");
    QCOMPARE(result.type, Type::Unknown);
}

void HLSDetectorTest::recognisesContentType_data()
{
    QTest::addColumn<QString>("contentType");
    QTest::addColumn<bool>("isHLS");
    QTest::newRow("mixed case, charset") << u"Application/X-mpegURL; charset=UTF-8"_s << true;
    QTest::newRow("apple") << u"application/vnd.apple.mpegurl"_s << true;
    QTest::newRow("audio") << u"audio/mpegurl"_s << true;
    QTest::newRow("audio x") << u"AUDIO/X-MPEGURL"_s << true;
    QTest::newRow("no x") << u"application/mpegurl"_s << false;
    QTest::newRow("transport stream") << u"video/mp2t"_s << false;
    QTest::newRow("empty") << QString() << false;
}

void HLSDetectorTest::recognisesContentType()
{
    QFETCH(const QString, contentType);
    const auto result = HLSDetector::inspect(QUrl(u"https://h/a"_s), contentType, std::nullopt);
    QTEST(result.isHLS, "isHLS");
}

void HLSDetectorTest::readsText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isHLS");
    QTest::addColumn<Type>("type");
    QTest::newRow("blank lines first")
        << u"\n\r\n \t#EXTM3U\n#EXTINF:4,\na.ts"_s << true << Type::Variant;
    QTest::newRow("master wins") << u"#EXTM3U\n#EXTINF:4,\na\n#EXT-X-STREAM-INF:BANDWIDTH=1\nb"_s
                                 << true << Type::Master;
    QTest::newRow("media alone") << u"#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO"_s << true << Type::Master;
    QTest::newRow("media sequence is not media")
        << u"#EXTM3U\n#EXT-X-MEDIA-SEQUENCE:1"_s << true << Type::Unknown;
    QTest::newRow("no segments yet")
        << u"#EXTM3U\n#EXT-X-TARGETDURATION:4"_s << true << Type::Variant;
    QTest::newRow("header alone") << u"#EXTM3U"_s << true << Type::Unknown;
    QTest::newRow("tags in lower case") << u"#EXTM3U\n#extinf:4,"_s << true << Type::Unknown;
    QTest::newRow("header in lower case") << u"#extm3u\n#EXTINF:4,"_s << false << Type::Unknown;
    QTest::newRow("no header") << u"#EXT-X-STREAM-INF:BANDWIDTH=1\nb"_s << false << Type::Unknown;
    QTest::newRow("empty") << u" \n"_s << false << Type::Unknown;
}

void HLSDetectorTest::readsText()
{
    QFETCH(const QString, text);
    const auto result = HLSDetector::inspect(QUrl(u"https://h/a"_s), std::nullopt, text);
    QTEST(result.isHLS, "isHLS");
    QTEST(result.type, "type");
}

void HLSDetectorTest::namesTypes()
{
    for (const Type type : {Type::Master, Type::Variant, Type::Unknown})
        QCOMPARE(DetectedStream::typeFromRawValue(DetectedStream::rawValue(type)), type);
    QCOMPARE(DetectedStream::rawValue(Type::Master), u"master"_s);
    QVERIFY(!DetectedStream::typeFromRawValue(u"Master"));
    QVERIFY(!DetectedStream::typeFromRawValue(u""));
}

QTEST_GUILESS_MAIN(HLSDetectorTest)
#include "tst_hlsdetector.moc"
