#include "tests/e2e/download/DownloadWorld.h"
#include "tests/e2e/servers/FaultServer.h"
#include "tests/e2e/servers/LiveFeed.h"
#include "tests/e2e/servers/MediaFixtures.h"
#include "tests/e2e/servers/ValueOrFail.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTest>
#include <QUdpSocket>

#include <csignal>

using namespace std::chrono_literals;
using namespace Qt::Literals::StringLiterals;
using namespace lumaro;

namespace {

constexpr int patience = 60'000;

/// The program without a display, and what it said so far.
class Program
{
public:
    explicit Program(const QStringList &arguments, const QProcessEnvironment &more = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString &variable : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s})
            environment.remove(variable);
        environment.insert(u"XDG_CONFIG_HOME"_s, m_home.path());
        environment.insert(u"HOME"_s, m_home.path());
        environment.insert(more);
        m_process.setProcessEnvironment(environment);
        m_process.start(arguments.first(), arguments.sliced(1));
    }

    bool ends() { return endsWithin(patience); }
    bool endsWithin(int milliseconds)
    {
        return QTest::qWaitFor([this] { return isOver(); }, milliseconds);
    }
    int exitCode() const { return m_process.exitCode(); }
    void send(int signalNumber) { kill(pid_t(m_process.processId()), signalNumber); }
    QString said()
    {
        m_said += QString::fromLocal8Bit(m_process.readAllStandardError());
        return m_said;
    }
    QString printed() { return QString::fromLocal8Bit(m_process.readAllStandardOutput()); }

private:
    bool isOver() const
    {
        return m_process.state() == QProcess::NotRunning
            && m_process.exitStatus() == QProcess::NormalExit;
    }

    QTemporaryDir m_home;
    QProcess m_process;
    QString m_said;
};

} // namespace

class DownloadTerminalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void savesAndPrintsThePath();
    void showsOneLineOnATerminal();
    void saysWhyItFails_data();
    void saysWhyItFails();
    void refusesContradictions_data();
    void refusesContradictions();
    void keepsTheFileWhenInterrupted();
    void cutShortIsNotSuccess();
    void endsWhileANameIsLookedUp();
    void endsWhenTheFolderHangs();
    void goesOnWithoutItsTerminal();

private:
    QStringList command(const QUrl &url) const
    {
        return {QStringLiteral(LUMARO_PROGRAM), u"--download"_s, url.toString(), u"--to"_s,
                m_folder.path()};
    }

    QTemporaryDir m_folder;
    std::unique_ptr<NginxServer> m_nginx;
    QUrl m_film;
};

void DownloadTerminalTest::initTestCase()
{
    m_nginx = valueOrFail(NginxServer::start());
    const QString master =
        valueOrFail(MediaFixtures(QStringLiteral(LUMARO_FIXTURE_FOLDER)).path(Fixture::Hls));
    QVERIFY(m_nginx->publish(QFileInfo(master).absolutePath(), u"ts"_s));
    m_film = m_nginx->url(u"/ts/master.m3u8"_s);
}

void DownloadTerminalTest::savesAndPrintsThePath()
{
    Program program(command(m_film) + QStringList{u"--name"_s, u"../My film"_s});
    QVERIFY(program.ends());
    QCOMPARE(program.exitCode(), 0);
    const QString path = m_folder.filePath(u"..-My film.ts"_s);
    QCOMPARE(program.printed(), path + u'\n');
    QVERIFY(program.said().contains(u"\nSaved · "));
    QVERIFY(!program.said().contains(u'\r'));
    QCOMPARE(pictureOf(path).frames, 600);
}

void DownloadTerminalTest::showsOneLineOnATerminal()
{
    Program program({u"script"_s, u"-qec"_s, command(m_film).join(u' '), u"/dev/null"_s});
    QVERIFY(program.ends());
    QCOMPARE(program.exitCode(), 0);
    const QString shown = program.printed();
    QVERIFY(shown.startsWith(u"\rPreparing…"));
    QVERIFY(shown.endsWith(m_folder.filePath(u"HLS Video.ts\r\n"_s)));
}

