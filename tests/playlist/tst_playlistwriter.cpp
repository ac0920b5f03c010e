#include "playlist/PlaylistParser.h"
#include "playlist/PlaylistWriter.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

PlaylistEntry entry(const QString &name, const QString &address)
{
    return {.id = QUuid::createUuid(),
            .name = name,
            .url = QUrl(address),
            .logoURL = {},
            .groupTitle = {},
            .countryCode = {}};
}

PlaylistEntry fullEntry(const QString &name, const QString &group)
{
    PlaylistEntry full = entry(name, u"http://h/a,b.m3u8?x=1&y=2"_s);
    full.logoURL = QUrl(u"http://l/a,b.png"_s);
    full.groupTitle = group;
    full.countryCode = u"TR"_s;
    return full;
}

QByteArray written(const QList<PlaylistEntry> &entries)
{
    return writePlaylist(PlaylistEntries::fromList(entries));
}

/// As imported from a file in another folder.
QList<PlaylistEntry> readBack(const QByteArray &text)
{
    return PlaylistParser::parse(text, QUrl(u"file:///elsewhere/list.m3u"_s)).toList();
}

/// Names as people give them, and what the export makes of them.
const QList<std::pair<QString, QString>> &names()
{
    static const QList<std::pair<QString, QString>> names{
        {u"News"_s, u"News"_s},
        {u"A \"B\""_s, u"A 'B'"_s},
        {u"\""_s, u"'"_s},
        {u"Movie, The"_s, u"Movie, The"_s},
        {u",,"_s, u",,"_s},
        {u"a\", b=\"c\","_s, u"a', b='c',"_s},
        {u"One\nTwo\r\nThree"_s, u"One Two  Three"_s},
        {u"a\u2028b\u0085c\u000bd"_s, u"a b c d"_s},
        {u"القناة الأولى, مباشر"_s, u"القناة الأولى, مباشر"_s},
        {u"\u202Bשלום\u202C"_s, u"\u202Bשלום\u202C"_s},
        {u"👩‍👩‍👧‍👦 🇹🇷 TV"_s, u"👩‍👩‍👧‍👦 🇹🇷 TV"_s},
        {u"#EXTM3U"_s, u"#EXTM3U"_s},
        {u"tvg-logo='x' group-title=y"_s, u"tvg-logo='x' group-title=y"_s},
        {u"100% \\n &amp;"_s, u"100% \\n &amp;"_s},
    };
    return names;
}

} // namespace

class PlaylistWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writes_data();
    void writes();
    void valuesComeBack_data();
    void valuesComeBack();
    void addressesComeBack_data();
    void addressesComeBack();
    void othersReadIt();
};

void PlaylistWriterTest::writes_data()
{
    QTest::addColumn<QList<PlaylistEntry>>("entries");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("nothing") << QList<PlaylistEntry>() << "#EXTM3U\n"_ba;
    QTest::newRow("name and address")
        << QList{entry(u"A \"B\""_s, u"http://h/a b"_s)}
        << "#EXTM3U\n#EXTINF:-1 tvg-name=\"A 'B'\",A 'B'\nhttp://h/a%20b\n"_ba;
    QTest::newRow("everything, in order")
        << QList{fullEntry(u"B"_s, u"G \"1\"\n"_s), entry(u"A"_s, u"file:///home/me/a.mp4"_s)}
        << "#EXTM3U\n"
           "#EXTINF:-1 tvg-name=\"B\" tvg-logo=\"http://l/a%2Cb.png\" tvg-country=\"TR\" "
           "group-title=\"G '1' \",B\n"
           "http://h/a,b.m3u8?x=1&y=2\n"
           "#EXTINF:-1 tvg-name=\"A\",A\n"
           "/home/me/a.mp4\n"_ba;
}

void PlaylistWriterTest::writes()
{
    QFETCH(const QList<PlaylistEntry>, entries);
    QTEST(written(entries), "text");
}

void PlaylistWriterTest::valuesComeBack_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("cleaned");
    // A title begins after the first comma of its line wherever that stands, so a name with one
    // comes back from other readers only.
    for (const auto &[name, cleaned] : names()) {
        if (!name.contains(u','))
            QTest::newRow(qPrintable(cleaned)) << name << cleaned;
    }
}

