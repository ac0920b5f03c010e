#include "download/MediaPlaylist.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

const QUrl base(u"https://h/live/a/index.m3u8?token=1"_s);

QStringList addressesOf(const SegmentList &segments)
{
    QStringList addresses;
    SegmentList::Reader reader(segments);
    while (const auto url = reader.next())
        addresses.append(url->toString(QUrl::FullyEncoded));
    return addresses;
}

QByteArray media(const QByteArray &lines)
{
    return "#EXTM3U\n" + lines;
}

} // namespace

class MediaPlaylistTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsIntegerAttributes_data();
    void readsIntegerAttributes();
    void readsVariants_data();
    void readsVariants();
    void variantsCostNoMoreThanTheText();
    void resolvesSegments_data();
    void resolvesSegments();
    void refuses_data();
    void refuses();
    void endsWhenStopped();
    void readsTags_data();
    void readsTags();
    void keepsOrderAndRepetitions();
};

void MediaPlaylistTest::readsIntegerAttributes_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<qint64>("number"); // -1: none
    const auto row = [](const char *name, const QString &line, qint64 number) {
        QTest::newRow(name) << line << number;
    };
    row("plain", u"#EXT-X-STREAM-INF:BANDWIDTH=800000,CODECS=\"avc1\""_s, 800000);
    row("average first", u"#EXT-X-STREAM-INF:AVERAGE-BANDWIDTH=5,BANDWIDTH=9"_s, 5);
    row("average last", u"#EXT-X-STREAM-INF:BANDWIDTH=9,AVERAGE-BANDWIDTH=5"_s, 9);
    row("no digits", u"BANDWIDTH=x9"_s, -1);
    row("space", u"BANDWIDTH= 9"_s, -1);
    row("sign", u"BANDWIDTH=-9"_s, -1);
    row("nothing behind", u"BANDWIDTH="_s, -1);
    row("other case", u"bandwidth=9"_s, -1);
    row("fraction", u"BANDWIDTH=9.5"_s, 9);
    row("too large", u"BANDWIDTH=99999999999999999999"_s, -1);
    row("digits of another script", u"BANDWIDTH=1\u0662"_s, -1);
}

void MediaPlaylistTest::readsIntegerAttributes()
{
    QFETCH(const QString, line);
    QTEST(integerAttribute(u"BANDWIDTH", line).value_or(-1), "number");
}

void MediaPlaylistTest::readsVariants_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("variants");
    const auto row = [](const char *name, const QByteArray &text, const QStringList &variants) {
        QTest::newRow(name) << text << variants;
    };
    row("two", "#EXT-X-STREAM-INF:BANDWIDTH=1\nlow.m3u8\n#EXT-X-STREAM-INF:BANDWIDTH=2\n/hi.m3u8",
        {u"1 https://h/live/a/low.m3u8"_s, u"2 https://h/hi.m3u8"_s});
    row("no bandwidth", "#EXT-X-STREAM-INF:CODECS=\"x\"\r\na\r\n", {u"0 https://h/live/a/a"_s});
    row("address after comments", "#EXT-X-STREAM-INF:BANDWIDTH=1\n\n#c\n  \n\t a.m3u8 \n",
        {u"1 https://h/live/a/a.m3u8"_s});
    row("address that is none", "#EXT-X-STREAM-INF:BANDWIDTH=1\nhttp://[\nb",
        {u"1 https://h/live/a/b"_s});
    row("two tags, one address", "#EXT-X-STREAM-INF:BANDWIDTH=1\n#EXT-X-STREAM-INF:BANDWIDTH=2\na",
        {u"1 https://h/live/a/a"_s, u"2 https://h/live/a/a"_s});
    row("only comments", "#EXT-X-STREAM-INF:BANDWIDTH=1\n#a\n#b", {});
    row("indented tag", " #EXT-X-STREAM-INF:BANDWIDTH=1\na", {});
    row("lower-case tag", "#ext-x-stream-inf:BANDWIDTH=1\na", {});
    row("other host", "#EXT-X-STREAM-INF:BANDWIDTH=1\n//cdn/a", {u"1 https://cdn/a"_s});
}

void MediaPlaylistTest::readsVariants()
{
    QFETCH(const QByteArray, text);
    QStringList variants;
    for (const Variant &variant : parseVariants(text, base))
        variants.append(QString::number(variant.bandwidth) + u' ' + variant.url.toString());
    QTEST(variants, "variants");
}