void DownloadTerminalTest::saysWhyItFails_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("missing") << m_nginx->url(u"/nothing.m3u8"_s).toString()
                             << u"The stream server rejected the download request."_s;
    QTest::newRow("no playlist") << m_nginx->url(u"/ts/high/segment000.ts"_s).toString()
                                 << u"This URL is not a valid M3U8 playlist."_s;
    QTest::newRow("a file") << u"file:///etc/passwd"_s << u"Enter a valid HTTP or HTTPS address."_s;
    QTest::newRow("nothing") << QString() << u"Enter a valid HTTP or HTTPS address."_s;
}

void DownloadTerminalTest::saysWhyItFails()
{
    QFETCH(const QString, address);
    QFETCH(const QString, sentence);
    Program program(
        {QStringLiteral(LUMARO_PROGRAM), u"--download"_s, address, u"--to"_s, m_folder.path()});
    QVERIFY(program.ends());
    QCOMPARE(program.exitCode(), 1);
    QCOMPARE(program.said().trimmed().section(u'\n', -1), sentence);
    QCOMPARE(program.printed(), QString());
}

void DownloadTerminalTest::refusesContradictions_data()
{
    QTest::addColumn<QStringList>("more");
    QTest::addColumn<QString>("sentence");
    const QString one = u"--download takes one address."_s;
    QTest::newRow("another address") << QStringList{u"--download"_s, u"http://h/b"_s} << one;
    QTest::newRow("a file too") << QStringList{u"film.mp4"_s} << one;
    QTest::newRow("no folder") << QStringList{u"--to"_s, QString()} << u"--to needs a folder."_s;
}

void DownloadTerminalTest::refusesContradictions()
{
    QFETCH(const QStringList, more);
    QFETCH(const QString, sentence);
    Program program(QStringList{QStringLiteral(LUMARO_PROGRAM), u"--download"_s, m_film.toString()}
                    + more);
    QVERIFY(program.ends());
    QCOMPARE(program.exitCode(), 2);
    QCOMPARE(program.said(), sentence + u'\n');
}

void DownloadTerminalTest::keepsTheFileWhenInterrupted()
{
    const auto feed = valueOrFail(LiveFeed::start(*m_nginx, u"live"_s));
    QVERIFY(feed->waitUntilServing(30s));
    Program program(command(feed->url()) + QStringList{u"--name"_s, u"Live"_s});
    const QString path = m_folder.filePath(u"Live.ts"_s);
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo(path).size() > 0, patience);
    QTest::qWait(2500);
    program.send(SIGINT);
    QVERIFY(program.ends());
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(program.printed(), path + u'\n');
    QVERIFY(program.said().contains(u"Stopped · file saved · "));
    const Picture picture = pictureOf(path);
    QVERIFY(picture.frames > 0);
    QCOMPARE(picture.frames % 30, 0);
    QCOMPARE(picture.complaints, QByteArray());
}

void DownloadTerminalTest::cutShortIsNotSuccess()
{
    const auto server = valueOrFail(FaultServer::start());
    server->route("/list.m3u8", FaultResponse::of("text/plain", "#EXTM3U\na\nb\n#EXT-X-ENDLIST\n"));
    server->route("/a", FaultResponse::of("video/mp2t", "whole"));
    FaultResponse torn = FaultResponse::of("video/mp2t", "torn");
    torn.stallAfter = 2;
    server->route("/b", torn);
    Program program(command(server->url("/list.m3u8")) + QStringList{u"--name"_s, u"Cut"_s});
    const QString path = m_folder.filePath(u"Cut.ts"_s);
    QTRY_COMPARE_WITH_TIMEOUT(contentOf(path), QByteArray("wholeto"), patience);
    program.send(SIGTERM);
    QVERIFY(program.ends());
    QCOMPARE(program.exitCode(), 128 + SIGTERM);
    QCOMPARE(program.printed(), path + u'\n');
    QCOMPARE(contentOf(path), QByteArray("whole"));
}

