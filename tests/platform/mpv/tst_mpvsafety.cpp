#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/NginxServer.h"
#include "tests/platform/mpv/MpvWorld.h"

#include <QFile>
#include <QTemporaryDir>

#include <sys/inotify.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

/// Notices when anybody opens a file in a folder.
class OpenWatch
{
public:
    explicit OpenWatch(const QString &folder)
        : m_inotify(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        inotify_add_watch(m_inotify, qPrintable(folder), IN_OPEN);
    }
    ~OpenWatch() { close(m_inotify); }
    OpenWatch(const OpenWatch &) = delete;
    OpenWatch &operator=(const OpenWatch &) = delete;

    /// Since it was asked last.
    bool sawOpening() const
    {
        char events[4096];
        return read(m_inotify, events, sizeof events) > 0;
    }

private:
    int m_inotify;
};

QByteArray hls(const QByteArray &segment, const QByteArray &tags = {})
{
    return "#EXTM3U\n#EXT-X-VERSION:7\n#EXT-X-TARGETDURATION:10\n#EXT-X-MEDIA-SEQUENCE:0\n" + tags
        + "#EXTINF:10.0,\n" + segment + "\n#EXT-X-ENDLIST\n";
}

} // namespace

/// What a server sends must not make the player read local files, however it names them.
class MpvSafetyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_world = std::make_unique<MpvWorld>(); }
    void cleanup() { m_world.reset(); }

    void servedContentOpensNoLocalFile_data();
    void servedContentOpensNoLocalFile();
    void ownPlaylistOpensItsFiles_data();
    void ownPlaylistOpensItsFiles();

private:
    QString local(const QString &name) const { return m_folder.filePath(name); }

    MediaFixtures m_media{QStringLiteral(LUMARO_FIXTURE_FOLDER)};
    std::unique_ptr<NginxServer> m_nginx;
    QTemporaryDir m_folder;
    std::unique_ptr<MpvWorld> m_world;
};

void MpvSafetyTest::initTestCase()
{
    m_nginx = valueOrFail(NginxServer::start());
    QVERIFY(m_nginx);
    const QString segment =
        QFileInfo(valueOrFail(m_media.path(Fixture::Hls))).path() + u"/low/segment000.ts";
    QVERIFY(QFile::copy(segment, local(u"film.ts"_s)));
    QVERIFY(m_nginx->publish(segment, u"good.ts"_s));
    QVERIFY(QFile::copy(valueOrFail(m_media.path(Fixture::Matroska)), local(u"film.mkv"_s)));
    QFile inner(local(u"inner.m3u8"_s));
    QVERIFY(inner.open(QIODevice::WriteOnly) && inner.write(hls("film.ts")) > 0);
}