void PlaylistWriterTest::valuesComeBack()
{
    QFETCH(const QString, name);
    QFETCH(const QString, cleaned);
    const QList<PlaylistEntry> entries{fullEntry(name, name), entry(name, u"http://h/2"_s)};
    const QByteArray text = written(entries);
    const QList<PlaylistEntry> back = readBack(text);
    QCOMPARE(back.size(), 2);
    QCOMPARE(back[0].name, cleaned);
    QCOMPARE(back[0].groupTitle, cleaned);
    QCOMPARE(back[0].url, entries[0].url);
    QCOMPARE(back[0].logoURL, QUrl(u"http://l/a%2Cb.png"_s));
    QCOMPARE(back[0].countryCode, entries[0].countryCode);
    QCOMPARE(back[1].name, cleaned);
    QVERIFY(!back[1].groupTitle && !back[1].logoURL && !back[1].countryCode);
    QCOMPARE(written(back), text);
}

void PlaylistWriterTest::addressesComeBack_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::addColumn<QByteArray>("line");
    const auto file = [](const QString &path, const QByteArray &line) {
        QTest::newRow(qPrintable(path)) << QUrl::fromLocalFile(path) << line;
    };
    file(u"/home/me/a.mp4"_s, "/home/me/a.mp4");
    file(u"/home/me/ü.mp4"_s, "/home/me/ü.mp4");
    file(u"/home/me/a b.mp4"_s, "file:///home/me/a%20b.mp4");
    file(u"/home/me/100%25#1?.mp4"_s, "file:///home/me/100%2525%231%3F.mp4");
    file(u"/home/me/a\nb.mp4"_s, "file:///home/me/a%0Ab.mp4");
    file(u"/home/me/a.mp4\u3000"_s, "file:///home/me/a.mp4%E3%80%80");
    const auto web = [](const QString &address, const QByteArray &line) {
        QTest::newRow(qPrintable(address)) << QUrl(address) << line;
    };
    web(u"https://u:p@höst:8080/ü%2F/a.m3u8?x=%26#f"_s,
        "https://u:p@xn--hst-sna:8080/%C3%BC%2F/a.m3u8?x=%26#f");
    web(u"http://[::1]/\u2028"_s, "http://[::1]/%E2%80%A8");
}

void PlaylistWriterTest::addressesComeBack()
{
    QFETCH(const QUrl, url);
    PlaylistEntry entry = fullEntry(u"N"_s, u"G"_s);
    entry.url = url;
    entry.logoURL = url;
    const QByteArray text = written({entry});
    QTEST(text.split('\n').value(2), "line");
    const QList<PlaylistEntry> back = readBack(text);
    QCOMPARE(back.size(), 1);
    QCOMPARE(back[0].url.toEncoded(), url.toEncoded());
    QCOMPARE(back[0].logoURL, url);
}

/// Reads the playlist with the npm package iptv-playlist-parser, when there is a copy of it.
void PlaylistWriterTest::othersReadIt()
{
    const QDir peer(qEnvironmentVariable("LUMARO_PLAYLIST_PEER"));
    if (!peer.exists(u"node_modules/iptv-playlist-parser"_s))
        QSKIP("iptv-playlist-parser is not there; ./test installs it.");
    QList<PlaylistEntry> entries;
    for (const auto &[name, cleaned] : names())
        entries.append(fullEntry(name, name));
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"list.m3u"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(written(entries));
    file.close();

    QProcess node;
    node.start(u"node"_s,
               {u"-e"_s,
                u"const {createRequire} = require('node:module');"
                "const [folder, file] = process.argv.slice(1);"
                "const parser = createRequire(folder + '/')('iptv-playlist-parser');"
                "const text = require('node:fs').readFileSync(file, 'utf8');"
                "console.log(JSON.stringify(parser.parse(text).items))"_s,
                peer.absolutePath(), file.fileName()});
    QVERIFY(node.waitForFinished());
    const QJsonArray items = QJsonDocument::fromJson(node.readAllStandardOutput()).array();
    QCOMPARE(items.size(), entries.size());
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QJsonObject item = items[i].toObject();
        const QJsonObject tvg = item[u"tvg"_s].toObject();
        QCOMPARE(item[u"name"_s].toString(), names()[i].second);
        QCOMPARE(tvg[u"name"_s].toString(), names()[i].second);
        QCOMPARE(tvg[u"logo"_s].toString(), u"http://l/a%2Cb.png"_s);
        QCOMPARE(item[u"group"_s].toObject()[u"title"_s].toString(), names()[i].second);
        QCOMPARE(item[u"url"_s].toString(), u"http://h/a,b.m3u8?x=1&y=2"_s);
    }
}

QTEST_GUILESS_MAIN(PlaylistWriterTest)
#include "tst_playlistwriter.moc"