void DownloadTerminalTest::endsWhileANameIsLookedUp()
{
    // A name server that never answers, for the program only.
    QUdpSocket nameServer;
    if (!nameServer.bind(QHostAddress(u"127.0.0.53"_s), 53))
        QSKIP("This process may not be a name server.");
    const QTemporaryDir folder;
    QFile settings(folder.filePath(u"resolv.conf"_s));
    QVERIFY(settings.open(QIODevice::WriteOnly));
    settings.write("nameserver 127.0.0.53\noptions timeout:30 attempts:3\n");
    settings.close();
    Program program(
        QStringList{u"unshare"_s, u"--mount"_s, u"sh"_s, u"-c"_s,
                    u"mount --bind '%1' /etc/resolv.conf && exec \"$@\""_s.arg(settings.fileName()),
                    u"sh"_s}
        + command(QUrl(u"http://slow.lumaro.test/a.m3u8"_s)));
    QTRY_VERIFY_WITH_TIMEOUT(nameServer.hasPendingDatagrams(), patience);
    program.send(SIGINT);
    QVERIFY(program.endsWithin(20'000));
    QCOMPARE(program.exitCode(), 128 + SIGINT);
    QVERIFY(program.said().contains(u"Stopped · file saved"));
}

void DownloadTerminalTest::endsWhenTheFolderHangs()
{
    QVERIFY(QDir(m_folder.path()).mkdir(u"hanging"_s));
    const QString path = m_folder.filePath(u"hanging/HLS Video.ts"_s);
    QProcessEnvironment environment;
    environment.insert(u"LD_PRELOAD"_s, QStringLiteral(LUMARO_HANGING_WRITES));
    environment.insert(u"ASAN_OPTIONS"_s, u"verify_asan_link_order=0"_s);
    const auto server = valueOrFail(FaultServer::start());
    server->route("/list.m3u8", FaultResponse::of("text/plain", "#EXTM3U\na\n#EXT-X-ENDLIST\n"));
    server->route("/a", FaultResponse::longLine(RepeatedBody::endless));
    Program program({QStringLiteral(LUMARO_PROGRAM), u"--download"_s,
                     server->url("/list.m3u8").toString(), u"--to"_s,
                     m_folder.filePath(u"hanging"_s)},
                    environment);
    QTRY_COMPARE_WITH_TIMEOUT(server->requestCount("/a"), 1, patience);
    program.send(SIGINT);
    QVERIFY(program.endsWithin(30'000));
    QCOMPARE(program.exitCode(), 1);
    QCOMPARE(program.said().trimmed().section(u'\n', -1),
             u"The file could not be written: the folder does not answer."_s);
    QCOMPARE(contentOf(path), QByteArray());
}

void DownloadTerminalTest::goesOnWithoutItsTerminal()
{
    const auto server = valueOrFail(FaultServer::start());
    server->route("/list.m3u8", FaultResponse::of("text/plain", "#EXTM3U\na\n#EXT-X-ENDLIST\n"));
    server->route("/a", FaultResponse::of("video/mp2t", "whole"));
    server->hold("/a");
    Program program(QStringList{u"nohup"_s} + command(server->url("/list.m3u8"))
                    + QStringList{u"--name"_s, u"Left alone"_s});
    QTRY_COMPARE_WITH_TIMEOUT(server->requestCount("/a"), 1, patience);
    program.send(SIGHUP);
    server->release("/a");
    QVERIFY(program.ends());
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(contentOf(m_folder.filePath(u"Left alone.ts"_s)), QByteArray("whole"));
}

QTEST_GUILESS_MAIN(DownloadTerminalTest)
#include "tst_download_terminal.moc"
