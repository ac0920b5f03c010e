#include "player/MediaSources.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

class MediaSourcesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void normalizesTypedAddress_data();
    void normalizesTypedAddress();
    void acceptsOnlyHttpAddresses_data();
    void acceptsOnlyHttpAddresses();
    void recognisesPlaylists_data();
    void recognisesPlaylists();
    void recognisesYouTube_data();
    void recognisesYouTube();
    void recognisesOKVideo_data();
    void recognisesOKVideo();
    void buildsEmbedAddress();
    void readsLastPathComponent_data();
    void readsLastPathComponent();
    void desktopsAreToldTheSameTypes_data();
    void desktopsAreToldTheSameTypes();
};

void MediaSourcesTest::normalizesTypedAddress_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("address");
    QTest::newRow("angle brackets in blanks")
        << u"  <https://host/live.m3u8>\n"_s << u"https://host/live.m3u8"_s;
    QTest::newRow("empty angle brackets stay") << u"<>"_s << u"<>"_s;
    QTest::newRow("one character in brackets") << u"<a>"_s << u"a"_s;
    QTest::newRow("Markdown link") << u"[News](https://a/b.m3u8)"_s << u"https://a/b.m3u8"_s;
    QTest::newRow("Markdown link around brackets")
        << u"[News]( <https://a/b> )"_s << u" <https://a/b> "_s.trimmed();
    QTest::newRow("unclosed Markdown link stays") << u"[a](b"_s << u"[a](b"_s;
    QTest::newRow("first opening counts") << u"[a](b](c)"_s << u"b](c"_s;
    QTest::newRow("empty Markdown link") << u"[a]()"_s << QString();
    QTest::newRow("no scheme is added") << u"host/x"_s << u"host/x"_s;
}

void MediaSourcesTest::normalizesTypedAddress()
{
    QFETCH(const QString, text);
    QTEST(normalizedRemoteAddress(text), "address");
}

void MediaSourcesTest::acceptsOnlyHttpAddresses_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("upper-case scheme") << u"HTTPS://host/x"_s << true;
    QTest::newRow("space in the path") << u"http://host/a b.mp4"_s << true;
    QTest::newRow("non-ASCII") << u"http://h\u00f6st/\u00fc.mp4"_s << true;
    QTest::newRow("stray percent sign") << u"http://host/100%"_s << true;
    QTest::newRow("ftp") << u"ftp://host/x"_s << false;
    QTest::newRow("file") << u"file:///etc/passwd"_s << false;
    QTest::newRow("no scheme") << u"host/x.m3u8"_s << false;
    QTest::newRow("no host") << u"http:///x"_s << false;
    QTest::newRow("scheme only") << u"https://"_s << false;
    QTest::newRow("space in the host") << u"http://a b/c"_s << false;
    QTest::newRow("impossible port") << u"http://host:99999/"_s << false;
    QTest::newRow("empty") << QString() << false;
}

void MediaSourcesTest::acceptsOnlyHttpAddresses()
{
    QFETCH(const QString, address);
    QTEST(remoteUrl(address).has_value(), "accepted");
}

void MediaSourcesTest::recognisesPlaylists_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("isPlaylist");
    QTest::newRow("panel address")
        << u"https://host/get.php?username=u&password=p&type=m3u_plus&output=ts"_s << true;
    QTest::newRow("upper-case extension") << u"https://host/list.M3U"_s << true;
    QTest::newRow("extension before a slash") << u"https://host/list.m3u/"_s << true;
    QTest::newRow("query wins over m3u8") << u"https://host/a.m3u8?type=m3u8"_s << true;
    QTest::newRow("containment") << u"https://host/x?xtype=M3Uplus"_s << true;
    QTest::newRow("output") << u"https://host/x?OUTPUT=m3u8"_s << true;
    QTest::newRow("encoded query") << u"https://host/x?form%61t=m3u"_s << true;
    QTest::newRow("HLS") << u"https://host/live.m3u8"_s << false;
    QTest::newRow("film") << u"https://host/movie.mp4"_s << false;
    QTest::newRow("in the path only") << u"https://host/type=m3u"_s << false;
    QTest::newRow("hidden file has no extension") << u"https://host/.m3u"_s << false;
}

void MediaSourcesTest::recognisesPlaylists()
{
    QFETCH(const QString, address);
    QTEST(isIPTVPlaylistURL(QUrl(address)), "isPlaylist");
}