void MpvSafetyTest::servedContentOpensNoLocalFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    const QByteArray ts = local(u"film.ts"_s).toUtf8();
    const QByteArray mkv = local(u"film.mkv"_s).toUtf8();
    const QByteArray inner = local(u"inner.m3u8"_s).toUtf8();
    const auto row = [](const QByteArray &what, const QString &name, const QByteArray &content) {
        QTest::newRow(what.constData()) << name << content;
    };
    const QByteArray key = "#EXT-X-KEY:METHOD=AES-128,URI=\"%1\",IV=0x0\n";
    for (const char *prefix :
         {"", "file:", "file://", "crypto:", "crypto+file://", "async:file:", "cache:file:",
          "concat:", "subfile,,start,0,end,0,,:", "edl://", "av://mpegts:", "lavf://file:"}) {
        row("HLS segment " + QByteArray(prefix), u"list.m3u8"_s, hls(prefix + ts));
        row("M3U entry " + QByteArray(prefix), u"list.m3u"_s, "#EXTM3U\n" + (prefix + ts) + '\n');
    }
    row("second HLS segment", u"list.m3u8"_s, hls("good.ts\n#EXTINF:10.0,\nfile://" + ts, {}));
    row("encrypted HLS segment", u"list.m3u8"_s,
        hls("file://" + ts, QByteArray(key).replace("%1", "good.ts")));
    row("HLS key", u"list.m3u8"_s,
        hls("good.ts", QByteArray(key).replace("%1", QByteArray("file://" + ts))));
    row("HLS map", u"list.m3u8"_s, hls("good.ts", "#EXT-X-MAP:URI=\"file://" + ts + "\"\n"));
    row("HLS variant", u"list.m3u8"_s,
        "#EXTM3U\n#EXT-X-STREAM-INF:BANDWIDTH=100\nfile://" + inner + '\n');
    row("HLS sound track", u"list.m3u8"_s,
        "#EXTM3U\n#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"a\",NAME=\"a\",DEFAULT=YES,AUTOSELECT=YES,"
        "URI=\"file://"
            + inner + "\"\n#EXT-X-STREAM-INF:BANDWIDTH=100,AUDIO=\"a\"\nfile://" + inner + '\n');
    row("PLS", u"list.pls"_s, "[playlist]\nNumberOfEntries=1\nFile1=file://" + mkv + '\n');
    row("nested playlist", u"outer.m3u"_s, "#EXTM3U\nlist.pls\n");
    row("ASX", u"list.asx"_s, "[Reference]\nRef1=file://" + mkv + '\n');
    row("EDL", u"film.mp4"_s, "# mpv EDL v0\n" + mkv + '\n');
    row("EDL by address", u"film.mp4"_s, "# mpv EDL v0\nfile://" + mkv + '\n');
    row("cue sheet", u"film.cue"_s,
        "FILE \"" + mkv + "\" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n");
    row("ffconcat", u"film.mp4"_s, "ffconcat version 1.0\nfile '" + mkv + "'\n");
    row("ffconcat by address", u"film.mp4"_s, "ffconcat version 1.0\nfile 'file:" + mkv + "'\n");
    row("DASH", u"film.mpd"_s,
        "<?xml version=\"1.0\"?><MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" type=\"static\" "
        "mediaPresentationDuration=\"PT10S\" profiles=\"urn:mpeg:dash:profile:isoff-main:2011\">"
        "<Period><AdaptationSet mimeType=\"video/webm\"><Representation id=\"1\" bandwidth=\"1\" "
        "codecs=\"vp8\"><BaseURL>file://"
            + mkv + "</BaseURL></Representation></AdaptationSet></Period></MPD>");
}

void MpvSafetyTest::servedContentOpensNoLocalFile()
{
    QFETCH(const QString, name);
    QFETCH(const QByteArray, content);
    QVERIFY(m_nginx->writeFile(name, content));
    const OpenWatch watch(m_folder.path());
    m_world->open(m_nginx->url(u'/' + name));
    // Either nothing can be played, or the part that is served; then all of it.
    QVERIFY(becomesTrue([&] {
        return !m_world->failures.isEmpty()
            || (m_world->started > 0 && m_world->player->rate() == 0);
    }));
    QVERIFY(!watch.sawOpening());
}

void MpvSafetyTest::ownPlaylistOpensItsFiles_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    const QByteArray mkv = local(u"film.mkv"_s).toUtf8();
    QTest::newRow("HLS") << u"own.m3u8"_s << hls("file://" + local(u"film.ts"_s).toUtf8());
    QTest::newRow("M3U") << u"own.m3u"_s << "#EXTM3U\nfile://" + mkv + '\n';
    QTest::newRow("PLS") << u"own.pls"_s << "[playlist]\nNumberOfEntries=1\nFile1=" + mkv + '\n';
}

void MpvSafetyTest::ownPlaylistOpensItsFiles()
{
    QFETCH(const QString, name);
    QFETCH(const QByteArray, content);
    const QTemporaryDir elsewhere;
    QFile playlist(elsewhere.filePath(name));
    QVERIFY(playlist.open(QIODevice::WriteOnly) && playlist.write(content) == content.size());
    playlist.close();
    const OpenWatch watch(m_folder.path());
    m_world->open(QUrl::fromLocalFile(playlist.fileName()));
    QVERIFY(m_world->playsTo(0.2));
    QVERIFY(watch.sawOpening());
}

LUMARO_MPV_TEST_MAIN(MpvSafetyTest)
#include "tst_mpvsafety.moc"