void MediaPlaylistTest::variantsCostNoMoreThanTheText()
{
    // Looking for each tag's address anew would take hours here.
    QByteArray text;
    for (int i = 0; i < 1'000'000; ++i)
        text += "#EXT-X-STREAM-INF:\n";
    QVERIFY(parseVariants(text, base).isEmpty());
    text += "a";
    QCOMPARE(parseVariants(text, base).size(), 10'000);
}

void MediaPlaylistTest::resolvesSegments_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("addresses");
    const auto row = [](const char *name, const QByteArray &line, const QString &address) {
        QTest::newRow(name) << line << (address.isEmpty() ? QStringList() : QStringList{address});
    };
    row("file name", "s1.ts", u"https://h/live/a/s1.ts"_s);
    row("with a query", "s1.ts?a=b&c=%20", u"https://h/live/a/s1.ts?a=b&c=%20"_s);
    row("up", "../b/s1.ts", u"https://h/live/b/s1.ts"_s);
    row("far up", "../../../../s1.ts", u"https://h/s1.ts"_s);
    row("from the root", "/s1.ts", u"https://h/s1.ts"_s);
    row("other host", "//cdn/s1.ts", u"https://cdn/s1.ts"_s);
    row("absolute", "http://cdn:81/s1.ts", u"http://cdn:81/s1.ts"_s);
    row("another scheme", "file:///etc/passwd", u"file:///etc/passwd"_s);
    row("spaces around", " \t s1.ts \r", u"https://h/live/a/s1.ts"_s);
    row("wide spaces around", "\xE3\x80\x80 \xC2\xA0s1.ts\xE2\x80\x83",
        u"https://h/live/a/s1.ts"_s);
    row("space inside", "s 1.ts", u"https://h/live/a/s%201.ts"_s);
    row("beyond ASCII", "\xC3\xBC.ts", u"https://h/live/a/%C3%BC.ts"_s);
    row("no address", "http://[", {});
    row("port out of range", "http://h:99999/s", {});
    row("too long", QByteArray(70'000, 'a'), {});
    for (const QByteArray end :
         {"\r\n", "\r", "\v", "\f", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"})
        QTest::addRow("line end %s", end.toHex().constData())
            << QByteArray("a" + end + "b")
            << QStringList{u"https://h/live/a/a"_s, u"https://h/live/a/b"_s};
}

void MediaPlaylistTest::resolvesSegments()
{
    QFETCH(const QByteArray, line);
    QFETCH(const QStringList, addresses);
    const auto playlist = parseMediaPlaylist(media(line), base);
    if (addresses.isEmpty())
        QCOMPARE(playlist.error(), DownloadFailure(DownloadError::noSegments));
    else
        QCOMPARE(addressesOf(playlist->segments), addresses);
}

void MediaPlaylistTest::refuses_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("sentence"); // empty: taken
    const QString encrypted = u"Encrypted or DRM-protected HLS streams cannot be downloaded."_s;
    const QString invalid = u"This URL is not a valid M3U8 playlist."_s;
    const auto row = [](const char *name, const QByteArray &text, const QString &sentence) {
        QTest::newRow(name) << text << sentence;
    };
    row("no mark", "a.ts\n#EXT-X-ENDLIST", invalid);
    row("empty", {}, invalid);
    row("mark anywhere", "a.ts\n# #EXTM3U", {});
    row("a page", "<!DOCTYPE html><html></html>", invalid);
    row("no segments", media("#EXT-X-TARGETDURATION:4\n"),
        u"No downloadable video segments were found."_s);
    row("encrypted", media("#EXT-X-KEY:METHOD=AES-128,URI=\"k\"\na"), encrypted);
    row("sample encryption", media("#EXT-X-KEY:METHOD=SAMPLE-AES,URI=\"skd://k\"\na"), encrypted);
    row("later key", media("#EXT-X-KEY:METHOD=NONE\na\n#EXT-X-KEY:METHOD=AES-128\nb"), encrypted);
    row("no encryption", media("#EXT-X-KEY:METHOD=NONE\na"), {});
    row("no encryption, lower case", media("#EXT-X-KEY:method=none\na"), {});
    row("encryption before anything else", media("#EXT-X-KEY:METHOD=X\n#EXT-X-BYTERANGE:1@0"),
        encrypted);
    row("byte ranges", media("#EXT-X-BYTERANGE:1@0\na"),
        u"This byte-range HLS format is not supported yet."_s);
    const auto many = [](qsizetype count) { return QByteArray("a\n").repeated(count); };
    row("as many segments as there may be", media(many(maximumSegments)), {});
    row("one more", media(many(maximumSegments + 1)), u"The server's answer is too large."_s);
}

void MediaPlaylistTest::endsWhenStopped()
{
    const std::stop_source stop;
    stop.request_stop();
    const auto playlist = parseMediaPlaylist(media("a"), base, stop.get_token());
    QCOMPARE(description(playlist.error()), HttpError{HttpError::Kind::Cancelled}.description());
    const QByteArray master = "#EXT-X-STREAM-INF:BANDWIDTH=1\na\n";
    QCOMPARE(parseVariants(master, base).size(), 1);
    QVERIFY(parseVariants(master, base, stop.get_token()).isEmpty());
}

void MediaPlaylistTest::refuses()
{
    QFETCH(const QByteArray, text);
    const auto playlist = parseMediaPlaylist(text, base);
    QTEST(playlist ? QString() : description(playlist.error()), "sentence");
}

void MediaPlaylistTest::readsTags_data()
{
    QTest::addColumn<QByteArray>("tags");
    QTest::addColumn<double>("duration");
    QTest::addColumn<QString>("map");
    QTest::addColumn<bool>("live");
    const auto duration = [](const char *name, const QByteArray &tag, double seconds) {
        QTest::newRow(name) << tag << seconds << QString() << true;
    };
    duration("none", "", 4);
    duration("ten", "#EXT-X-TARGETDURATION:10", 10);
    duration("indented", "  #EXT-X-TARGETDURATION:10 ", 10);
    duration("fraction", "#EXT-X-TARGETDURATION:2.5", 2.5);
    duration("no number", "#EXT-X-TARGETDURATION:abc", 4);
    duration("number and more", "#EXT-X-TARGETDURATION:10,5", 4);
    duration("not a number", "#EXT-X-TARGETDURATION:nan", 4);
    duration("infinite", "#EXT-X-TARGETDURATION:inf", 4);
    duration("negative", "#EXT-X-TARGETDURATION:-3", -3);
    duration("unreadable after readable", "#EXT-X-TARGETDURATION:7\n#EXT-X-TARGETDURATION:x", 7);

    const auto map = [](const char *name, const QByteArray &tag, const QString &address) {
        QTest::newRow(name) << tag << 4.0 << address << true;
    };
    map("map", "#EXT-X-MAP:URI=\"init.mp4\"", u"https://h/live/a/init.mp4"_s);
    map("map with more", "#EXT-X-MAP:FOO=1,URI=\"/i.mp4?a\",X=\"y\"", u"https://h/i.mp4?a"_s);
    map("open map", "#EXT-X-MAP:URI=\"init.mp4", {});
    map("unquoted map", "#EXT-X-MAP:URI=init.mp4", {});
    map("lower-case map", "#EXT-X-MAP:uri=\"init.mp4\"", {});
    map("map that is no address", "#EXT-X-MAP:URI=\"http://[\"", {});
    map("later map", "#EXT-X-MAP:URI=\"a\"\n#EXT-X-MAP:URI=\"b\"", u"https://h/live/a/b"_s);
    map("open map after a map", "#EXT-X-MAP:URI=\"a\"\n#EXT-X-MAP:URI=\"b",
        u"https://h/live/a/a"_s);

    QTest::newRow("finished") << QByteArray("#EXT-X-ENDLIST") << 4.0 << QString() << false;
}

void MediaPlaylistTest::readsTags()
{
    QFETCH(const QByteArray, tags);
    const auto playlist = parseMediaPlaylist(media(tags + "\ns.ts"), base);
    QVERIFY(playlist);
    QTEST(playlist->targetDuration, "duration");
    QTEST(playlist->mapURL.toString(), "map");
    QTEST(playlist->isLive, "live");
    QCOMPARE(playlist->url, base);
}

void MediaPlaylistTest::keepsOrderAndRepetitions()
{
    const auto playlist =
        parseMediaPlaylist(media("#EXTINF:4,\nb\n\n#EXTINF:4,\na\n#c\nhttp://[\nb\n"), base);
    QCOMPARE(playlist->segments.size(), 3);
    QCOMPARE(
        addressesOf(playlist->segments),
        (QStringList{u"https://h/live/a/b"_s, u"https://h/live/a/a"_s, u"https://h/live/a/b"_s}));
}

QTEST_GUILESS_MAIN(MediaPlaylistTest)
#include "tst_mediaplaylist.moc"