void MediaSourcesTest::recognisesYouTube_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("id"); // empty: not recognised
    QTest::newRow("watch with list")
        << u"https://www.youtube.com/watch?v=abc&list=PL1"_s << u"abc|PL1"_s;
    QTest::newRow("watch") << u"https://YouTube.com/watch?v=abc"_s << u"abc|"_s;
    QTest::newRow("first v counts") << u"https://youtube.com/watch?v=&v=abc"_s << QString();
    QTest::newRow("V is not v") << u"https://youtube.com/watch?V=abc"_s << QString();
    QTest::newRow("playlist") << u"https://youtube.com/playlist?list=PL1"_s << u"|PL1"_s;
    QTest::newRow("channel") << u"https://youtube.com/channel/x"_s << QString();
    QTest::newRow("channel with list") << u"https://youtube.com/channel/x?list=P"_s << u"|P"_s;
    QTest::newRow("shorts") << u"https://m.youtube.com/shorts/s1?x=1"_s << u"s1|"_s;
    QTest::newRow("shorts without video") << u"https://youtube.com/shorts/"_s << QString();
    QTest::newRow("Shorts is not shorts") << u"https://youtube.com/Shorts/s1"_s << QString();
    QTest::newRow("embed on the nocookie domain")
        << u"https://www.youtube-nocookie.com/embed/e1"_s << u"e1|"_s;
    QTest::newRow("live") << u"https://youtube.com/c/live/l1"_s << u"l1|"_s;
    QTest::newRow("short link") << u"https://youtu.be/abc?list=PL2"_s << u"abc|PL2"_s;
    QTest::newRow("empty short link") << u"https://youtu.be/"_s << QString();
    QTest::newRow("subdomain of the short link host") << u"https://x.youtu.be/abc"_s << QString();
    QTest::newRow("look-alike host") << u"https://notyoutube.com/watch?v=abc"_s << QString();
    QTest::newRow("blank video") << u"https://youtube.com/watch?v=%20"_s << QString();
}

void MediaSourcesTest::recognisesYouTube()
{
    QFETCH(const QString, address);
    const auto content = YouTubeContent::fromUrl(QUrl(address));
    QTEST(content ? content->id() : QString(), "id");
}

void MediaSourcesTest::recognisesOKVideo_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("id"); // empty: not recognised
    QTest::newRow("video") << u"https://ok.ru/video/12345"_s << u"12345"_s;
    QTest::newRow("live on a subdomain") << u"https://m.OK.ru/live/12345"_s << u"12345"_s;
    QTest::newRow("embed") << u"https://ok.ru/videoembed/a-b_C?x=1"_s << u"a-b_C"_s;
    QTest::newRow("space") << u"https://ok.ru/video/12 345"_s << QString();
    QTest::newRow("dot") << u"https://ok.ru/video/abc.html"_s << QString();
    QTest::newRow("slash in disguise") << u"https://ok.ru/video/a%2Fb"_s << QString();
    QTest::newRow("nothing after") << u"https://ok.ru/video"_s << QString();
    QTest::newRow("look-alike host") << u"https://book.ru/video/1"_s << QString();
}

void MediaSourcesTest::recognisesOKVideo()
{
    QFETCH(const QString, address);
    const auto content = OKVideoContent::fromUrl(QUrl(address));
    QTEST(content ? content->id() : QString(), "id");
}

void MediaSourcesTest::buildsEmbedAddress()
{
    QCOMPARE(OKVideoContent{u"a1"_s}.embedURL(),
             QUrl(u"https://ok.ru/videoembed/a1?autoplay=1&nochat=1"_s));
}

void MediaSourcesTest::readsLastPathComponent_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("name");
    QTest::newRow("decoded") << u"http://h/a/news%20hd.mp4?q=1"_s << u"news hd.mp4"_s;
    QTest::newRow("trailing slash") << u"http://h/a/b/"_s << u"b"_s;
    QTest::newRow("none") << u"http://h"_s << QString();
    QTest::newRow("not UTF-8") << u"http://h/a%FF.mp4"_s << QString();
}

void MediaSourcesTest::readsLastPathComponent()
{
    QFETCH(const QString, address);
    QTEST(lastPathComponent(QUrl(address)), "name");
}

void MediaSourcesTest::desktopsAreToldTheSameTypes_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("type"); // captures one
    QTest::newRow("launcher") << u"lumaro.desktop"_s << u"(?:^MimeType=|\\G(?!^))([^;\\n]+);"_s;
    QTest::newRow("software centre")
        << u"app.lumaro.Lumaro.metainfo.xml.in"_s << u"<mediatype>(.*)</mediatype>"_s;
}

void MediaSourcesTest::desktopsAreToldTheSameTypes()
{
    QFETCH(const QString, file);
    QFETCH(const QString, type);
    QFile told(QStringLiteral(LUMARO_PACKAGING "/") + file);
    QVERIFY(told.open(QIODevice::ReadOnly));
    const QRegularExpression pattern(type, QRegularExpression::MultilineOption);
    QStringList types;
    for (const auto &match : pattern.globalMatch(QString::fromUtf8(told.readAll())))
        types.append(match.captured(1));
    QCOMPARE(types, supportedMimeTypes());
}

QTEST_GUILESS_MAIN(MediaSourcesTest)
#include "tst_mediasources.moc"
